// The data side of the mapping component: reading, selecting and overlaying files the tests write themselves.
#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <cmath>
#include <filesystem>
#include <numeric>

#include "datagen.h"
#include "mapping/dataconnection.h"
#include "mapping/maplayer.h"
#include "support/testsupport.h"

using datagen::FeatureSpec;
using datagen::FieldSpec;
using datagen::GeomKind;

namespace {

std::string square(double x, double y, double s) { return testsupport::box(x, y, x + s, y + s); }

// Eleven wind cells in a row, with values on and around the class breaks.
std::string windFile(const std::string& dir)
{
    std::vector<FeatureSpec> f;
    const double values[] = {150, 200, 250, 300, 400, 500, 600, 700, 800, 950, 199.99};
    for (int i = 0; i < 11; ++i) f.push_back({square(i * 1000.0, 0, 1000), {values[i], (long long)(i % 7 + 1)}});
    const std::string path = dir + "/20_wind.shp";
    datagen::writeShapefile(path, GeomKind::Polygon, {{"WINDPWRD", 'N', 19, 8}, {"WINDCLASS", 'I'}}, f);
    return path;
}

ShapePtr polygonAt(double x, double y, double s) { return shapeFromGeom(geomFromWkt(square(x, y, s).c_str())); }

std::vector<int> idsOf(const RecordsetPtr& rs)
{
    std::vector<int> out;
    if (!rs) return out;
    for (rs->MoveFirst(); !rs->Eof(); rs->MoveNext()) out.push_back(rs->Fields().Item("FeatureID").Value().toInt());
    return out;
}

}  // namespace

TEST(Selection, RangesAreInclusiveNoneWhenNothingMatchesRecordsWalkInTableOrderDistancesReachTheEdgeBrokenFilesGiveNone)
{
    auto wind = testsupport::layerOf(windFile(testsupport::tempDir("sel")));
    ASSERT_TRUE(wind);
    EXPECT_EQ(idsOf(wind->SearchExpression("WINDPWRD >= 200 AND WINDPWRD <= 800")), (std::vector<int>{1, 2, 3, 4, 5, 6, 7, 8}));
    EXPECT_EQ(idsOf(wind->SearchExpression("WINDPWRD >= 500 AND WINDPWRD <= 10000")), (std::vector<int>{5, 6, 7, 8, 9}));
    EXPECT_EQ(wind->SearchExpression("FeatureID > -1")->Count(), 11);
    EXPECT_EQ(wind->SearchExpression("WINDPWRD >= 5000"), nullptr);
    EXPECT_THROW(wind->SearchExpression("WINDPWRD >= AND"), MapError);
    EXPECT_THROW(wind->SearchExpression("NOSUCHFIELD > 1"), MapError);
    auto rs = wind->SearchExpression("WINDPWRD >= 0");
    ASSERT_TRUE(rs && rs->CalculateStatistics("WINDPWRD"));
    EXPECT_TRUE(rs->CalculateStatistics("WINDPWRD")->Max == 950 && rs->CalculateStatistics("FeatureID")->Count == 11);
    EXPECT_THROW(rs->CalculateStatistics("NOSUCH"), MapError);

    // Boxes: one round the whole layer lists every record in order, as one
    // that only just falls short of it does through the index.
    const GeoDatasetPtr cells = wind->GeoDataset();
    std::vector<int> all(11);
    std::iota(all.begin(), all.end(), 0);
    EXPECT_EQ(cells->candidates({-1, -1, 11001, 1001}), all);
    EXPECT_EQ(cells->candidates({500, 1, 10500, 999}), all);
    EXPECT_EQ(cells->candidates({999, 0, 1000, 10}), (std::vector<int>{0, 1}));
    EXPECT_TRUE(cells->candidates({11001, 0, 12000, 10}).empty());

    // Shape values outlive the cursor; fields walk in table order.
    rs = wind->Records();
    ShapePtr first = rs->Fields().Item("Shape").shapeValue();
    EXPECT_EQ(rs->Fields().Item("Shape").Type(), moPolygon);
    while (!rs->Eof()) rs->MoveNext();
    EXPECT_THROW(rs->Fields().Item("WINDPWRD").Value(), MapError);
    ASSERT_TRUE(first);
    EXPECT_NEAR(asPolygon(first)->Area(), 1e6, 1e-6);
    rs->MoveFirst();
    auto fields = rs->Fields();
    QStringList names;
    for (int i = 0; i < fields.Count(); ++i) names << fields.at(i).Name();
    EXPECT_EQ(names << fields.Item("WINDPWRD").toText(), QStringList({"Shape", "FeatureID", "WINDPWRD", "WINDCLASS", "150"}));
    EXPECT_THROW(fields.Item("NOSUCH"), MapError);

    // By distance: polygons contain or touch the point, or lie within the distance.
    auto at = [&](double x, double y, double d) { return idsOf(wind->SearchByDistance(std::make_shared<Point>(x, y), d, "")); };
    EXPECT_EQ(at(500, 500, 0), std::vector<int>{0});
    EXPECT_EQ(at(1000, 500, 0), (std::vector<int>{0, 1}));  // on the shared edge
    EXPECT_TRUE(at(500, 1000.5, 0).empty());
    EXPECT_EQ(at(500, 1000.5, 1), (std::vector<int>{0}));
    EXPECT_EQ(idsOf(wind->SearchByDistance(std::make_shared<Point>(1000, 500), 0, "WINDPWRD > 160")), std::vector<int>{1});

    // Broken files give none and never a failure.
    const std::string dir = testsupport::tempDir("broken");
    windFile(dir);
    namespace fs = std::filesystem;
    auto copySet = [&](const std::string& name) {
        for (const char* ext : {".shp", ".shx", ".dbf", ".prj"})
            fs::copy_file(dir + "/20_wind" + ext, dir + "/" + name + ext);
    };
    DataConnection conn;
    conn.Database = QString::fromStdString(dir) + "/";
    ASSERT_TRUE(conn.Connect());
    EXPECT_TRUE(conn.FindGeoDataset("20_wind.shp"));

    copySet("nodbf");
    copySet("noshx");
    copySet("cut");
    fs::remove(dir + "/nodbf.dbf");
    fs::remove(dir + "/noshx.shx");
    fs::resize_file(dir + "/cut.shp", fs::file_size(dir + "/cut.shp") / 2);
    { QFile t(QString::fromStdString(dir + "/text.shp")); t.open(QIODevice::WriteOnly); t.write("not a shapefile\n"); }
    for (const char* broken : {"nodbf.shp", "noshx.shp", "cut.shp", "text.shp", "missing.shp"})
        EXPECT_EQ(conn.FindGeoDataset(broken), nullptr) << broken;

    DataConnection none;
    none.Database = QString::fromStdString(dir) + "/nowhere/";
    EXPECT_TRUE(!none.Connect() && none.ConnectError != 0);
}

// A grid repeats its values; an expression over one field is evaluated once per
// value or stretch of values, which must select exactly what a record-by-record
// pass would.
TEST(Selection, RepeatedValuesNullsAndRecordNumbersSelectAsRecordByRecordAndTextsKeepLeadingBlanks)
{
    const std::string path = testsupport::tempDir("grid") + "/14_solar_glo.shp";
    std::vector<FeatureSpec> f;
    const datagen::AttrValue values[] = {5.5, std::monostate{}, 5.5, 6.75, 4.0, std::monostate{}, 6.75, 5.5};
    for (int i = 0; i < 8; ++i) f.push_back({square(i * 10.0, 0, 10), {values[i], (long long)(i % 3)}});
    datagen::writeShapefile(path, GeomKind::Polygon, {{"ANNGLO", 'N', 19, 8}, {"ZONE", 'I'}}, f);
    auto grid = testsupport::layerOf(path);
    ASSERT_TRUE(grid);
    EXPECT_EQ(idsOf(grid->SearchExpression("ANNGLO >= 5 AND ANNGLO <= 6.5")), (std::vector<int>{0, 2, 7}));
    EXPECT_EQ(idsOf(grid->SearchExpression("ANNGLO IS NULL")), (std::vector<int>{1, 5}));
    EXPECT_EQ(idsOf(grid->SearchExpression("ZONE = 1")), (std::vector<int>{1, 4, 7}));
    // The record's own number makes each record different, even with equal values.
    EXPECT_EQ(idsOf(grid->SearchExpression("ANNGLO = 5.5 AND FeatureID > 0")), (std::vector<int>{2, 7}));
    EXPECT_EQ(idsOf(grid->SearchExpression("ANNGLO = 5.5 AND FID > 0")), (std::vector<int>{2, 7}));

    // An expression over one number field answers once per stretch between its
    // numbers; naming the record's number as well makes the engine answer record
    // by record. Both must pick the same, at the numbers and just beside them,
    // and where arithmetic or a text number takes part.
    const std::string cutPath = testsupport::tempDir("cuts") + "/20_wind.shp";
    const datagen::AttrValue levels[] = {-1.0, 0.0, 4.0, 4.00000001, 4.99999999, 5.0, 5.5, 5.50000001, 6.5, 6.75,
                                         7.0, 1e9, std::monostate{}};
    std::vector<FeatureSpec> cells;
    for (int i = 0; i < 3 * 13; ++i) cells.push_back({square(i, 0, 1), {levels[i % 13], (long long)(i % 5 - 2)}});
    datagen::writeShapefile(cutPath, GeomKind::Polygon, {{"WINDPWRD", 'N', 19, 8}, {"ZONE", 'I'}}, cells);
    auto cut = testsupport::layerOf(cutPath);
    ASSERT_TRUE(cut);
    EXPECT_EQ(idsOf(cut->SearchExpression("WINDPWRD > 5 AND WINDPWRD <= 5.5")), (std::vector<int>{6, 19, 32}));
    EXPECT_EQ(idsOf(cut->SearchExpression("ZONE > -0.5 AND ZONE < 1")).size(), 8u);  // zone 0: every fifth cell
    // The least number of a field, which the legend's lowest class reads.
    const GeoDatasetPtr cutData = cut->GeoDataset();
    EXPECT_EQ(QList<double>({cutData->lowestNumber(0), cutData->lowestNumber(1), cutData->lowestNumber(2)}),
              QList<double>({-1, -2, std::numeric_limits<double>::infinity()}));
    for (const char* e : {"WINDPWRD >= 5 AND WINDPWRD <= 6.5", "WINDPWRD > 5", "WINDPWRD <> 5.5", "NOT (WINDPWRD < 4)",
                          "WINDPWRD IN (4, 5.5, 7)", "WINDPWRD BETWEEN 4 AND 6.75", "WINDPWRD = 5 OR WINDPWRD > 1000",
                          "WINDPWRD * 2 > 11", "WINDPWRD > '5'", "WINDPWRD < 0 OR NOT (WINDPWRD <> 6.75)",
                          "ZONE >= 0 AND ZONE < 2", "ZONE > -1.5", "ZONE IN (-2, 2)", "ZONE <> 0",
                          "ZONE < 9007199254740993"}) {
        const std::vector<int> once = idsOf(cut->SearchExpression(e));
        EXPECT_FALSE(once.empty()) << e;
        EXPECT_EQ(once, idsOf(cut->SearchExpression(QString("(%1) AND FeatureID >= 0").arg(e)))) << e;
    }

    // Texts keep their leading blanks, and the expression sees them.
    const std::string landPath = testsupport::tempDir("text") + "/02_landuse.shp";
    std::vector<FeatureSpec> land;
    const char* names[] = {"  forest", "forest", "", "FOREST ", "  forest", "O'Brien"};
    for (int i = 0; i < 6; ++i) land.push_back({square(i * 10.0, 0, 10), {std::string(names[i])}});
    datagen::writeShapefile(landPath, GeomKind::Polygon, {{"LAND_USE", 'C', 40}}, land);
    auto lu = testsupport::layerOf(landPath);
    ASSERT_TRUE(lu);
    auto all = lu->Records();
    QStringList seen;
    for (; !all->Eof(); all->MoveNext()) seen << all->Fields().Item("land_use").Value().toString();
    EXPECT_EQ(seen, QStringList({"  forest", "forest", "", "FOREST", "  forest", "O'Brien"}));
    EXPECT_EQ(idsOf(lu->SearchExpression("(LAND_USE = '  forest')")), (std::vector<int>{0, 4}));
    EXPECT_EQ(idsOf(lu->SearchExpression("(LAND_USE = 'forest') OR (LAND_USE = 'FOREST')")), (std::vector<int>{1, 3}));
    // A quote inside a name is not doubled by the callers: the expression is malformed.
    EXPECT_THROW(lu->SearchExpression("(LAND_USE = 'O'Brien')"), MapError);
    EXPECT_EQ(lu->Records()->CalculateStatistics("LAND_USE"), nullptr);
}

TEST(Overlays, AreasAgainstHandComputedValues)
{
    auto a = std::dynamic_pointer_cast<GeoShape>(polygonAt(0, 0, 10));
    ShapePtr b = polygonAt(5, 0, 10);
    ASSERT_TRUE(a);
    EXPECT_EQ(QList<double>({asPolygon(a->Intersect(b))->Area(), asPolygon(a->Union(b))->Area()}), QList<double>({50, 150}));
    // Disjoint, touching along an edge, and wholly inside: no shape.
    EXPECT_EQ((std::vector<ShapePtr>{a->Intersect(polygonAt(20, 20, 5)), a->Intersect(polygonAt(10, 0, 10)),
                                     a->Difference(polygonAt(-5, -5, 30))}), std::vector<ShapePtr>(3));
    // Two parts make one polygon of two parts.
    auto two = asPolygon(a->Difference(shapeFromGeom(geomFromWkt("POLYGON((4 -1,6 -1,6 11,4 11,4 -1))"))));
    ASSERT_TRUE(two);
    EXPECT_TRUE(two->partCount() == 2 && std::abs(two->Area() - 80) < 1e-9);
    // A line's buffer: a 10 m segment at 1 m is 20 m2 plus the round ends.
    auto line = std::dynamic_pointer_cast<GeoShape>(shapeFromGeom(geomFromWkt("LINESTRING(0 0,10 0)")));
    EXPECT_NEAR(line->Buffer(1)->Area(), 20 + M_PI, 0.05);
    EXPECT_EQ(QList<double>({a->Centroid()->X(), Point(0, 20).DistanceTo(a)}), QList<double>({5, 10}));
    EXPECT_THROW(a->Intersect(nullptr), MapError);
}

