// Save Result: the result written as a shapefile that GDAL reads back, and every way it stops without writing.
#include <gdal_priv.h>
#include <ogrsf_frmts.h>

#include <filesystem>
#include <fstream>
#include <unistd.h>

#include "mapping/map.h"
#include "query_fixture.h"
#include "results/save_result.h"

using testsupport::fileAnswer;
using testsupport::recorder;
namespace fs = std::filesystem;

namespace {

const QString kFailure = " Error Source:md_query_functions2.SaveTrackingLayer()";

ShapePtr shape(const QString& wkt) { return shapeFromGeom(geomFromWkt(wkt.toUtf8().constData())); }

// A square of side s at (x, y), optionally with a square hole of half the side.
ShapePtr square(double x, double y, double s, bool hole = false)
{
    const QString ring = "(%1 %2,%3 %2,%3 %4,%1 %4,%1 %2)";
    QString wkt = "POLYGON(" + ring.arg(x).arg(y).arg(x + s).arg(y + s);
    if (hole) wkt += "," + ring.arg(x + s / 4).arg(y + s / 4).arg(x + 3 * s / 4).arg(y + 3 * s / 4);
    return shape(wkt + ")");
}

// The result model and the values of the query that made it.
void setResult(const std::vector<ShapePtr>& shapes, const QString& field, const std::vector<double>& values)
{
    cShapes = std::make_shared<Collection<ShapePtr>>();
    for (const auto& s : shapes) cShapes->Add(s, QString::number(cShapes->Count()));
    sFieldName = field;
    cFieldValues = std::make_shared<Collection<QVariant>>();
    for (double v : values) cFieldValues->Add(QVariant(v), QString::number(cFieldValues->Count()));
}

// fields: "NAME Type width.precision" for each field.
struct Saved { bool opened = false; int geomType = 0; std::string fields; std::vector<double> values, areas; std::string srsWkt; };

// Read back through GDAL alone, as any other GIS program would.
Saved readBack(const std::string& path)
{
    Saved s;
    GDALAllRegister();
    std::unique_ptr<GDALDataset> ds(GDALDataset::Open(path.c_str(), GDAL_OF_VECTOR | GDAL_OF_READONLY));
    if (!ds) return s;
    OGRLayer* layer = ds->GetLayer(0);
    s.opened = true, s.geomType = int(wkbFlatten(layer->GetGeomType()));
    const OGRFeatureDefn* defn = layer->GetLayerDefn();
    for (int i = 0; i < defn->GetFieldCount(); ++i) {
        const OGRFieldDefn* f = defn->GetFieldDefn(i);
        s.fields += std::string(i ? ", " : "") + f->GetNameRef() + " " + OGRFieldDefn::GetFieldTypeName(f->GetType()) + " "
                    + std::to_string(f->GetWidth()) + "." + std::to_string(f->GetPrecision());
    }
    char* wkt = nullptr;
    if (const OGRSpatialReference* srs = layer->GetSpatialRef(); srs && srs->exportToWkt(&wkt) == OGRERR_NONE) s.srsWkt = wkt;
    CPLFree(wkt);
    for (const auto& feat : *layer) {
        s.values.push_back(feat->GetFieldAsDouble(0));
        s.areas.push_back(feat->GetGeometryRef() ? OGR_G_Area(OGRGeometry::ToHandle(feat->GetGeometryRef())) : -1);
    }
    return s;
}

std::set<std::string> filesIn(const std::string& dir)
{
    std::set<std::string> out;
    for (const auto& e : fs::directory_iterator(dir)) out.insert(e.path().filename().string());
    return out;
}

std::string slurp(const std::string& path)
{
    std::ifstream f(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(f), {}};
}

class SaveTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        ResetProgramState(), recorder().clear(), frmMain().Map1->Layers().Clear();
        dir = testsupport::tempDir(::testing::UnitTest::GetInstance()->current_test_info()->name());
    }
    void TearDown() override { frmMain().Map1->Layers().Clear(); }

    // A standard layer loaded alone into Map1 as the loading leaves it.
    void loadLayer(const std::string& file, bool withPrj)
    {
        const std::string path = dir + "/src_" + file;
        datagen::writeShapefile(path, datagen::GeomKind::Polygon, {{"VALUE", 'N'}}, {{"POLYGON((0 0,1 0,1 1,0 0))", {1.0}}}, withPrj);
        auto layer = std::make_shared<MapLayer>();
        layer->setGeoDataset(GeoDataset::open(QString::fromStdString(path)));
        layer->Tag = QString::fromStdString(file);
        frmMain().Map1->Layers().Clear();
        frmMain().Map1->Layers().Add(layer);
        cLayerIndex = std::make_shared<Collection<int>>();
        cLayerIndex->Add(0, layer->Tag);
    }

    // Saves to the given name under the test's directory, as the dialog answers it.
    void saveAs(const std::string& name)
    {
        recorder().files.push_back(fileAnswer(QString::fromStdString(dir + "/" + name)));
        SaveTrackingLayer();
    }

    std::string dir;
};

TEST_F(SaveTest, ResultReadsBackWithItsGeometriesValuesAndTheProjectionOfItsLayer)
{
    loadLayer("20_wind.shp", true);
    const QString twoParts = "MULTIPOLYGON(((2000 0,2010 0,2010 10,2000 0)),((2020 0,2040 0,2040 5,2020 5,2020 0)))";
    setResult({square(0, 0, 100), square(500, 500, 80, true), shape(twoParts)}, "WINDPWRD", {400, 200.5, 600});
    sDataDirectory = QString::fromStdString(dir) + "/";
    saveAs("result.shp");

    EXPECT_TRUE(recorder().boxes.empty()) << recorder().texts().join("|").toStdString();
    ASSERT_EQ(recorder().fileRequests.size(), 1u);
    const seam::FileRequest& r = recorder().fileRequests[0];
    EXPECT_TRUE(r.save && r.flags == 10) << r.flags;
    EXPECT_EQ(QStringList({r.title, r.filter, r.defaultExt, r.fileName}),
              QStringList({"Save Layer", "ESRI Shapefiles (*.shp)|*.shp", ".shp", ""}));

    const Saved s = readBack(dir + "/result.shp");
    EXPECT_EQ(s.geomType, int(wkbPolygon));
    EXPECT_EQ(s.fields, "WINDPWRD Real 15.1");
    EXPECT_EQ(s.values, (std::vector<double>{400, 200.5, 600}));
    EXPECT_EQ(s.areas, (std::vector<double>{10000, 4800, 150}));  // the hole and both parts survive

    // The projection is that of the wind layer the values came from.
    const std::string sourceWkt = readBack(dir + "/src_20_wind.shp").srsWkt;
    ASSERT_FALSE(sourceWkt.empty());
    EXPECT_EQ(s.srsWkt, sourceWkt);

    // The map and the result are as they were, so the same result saves again.
    EXPECT_EQ(frmMain().Map1->Layers().Count(), 1);
    saveAs("again.shp");
    EXPECT_EQ(readBack(dir + "/again.shp").values.size(), 3u);

    // The off-grid query leaves the values of the query before: the first are written, a record without one fails.
    setResult({square(0, 0, 10), square(50, 0, 20)}, "WINDPWRD", {200, 300, 400, 500});
    saveAs("stale.shp");
    EXPECT_TRUE(recorder().boxes.empty());
    EXPECT_EQ(readBack(dir + "/stale.shp").values, (std::vector<double>{200, 300}));

    setResult({square(0, 0, 10), square(50, 0, 20)}, "WINDPWRD", {200});
    saveAs("short.shp");
    EXPECT_EQ(recorder().texts(), QStringList{kFailure});

    // The projection comes from the chosen solar layer, or is left out.
    recorder().clear();
    struct Case { const char* field; const char* solarFile; const char* loaded; bool prj; bool withPrj; };
    const Case cases[] = {
        {"ANNGLO", "14_solar_glo.shp", "14_solar_glo.shp", true, true},
        {"ANNDIR", "11_solar_direct.shp", "20_wind.shp", false, true},  // the chosen layer is not loaded
        {"WINDPWRD", "", "20_wind.shp", false, false},                  // the layer has no projection file
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.field);
        loadLayer(c.loaded, c.withPrj);
        setResult({square(0, 0, 10)}, c.field, {5.5});
        sSolarLayerFile = c.solarFile;
        saveAs(std::string(c.field) + ".shp");
        EXPECT_TRUE(recorder().boxes.empty() && readBack(dir + "/" + c.field + ".shp").opened);
        EXPECT_EQ(fs::exists(dir + "/" + c.field + ".prj"), c.prj);
    }
}

TEST_F(SaveTest, SilentStopsWriteNothingATitleEarlierInThePathCutsTheDirectoryShortAndAboveFiftyFeaturesItAsks)
{
    // No query yet, an empty result.
    saveAs("x.shp");
    setResult({}, "WINDPWRD", {});
    SaveTrackingLayer();
    EXPECT_TRUE(recorder().fileRequests.empty());
    recorder().clear();

    // A cancelled dialog (the recorder cancels when no answer is queued), an empty name.
    setResult({square(0, 0, 10)}, "WINDPWRD", {200});
    SaveTrackingLayer();
    recorder().files.push_back(seam::FileAnswer{.cancelled = false});
    SaveTrackingLayer();
    EXPECT_EQ(recorder().fileRequests.size(), 2u);

    // After the off-grid query with no query before it: no field name.
    cFieldValues.reset();
    sFieldName.clear();
    saveAs("none.shp");
    EXPECT_TRUE(recorder().boxes.empty() && filesIn(dir).empty());

    // The directory is what stands before the first occurrence of the file title.
    fs::create_directories(dir + "/a.shp.d");
    setResult({square(0, 0, 10)}, "WINDPWRD", {300});
    saveAs("a.shp.d/a.shp");
    EXPECT_TRUE(recorder().boxes.empty() && readBack(dir + "/a.shp").opened && filesIn(dir + "/a.shp.d").empty());

    // Another four-character ending is cut like ".shp".
    saveAs("plain.txt");
    EXPECT_EQ(readBack(dir + "/plain.shp").values, std::vector<double>{300});

    // Above fifty features the save asks first.
    struct Case { int count; bool asked; seam::Answer answer; bool written; };
    const Case cases[] = {
        {50, false, seam::Answer::No, true}, {51, true, seam::Answer::No, false}, {51, true, seam::Answer::Yes, true},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.count);
        recorder().clear();
        std::vector<ShapePtr> shapes;
        for (int i = 0; i < c.count; ++i) shapes.push_back(square(1000.0 * i, 0, 100 + i));
        setResult(shapes, "WINDPWRD", std::vector<double>(size_t(c.count), 200.0));
        recorder().answers.push_back(c.answer);
        const std::string out = "n" + std::to_string(&c - cases) + ".shp";
        saveAs(out);

        const QString ask = "It may take few minutes to save " + QString::number(c.count) + " features. Do you want to continue? ";
        EXPECT_EQ(recorder().texts(), c.asked ? QStringList{ask} : QStringList{});
        if (c.asked) EXPECT_EQ(recorder().boxes.at(0).buttons, seam::Buttons::YesNo);
        // No dialog at all after a No.
        EXPECT_EQ(recorder().fileRequests.size(), c.written ? 1u : 0u);
        const Saved s = readBack(dir + "/" + out);
        EXPECT_EQ(s.opened, c.written);
        if (c.written) EXPECT_EQ(int(s.values.size()), c.count);
    }
}

TEST_F(SaveTest, ReplacesAnExistingSetAsAWholeAndUnwritableTargetsEndWithTheFailureText)
{
    datagen::writeShapefile(dir + "/r.shp", datagen::GeomKind::Point, {{"NAME", 'C'}, {"POP", 'I'}},
                            {{"POINT(1 1)", {std::string("a"), 1LL}}, {"POINT(2 2)", {std::string("b"), 2LL}}}, true);
    std::ofstream(dir + "/r.cpg") << "STALE";
    std::ofstream(dir + "/r.txt") << "neighbour";
    datagen::writeShapefile(dir + "/r2.shp", datagen::GeomKind::Point, {{"NAME", 'C'}}, {{"POINT(1 1)", {std::string("keep")}}}, true);
    const std::string neighbourDbf = slurp(dir + "/r2.dbf");

    setResult({square(0, 0, 10)}, "ANNDIR", {6.5});  // no solar layer loaded: no projection
    saveAs("r.shp");

    EXPECT_TRUE(recorder().boxes.empty());
    const Saved s = readBack(dir + "/r.shp");
    EXPECT_EQ(s.fields, "ANNDIR Real 15.1");  // none of the old fields
    EXPECT_EQ(s.values, std::vector<double>{6.5});
    EXPECT_TRUE(!fs::exists(dir + "/r.prj") && (!fs::exists(dir + "/r.cpg") || slurp(dir + "/r.cpg") != "STALE"));
    // Neighbours are left alone.
    EXPECT_TRUE(slurp(dir + "/r.txt") == "neighbour" && slurp(dir + "/r2.dbf") == neighbourDbf && fs::exists(dir + "/r2.prj"));

    // Where the set cannot be made the user hears of it, the program goes on and nothing else on disk changes.
    recorder().clear();
    fs::remove_all(dir);
    fs::create_directories(dir);
    setResult({square(0, 0, 10), square(50, 0, 10)}, "WINDPWRD", {200, 300});

    // The name is taken by a directory.
    fs::create_directories(dir + "/busy.shp");
    std::ofstream(dir + "/busy.shp/inside.txt") << "x";
    saveAs("busy.shp");
    EXPECT_EQ(recorder().texts(), QStringList{kFailure});
    EXPECT_TRUE(slurp(dir + "/busy.shp/inside.txt") == "x" && filesIn(dir) == std::set<std::string>{"busy.shp"});
    recorder().clear();

    // A directory part that is a regular file: the connection is refused,
    // which the save takes as a stop, and the file is not touched.
    std::ofstream(dir + "/file") << "content";
    const std::set<std::string> before = filesIn(dir);
    saveAs("file/x.shp");
    EXPECT_TRUE(recorder().boxes.empty() && slurp(dir + "/file") == "content" && filesIn(dir) == before);

    if (geteuid() == 0) return;  // permissions do not bind root
    fs::create_directories(dir + "/ro");
    fs::permissions(dir + "/ro", fs::perms::owner_read | fs::perms::owner_exec);
    saveAs("ro/x.shp");
    fs::permissions(dir + "/ro", fs::perms::owner_all);
    EXPECT_TRUE(recorder().texts() == QStringList{kFailure} && filesIn(dir + "/ro").empty());
}

}  // namespace
