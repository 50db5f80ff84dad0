#pragma once
// The standard files marlowan-prepare makes, and what each is made from.
#include <string>
#include <vector>

namespace prepare {

enum class Kind {
    Grid,      // raster of values -> square cells with the file's value field
    LandUse,   // class raster with a code table, or a vector with a text field
    Boundary,  // the country boundary every other layer is clipped to
    Polygons,
    Lines,
    Points,
};

struct StandardLayer {
    const char* stem;
    Kind kind;
    const char* field;     // standard field the source fills; "" when none
    double cellKm;         // default cell size of a grid
};

// In the drawing order of the standard table.
const std::vector<StandardLayer>& standardLayers();
const StandardLayer* findLayer(const std::string& stem);
bool isSolar(const StandardLayer& standard);
// Lines that the proximity queries buffer, kept to a margin outside the boundary.
bool keepsMargin(const StandardLayer& standard);
// The keys a table of this file takes.
std::vector<std::string> keysOf(const StandardLayer& standard);

}  // namespace prepare
