#pragma once
#include <QString>

void FillWindDensityDropDowns();
void FillLandUseDropDown();
int GetSolarResourceLayerID(const QString& layerName);
void getMaxWindDensity();
