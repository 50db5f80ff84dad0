// Placeholder until this module is written.
#include "engine/queries.h"

void wind_class_x_or_better() {}
