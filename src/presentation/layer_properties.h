#pragma once
#include <QString>
#include "mapping/maplayer.h"

// Gives a new layer of a standard file its display name and symbol or renderer.
void SetLayerProperties(const MapLayerPtr& layer, const QString& fileName, const QString& displayName);
