// The identify window: which layers and records a press finds, and the text it writes for them.
#include <gtest/gtest.h>

#include <QApplication>
#include <QEvent>
#include <QFile>

#include "app/frmMain.h"
#include "datagen.h"
#include "info/frmInfo.h"
#include "mapping/map.h"
#include "support/testsupport.h"
#include "workspace/state.h"

using datagen::FeatureSpec;
using datagen::FieldSpec;
using datagen::GeomKind;
using testsupport::recorder;

void PrintTo(const QString& s, std::ostream* os) { *os << '"' << s.toStdString() << '"'; }

namespace {

using testsupport::box;

std::string xy(double x, double y) { return QString("%1 %2").arg(x, 0, 'g', 17).arg(y, 0, 'g', 17).toStdString(); }
std::string line(double x0, double y0, double x1, double y1) { return "LINESTRING(" + xy(x0, y0) + "," + xy(x1, y1) + ")"; }
std::string pointAt(double x, double y) { return "POINT(" + xy(x, y) + ")"; }

datagen::AttrValue txt(const char* s) { return std::string(s); }

// The .dbf writer refuses names differing only in case: the second is respelt in the header afterwards.
void renameDbfField(const std::string& dbfPath, int index, const std::string& name)
{
    QFile f(QString::fromStdString(dbfPath));
    ASSERT_TRUE(f.open(QIODevice::ReadWrite) && f.seek(32 + 32 * index));
    f.write(QByteArray::fromStdString(name).leftJustified(11, '\0'));
}

class InfoTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        ResetProgramState(), recorder().clear(), UnloadFrmInfo(), map().Layers().Clear();
        dir = testsupport::tempDir(::testing::UnitTest::GetInstance()->current_test_info()->name());
        map().setExtent(view);
        tx = map().Width() / 2, ty = map().Height() / 2;
        ASSERT_GT(tx, 1000) << "the map control is too small for these cases";
        const PointPtr p = map().ToMapPoint(float(tx), float(ty));
        x = p->X(), y = p->Y();
        around = box(x - 50, y - 50, x + 50, y + 50);
    }
    void TearDown() override { UnloadFrmInfo(), map().Layers().Clear(); }

    static Map& map() { return *frmMain().Map1; }

    // Adds the layer on top and puts the view back where the press point was taken.
    MapLayerPtr addLayer(const QString& tag, GeomKind kind, const std::vector<FieldSpec>& fields,
                         const std::vector<FeatureSpec>& features, const QString& name = {},
                         const std::vector<std::pair<int, std::string>>& renames = {})
    {
        const std::string path = dir + "/l" + std::to_string(files++) + ".shp";
        datagen::writeShapefile(path, kind, fields, features, false);
        for (auto& [i, n] : renames) renameDbfField(path.substr(0, path.size() - 4) + ".dbf", i, n);
        MapLayerPtr layer = testsupport::layerOf(path);
        layer->Tag = tag;
        layer->Name = name.isEmpty() ? tag : name;
        map().Layers().Add(layer);
        map().setExtent(view);
        return layer;
    }

    // The press position as Map1_MouseDown leaves it: the control's centre.
    void pressAtCentre() { frmMain().iDownX = int16_t(tx), frmMain().iDownY = int16_t(ty); }

    QString identify()
    {
        pressAtCentre();
        frmInfo().Form_Activate();
        return frmInfo().txtInfo->Text();
    }

    std::string dir;
    const Rectangle view{0, 0, 100000, 100000};
    int tx = 0, ty = 0, files = 0;
    double x = 0, y = 0;
    std::string around;  // a square about the press point
};

// Points and lines count within one three-hundredth of the visible width; the
// same place is found at a small scale and missed at a larger one.
TEST_F(InfoTest, PointsAndLinesWithinTheToleranceOfTheExtentPolygonsContainingTheirListsOrTheTableOrNoFields)
{
    Rectangle narrow = view;
    narrow.ScaleRectangle(0.5);
    const double tolWide = map().Extent()->Width() / 300;
    map().setExtent(narrow);
    const double tolNarrow = map().Extent()->Width() / 300;

    const double near = 0.9 * tolNarrow, middle = (tolWide + tolNarrow) / 2, far = 1.5 * tolWide;
    addLayer("53_airports.shp", GeomKind::Point, {{"NAME", 'C'}},
             {{pointAt(x + near, y), {txt("near")}},
              {pointAt(x - 1.1 * tolNarrow, y), {txt("just out")}},
              {pointAt(x, y - middle), {txt("middle")}},
              {pointAt(x - far, y), {txt("far")}}},
             "Airports");
    addLayer("43_roads.shp", GeomKind::Line, {{"NAME", 'C'}},
             {{line(x - 500, y + middle, x + 500, y + middle), {txt("middle road")}},
              {line(x + far, y - 500, x + far, y + 500), {txt("far road")}}},
             "Roads");

    // The narrow view is centred where the wide one is, so the press at the
    // control's centre is the same map point in both.
    EXPECT_EQ(IdentifyTextAt(x, y),
              "Roads\r\nNAME: middle road\r\n\r\n\r\nAirports\r\nNAME: near\r\n\r\nNAME: just out\r\n\r\n"
              "NAME: middle\r\n\r\n\r\n");
    EXPECT_EQ(QPoint(frmMain().iDownX, frmMain().iDownY), QPoint(tx, ty)) << "the press is stored as a press at the point";
    map().setExtent(narrow);
    EXPECT_EQ(IdentifyTextAt(x, y), "Airports\r\nNAME: near\r\n\r\n\r\n");

    // A polygon must contain or touch the point. Hidden layers and the country boundary are never listed; sorted layers
    // follow their list, not the table.
    map().Layers().Clear();
    addLayer("30_lakes.shp", GeomKind::Polygon, {{"Name", 'C'}},
             {{box(x - 100, y - 100, x + 100, y + 100), {txt("inside")}},
              {box(x, y - 100, x + 200, y + 100), {txt("edge")}},
              {box(x + 0.001, y - 100, x + 200, y + 100), {txt("just outside")}},
              {box(x - 300, y - 300, x - 0.001, y - 0.001), {txt("corner outside")}}},
             "Lakes");
    for (const char* tag : {"39_countryboundary.shp", "39_COUNTRYBOUNDARY.SHP"})
        addLayer(tag, GeomKind::Polygon, {{"NAME", 'C'}}, {{around, {txt("Land")}}});
    addLayer("30_lakes.shp", GeomKind::Polygon, {{"NAME", 'C'}}, {{around, {txt("Hidden lake")}}}, "Lakes")->Visible = false;
    addLayer("40_rivers.shp", GeomKind::Line, {{"NAME", 'C'}}, {{line(x - 9, y, x + 9, y), {txt("Hidden river")}}})->Visible = false;
    addLayer("59_cities.shp", GeomKind::Polygon, {{"POP", 'I'}, {"EXTRA", 'C'}, {"TYPE", 'C'}, {"NAME", 'C'}},
             {{around, {12000LL, txt("x"), txt("capital"), txt("  Old town")}},
              {around, {7LL, txt("y"), txt("village"), txt("Ash")}}},
             "Cities");
    addLayer("20_wind.shp", GeomKind::Polygon, {{"WINDPWRD", 'N', 10, 1}, {"OTHER", 'I'}, {"WINDCLASS", 'I'}},
             {{around, {400.0, 9LL, 4LL}}}, "Wind Power Density (W/m2)");
    EXPECT_EQ(identify(),
              "Wind Power Density (W/m2)\r\n"
              "WINDCLASS : 4\r\nWINDPWRD : 400\r\n\r\n\r\n"
              "Cities\r\n"
              "NAME :   OLD TOWN\r\nTYPE : CAPITAL\r\nPOP : 12000\r\n\r\n"
              "NAME : ASH\r\nTYPE : VILLAGE\r\nPOP : 7\r\n\r\n\r\n"
              "Lakes\r\nName: inside\r\n\r\nName: edge\r\n\r\n\r\n");
    EXPECT_EQ(IdentifyTextAt(x + 150, y - 150), "") << "nothing found replaces the old text";
    EXPECT_TRUE(recorder().boxes.empty());

    // Layers without a list (a Tag differing in case from the table has none) show their name and blank lines; listed
    // fields a table lacks are left out; plain layers keep the table's order, spelling and values. Fields differing only
    // in case show in both formats.
    map().Layers().Clear();
    addLayer("30_lakes.shp", GeomKind::Polygon, {{"Name", 'C'}, {"NAMX", 'C'}}, {{around, {txt("first"), txt("second")}}},
             "Lakes", {{1, "NAME"}});
    addLayer("31_protectedarea.shp", GeomKind::Polygon, {{"TYPE", 'C'}, {"Name", 'C'}, {"NAMX", 'C'}},
             {{around, {txt("park"), txt("first"), txt("second")}}}, "Protected Areas", {{2, "NAME"}});
    addLayer("02_landuse.shp", GeomKind::Polygon, {{"AREA", 'N', 12, 2}, {"Land_Use", 'C'}},
             {{around, {3.5, txt("  mixed Forest")}}}, "Land Use");
    addLayer("21_wind.shp", GeomKind::Polygon, {{"WINDPWRD", 'N', 10, 1}}, {{around, {200.0}}, {around, {300.0}}}, "l0");
    addLayer("20_WIND.SHP", GeomKind::Polygon, {{"WINDPWRD", 'N', 10, 1}, {"WINDCLASS", 'I'}}, {{around, {200.0, 2LL}}}, "Upper wind");
    addLayer("52_facilities.shp", GeomKind::Point, {{"NAME", 'C'}}, {{pointAt(x, y), {txt("Depot")}}}, "Facilities");
    addLayer("51_powerplant.shp", GeomKind::Polygon, {{"OWNER", 'C'}}, {{around, {txt("state")}}}, "Power Plants");
    EXPECT_EQ(identify(), "Power Plants\r\n\r\n\r\nFacilities\r\nNAME : DEPOT\r\n\r\n\r\n"
                          "Upper wind\r\n\r\n\r\nl0\r\n\r\n\r\n\r\n"
                          "Land Use\r\nLand_Use:   mixed Forest\r\n\r\n\r\n"
                          "Protected Areas\r\nNAME : FIRST\r\nTYPE : PARK\r\n\r\n\r\n"
                          "Lakes\r\nName: first\r\nNAME: second\r\n\r\n\r\n");
}

TEST_F(InfoTest, TheWindowAsDesignedAFailureKeepsTheTextAndEachActivationSearchesAgainButNotAReturnFromAModalBox)
{
    FrmInfo* first = &frmInfo();
    EXPECT_EQ(QStringList({first->windowTitle(), first->OKButton->text()}), QStringList({"Map Information", "OK"}));

    ShowFrmInfo();
    first->txtInfo->setText("something");
    first->OKButton->click();
    EXPECT_TRUE(first->txtInfo->Text() == "" && first->isHidden() && frmInfoExists());

    ShowFrmInfo();
    first->close();
    EXPECT_FALSE(frmInfoExists());
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    // The next use makes the form anew, with its first text.
    EXPECT_TRUE(frmInfo().txtInfo->Text() == "Information from all layers" && recorder().boxes.empty());

    // A failure ends the activation with its text; the box keeps what it had.
    map().Layers().Add(std::make_shared<MapLayer>());
    map().Layers().Item(0)->Tag = "30_lakes.shp";
    frmInfo().txtInfo->setText("kept");
    EXPECT_EQ(identify(), "kept");
    map().Layers().Clear();
    EXPECT_EQ(recorder().texts(), QStringList{" Error while Trying to activate Info Form. Error Source:frmInfo.Form_Activate()"});

    // Each activation searches again with the stored press position: after a zoom the same position is another map
    // point. Closing one of our own boxes gives the form the focus back; that is no new activation, or a failing search
    // would show its box again and again.
    addLayer("53_airports.shp", GeomKind::Point, {{"NAME", 'C'}},
             {{pointAt(x, y), {txt("centre")}}, {pointAt(x + 20000, y), {txt("east")}}}, "Airports");
    pressAtCentre();
    ShowFrmInfo();
    FrmInfo& f = frmInfo();
    QEvent activate(QEvent::WindowActivate);
    QApplication::sendEvent(&f, &activate);
    EXPECT_EQ(f.txtInfo->Text(), "Airports\r\nNAME: centre\r\n\r\n\r\n");
    map().setExtent(Rectangle(x - 30000, view.Bottom, x + 70000, view.Top));
    QApplication::sendEvent(&f, &activate);
    const QString east = "Airports\r\nNAME: east\r\n\r\n\r\n";
    EXPECT_EQ(f.txtInfo->Text(), east);

    QCoreApplication::processEvents();
    if (QApplication::activeWindow() != &f) GTEST_SKIP() << "this platform does not activate windows";
    auto visit = [&](QWidget& w) {
        w.show(), w.activateWindow(), QCoreApplication::processEvents();
        if (w.isModal()) {
            ASSERT_EQ(QApplication::activeWindow(), &w);
            w.close();
        }
        f.activateWindow(), QCoreApplication::processEvents();
        ASSERT_EQ(QApplication::activeWindow(), &f);
    };
    f.txtInfo->setText("marked");
    QWidget box;
    box.setWindowModality(Qt::ApplicationModal);
    visit(box);
    EXPECT_EQ(f.txtInfo->Text(), "marked");

    // Coming back from a window that is not modal searches again.
    QWidget other;
    visit(other);
    EXPECT_EQ(f.txtInfo->Text(), east);
}

}  // namespace
