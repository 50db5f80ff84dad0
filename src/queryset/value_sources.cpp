// Placeholder until this module is written.
#include "queryset/value_sources.h"

void FillWindDensityDropDowns() {}
void FillLandUseDropDown() {}
int GetSolarResourceLayerID(const QString&) { return 0; }
void getMaxWindDensity() {}
