#include "presentation/landuse_colours.h"

#include <QHash>

#include "mapping/platform.h"

const std::vector<LandUseColourGroup>& LandUseColourGroups()
{
    // Names are kept exactly as the land-use files carry them.
    static const std::vector<LandUseColourGroup> groups = {
        {212, 231, 177, {
            "GARDEN",
            "CULTIVATIONS",
            "SALTY FOREST",
            "REFORESTATION",
            "PROTECTED FORESTS",
            "COASTAL FORESTS",
            "SMALL LEAF MIXED WOODS",
            "GRASSLAND WITH OR WITHOUT SCATTERED TREES AND SHRUBS",
        }},
        {220, 202, 143, {
            "OTHER LAND",
            "DRY AREAS",
            "COCO",
            "AGRICULTURAL DEVELOPMENT",
            "ROTATING CULTURES",
            "TEPUIS(TABLE MOUNTAINS)",
            "COOL FIELDS AND WOODS",
            "CROPLAND/GRASSLAND MOSAIC",
            "MODERATELY CLOSED TREE CANOPY WITH HERB AND BUSH",
        }},
        {240, 156, 54, {
            "PADDY",
            "INFRASTRUCTURE",
            "LAVA",
            "RANCH FOR DAIRY AND MEAT",
            "REGENERATION OF BIOMASS",
            "RESTINGAS",
            "GRASSLAND",
            "RIVERINE SAVANNA VEGETATION",
        }},
        {121, 108, 75, {
            "COCONUT",
            "MUSACEAS",
            "COFFEE, FRUITS, AND GRAINS",
            "INTENSIVE CULTURES, DRAINAGE",
            "GRASSES AND SHRUBS",
            "SHRUBLAND",
            "RIVERINE FOREST VEGETATION",
        }},
        {134, 200, 127, {
            "OPEN FOREST",
            "PASTURE/MARSH",
            "VEGETABLES",
            "FOREST (DECIDUOUS)",
            "FORESTRY",
            "INTERIOR FORESTS",
            "MIXED FOREST",
        }},
        {26, 129, 78, {
            "DENSE FOREST",
            "FOREST",
            "NATURAL FOREST",
            "FOREST (CONIFEROUS)",
            "FOREST FARMS (PINES)",
            "TROPICAL FORESTS",
            "DECIDUOUS BROADLEAF FOREST",
        }},
        {102, 140, 190, {
            "WATER BODIES",
            "WATER",
        }},
        {175, 175, 177, {
            "UNDEFINED",
            "MARSHLAND",
            "CLOSED CULTIVATED SAVANNA WOODLAND",
        }},
        {247, 178, 159, {
            "RUBBER",
            "HENEQUEN",
            "PROTECTED AREAS",
            "EXCLUSIONS",
            "BABACU OIL PALM",
            "SAVANNA (WOODS)",
            "UNCLASSIFIED/BUSHFIRE",
        }},
        {187, 174, 118, {
            "TEA",
            "HUMID AREAS",
            "NO APT",
            "AGRICULTURE",
            "ROTATING CULTURES, INTENSIVE METHOD",
            "CAATINGA",
            "DRY WOODY SCRUB",
            "DRYLAND CROPLAND AND PASTURE",
            "PLANTED COVER",
        }},
        {210, 205, 192, {
            "URBAN AREAS",
            "FREE RANCH",
            "PROTECTED FORESTS (PINES)",
            "MANGROVES",
            "BROADLEAF CROPS",
            "CROPLAND/WOODLAND MOSAIC",
            "GRASS AND HERB WITH OR WITHOUT SCATTERED TREES",
        }},
        {202, 145, 71, {
            "COFFEE",
            "AREAS WITH CRITICAL CLIMATE AND LAND",
            "INTENSIVE CULTURES",
            "CHACO",
            "SEMI DESERT SAGE",
            "BARREN OR SPARSELY VEGITATED",
            "WETLAND",
        }},
        {253, 229, 228, {
            "SUGAR CANE",
            "RIO NEGRO CAMPINARANA",
            "SHRUB THICKET WITH OR WITHOUT TREES",
        }},
        {231, 86, 78, {
            "TOURIST CENTER",
            "RANCH FOR MEAT",
            "EXCLUSIONS AND SELECTIONS",
            "SEASONAL FORESTS",
        }},
        {253, 233, 170, {
            "FRUITS",
            "EXTENSIVE AGRICULTURE",
            "SAVANNA",
            "CROPS, GRASS, SHRUBS",
            "IRRIGATED CROPLAND AND PASTURE",
            "MOSAIC OF THICKETS/GRASS WITH/WITHOUT SCATTERED TREES",
        }},
        {244, 238, 203, {
            "KENAF",
        }},
        {252, 246, 93, {
            "PASTURES",
            "TOURIST DEVELOPMENT",
            "PERMANENT CULTURAL VEGETATION",
            "OPEN PASTURE",
            "GRASS CROPS",
            "ROCK",
        }},
        {201, 230, 249, {
            "HUMID AREA",
            "SWAMP",
            "FLOODED FORESTS",
            "RAIN FOREST",
            "WOODED WETLAND",
            "LAGOON",
        }},
        {161, 186, 212, {
            "INDUSTRIAL",
        }},
        {194, 158, 215, {
            "UNDEVELOPED",
            "MOIST FORESTS",
        }},
        {250, 192, 165, {
            "PERMANENT VEGETATION",
        }},
        {227, 190, 175, {
            "PERMANENT VEGETATION (CULTURAL PASTURE)",
        }},
        {230, 212, 252, {
            "PERMANENT VEGETATION (PASTURE)",
        }},
        {204, 115, 59, {
            "PERMANENT VEGETATION (PASTURE, COFFEE, FRUITS)",
        }},
        {214, 173, 188, {
            "BARREN TUNDRA",
            "CLOSED SAVANNA WOODLAND",
        }},
        {211, 255, 222, {
            "CONIFER FOREST",
            "EVERGREEN BROADLEAF FOREST",
            "CLOSED FOREST",
        }},
        {205, 137, 102, {
            "CROPS AND TOWN",
            "MODERATELY DENSE HERB/BUSH WITH SCATTERED TREES",
        }},
        {156, 166, 94, {
            "DRY TROPICAL WOODS",
            "OPEN SAVANNA WOODLAND",
        }},
        {214, 219, 192, {
            "FOREST AND FIELD",
            "RESERVOIR",
        }},
        {158, 187, 215, {
            "IRRIGATED CROPLAND",
            "RIVER",
        }},
        {237, 209, 255, {
            "MIRE, BOG, FEN",
            "SETTLEMENT",
        }},
        {255, 190, 190, {
            "SEASONAL TROPICAL FOREST",
            "UNCLASSIFIED/CLOUD",
        }},
        {199, 215, 158, {
            "SEMI DESERT SHRUBS",
            "WOODED TUNDRA",
            "WIDELY OPEN CULTIVATED SAVANNA WOODLAND",
        }},
        {215, 194, 158, {
            "TROPICAL DEGRADED FOREST",
            "MIXED TUNDRA",
            "OPEN CULTIVATED SAVANNA WOODLAND",
        }},
        {179, 168, 191, {
            "URBAN",
            "URBAN AND BUILT-UP LAND",
        }},
        {144, 192, 217, {
            "LAKE",
        }},
        {255, 255, 255, {
            "OTHER",
        }},
    };
    return groups;
}

int LandUseColour(const QString& value)
{
    static const QHash<QString, int> byName = [] {
        QHash<QString, int> h;
        for (const auto& g : LandUseColourGroups())
            for (const char* n : g.names) h.insert(QString::fromLatin1(n), RGB(g.red, g.green, g.blue));
        return h;
    }();
    return byName.value(conv::Upper(conv::Trim(value)), LandUseDefaultColour);
}
