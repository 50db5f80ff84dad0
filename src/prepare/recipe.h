#pragma once
// A recipe: which standard files to make and from which sources. Read from a
// TOML file whose tables are named by the stems of the standard files.
#include <stdexcept>
#include <string>
#include <vector>

namespace prepare {

// Bad input: the message names the recipe line and the source. The program
// stops with exit status 2 and leaves OUTDIR alone.
struct InputError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

struct LayerRecipe {
    std::string stem;           // "20_wind"
    int line = 0;               // of the table's header
    std::string source;         // absolute path
    std::string sourceText;     // as the recipe writes it
    int sourceLine = 0;
    std::string layer;          // empty: the source's only layer
    std::string where;
    int whereLine = 0;
    bool keepAll = true;
    std::vector<std::string> keep;
    int keepLine = 0;
    std::string field;          // attribute that becomes NAME or LAND_USE
    int fieldLine = 0;
    std::string classes;        // absolute path of the class table, empty if none
    std::string classesText;
    int classesLine = 0;
    int band = 1;
    int bandLine = 0;
    double cellKm = 0;          // 0: the file's default
    bool perYear = false;       // unit kWh/m2/year
    double marginKm = 25;
};

struct Recipe {
    std::string path;           // as given
    std::string name;           // file name, for messages
    std::string crs = "auto";
    int crsLine = 0;
    std::vector<LayerRecipe> layers;  // in the order of the standard table
};

// Throws InputError for a recipe that cannot be read or names what is not
// known (table, key, unit), or that lacks the country boundary.
Recipe readRecipe(const std::string& path);

// "recipe.toml line 12 ([43_roads], source sources/roads.gpkg): " + what
std::string where(const Recipe& recipe, const LayerRecipe& layer, int line, const std::string& what);

}  // namespace prepare
