// Placeholder until this module is written.
#include "presentation/layer_properties.h"

void SetLayerProperties(const MapLayerPtr&, const QString&, const QString&) {}
