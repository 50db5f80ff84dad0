// Placeholder until this module is written.
#include "engine/queries.h"

void wind_with_land_use() {}
void Wind_Landuse_Overlay() {}
