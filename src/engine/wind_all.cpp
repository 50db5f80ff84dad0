// Placeholder until this module is written.
#include "engine/queries.h"

void wind_all() {}
void Wind_All_Overlay(const PolygonPtr&) {}
