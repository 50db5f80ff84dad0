// Zooming, the mouse tools and the scale read-out.
#include <QFile>
#include <QTextStream>
#include <cmath>

#include "app/scale.h"
#include "info/frmInfo.h"
#include "mainwindow_fixture.h"
#include "mapping/map.h"

using namespace fixture;
using testsupport::recorder;

namespace {

// A geographic system on a = 6378137 and f = 0.003352813, with the unit named as given.
QString geographicWkt(const QString& unit)
{
    return QStringLiteral("GEOGCS[\"GCS_Test\",DATUM[\"D_Test\",SPHEROID[\"Test\",6378137.0,%1]],"
                          "PRIMEM[\"Greenwich\",0.0],UNIT[\"%2\",0.0174532925199433]]")
        .arg(QString::number(1.0 / 0.003352813, 'g', 17), unit);
}

QString projectedWkt(const QString& unit, double toMetres = 1.0)
{
    return QStringLiteral("PROJCS[\"Test_TM\",GEOGCS[\"GCS_WGS_1984\",DATUM[\"D_WGS_1984\",SPHEROID[\"WGS_1984\",6378137.0,"
                          "298.257223563]],PRIMEM[\"Greenwich\",0.0],UNIT[\"Degree\",0.0174532925199433]],"
                          "PROJECTION[\"Transverse_Mercator\"],PARAMETER[\"False_Easting\",500000.0],"
                          "PARAMETER[\"False_Northing\",0.0],PARAMETER[\"Central_Meridian\",21.0],PARAMETER[\"Scale_Factor\","
                          "0.9996],PARAMETER[\"Latitude_Of_Origin\",0.0],UNIT[\"%1\",%2]]")
        .arg(unit, QString::number(toMetres, 'g', 17));
}

// One standard file with a polygon over the box and a projection file of the text (none when empty).
void writeLayer(const QString& dir, const QString& name, double l, double b, double r, double t, const QString& wkt)
{
    datagen::writeShapefile(QDir(dir).filePath(name).toStdString(), datagen::GeomKind::Polygon, {{"ID", 'I'}},
                            {{testsupport::box(l, b, r, t), {1LL}}}, false);
    if (QFile prj(QDir(dir).filePath(QString(name).replace(".shp", ".prj"))); !wkt.isEmpty())
        ASSERT_TRUE(prj.open(QIODevice::WriteOnly) && prj.write(wkt.toUtf8()) > 0);
}

// Loads only the country boundary in the system, over 20 by 20 degrees or 2000 by 2000 km.
void loadCountry(const std::string& name, const QString& wkt)
{
    const QString dir = q(testsupport::tempDir(name));
    if (wkt.startsWith("GEOGCS")) writeLayer(dir, "39_countryboundary.shp", -10, 30, 10, 50, wkt);
    else writeLayer(dir, "39_countryboundary.shp", 0, 0, 2e6, 2e6, wkt);
    loadDirectory(dir);
}

// The platform passed the coordinates by reference.
double miles(Map* map, double lon1, double lat1, double lon2, double lat2) { return DegreesToMiles(map, lon1, lat1, lon2, lat2); }

// A view exactly w wide about (cx, cy), in the control's proportions so that the map keeps that width.
void showWidth(Map* map, double cx, double cy, double w)
{
    const double h = w * map->height() / map->width();
    map->setExtent(Rectangle(cx - w / 2, cy - h / 2, cx + w / 2, cy + h / 2));
}

using Navigation = MainTest;

// Unit names are compared in lower case; only degree and meter convert. Distances are measured on a spheroid.
TEST_F(Navigation, ScaleTextsByUnitDistancesOnTheSpheroidAndFailedCalculations)
{
    ASSERT_EQ(map()->Width(), 8565);
    EXPECT_EQ(CalculateScale(map()), "- No Map - ");
    // No layer to take the spheroid from: the failure shows its text and gives nothing.
    EXPECT_EQ(miles(map(), 0, 40, 10, 40), 0.0);
    EXPECT_EQ(recorder().texts(),
              QStringList{" Error while converting degree to mile. Error Source:md_functions.DegreesToMiles()"});
    recorder().clear();

    struct Case { const char* name; QString wkt; const char* text; };
    const Case cases[] = {
        {"degree", geographicWkt("Degree"), "Scale 1 : 5,649,627"},
        {"upper-degree", geographicWkt("DEGREE"), "Scale 1 : 5,649,627"},
        {"meter", projectedWkt("Meter"), "Scale 1 : 6,619,124"},
        {"upper-meter", projectedWkt("METER"), "Scale 1 : 6,619,124"}, {"metre", projectedWkt("metre"), "Scale 1 : 0"},
        {"foot", projectedWkt("Foot_US", 0.3048006096012192), "Scale 1 : 0"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        loadCountry(std::string("unit-") + c.name, c.wkt);
        if (c.wkt.startsWith("GEOGCS")) showWidth(map(), 0, 40, 10);
        else showWidth(map(), 1e6, 1e6, 1e6);
        EXPECT_EQ(CalculateScale(map()), c.text);
        EXPECT_TRUE(main->cboScale->Text() == c.text && main->cboScale->ListCount() == 1);
    }

    // Only the top layer's coordinate system counts.
    const QString dir = q(testsupport::tempDir("no-units"));
    writeLayer(dir, "01_elevation.shp", 0, 0, 2e6, 2e6, projectedWkt("Meter"));
    writeLayer(dir, "39_countryboundary.shp", 0, 0, 2e6, 2e6, QString());
    loadDirectory(dir);
    ASSERT_EQ(map()->Layers().Item(0)->Tag, "39_countryboundary.shp");
    EXPECT_EQ(CalculateScale(map()), "- No Units - ");

    loadCountry("spheroid", geographicWkt("Degree"));
    EXPECT_EQ(miles(map(), 0, 40, 0, 40), 0.0);  // the same point: no division by zero
    EXPECT_NEAR(miles(map(), 0, 40, 10, 40), 530.3584, 0.00005);
    EXPECT_NEAR(miles(map(), 5, 40, 5, 41), 69.0, 0.1);  // a degree of latitude on this spheroid
    EXPECT_DOUBLE_EQ(DegToRad(180.0), 3.14159265358979);
    EXPECT_NO_BOXES();

    // A projected top layer measures on the fall-back spheroid, which is the same here, so the worked value holds.
    loadCountry("spheroid-tm", projectedWkt("Meter"));
    EXPECT_NEAR(miles(map(), 0, 40, 10, 40), 530.3584, 0.00005);

    // A map control of no width cannot be divided by.
    main->Map1->resize(0, main->Map1->height());
    EXPECT_EQ(CalculateScale(map()), "");
    EXPECT_EQ(recorder().texts(),
              QStringList{" Error while calculating the scale factor. Error Source:md_functions.CalculateScale()"});
}

TEST_F(Navigation, PressesRoundZoomButtonsAndClicksScaleAboutTheirPointDragsAndOtherToolsLeaveTheViewToolsSetThePointer)
{
    // A release at (600 + dx, 600 + dy) after a press at (600, 600) that leaves the view as it was.
    auto expectUnchanged = [&](const char* what, int tool, float dx, float dy) {
        const RectanglePtr before = map()->Extent();
        main->iToolMode = int16_t(tool);
        main->iDownX = main->iDownY = 600;
        main->Map1_MouseUp(1, 0, 600 + dx, 600 + dy);
        EXPECT_TRUE(map()->Extent()->Left == before->Left && map()->Extent()->Width() == before->Width()) << what;
    };
    // A press stores the point rounded.
    struct Press { float x, y; int16_t ix, iy; };
    for (const Press c : {Press{10.5f, 11.5f, 10, 12}, Press{99.4f, 0.6f, 99, 1}, Press{2.5f, 3.5f, 2, 4}}) {
        main->Map1_MouseDown(1, 0, c.x, c.y);
        EXPECT_EQ(QPoint(main->iDownX, main->iDownY), QPoint(c.ix, c.iy));
    }
    // Info on an empty map: no window.
    main->iToolMode = 2;
    main->Map1_MouseDown(1, 0, 30, 30);
    EXPECT_FALSE(frmInfoExists());
    expectUnchanged("empty map", 1, 0, 0);
    loadDirectory(q(testsupport::dataset()));
    main->cmdOriginalMap_Click();
    const RectanglePtr start = map()->Extent();
    const double cx = (start->Left + start->Right) / 2, cy = (start->Top + start->Bottom) / 2;
    // The width against the full view, and whether the way back to it is offered.
    auto expectView = [&](double k, bool back) {
        EXPECT_NEAR(map()->Extent()->Width(), start->Width() * k, 1e-6 * start->Width());
        EXPECT_EQ(Visible(main->cmdOriginalMap), back) << k;
    };
    expectView(1, false);

    bQueryDrawn = true;
    main->cmdZoomIn->click();
    const RectanglePtr e = map()->Extent();
    expectView(0.5, true);  // the repaint showed the way back
    EXPECT_LT(std::hypot((e->Left + e->Right) / 2 - cx, (e->Top + e->Bottom) / 2 - cy), 1e-6 * start->Width());
    EXPECT_FALSE(bQueryDrawn);
    main->cmdZoomOut->click(), main->cmdZoomOut->click();
    expectView(2, false);
    for (int i = 0; i < 3; ++i) main->cmdZoomIn->click();
    expectView(0.25, true);
    main->cmdOriginalMap->click();
    expectView(1, false);

    // Panned away at the full size: no way back is offered.
    map()->CenterAt(cx + start->Width() / 3, cy);
    EXPECT_FALSE(Visible(main->cmdOriginalMap));

    // A click in zoom mode zooms, then centres on the point read in the new view.
    const float x = 1500, y = 2250;  // twips on the control
    struct Case { int button; double factor; };
    for (const Case c : {Case{1, 0.5}, Case{2, 2.0}, Case{4, 2.0}}) {
        SCOPED_TRACE(c.button);
        main->cmdOriginalMap_Click();
        const RectanglePtr before = map()->Extent();
        main->iDownX = int16_t(x + 3), main->iDownY = int16_t(y - 4);
        main->Map1_MouseUp(c.button, 0, x, y);

        RectanglePtr scaled = before->copy();
        scaled->ScaleRectangle(c.factor);
        const double s = map()->width() / scaled->Width();
        const double px = scaled->Left + x / TwipsPerPixel / s, py = scaled->Top - y / TwipsPerPixel / s;
        const RectanglePtr after = map()->Extent();
        EXPECT_NEAR(after->Width(), before->Width() * c.factor, 1e-6 * before->Width());
        EXPECT_LT(std::hypot((after->Left + after->Right) / 2 - px, (after->Top + after->Bottom) / 2 - py), 1e-6 * before->Width());
    }
    struct Left { const char* what; int tool; float dx, dy; };
    for (const Left& c : {Left{"drag of 5 across", 1, 5, 0}, {"drag of 5 down", 1, 0, -5}, {"pan", 0, 0, 0},
                          {"info", 2, 0, 0}, {"no tool", 3, 0, 0}})
        expectUnchanged(c.what, c.tool, c.dx, c.dy);
    // 4.9 twips is still a click.
    main->iToolMode = 1;
    const double w = map()->Extent()->Width();
    main->Map1_MouseUp(1, 0, 604.9f, 604.9f);
    EXPECT_NEAR(map()->Extent()->Width(), w / 2, 1e-6 * w);

    // On a loaded map, the information window.
    main->optPanZoom[2]->setChecked(true);
    ASSERT_EQ(main->iToolMode, 2);
    main->Map1_MouseDown(1, 0, 3000, 3000);
    EXPECT_TRUE(frmInfoExists() && main->iDownX == 3000);

    // The choice of a tool sets the mode and the pointer, and stays across a load.
    struct Tool { int tool; int pointer; };
    for (const Tool c : {Tool{0, 53}, Tool{1, 50}, Tool{2, 14}}) {
        bQueryDrawn = true;
        main->optPanZoom[size_t(c.tool)]->setChecked(true);
        main->Map1_MouseMove(0, 0, 10, 10);
        EXPECT_EQ((std::tuple{int(main->iToolMode), bQueryDrawn, main->Map1->MousePointer()}),
                  (std::tuple{c.tool, false, c.pointer}));
    }
    main->iToolMode = 3;
    main->Map1_MouseMove(0, 0, 10, 10);
    EXPECT_EQ(main->Map1->MousePointer(), 1);
    main->optPanZoom[0]->setChecked(true);
    loadDirectory(q(testsupport::dataset()));
    EXPECT_EQ(main->iToolMode, 0);
    EXPECT_NO_BOXES();
}

}  // namespace
