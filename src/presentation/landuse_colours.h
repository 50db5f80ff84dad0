#pragma once
// The fixed colour table of the land-use categories. Keys are upper-case
// category names as the data writes them (misspellings included).
#include <QString>
#include <vector>

#include "mapping/symbol.h"

struct LandUseColourGroup {
    int red, green, blue;
    std::vector<const char*> names;
};

// The 37 colours, each with the names that take it.
const std::vector<LandUseColourGroup>& LandUseColourGroups();

// The colour of a land-use value: the value is trimmed and upper-cased, then
// looked up; a value not in the table takes the colour of "UNDEFINED".
int LandUseColour(const QString& value);

constexpr int LandUseDefaultColour = RGB(175, 175, 177);
