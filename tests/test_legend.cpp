// The legend control: its entries and class texts, its check boxes and the bitmap it writes.
#include <gtest/gtest.h>

#include <QApplication>
#include <QFile>
#include <QImage>
#include <QMouseEvent>
#include <QScrollBar>

#include "datagen.h"
#include "mapping/legend.h"
#include "mapping/map.h"
#include "support/testsupport.h"

namespace {

using datagen::AttrValue;
using datagen::FeatureSpec;
using datagen::GeomKind;

class LegendTest : public ::testing::Test {
protected:
    void SetUp() override { map.resize(200, 200), legend.resize(220, 300), legend.BindLegendToMap(&map); }

    // A polygon layer with one square per value of the field, added on top of the map.
    MapLayerPtr layer(const std::string& name, const std::string& field, char type, const std::vector<AttrValue>& values)
    {
        std::vector<FeatureSpec> f;
        for (size_t i = 0; i < values.size(); ++i) f.push_back({testsupport::box(i * 10.0, 0, i * 10.0 + 8, 8), {values[i]}});
        const std::string path = dir + "/" + name + ".shp";
        datagen::writeShapefile(path, GeomKind::Polygon, {{field, type, type == 'C' ? 40 : 19, type == 'C' ? 0 : 4}}, f, false);
        MapLayerPtr l = testsupport::layerOf(path);
        l->Name = QString::fromStdString(name);
        return map.Layers().Add(l), l;
    }

    static ClassBreaksRendererPtr breaks(const QString& field, const std::vector<double>& b)
    {
        auto r = std::make_shared<ClassBreaksRenderer>();
        r->Field = field;
        r->setBreakCount(int(b.size()));
        for (size_t i = 0; i < b.size(); ++i) r->setBreak(int(i), b[i]);
        return r;
    }

    std::string dir =
        testsupport::tempDir("legend-" + std::string(::testing::UnitTest::GetInstance()->current_test_info()->name()));
    Map map;
    Legend legend;
};

TEST_F(LegendTest, EntriesFollowTheLayersTopFirstWithTheirClassesAndCheckBoxesSwitchVisibleBeforeTheEvent)
{
    layer("Wind", "WINDPWRD", 'N', {150.0, 450.0, 900.0})->Renderer = breaks("WINDPWRD", {200, 300, 400, 500, 600, 800});
    layer("Solar", "ANNDIR", 'N', {2.2, 3.7})->Renderer = breaks("ANNDIR", {1.9999999999, 2.5, 2.9999999999});
    layer("Elevation", "Elev_m", 'N', {-20.0, 700.0})->Renderer = breaks("Elev_m", {200, 400});
    auto values = std::make_shared<ValueMapRenderer>();
    values->Field = "LAND_USE";
    values->setValueCount(2);
    values->setValue(0, "FOREST");
    values->setValue(1, " WATER");
    layer("Land Use", "LAND_USE", 'C', {std::string("FOREST"), std::string("WATER")})->Renderer = values;
    layer("Lakes", "VALUE", 'N', {1.0});

    legend.FillLegend(true);
    QStringList names;
    for (int i = 0; i < legend.entryCount(); ++i) names << legend.entryName(i);
    EXPECT_EQ(names, QStringList({"Lakes", "Land Use", "Elevation", "Solar", "Wind"}));

    EXPECT_EQ(legend.entryClasses(4),
              QStringList({"0 - 200", "200 - 300", "300 - 400", "400 - 500", "500 - 600", "600 - 800", "800 +"}));
    EXPECT_EQ(legend.entryClasses(3), QStringList({"0 - 2", "2 - 2.5", "2.5 - 3", "3 +"}))
        << "breaks set a hair below a whole number read as that number";
    EXPECT_EQ(legend.entryClasses(2), QStringList({"-20 - 200", "200 - 400", "400 +"})) << "data below 0 shows";
    EXPECT_EQ(legend.entryClasses(1) + legend.entryClasses(0), QStringList({"FOREST", " WATER"}));

    // Filling again rebuilds; it does not append.
    map.Layers().Remove(0);
    legend.FillLegend(true);
    EXPECT_EQ(std::pair(legend.entryCount(), legend.entryName(0)), std::pair(4, QString("Land Use")));

    // A check box switches Visible before the event and draws nothing itself.
    const MapLayerPtr top = map.Layers().Item(0), second = map.Layers().Item(1);
    QStringList seen;
    QObject::connect(&legend, &Legend::AfterSetLayerVisible, &legend, [&](int index, bool state) {
        seen << QString("%1 %2 %3").arg(index).arg(int(state)).arg(int(map.Layers().Item(index)->Visible));
    });
    int draws = 0;
    QObject::connect(&map, &Map::AfterTrackingLayerDraw, &map, [&](QPainter*) { ++draws; });

    legend.clickCheckBox(1);
    EXPECT_FALSE(second->Visible);
    legend.clickCheckBox(1);
    legend.clickCheckBox(5);   // no such entry
    legend.clickCheckBox(-1);
    EXPECT_EQ(seen, QStringList({"1 0 0", "1 1 1"}));

    // The user's click on the first entry's box.
    QMouseEvent press(QEvent::MouseButtonPress, QPointF(10, 14), legend.mapToGlobal(QPointF(10, 14)), Qt::LeftButton,
                      Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&legend, &press);
    EXPECT_FALSE(top->Visible);
    ASSERT_FALSE(seen.isEmpty());
    EXPECT_EQ(seen.last(), "0 0 0");
    EXPECT_EQ(draws, 0) << "the handler refreshes the map, not the legend";

    // A layer hidden elsewhere shows unticked: the box reads the layer.
    top->Visible = true;
    legend.clickCheckBox(0);
    EXPECT_FALSE(top->Visible);
}

TEST_F(LegendTest, SaveLegendBitmapWritesAllOfItEvenWhenItScrolls)
{
    legend.resize(200, 60);
    std::vector<double> b;
    for (int i = 1; i <= 20; ++i) b.push_back(i * 10);
    auto r = breaks("V", b);
    for (int i = 0; i <= 20; ++i) r->Symbol(i)->Color = RGB(200, 200, 200), r->Symbol(i)->Outline = false;
    r->Symbol(20)->Color = RGB(12, 34, 56);  // only the last class
    layer("Many", "V", 'N', {1.0})->Renderer = r;
    legend.FillLegend(true);

    auto bar = legend.findChild<QScrollBar*>();
    ASSERT_NE(bar, nullptr);
    EXPECT_FALSE(bar->isHidden()) << "a legend longer than the control scrolls";

    const QString path = QString::fromStdString(dir + "/LegendBmp1.bmp");
    ASSERT_TRUE(legend.SaveLegendBitmap(path));
    const QImage img(path, "BMP");
    EXPECT_TRUE(img.width() >= 200 && img.height() > 21 * 15) << "all classes, not the visible part";
    bool lastClass = false;
    for (int y = img.height() / 2; y < img.height() && !lastClass; ++y)
        for (int x = 0; x < img.width() && !lastClass; ++x) lastClass = img.pixel(x, y) == qRgb(12, 34, 56);
    EXPECT_TRUE(lastClass) << "the swatch of the last class is in the lower half";

    // An empty legend writes an empty picture of the control's size, replacing the old one.
    legend.ClearLegend();
    EXPECT_TRUE(bar->isHidden());
    ASSERT_TRUE(legend.SaveLegendBitmap(path));
    const QImage blank(path);
    EXPECT_TRUE(blank.size() == QSize(200, 60) && blank.pixel(100, 30) == qRgb(255, 255, 255));

    EXPECT_FALSE(legend.SaveLegendBitmap(QString::fromStdString(dir + "/no such dir/LegendBmp3.bmp")));
}

}  // namespace
