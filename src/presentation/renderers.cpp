// Placeholder until this module is written.
#include "presentation/renderers.h"

void LayerRenderer(const MapLayerPtr&, const QString&, QVariant&) {}
void SetClassSymbolColor(const QString&, double, const SymbolPtr&) {}
