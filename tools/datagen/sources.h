#pragma once
// The raw sources of the fictional country as an analyst downloads them:
// rasters and vectors in longitude/latitude with their own field names, and
// the recipe that turns them into a standard dataset with marlowan-prepare.
#include <string>

#include "datagen.h"

namespace datagen {

// Writes dir/sources/ and dir/recipe.toml for the country that generate()
// makes with the same options (size, seed). Throws std::runtime_error.
void writeSources(const std::string& dir, const Options& options);

}  // namespace datagen
