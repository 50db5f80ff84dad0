#pragma once
// Vector layers: the country boundary that fixes the target system, and every
// layer read from a vector source, reprojected, repaired and clipped.
#include <ogr_spatialref.h>
#include <string>

#include "prepare/geom.h"
#include "prepare/layers.h"
#include "prepare/output.h"
#include "prepare/recipe.h"

namespace prepare {

class Progress;

struct Target {
    OGRSpatialReference srs;  // projected, in metres
    std::string prj;          // its ESRI-style projection file text
    ClipArea boundary;
    Envelope extent;          // of the boundary
    OutTable boundaryTable;   // 39_countryboundary itself
};

// Reads the boundary and settles the target system ("auto": the UTM zone of
// the boundary's centre). Throws InputError for bad input.
Target makeTarget(const Recipe& recipe, const LayerRecipe& layer);

// 02_landuse from a vector source, and the vector kinds.
OutTable makeVectorLayer(const Recipe& recipe, const LayerRecipe& layer, const StandardLayer& standard, const Target& target);

// The last message GDAL left, or "" (for the detail of a message).
std::string gdalMessage();

}  // namespace prepare
