#pragma once
#include <QString>

QString CreateWindSelectExpression();
QString CreateSolarSelectExpression();
void GetSolarLayerChosen();
