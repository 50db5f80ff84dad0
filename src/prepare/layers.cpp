#include "prepare/layers.h"

#include <cstring>

namespace prepare {

const std::vector<StandardLayer>& standardLayers()
{
    static const std::vector<StandardLayer> layers = {
        {"01_elevation", Kind::Grid, "Elev_m", 5},
        {"02_landuse", Kind::LandUse, "LAND_USE", 0},
        {"11_solar_direct", Kind::Grid, "ANNDIR", 40},
        {"12_solar_tilt", Kind::Grid, "ANNTILT", 40},
        {"13_solar_direct", Kind::Grid, "ANNDIR", 10},
        {"14_solar_glo", Kind::Grid, "ANNGLO", 10},
        {"15_solar_glo", Kind::Grid, "ANNGLO", 40},
        {"16_solar_tilt", Kind::Grid, "ANNTILT", 10},
        {"17_solar_direct", Kind::Grid, "ANNDIR", 40},
        {"18_solar_tilt", Kind::Grid, "ANNTILT", 40},
        {"20_wind", Kind::Grid, "WINDPWRD", 3},
        {"30_lakes", Kind::Polygons, "", 0},
        {"31_protectedarea", Kind::Polygons, "", 0},
        {"36_subcountrybnd3", Kind::Polygons, "", 0},
        {"37_subcountrybnd2", Kind::Polygons, "", 0},
        {"38_subcountrybnd1", Kind::Polygons, "NAME", 0},
        {"39_countryboundary", Kind::Boundary, "", 0},
        {"40_rivers", Kind::Lines, "", 0},
        {"42_railroad", Kind::Lines, "", 0},
        {"43_roads", Kind::Lines, "", 0},
        {"44_transmissionline", Kind::Lines, "", 0},
        {"50_protectedarea", Kind::Points, "", 0},
        {"51_powerplant", Kind::Points, "", 0},
        {"52_facilities", Kind::Points, "", 0},
        {"53_airports", Kind::Points, "", 0},
        {"59_cities", Kind::Points, "", 0},
    };
    return layers;
}

const StandardLayer* findLayer(const std::string& stem)
{
    for (const StandardLayer& s : standardLayers())
        if (stem == s.stem) return &s;
    return nullptr;
}

bool isSolar(const StandardLayer& standard)
{
    return std::strncmp(standard.stem, "1", 1) == 0;
}

bool keepsMargin(const StandardLayer& standard)
{
    return std::strcmp(standard.stem, "43_roads") == 0 || std::strcmp(standard.stem, "44_transmissionline") == 0;
}

std::vector<std::string> keysOf(const StandardLayer& standard)
{
    switch (standard.kind) {
    case Kind::Grid:
        if (isSolar(standard)) return {"source", "band", "cell_km", "unit"};
        return {"source", "band", "cell_km"};
    case Kind::LandUse:
        return {"source", "classes", "band", "field", "layer", "where", "keep"};
    default:
        break;
    }
    std::vector<std::string> keys = {"source", "layer", "where", "keep"};
    if (*standard.field) keys.push_back("field");
    if (keepsMargin(standard)) keys.push_back("margin_km");
    return keys;
}

}  // namespace prepare
