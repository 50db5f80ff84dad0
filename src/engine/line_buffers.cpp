// Placeholder until this module is written.
#include "engine/queries.h"

PolygonPtr create_line_buffers(const QString&, float) { return nullptr; }
void wind_with_roads() {}
void wind_with_transmission() {}
void Wind_Buffer_Overlay(const PolygonPtr&) {}
