#pragma once
#include "mapping/maplayer.h"

void SetDefaultVisibility(const MapLayerPtr& layer);
bool isSetLayerVisible(const MapLayerPtr& layer);
