#pragma once
#include <QString>
#include <QVariant>
#include "mapping/maplayer.h"

// Builds the class or value renderer of a layer for the given field.
void LayerRenderer(const MapLayerPtr& layer, const QString& field, QVariant& unused);
// Colours a single result shape by the class of its value.
void SetClassSymbolColor(const QString& field, double value, const SymbolPtr& symbol);
