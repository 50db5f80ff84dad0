#pragma once
// Raster sources: value grids averaged onto square cells, and land-cover
// class rasters turned into land-use polygons.
#include "prepare/layers.h"
#include "prepare/output.h"
#include "prepare/recipe.h"
#include "prepare/vectors.h"

namespace prepare {

class Progress;

// Cells of cell_km with the mean of the valid pixels in the file's value
// field; cells without a valid pixel are left out, those on the border clipped.
OutTable makeGrid(const Recipe& recipe, const LayerRecipe& layer, const StandardLayer& standard, const Target& target,
                  Progress& progress);

// Polygons of equal class, LAND_USE the text the class table gives the code.
OutTable makeLandUseFromClasses(const Recipe& recipe, const LayerRecipe& layer, const Target& target,
                                Progress& progress);

}  // namespace prepare
