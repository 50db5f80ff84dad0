#pragma once
// The tables marlowan-prepare builds and their writing as shapefiles.
#include <ogr_core.h>
#include <string>
#include <variant>
#include <vector>

#include "mapping/geometry.h"

namespace prepare {

using Value = std::variant<std::monostate, long long, double, std::string>;

struct OutField {
    std::string name;
    OGRFieldType type = OFTString;  // OFTString, OFTInteger, OFTInteger64 or OFTReal
    int width = 0;                  // 0: what fits the values (texts) or OGR's default
    int precision = 0;
};

struct OutRecord {
    GeomPtr geom;
    std::vector<Value> values;
};

struct OutTable {
    int dim = 2;  // 0 points, 1 lines, 2 polygons
    std::vector<OutField> fields;
    std::vector<OutRecord> records;
};

// Writes path (.shp) with .shx, .dbf, a .cpg saying UTF-8 and the .prj text.
// Texts go into the .dbf byte for byte, leading blanks included. Throws
// std::runtime_error when the files cannot be written.
void writeShapefile(const std::string& path, const OutTable& table, const std::string& prjText);

}  // namespace prepare
