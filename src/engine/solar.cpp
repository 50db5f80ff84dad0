// Placeholder until this module is written.
#include "engine/queries.h"

void solar_x_kwhm2_or_better() {}
void best_solar_off_grid_systems() {}
