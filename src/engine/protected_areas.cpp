// Placeholder until this module is written.
#include "engine/queries.h"

void wind_minus_protected_areas() {}
void Wind_ProtectedArea_Overlay() {}
