#pragma once
// Generator of the standard datasets (a fictional country in a metric
// Transverse Mercator system) and a small writer for hand-made shapefiles.
#include <cstddef>
#include <functional>
#include <set>
#include <string>
#include <variant>
#include <vector>

namespace datagen {

struct Options {
    std::string size = "small";      // "small", "large" or "huge"
    unsigned seed = 1;
    std::set<std::string> omit;      // standard file names, ".shp" optional
    // Called after each file is written, with its name and record count.
    std::function<void(const std::string& file, std::size_t records)> onFile;
};

// The 28 standard file names, in drawing order.
const std::vector<std::string>& standardFiles();

// The standard name for "20_wind" or "20_wind.shp" (case ignored); empty if
// the name is not a standard one.
std::string standardName(const std::string& name);

// Creates dir if needed and writes every standard file not omitted. Omitted
// standard files left there by an earlier run are removed, so the directory
// holds exactly the requested set. Throws std::runtime_error on failure
// (also for an unknown size or an unknown name to omit).
void generate(const std::string& dir, const Options& options);

enum class GeomKind { Point, Line, Polygon };

struct FieldSpec {
    std::string name;   // at most 10 characters
    char type;          // 'C' text, 'N' real, 'I' integer
    int width = 0;      // 0: 80 for text, 19 for real, 9 for integer
    int precision = 0;  // decimals of a real (a real of width 0 and precision 0 gets 8)
};

// monostate writes a null value (blanks in the .dbf).
using AttrValue = std::variant<std::monostate, long long, double, std::string>;

struct FeatureSpec {
    std::string wkt;                // empty: a record without a shape
    std::vector<AttrValue> values;  // one per field, missing ones are null
};

// Writes path (ending in .shp) with its .shx, .dbf, .cpg and, if asked, the
// .prj of esriPrjText(). Text values go into the .dbf byte for byte, blanks
// included. Replaces an existing shapefile of that name. Throws
// std::runtime_error on failure.
void writeShapefile(const std::string& path, GeomKind kind, const std::vector<FieldSpec>& fields,
                    const std::vector<FeatureSpec>& features, bool withPrj = true);

// The projection file text of every generated file: ESRI spelling, unit "Meter".
std::string esriPrjText();

}  // namespace datagen
