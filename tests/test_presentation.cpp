// The fixed look of the standard layers: the class tables in their two forms
// (map renderer and single result shape), the land-use colours and the table
// of layer properties.
#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <string>
#include <vector>

#include "datagen.h"
#include "mapping/maplayer.h"
#include "presentation/landuse_colours.h"
#include "presentation/layer_properties.h"
#include "presentation/renderers.h"
#include "support/testsupport.h"

using testsupport::recorder;

namespace {

constexpr double kTop = std::numeric_limits<double>::quiet_NaN();
constexpr int kSame = -1;
constexpr int D = std::numeric_limits<int>::min();  // the component's default in a row of layer properties

// A class as the renderer draws it and as a result shape is coloured.
struct Cls {
    double mapBreak;   // upper break of the renderer class; kTop for the last class
    int mapColour;
    double lowerBound; // lowest value of the result class (round number)
    int resultColour = kSame;
};

// Written out again here from the tables the user sees, not taken from the code.
const std::vector<Cls> kWind = {
    {200, RGB(255, 255, 255), -1e300, RGB(230, 230, 230)}, {300, RGB(222, 184, 135), 200}, {400, RGB(254, 172, 0), 300},
    {500, RGB(255, 110, 180), 400}, {600, RGB(154, 50, 205), 500}, {800, RGB(255, 0, 0), 600},
    {kTop, RGB(0, 0, 255), 800},
};

const std::vector<Cls> kSolar = {
    {1.9999999999, RGB(122, 97, 50), -1e300}, {2.5, RGB(184, 146, 75), 2},
    {2.9999999999, RGB(224, 178, 92), 2.5},   {3.5, RGB(252, 218, 154), 3},
    {3.9999999999, RGB(237, 237, 166), 3.5},  {4.5, RGB(230, 230, 83), 4},
    {4.9999999999, RGB(255, 255, 0), 4.5},    {5.5, RGB(252, 223, 0), 5},
    {5.9999999999, RGB(255, 171, 0), 5.5},    {6.5, RGB(237, 138, 0), 6},
    {6.999999999, RGB(255, 94, 25), 6.5},     {7.5, RGB(247, 0, 0), 7},
    {7.999999999, RGB(207, 0, 0), 7.5},       {8.5, RGB(153, 0, 0), 8},
    {8.999999999, RGB(115, 0, 0), 8.5},       {kTop, RGB(71, 0, 0), 9},
};

const std::vector<Cls> kElevation = {
    {200, RGB(38, 115, 0), -1e300},      {400, RGB(76, 156, 36), 200},     {600, RGB(129, 199, 93), 400},
    {800, RGB(196, 245, 171), 600},      {1000, RGB(255, 249, 186), 800},  {1200, RGB(255, 234, 140), 1000},
    {1400, RGB(255, 212, 102), 1200},    {1600, RGB(199, 172, 125), 1400}, {1800, RGB(168, 131, 67), 1600},
    {2000, RGB(138, 98, 23), 1800},      {2200, RGB(122, 47, 9), 2000},    {2500, RGB(166, 97, 63), 2200},
    {3000, RGB(209, 166, 144), 2500},    {kTop, RGB(255, 255, 255), 3000},
};

int resultOf(const Cls& c) { return c.resultColour == kSame ? c.mapColour : c.resultColour; }
double below(double v) { return std::nextafter(v, -1e300); }
double above(double v) { return std::nextafter(v, 1e300); }

ClassBreaksRendererPtr rendererFor(const MapLayerPtr& layer, const QString& field)
{
    QVariant unused;
    LayerRenderer(layer, field, unused);
    return std::dynamic_pointer_cast<ClassBreaksRenderer>(layer->Renderer);
}

int mapColour(const ClassBreaksRenderer& r, double v) { return r.Symbol(r.classOf(v))->Color; }

int resultColour(const QString& field, double v)
{
    auto s = std::make_shared<Symbol>();
    s->Color = RGB(1, 2, 3);
    SetClassSymbolColor(field, v, s);
    return s->Color;
}

class Presentation : public ::testing::Test {
protected:
    void SetUp() override { recorder().clear(); }
};

}  // namespace

// Each break in both forms: on the map an exact break stays in the class below
// (200 is white on the map, tan as a result); for a result shape the round
// bound starts the class above (a whole solar number agrees, a half one parts).
TEST_F(Presentation, EveryBreakOfEveryClassTableInBothForms)
{
    struct Kind { const char* field; const std::vector<Cls>* classes; };
    const Kind kinds[] = {{"WINDPWRD", &kWind}, {"Elev_m", &kElevation}, {"ANNDIR", &kSolar}, {"ANNTILT", &kSolar},
                          {"ANNGLO", &kSolar}};
    for (const Kind& k : kinds) {
        SCOPED_TRACE(k.field);
        auto layer = std::make_shared<MapLayer>();
        auto r = rendererFor(layer, k.field);
        ASSERT_TRUE(r);
        const auto& cls = *k.classes;
        const int n = int(cls.size()) - 1;
        ASSERT_EQ(r->BreakCount(), n);
        for (int i = 0; i <= n; ++i) EXPECT_FALSE(r->Symbol(i)->Outline) << "symbol " << i;

        for (size_t i = 0; i < size_t(n); ++i) {
            SCOPED_TRACE("break " + std::to_string(i));
            const double b = cls[i].mapBreak;
            EXPECT_EQ(r->Break(int(i)), b);  // exact double, hair margins included
            EXPECT_EQ(r->Symbol(int(i))->Color, cls[i].mapColour);
            EXPECT_EQ(mapColour(*r, b), cls[i].mapColour);
            EXPECT_EQ(mapColour(*r, below(b)), cls[i].mapColour);
            EXPECT_EQ(mapColour(*r, above(b)), cls[i + 1].mapColour);
        }
        for (size_t i = 1; i <= size_t(n); ++i) {
            SCOPED_TRACE("bound of class " + std::to_string(i));
            const double lo = cls[i].lowerBound;
            EXPECT_EQ(resultColour(k.field, lo), resultOf(cls[i]));
            EXPECT_EQ(resultColour(k.field, below(lo)), resultOf(cls[i - 1]));
            EXPECT_EQ(resultColour(k.field, above(lo)), resultOf(cls[i]));
        }
        // Negative values fall in the first class in both forms.
        EXPECT_EQ(mapColour(*r, -5), cls[0].mapColour);
        EXPECT_EQ(resultColour(k.field, -5), resultOf(cls[0]));
    }
    EXPECT_TRUE(recorder().boxes.empty());
}

TEST_F(Presentation, FieldsWithoutAClassTable)
{
    // The result colour is left alone for any other field, with case.
    for (const char* f : {"LAND_USE", "windpwrd", "ELEV_M", "", "NAME"}) EXPECT_EQ(resultColour(f, 500), RGB(1, 2, 3)) << f;

    // The renderer cannot be finished for an unknown field: that failure is reported.
    auto layer = std::make_shared<MapLayer>();
    EXPECT_FALSE(rendererFor(layer, "windpwrd"));
    EXPECT_TRUE(layer->Visible);
    EXPECT_EQ(recorder().texts(), QStringList{" Error Source:md_functions.LayerRenderer()"});
    recorder().clear();

    // A failure while colouring a result names another routine; that is its text.
    SetClassSymbolColor("WINDPWRD", 500, nullptr);
    EXPECT_EQ(recorder().texts(), QStringList{" Error Source:md_functions.FillcboSelectQuery()"});
}

namespace {

MapLayerPtr landUseLayer(const std::string& name, const std::vector<std::string>& values,
                         const std::string& field = "LAND_USE")
{
    const std::string path = testsupport::tempDir(name) + "/02_landuse.shp";
    std::vector<datagen::FeatureSpec> features;
    int i = 0;
    for (const std::string& v : values) {
        const std::string x = std::to_string(100 * i++);
        features.push_back({"POLYGON((" + x + " 0," + x + " 50,60 50,60 0," + x + " 0))", {v}});
    }
    datagen::writeShapefile(path, datagen::GeomKind::Polygon, {{field, 'C', 60}}, features);
    auto layer = std::make_shared<MapLayer>();
    layer->setGeoDataset(GeoDataset::open(QString::fromStdString(path)));
    EXPECT_TRUE(layer->GeoDataset()) << path;
    return layer;
}

ValueMapRendererPtr landUseRenderer(const MapLayerPtr& layer)
{
    QVariant unused;
    LayerRenderer(layer, "LAND_USE", unused);
    return std::dynamic_pointer_cast<ValueMapRenderer>(layer->Renderer);
}

}  // namespace

TEST_F(Presentation, LandUseValuesAreClassedAsTheDataWritesThem)
{
    auto layer = landUseLayer("landuse-mixed", {"  forest ", " FOREST", "FOREST", "ICE", "OTHER", "OTHER LAND", "",
                                                "water bodies", "Barren or sparsely vegitated", "FOREST", "ICE",
                                                "tepuis(table mountains)", "URBAN", "URBAN AREAS"});
    SetLayerProperties(layer, "02_landuse.shp", "Anything");  // a display name given is not taken
    auto r = std::dynamic_pointer_cast<ValueMapRenderer>(layer->Renderer);
    ASSERT_TRUE(r);
    EXPECT_TRUE(recorder().boxes.empty()) << recorder().texts().join("|").toStdString();
    EXPECT_EQ(layer->Name, "Land Use");
    EXPECT_EQ(r->Field, "LAND_USE");
    EXPECT_FALSE(layer->Visible);

    // Distinct texts, in ascending order, blanks and case as stored, each with its colour.
    struct Want { const char* value; int colour; };
    const Want wants[] = {
        {"", RGB(175, 175, 177)},           {"  forest", RGB(26, 129, 78)}, {" FOREST", RGB(26, 129, 78)},
        {"Barren or sparsely vegitated", RGB(202, 145, 71)},                {"FOREST", RGB(26, 129, 78)},
        {"ICE", RGB(175, 175, 177)},        {"OTHER", RGB(255, 255, 255)},  {"OTHER LAND", RGB(220, 202, 143)},
        {"URBAN", RGB(179, 168, 191)},      {"URBAN AREAS", RGB(210, 205, 192)},
        {"tepuis(table mountains)", RGB(220, 202, 143)},                    {"water bodies", RGB(102, 140, 190)},
    };
    ASSERT_EQ(r->ValueCount(), int(std::size(wants)));
    for (int i = 0; i < r->ValueCount(); ++i) {
        SCOPED_TRACE(wants[i].value);
        EXPECT_EQ(r->Value(i), wants[i].value);
        EXPECT_EQ(r->Symbol(i)->Color, wants[i].colour);
        EXPECT_FALSE(r->Symbol(i)->Outline);
    }
}

TEST_F(Presentation, LandUseTableHoldsEveryNameOnceUnderItsColour)
{
    int names = 0;
    QSet<QString> seen;
    QSet<int> colours;
    for (const auto& g : LandUseColourGroups()) {
        colours.insert(RGB(g.red, g.green, g.blue));
        for (const char* n : g.names) {
            ++names;
            seen.insert(n);
            EXPECT_EQ(QString(n), QString(n).toUpper());
            EXPECT_EQ(LandUseColour(n), RGB(g.red, g.green, g.blue)) << n;
        }
    }
    EXPECT_EQ(names, 141);
    EXPECT_EQ(seen.size(), 141);
    EXPECT_EQ(colours.size(), 37);
    // Look-alikes are entries of their own.
    struct Pair { const char* name; int colour; };
    const Pair pairs[] = {
        {"HUMID AREA", RGB(201, 230, 249)}, {"HUMID AREAS", RGB(187, 174, 118)}, {"COCO", RGB(220, 202, 143)},
        {"COCONUT", RGB(121, 108, 75)},     {"GRASSLAND", RGB(240, 156, 54)},    {"LAKE", RGB(144, 192, 217)},
        {"GRASSLAND WITH OR WITHOUT SCATTERED TREES AND SHRUBS", RGB(212, 231, 177)},
        {"mosaic of thickets/grass with/without scattered trees ", RGB(253, 233, 170)},
        {"TEPUIS (TABLE MOUNTAINS)", RGB(175, 175, 177)}, {"BARREN OR SPARSELY VEGETATED", RGB(175, 175, 177)},
    };
    for (const Pair& p : pairs) EXPECT_EQ(LandUseColour(p.name), p.colour) << p.name;
}

TEST_F(Presentation, LayerPropertiesTable)
{
    const Symbol d;  // the component's defaults, for D in a row
    const char* conc40 = "40 km Solar Concentrators Annual Average(KWH/M2/DAY)";
    const char* pv40 = "40 km Solar PV Annual Average(KWH/M2/DAY)";
    // A classed row names its field and breaks; a plain row its symbol. Each is also set with a display
    // name given, which only the solar rows take.
    const QString given = "ANNUAL AVERAGE SOLAR RESOURCES (KWH/M2/DAY)";
    struct Row {
        const char *file, *name, *field;
        int breaks = 0, colour = D, style = D, outline = D, outlineColour = D;
        double size = D;
    };
    const Row rows[] = {
        {"01_elevation.shp", "Elevation (meters)", "Elev_m", 13},
        {"11_solar_direct.shp", conc40, "ANNDIR", 15},
        {"15_solar_direct.shp", conc40, "ANNDIR", 15},
        {"17_solar_direct.shp", conc40, "ANNDIR", 15},
        {"15_solar_glo.shp", "40 km Solar Global Horizontal Annual Average(KWH/M2/DAY)", "ANNGLO", 15},
        {"13_solar_direct.shp", "10 KM Solar Concentrators Annual Average(KWH/M2/DAY)", "ANNDIR", 15},
        {"14_solar_glo.shp", "10 km Solar Global Horizontal Annual Average(KWH/M2/DAY)", "ANNGLO", 15},
        {"16_solar_tilt.shp", "10 km Solar PV Annual Average(KWH/M2/DAY)", "ANNTILT", 15},
        {"12_solar_tilt.shp", pv40, "ANNTILT", 15},
        {"18_solar_tilt.shp", pv40, "ANNTILT", 15},
        {"20_wind.shp", "Wind Power Density (W/m2)", "WINDPWRD", 6},
        {"31_protectedarea.shp", "Protected Areas", nullptr, 0, RGB(0, 128, 0), 4, true, RGB(0, 128, 0), D},
        {"30_lakes.shp", "Lakes", nullptr, 0, RGB(127, 199, 242), D, false, D, D},
        {"40_rivers.shp", "Rivers", nullptr, 0, RGB(0, 0, 255)},
        {"36_subcountrybnd3.shp", "Additional Boundary", nullptr, 0, D, 1, true, RGB(230, 152, 0), 1},
        {"39_countryboundary.shp", "Country Boundary", nullptr, 0, D, 1, true, RGB(0, 0, 0), 1.5},
        {"37_subcountrybnd2.shp", "Other Boundary", nullptr, 0, D, 1, true, RGB(115, 38, 0), 1},
        {"42_railroad.shp", "Railways", nullptr, 0, RGB(255, 0, 0), 2},
        {"43_roads.shp", "Roads", nullptr, 0, RGB(255, 0, 0), D, D, D, 2},
        {"44_transmissionline.shp", "Transmission Lines", nullptr, 0, RGB(0, 0, 0), 3},
        {"51_powerplant.shp", "Power Plants", nullptr, 0, RGB(0, 0, 0), 3},
        {"50_protectedarea.shp", "Historic Sites", nullptr, 0, RGB(128, 64, 64), 2},
        {"52_facilities.shp", "Facilities", nullptr, 0, RGB(0, 255, 255), 1},
        {"53_airports.shp", "Airports", nullptr, 0, RGB(255, 128, 0), 2},
        {"59_cities.shp", "Cities", nullptr, 0, RGB(255, 0, 0), 0},
        {"38_subcountrybnd1.shp", "State Boundaries", nullptr, 0, D, 1, true, RGB(0, 0, 0), 1},  // and labelled
        // No row: the layer keeps the component's defaults, name included.
        {"21_wind.shp", "", nullptr}, {"22_wind.shp", "", nullptr}, {"01_ELEVATION.SHP", "", nullptr},
        {"20_Wind.shp", "", nullptr}, {" 43_roads.shp", "", nullptr},
    };
    auto orDefault = [&](auto v, auto def) { return v == D ? def : decltype(def)(v); };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.file);
        auto named = std::make_shared<MapLayer>();
        SetLayerProperties(named, row.file, given);
        const bool solar = row.field && QString(row.field).startsWith("ANN");
        EXPECT_EQ(named->Name, solar ? given : QString(row.name));
        auto layer = std::make_shared<MapLayer>();
        SetLayerProperties(layer, row.file, "");
        EXPECT_EQ(layer->Name, row.name);
        if (row.field) {
            auto r = std::dynamic_pointer_cast<ClassBreaksRenderer>(layer->Renderer);
            ASSERT_TRUE(r);
            EXPECT_EQ(r->Field, row.field);
            EXPECT_EQ(r->BreakCount(), row.breaks);
            EXPECT_EQ(layer->Visible, !solar);  // solar layers start hidden
            continue;
        }
        EXPECT_EQ(bool(layer->Renderer), row.name == QString("State Boundaries"));
        EXPECT_EQ(layer->Symbol->Color, orDefault(row.colour, d.Color));
        EXPECT_EQ(layer->Symbol->Style, orDefault(row.style, d.Style));
        EXPECT_EQ(layer->Symbol->Outline, orDefault(row.outline, d.Outline));
        EXPECT_EQ(layer->Symbol->OutlineColor, orDefault(row.outlineColour, d.OutlineColor));
        EXPECT_EQ(layer->Symbol->Size, row.size == D ? d.Size : row.size);
    }
    // The wind layer's own symbol has no outline; the state boundaries are labelled.
    auto wind = std::make_shared<MapLayer>();
    SetLayerProperties(wind, "20_wind.shp", "");
    EXPECT_FALSE(wind->Symbol->Outline);
    auto states = std::make_shared<MapLayer>();
    SetLayerProperties(states, "38_subcountrybnd1.shp", "");
    auto labels = std::dynamic_pointer_cast<LabelRenderer>(states->Renderer);
    ASSERT_TRUE(labels);
    EXPECT_EQ(labels->Field, "NAME");
    EXPECT_TRUE(labels->AllowDuplicates);
    EXPECT_EQ(labels->Symbol(0)->Font.Name, "MS Sans Serif");
    EXPECT_TRUE(labels->Symbol(0)->Font.Bold);
    EXPECT_EQ(labels->Symbol(0)->Font.Size, 12);
    EXPECT_TRUE(recorder().boxes.empty()) << recorder().texts().join("|").toStdString();
}

TEST_F(Presentation, LandUseAndPropertiesFailures)
{
    // The land-use renderer fails without data; it reports itself and the layer is still named.
    auto bare = std::make_shared<MapLayer>();
    SetLayerProperties(bare, "02_landuse.shp", "");
    EXPECT_EQ(bare->Name, "Land Use");
    EXPECT_EQ(recorder().texts(), QStringList{" Error Source:md_functions.LayerRenderer()"});
    recorder().clear();

    SetLayerProperties(nullptr, "43_roads.shp", "");
    EXPECT_EQ(recorder().texts(), QStringList{" Error Source:md_functions.SetLayerProperties()"});
    recorder().clear();

    // An empty file gives an empty hidden classing; without the field the layer keeps its plain symbol and shows.
    auto empty = landUseLayer("landuse-empty", {});
    ASSERT_TRUE(landUseRenderer(empty));
    EXPECT_EQ(landUseRenderer(empty)->ValueCount(), 0);
    EXPECT_FALSE(empty->Visible);
    EXPECT_TRUE(recorder().boxes.empty());
    auto wrong = landUseLayer("landuse-wrongfield", {"FOREST"}, "LANDUSE");
    EXPECT_FALSE(landUseRenderer(wrong));
    EXPECT_TRUE(wrong->Visible);
    EXPECT_EQ(recorder().texts(), QStringList{" Error Source:md_functions.LayerRenderer()"});
}
