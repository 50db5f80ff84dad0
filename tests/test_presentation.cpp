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

// A class as the renderer draws it and as a result shape is coloured.
struct Cls {
    double mapBreak;   // upper break of the renderer class; kTop for the last class
    int mapColour;
    double lowerBound; // lowest value of the result class (round number)
    int resultColour;
};

// Written out again here from the tables the user sees, not taken from the code.
const std::vector<Cls> kWind = {
    {200, RGB(255, 255, 255), -1e300, RGB(230, 230, 230)},
    {300, RGB(222, 184, 135), 200, RGB(222, 184, 135)},
    {400, RGB(254, 172, 0), 300, RGB(254, 172, 0)},
    {500, RGB(255, 110, 180), 400, RGB(255, 110, 180)},
    {600, RGB(154, 50, 205), 500, RGB(154, 50, 205)},
    {800, RGB(255, 0, 0), 600, RGB(255, 0, 0)},
    {kTop, RGB(0, 0, 255), 800, RGB(0, 0, 255)},
};

const std::vector<Cls> kSolar = {
    {1.9999999999, RGB(122, 97, 50), -1e300, RGB(122, 97, 50)},
    {2.5, RGB(184, 146, 75), 2, RGB(184, 146, 75)},
    {2.9999999999, RGB(224, 178, 92), 2.5, RGB(224, 178, 92)},
    {3.5, RGB(252, 218, 154), 3, RGB(252, 218, 154)},
    {3.9999999999, RGB(237, 237, 166), 3.5, RGB(237, 237, 166)},
    {4.5, RGB(230, 230, 83), 4, RGB(230, 230, 83)},
    {4.9999999999, RGB(255, 255, 0), 4.5, RGB(255, 255, 0)},
    {5.5, RGB(252, 223, 0), 5, RGB(252, 223, 0)},
    {5.9999999999, RGB(255, 171, 0), 5.5, RGB(255, 171, 0)},
    {6.5, RGB(237, 138, 0), 6, RGB(237, 138, 0)},
    {6.999999999, RGB(255, 94, 25), 6.5, RGB(255, 94, 25)},
    {7.5, RGB(247, 0, 0), 7, RGB(247, 0, 0)},
    {7.999999999, RGB(207, 0, 0), 7.5, RGB(207, 0, 0)},
    {8.5, RGB(153, 0, 0), 8, RGB(153, 0, 0)},
    {8.999999999, RGB(115, 0, 0), 8.5, RGB(115, 0, 0)},
    {kTop, RGB(71, 0, 0), 9, RGB(71, 0, 0)},
};

const std::vector<Cls> kElevation = {
    {200, RGB(38, 115, 0), -1e300, RGB(38, 115, 0)},
    {400, RGB(76, 156, 36), 200, RGB(76, 156, 36)},
    {600, RGB(129, 199, 93), 400, RGB(129, 199, 93)},
    {800, RGB(196, 245, 171), 600, RGB(196, 245, 171)},
    {1000, RGB(255, 249, 186), 800, RGB(255, 249, 186)},
    {1200, RGB(255, 234, 140), 1000, RGB(255, 234, 140)},
    {1400, RGB(255, 212, 102), 1200, RGB(255, 212, 102)},
    {1600, RGB(199, 172, 125), 1400, RGB(199, 172, 125)},
    {1800, RGB(168, 131, 67), 1600, RGB(168, 131, 67)},
    {2000, RGB(138, 98, 23), 1800, RGB(138, 98, 23)},
    {2200, RGB(122, 47, 9), 2000, RGB(122, 47, 9)},
    {2500, RGB(166, 97, 63), 2200, RGB(166, 97, 63)},
    {3000, RGB(209, 166, 144), 2500, RGB(209, 166, 144)},
    {kTop, RGB(255, 255, 255), 3000, RGB(255, 255, 255)},
};

struct Kind {
    const char* field;
    const std::vector<Cls>* classes;
    bool hidesLayer;
};
const Kind kKinds[] = {
    {"WINDPWRD", &kWind, false},
    {"Elev_m", &kElevation, false},
    {"ANNDIR", &kSolar, true},
    {"ANNTILT", &kSolar, true},
    {"ANNGLO", &kSolar, true},
};

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

std::string colourText(int c)
{
    return "(" + std::to_string(RedOf(c)) + "," + std::to_string(GreenOf(c)) + "," + std::to_string(BlueOf(c)) + ")";
}

class Presentation : public ::testing::Test {
protected:
    void SetUp() override { recorder().clear(); }
};

}  // namespace

// Each break in both forms: on the map an exact break stays in the class below;
// for a result shape the round bound starts the class above.
TEST_F(Presentation, EveryBreakOfEveryClassTableInBothForms)
{
    for (const Kind& k : kKinds) {
        SCOPED_TRACE(k.field);
        auto layer = std::make_shared<MapLayer>();
        auto r = rendererFor(layer, k.field);
        ASSERT_TRUE(r);
        const auto& cls = *k.classes;
        const int n = int(cls.size()) - 1;
        ASSERT_EQ(r->BreakCount(), n);
        EXPECT_EQ(r->Field, k.field);
        EXPECT_EQ(layer->Visible, !k.hidesLayer);
        for (int i = 0; i <= n; ++i) EXPECT_FALSE(r->Symbol(i)->Outline) << "symbol " << i;
        EXPECT_EQ(r->Symbol(n)->Color, cls[size_t(n)].mapColour);

        for (int i = 0; i < n; ++i) {
            SCOPED_TRACE("break " + std::to_string(i));
            const double b = cls[size_t(i)].mapBreak;
            EXPECT_EQ(r->Break(i), b);  // exact double, hair margins included
            EXPECT_EQ(r->Symbol(i)->Color, cls[size_t(i)].mapColour) << colourText(r->Symbol(i)->Color);
            EXPECT_EQ(mapColour(*r, b), cls[size_t(i)].mapColour);
            EXPECT_EQ(mapColour(*r, below(b)), cls[size_t(i)].mapColour);
            EXPECT_EQ(mapColour(*r, above(b)), cls[size_t(i + 1)].mapColour);
        }
        for (int i = 1; i <= n; ++i) {
            SCOPED_TRACE("bound of class " + std::to_string(i));
            const double lo = cls[size_t(i)].lowerBound;
            EXPECT_EQ(resultColour(k.field, lo), cls[size_t(i)].resultColour) << colourText(resultColour(k.field, lo));
            EXPECT_EQ(resultColour(k.field, below(lo)), cls[size_t(i - 1)].resultColour);
            EXPECT_EQ(resultColour(k.field, above(lo)), cls[size_t(i)].resultColour);
        }
        // Negative values fall in the first class in both forms.
        EXPECT_EQ(mapColour(*r, -5), cls[0].mapColour);
        EXPECT_EQ(resultColour(k.field, -5), cls[0].resultColour);
    }
    EXPECT_TRUE(recorder().boxes.empty());
}

TEST_F(Presentation, FormsAgreeOrDisagreeWhereTheTablesSay)
{
    auto wind = rendererFor(std::make_shared<MapLayer>(), "WINDPWRD");
    auto solar = rendererFor(std::make_shared<MapLayer>(), "ANNDIR");
    ASSERT_TRUE(wind && solar);
    // Exactly 200: white on the map, tan as a result.
    EXPECT_EQ(mapColour(*wind, 200), RGB(255, 255, 255));
    EXPECT_EQ(resultColour("WINDPWRD", 200), RGB(222, 184, 135));
    EXPECT_EQ(mapColour(*wind, 10000), RGB(0, 0, 255));
    EXPECT_EQ(resultColour("WINDPWRD", 10000), RGB(0, 0, 255));
    // A whole solar number: both forms put it above, for the break lies a hair below.
    EXPECT_EQ(mapColour(*solar, 3.0), RGB(252, 218, 154));
    EXPECT_EQ(resultColour("ANNDIR", 3.0), RGB(252, 218, 154));
    EXPECT_EQ(mapColour(*solar, 7.0), RGB(247, 0, 0));
    EXPECT_EQ(resultColour("ANNGLO", 7.0), RGB(247, 0, 0));
    // A half number: the forms part.
    EXPECT_EQ(mapColour(*solar, 2.5), RGB(184, 146, 75));
    EXPECT_EQ(resultColour("ANNTILT", 2.5), RGB(224, 178, 92));
}

TEST_F(Presentation, FieldsWithoutAClassTable)
{
    // The result colour is left alone for any other field, with case.
    for (const char* f : {"LAND_USE", "windpwrd", "ELEV_M", "", "NAME"}) {
        SCOPED_TRACE(f);
        EXPECT_EQ(resultColour(f, 500), RGB(1, 2, 3));
    }
    EXPECT_TRUE(recorder().boxes.empty());

    // The renderer cannot be finished for an unknown field: that failure is reported.
    auto layer = std::make_shared<MapLayer>();
    QVariant unused;
    LayerRenderer(layer, "windpwrd", unused);
    EXPECT_FALSE(layer->Renderer);
    EXPECT_TRUE(layer->Visible);
    EXPECT_EQ(recorder().texts(), QStringList{" Error Source:md_functions.LayerRenderer()"});
    recorder().clear();

    // A failure while colouring a result names another routine; that is its text.
    SetClassSymbolColor("WINDPWRD", 500, nullptr);
    EXPECT_EQ(recorder().texts(), QStringList{" Error Source:md_functions.FillcboSelectQuery()"});
}

// --- land use ---------------------------------------------------------------

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
    auto r = landUseRenderer(layer);
    ASSERT_TRUE(r);
    EXPECT_TRUE(recorder().boxes.empty()) << recorder().texts().join("|").toStdString();
    EXPECT_EQ(r->Field, "LAND_USE");
    EXPECT_FALSE(layer->Visible);

    // Distinct texts, in ascending order, blanks and case as stored.
    const QStringList expected = {"",
                                  "  forest",
                                  " FOREST",
                                  "Barren or sparsely vegitated",
                                  "FOREST",
                                  "ICE",
                                  "OTHER",
                                  "OTHER LAND",
                                  "URBAN",
                                  "URBAN AREAS",
                                  "tepuis(table mountains)",
                                  "water bodies"};
    QStringList values;
    for (int i = 0; i < r->ValueCount(); ++i) values << r->Value(i);
    EXPECT_EQ(values, expected);

    struct Want { const char* value; int colour; };
    const Want wants[] = {
        {"", RGB(175, 175, 177)},
        {"  forest", RGB(26, 129, 78)},
        {" FOREST", RGB(26, 129, 78)},
        {"FOREST", RGB(26, 129, 78)},
        {"Barren or sparsely vegitated", RGB(202, 145, 71)},
        {"ICE", RGB(175, 175, 177)},
        {"OTHER", RGB(255, 255, 255)},
        {"OTHER LAND", RGB(220, 202, 143)},
        {"URBAN", RGB(179, 168, 191)},
        {"URBAN AREAS", RGB(210, 205, 192)},
        {"tepuis(table mountains)", RGB(220, 202, 143)},
        {"water bodies", RGB(102, 140, 190)},
    };
    for (const Want& w : wants) {
        SCOPED_TRACE(w.value);
        const int i = r->indexOf(w.value);
        ASSERT_GE(i, 0);
        EXPECT_EQ(r->Symbol(i)->Color, w.colour) << colourText(r->Symbol(i)->Color);
        EXPECT_FALSE(r->Symbol(i)->Outline);
    }
}

TEST_F(Presentation, LandUseEmptyFileAndMissingField)
{
    auto empty = landUseLayer("landuse-empty", {});
    auto r = landUseRenderer(empty);
    ASSERT_TRUE(r);
    EXPECT_EQ(r->ValueCount(), 0);
    EXPECT_FALSE(empty->Visible);
    EXPECT_TRUE(recorder().boxes.empty());

    // Without the field the layer keeps its plain symbol and stays as it was.
    auto wrong = landUseLayer("landuse-wrongfield", {"FOREST"}, "LANDUSE");
    EXPECT_FALSE(landUseRenderer(wrong));
    EXPECT_TRUE(wrong->Visible);
    EXPECT_EQ(recorder().texts(), QStringList{" Error Source:md_functions.LayerRenderer()"});
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
        {"HUMID AREA", RGB(201, 230, 249)},  {"HUMID AREAS", RGB(187, 174, 118)},
        {"COCO", RGB(220, 202, 143)},        {"COCONUT", RGB(121, 108, 75)},
        {"GRASSLAND", RGB(240, 156, 54)},
        {"GRASSLAND WITH OR WITHOUT SCATTERED TREES AND SHRUBS", RGB(212, 231, 177)},
        {"UNDEFINED", RGB(175, 175, 177)},   {"KENAF", RGB(244, 238, 203)},
        {"PERMANENT VEGETATION (PASTURE, COFFEE, FRUITS)", RGB(204, 115, 59)},
        {"MIRE, BOG, FEN", RGB(237, 209, 255)}, {"LAKE", RGB(144, 192, 217)},
        {"mosaic of thickets/grass with/without scattered trees ", RGB(253, 233, 170)},
        {"TEPUIS (TABLE MOUNTAINS)", RGB(175, 175, 177)},
        {"BARREN OR SPARSELY VEGETATED", RGB(175, 175, 177)},
    };
    for (const Pair& p : pairs) EXPECT_EQ(LandUseColour(p.name), p.colour) << p.name;
}

// --- layer properties -------------------------------------------------------

namespace {

struct Row {
    const char* file;
    const char* name;
    std::function<void(const MapLayer&)> check;
};

void plain(const MapLayer& l, int colour, int style, bool outline, int outlineColour, double size)
{
    EXPECT_FALSE(l.Renderer);
    EXPECT_EQ(l.Symbol->Color, colour) << colourText(l.Symbol->Color);
    EXPECT_EQ(l.Symbol->Style, style);
    EXPECT_EQ(l.Symbol->Outline, outline);
    EXPECT_EQ(l.Symbol->OutlineColor, outlineColour);
    EXPECT_EQ(l.Symbol->Size, size);
}

void classes(const MapLayer& l, const char* field, int breaks)
{
    auto r = std::dynamic_pointer_cast<ClassBreaksRenderer>(l.Renderer);
    ASSERT_TRUE(r);
    EXPECT_EQ(r->Field, field);
    EXPECT_EQ(r->BreakCount(), breaks);
}

}  // namespace

TEST_F(Presentation, LayerPropertiesTable)
{
    const Symbol d;  // the component's defaults for what a row does not set
    const char* conc40 = "40 km Solar Concentrators Annual Average(KWH/M2/DAY)";
    const char* pv40 = "40 km Solar PV Annual Average(KWH/M2/DAY)";
    const std::vector<Row> rows = {
        {"01_elevation.shp", "Elevation (meters)", [](const MapLayer& l) { classes(l, "Elev_m", 13); EXPECT_TRUE(l.Visible); }},
        {"11_solar_direct.shp", conc40, [](const MapLayer& l) { classes(l, "ANNDIR", 15); EXPECT_FALSE(l.Visible); }},
        {"15_solar_direct.shp", conc40, [](const MapLayer& l) { classes(l, "ANNDIR", 15); }},
        {"17_solar_direct.shp", conc40, [](const MapLayer& l) { classes(l, "ANNDIR", 15); }},
        {"15_solar_glo.shp", "40 km Solar Global Horizontal Annual Average(KWH/M2/DAY)",
         [](const MapLayer& l) { classes(l, "ANNGLO", 15); EXPECT_FALSE(l.Visible); }},
        {"13_solar_direct.shp", "10 KM Solar Concentrators Annual Average(KWH/M2/DAY)",
         [](const MapLayer& l) { classes(l, "ANNDIR", 15); }},
        {"14_solar_glo.shp", "10 km Solar Global Horizontal Annual Average(KWH/M2/DAY)",
         [](const MapLayer& l) { classes(l, "ANNGLO", 15); }},
        {"16_solar_tilt.shp", "10 km Solar PV Annual Average(KWH/M2/DAY)",
         [](const MapLayer& l) { classes(l, "ANNTILT", 15); }},
        {"12_solar_tilt.shp", pv40, [](const MapLayer& l) { classes(l, "ANNTILT", 15); }},
        {"18_solar_tilt.shp", pv40, [](const MapLayer& l) { classes(l, "ANNTILT", 15); }},
        {"20_wind.shp", "Wind Power Density (W/m2)", [&](const MapLayer& l) {
             classes(l, "WINDPWRD", 6);
             EXPECT_FALSE(l.Symbol->Outline);
             EXPECT_EQ(l.Symbol->Color, d.Color);
             EXPECT_TRUE(l.Visible);
         }},
        {"31_protectedarea.shp", "Protected Areas",
         [&](const MapLayer& l) { plain(l, RGB(0, 128, 0), 4, true, RGB(0, 128, 0), d.Size); }},
        {"30_lakes.shp", "Lakes", [&](const MapLayer& l) { plain(l, RGB(127, 199, 242), d.Style, false, d.OutlineColor, d.Size); }},
        {"40_rivers.shp", "Rivers", [&](const MapLayer& l) { plain(l, RGB(0, 0, 255), d.Style, d.Outline, d.OutlineColor, d.Size); }},
        {"36_subcountrybnd3.shp", "Additional Boundary",
         [&](const MapLayer& l) { plain(l, d.Color, 1, true, RGB(230, 152, 0), 1); }},
        {"39_countryboundary.shp", "Country Boundary", [&](const MapLayer& l) { plain(l, d.Color, 1, true, RGB(0, 0, 0), 1.5); }},
        {"37_subcountrybnd2.shp", "Other Boundary", [&](const MapLayer& l) { plain(l, d.Color, 1, true, RGB(115, 38, 0), 1); }},
        {"38_subcountrybnd1.shp", "State Boundaries", [&](const MapLayer& l) {
             EXPECT_EQ(l.Symbol->Style, 1);
             EXPECT_TRUE(l.Symbol->Outline);
             EXPECT_EQ(l.Symbol->OutlineColor, RGB(0, 0, 0));
             EXPECT_EQ(l.Symbol->Size, 1);
             auto labels = std::dynamic_pointer_cast<LabelRenderer>(l.Renderer);
             ASSERT_TRUE(labels);
             EXPECT_EQ(labels->Field, "NAME");
             EXPECT_TRUE(labels->AllowDuplicates);
             EXPECT_EQ(labels->Symbol(0)->Font.Name, "MS Sans Serif");
             EXPECT_TRUE(labels->Symbol(0)->Font.Bold);
             EXPECT_EQ(labels->Symbol(0)->Font.Size, 12);
         }},
        {"42_railroad.shp", "Railways", [&](const MapLayer& l) { plain(l, RGB(255, 0, 0), 2, d.Outline, d.OutlineColor, d.Size); }},
        {"43_roads.shp", "Roads", [&](const MapLayer& l) { plain(l, RGB(255, 0, 0), d.Style, d.Outline, d.OutlineColor, 2); }},
        {"44_transmissionline.shp", "Transmission Lines",
         [&](const MapLayer& l) { plain(l, RGB(0, 0, 0), 3, d.Outline, d.OutlineColor, d.Size); }},
        {"51_powerplant.shp", "Power Plants", [&](const MapLayer& l) { plain(l, RGB(0, 0, 0), 3, d.Outline, d.OutlineColor, d.Size); }},
        {"50_protectedarea.shp", "Historic Sites",
         [&](const MapLayer& l) { plain(l, RGB(128, 64, 64), 2, d.Outline, d.OutlineColor, d.Size); }},
        {"52_facilities.shp", "Facilities", [&](const MapLayer& l) { plain(l, RGB(0, 255, 255), 1, d.Outline, d.OutlineColor, d.Size); }},
        {"53_airports.shp", "Airports", [&](const MapLayer& l) { plain(l, RGB(255, 128, 0), 2, d.Outline, d.OutlineColor, d.Size); }},
        {"59_cities.shp", "Cities", [&](const MapLayer& l) { plain(l, RGB(255, 0, 0), 0, d.Outline, d.OutlineColor, d.Size); }},
        // No row: the layer keeps the component's defaults, name included.
        {"21_wind.shp", "", [&](const MapLayer& l) { plain(l, d.Color, d.Style, d.Outline, d.OutlineColor, d.Size); }},
        {"22_wind.shp", "", [&](const MapLayer& l) { plain(l, d.Color, d.Style, d.Outline, d.OutlineColor, d.Size); }},
        {"01_ELEVATION.SHP", "", [&](const MapLayer& l) { plain(l, d.Color, d.Style, d.Outline, d.OutlineColor, d.Size); }},
        {"20_Wind.shp", "", [&](const MapLayer& l) { plain(l, d.Color, d.Style, d.Outline, d.OutlineColor, d.Size); }},
        {" 43_roads.shp", "", [&](const MapLayer& l) { plain(l, d.Color, d.Style, d.Outline, d.OutlineColor, d.Size); }},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.file);
        auto layer = std::make_shared<MapLayer>();
        SetLayerProperties(layer, row.file, "");
        EXPECT_EQ(layer->Name, row.name);
        row.check(*layer);
    }
    EXPECT_TRUE(recorder().boxes.empty()) << recorder().texts().join("|").toStdString();
}

TEST_F(Presentation, DisplayNameOnlyForSolarRows)
{
    const QString given = "ANNUAL AVERAGE SOLAR RESOURCES (KWH/M2/DAY)";
    struct Case { const char* file; const char* expected; };
    const Case cases[] = {
        {"11_solar_direct.shp", "ANNUAL AVERAGE SOLAR RESOURCES (KWH/M2/DAY)"},
        {"12_solar_tilt.shp", "ANNUAL AVERAGE SOLAR RESOURCES (KWH/M2/DAY)"},
        {"13_solar_direct.shp", "ANNUAL AVERAGE SOLAR RESOURCES (KWH/M2/DAY)"},
        {"14_solar_glo.shp", "ANNUAL AVERAGE SOLAR RESOURCES (KWH/M2/DAY)"},
        {"15_solar_glo.shp", "ANNUAL AVERAGE SOLAR RESOURCES (KWH/M2/DAY)"},
        {"15_solar_direct.shp", "ANNUAL AVERAGE SOLAR RESOURCES (KWH/M2/DAY)"},
        {"16_solar_tilt.shp", "ANNUAL AVERAGE SOLAR RESOURCES (KWH/M2/DAY)"},
        {"17_solar_direct.shp", "ANNUAL AVERAGE SOLAR RESOURCES (KWH/M2/DAY)"},
        {"18_solar_tilt.shp", "ANNUAL AVERAGE SOLAR RESOURCES (KWH/M2/DAY)"},
        {"20_wind.shp", "Wind Power Density (W/m2)"},
        {"01_elevation.shp", "Elevation (meters)"},
        {"43_roads.shp", "Roads"},
        {"59_cities.shp", "Cities"},
        {"21_wind.shp", ""},
    };
    for (const Case& c : cases) {
        auto layer = std::make_shared<MapLayer>();
        SetLayerProperties(layer, c.file, given);
        EXPECT_EQ(layer->Name, c.expected) << c.file;
    }
    EXPECT_TRUE(recorder().boxes.empty());
}

TEST_F(Presentation, LayerPropertiesFailures)
{
    // The land-use renderer fails without data; it reports itself and the layer is still named.
    auto bare = std::make_shared<MapLayer>();
    SetLayerProperties(bare, "02_landuse.shp", "");
    EXPECT_EQ(bare->Name, "Land Use");
    EXPECT_EQ(recorder().texts(), QStringList{" Error Source:md_functions.LayerRenderer()"});
    recorder().clear();

    SetLayerProperties(nullptr, "43_roads.shp", "");
    EXPECT_EQ(recorder().texts(), QStringList{" Error Source:md_functions.SetLayerProperties()"});
}

TEST_F(Presentation, LandUseLayerNamedAndHiddenFromItsFile)
{
    auto layer = landUseLayer("landuse-props", {"FOREST", "LAKE"});
    SetLayerProperties(layer, "02_landuse.shp", "Anything");
    EXPECT_EQ(layer->Name, "Land Use");
    EXPECT_FALSE(layer->Visible);
    auto r = std::dynamic_pointer_cast<ValueMapRenderer>(layer->Renderer);
    ASSERT_TRUE(r);
    EXPECT_EQ(r->ValueCount(), 2);
    EXPECT_TRUE(recorder().boxes.empty());
}
