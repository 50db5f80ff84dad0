// The look of the standard layers beyond the literal tables: plain symbols, solar names, land-use values, failures.
#include <gtest/gtest.h>
#include <limits>
#include <tuple>

#include "datagen.h"
#include "mapping/maplayer.h"
#include "presentation/layer_properties.h"
#include "presentation/renderers.h"
#include "support/testsupport.h"

using testsupport::recorder;

namespace {

constexpr int D = std::numeric_limits<int>::min();  // the component's default in a row

MapLayerPtr landUseLayer(const std::string& name, const std::vector<std::string>& values,
                         const std::string& field = "LAND_USE")
{
    const std::string path = testsupport::tempDir(name) + "/02_landuse.shp";
    std::vector<datagen::FeatureSpec> features;
    for (const std::string& v : values)
        features.push_back({testsupport::box(100.0 * features.size(), 0, 100.0 * features.size() + 60, 50), {v}});
    datagen::writeShapefile(path, datagen::GeomKind::Polygon, {{field, 'C', 60}}, features);
    return testsupport::layerOf(path);
}

ValueMapRendererPtr landUseRenderer(const MapLayerPtr& layer)
{
    QVariant unused;
    LayerRenderer(layer, "LAND_USE", unused);
    return std::dynamic_pointer_cast<ValueMapRenderer>(layer->Renderer);
}

// A layer given the properties of the standard file and the display name.
MapLayerPtr styled(const char* file, const QString& name = "")
{
    auto layer = std::make_shared<MapLayer>();
    SetLayerProperties(layer, file, name);
    return layer;
}

class Presentation : public ::testing::Test {
protected:
    void SetUp() override { recorder().clear(); }
};

}  // namespace

TEST_F(Presentation, LayerPropertiesTableFieldsWithoutAClassTableLandUseValuesAsTheDataWritesThemAndFailures)
{
    auto colourOf = [](const char* field) {
        auto s = std::make_shared<Symbol>();
        s->Color = RGB(1, 2, 3);
        SetClassSymbolColor(field, 500, s);
        return s->Color;
    };
    for (const char* f : {"LAND_USE", "windpwrd", "ELEV_M", "", "NAME"}) EXPECT_EQ(colourOf(f), RGB(1, 2, 3)) << f;

    // The renderer cannot be finished for an unknown field: that failure is reported.
    auto layer = std::make_shared<MapLayer>();
    QVariant unused;
    LayerRenderer(layer, "windpwrd", unused);
    EXPECT_TRUE(!layer->Renderer && layer->Visible);
    EXPECT_EQ(recorder().texts(), QStringList{" Error Source:md_functions.LayerRenderer()"});
    recorder().clear();
    SetClassSymbolColor("WINDPWRD", 500, nullptr);
    EXPECT_EQ(recorder().texts(), QStringList{" Error Source:md_functions.FillcboSelectQuery()"});
    recorder().clear();

    // The land-use renderer fails without data; it reports itself and the layer is still named.
    EXPECT_EQ(styled("02_landuse.shp")->Name, "Land Use");
    EXPECT_EQ(recorder().texts(), QStringList{" Error Source:md_functions.LayerRenderer()"});
    recorder().clear();
    SetLayerProperties(nullptr, "43_roads.shp", "");
    EXPECT_EQ(recorder().texts(), QStringList{" Error Source:md_functions.SetLayerProperties()"});
    recorder().clear();

    // An empty file gives an empty hidden classing; without the field the layer keeps its plain symbol and shows.
    auto empty = landUseLayer("landuse-empty", {});
    auto r = landUseRenderer(empty);
    ASSERT_TRUE(r);
    EXPECT_TRUE(r->ValueCount() == 0 && !empty->Visible && recorder().boxes.empty());
    auto wrong = landUseLayer("landuse-wrongfield", {"FOREST"}, "LANDUSE");
    EXPECT_TRUE(!landUseRenderer(wrong) && wrong->Visible);
    EXPECT_EQ(recorder().texts(), QStringList{" Error Source:md_functions.LayerRenderer()"});

    // Land-use values are classed as the data writes them.
    recorder().clear();
    auto mixed = landUseLayer("landuse-mixed", {"  forest ", " FOREST", "FOREST", "ICE", "OTHER", "OTHER LAND", "",
                                                "water bodies", "FOREST", "ICE", "tepuis(table mountains)"});
    SetLayerProperties(mixed, "02_landuse.shp", "Anything");  // a display name given is not taken
    auto classes = std::dynamic_pointer_cast<ValueMapRenderer>(mixed->Renderer);
    ASSERT_TRUE(classes);
    EXPECT_TRUE(recorder().boxes.empty()) << recorder().texts().join("|").toStdString();
    EXPECT_TRUE(mixed->Name == "Land Use" && classes->Field == "LAND_USE" && !mixed->Visible);

    // Distinct texts, in ascending order, blanks and case as stored, each with its colour.
    const std::pair<const char*, int> wants[] = {
        {"", RGB(175, 175, 177)},          {"  forest", RGB(26, 129, 78)},    {" FOREST", RGB(26, 129, 78)},
        {"FOREST", RGB(26, 129, 78)},      {"ICE", RGB(175, 175, 177)},       {"OTHER", RGB(255, 255, 255)},
        {"OTHER LAND", RGB(220, 202, 143)}, {"tepuis(table mountains)", RGB(220, 202, 143)},
        {"water bodies", RGB(102, 140, 190)},
    };
    ASSERT_EQ(classes->ValueCount(), int(std::size(wants)));
    for (int i = 0; i < classes->ValueCount(); ++i)
        EXPECT_EQ((std::tuple{classes->Value(i), classes->Symbol(i)->Color, classes->Symbol(i)->Outline}),
                  (std::tuple{QString(wants[i].first), wants[i].second, false}));

    // The table of layer properties.
    recorder().clear();
    const Symbol d;  // the component's defaults, for D in a row
    // A display name given is taken by the solar rows only.
    const QString given = "ANNUAL AVERAGE SOLAR RESOURCES (KWH/M2/DAY)";
    struct Row { const char* file; int colour = D, style = D, outline = D, outlineColour = D; double size = D; };
    const Row rows[] = {
        {"31_protectedarea.shp", RGB(0, 128, 0), 4, true, RGB(0, 128, 0)}, {"30_lakes.shp", RGB(127, 199, 242), D, false},
        {"40_rivers.shp", RGB(0, 0, 255)}, {"36_subcountrybnd3.shp", D, 1, true, RGB(230, 152, 0), 1},
        {"39_countryboundary.shp", D, 1, true, RGB(0, 0, 0), 1.5}, {"37_subcountrybnd2.shp", D, 1, true, RGB(115, 38, 0), 1},
        {"38_subcountrybnd1.shp", D, 1, true, RGB(0, 0, 0), 1}, {"42_railroad.shp", RGB(255, 0, 0), 2},
        {"43_roads.shp", RGB(255, 0, 0), D, D, D, 2}, {"44_transmissionline.shp", RGB(0, 0, 0), 3},
        {"51_powerplant.shp", RGB(0, 0, 0), 3}, {"50_protectedarea.shp", RGB(128, 64, 64), 2},
        {"52_facilities.shp", RGB(0, 255, 255), 1}, {"53_airports.shp", RGB(255, 128, 0), 2}, {"59_cities.shp", RGB(255, 0, 0), 0},
        // No row: the layer keeps the component's defaults, name included.
        {"21_wind.shp"}, {"01_ELEVATION.SHP"}, {"20_Wind.shp"}, {" 43_roads.shp"},
    };
    auto orDefault = [&](auto v, auto def) { return v == D ? def : decltype(def)(v); };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.file);
        const MapLayerPtr layer = styled(row.file, given);
        EXPECT_NE(layer->Name, given);
        const Symbol& s = *layer->Symbol;
        EXPECT_EQ((std::tuple{s.Color, s.Style, s.Outline, s.OutlineColor, s.Size}),
                  (std::tuple{orDefault(row.colour, d.Color), orDefault(row.style, d.Style), orDefault(row.outline, d.Outline),
                              orDefault(row.outlineColour, d.OutlineColor), row.size == D ? d.Size : row.size}));
    }
    for (const char* solar : {"11_solar_direct.shp", "15_solar_direct.shp", "15_solar_glo.shp", "16_solar_tilt.shp"}) {
        const MapLayerPtr layer = styled(solar, given);
        EXPECT_TRUE(layer->Name == given && !layer->Visible) << solar;  // solar layers start hidden
    }
    EXPECT_EQ(styled("15_solar_direct.shp")->Name, "40 km Solar Concentrators Annual Average(KWH/M2/DAY)");
    // The wind layer's own symbol has no outline; the state boundaries are labelled.
    EXPECT_FALSE(styled("20_wind.shp", given)->Symbol->Outline);
    auto labels = std::dynamic_pointer_cast<LabelRenderer>(styled("38_subcountrybnd1.shp")->Renderer);
    ASSERT_TRUE(labels);
    const auto& font = labels->Symbol(0)->Font;
    EXPECT_EQ((std::tuple{labels->AllowDuplicates, font.Name, font.Bold, font.Size}),
              (std::tuple{true, QString("MS Sans Serif"), true, 12}));
    EXPECT_TRUE(recorder().boxes.empty()) << recorder().texts().join("|").toStdString();
}

