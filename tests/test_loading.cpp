// Opening a dataset: which files become layers, in which order, and what the
// user is told when the directory or its files are not as expected.
#include <QDir>
#include <QFile>
#include <gdal_priv.h>
#include <ogrsf_frmts.h>

#include "info/frmInfo.h"
#include "mainwindow_fixture.h"
#include "mapping/legend.h"
#include "mapping/map.h"
#include "query_fixture.h"
#include "results/frmShowQueryData.h"

using namespace fixture;
using testsupport::recorder;

namespace {

const QString kLimitText = QStringLiteral(
    "Sorry, this program was not meant to handle more than 27 layers.  Please reduce the number of shape (.shp) "
    "files in the data directory.");

class Loading : public ::testing::Test {
protected:
    void SetUp() override { main = &freshMain(); }
    FrmMain* main = nullptr;
    Map* map() { return main->Map1; }
};

TEST_F(Loading, FullDatasetStacksByNameWithCitiesOnTopAndIndexesEveryTag)
{
    const QString dir = q(testsupport::dataset());
    loadDirectory(dir);

    EXPECT_NO_BOXES();
    ASSERT_EQ(map()->Layers().Count(), 28);
    EXPECT_EQ(map()->Layers().Item(0)->Tag, "59_cities.shp");
    EXPECT_EQ(map()->Layers().Item(27)->Tag, "01_elevation.shp");
    EXPECT_EQ(map()->Layers().Item(17)->Tag, "20_wind.shp");
    for (int i = 0; i < 28; ++i)
        EXPECT_EQ(cLayerIndex->Item(map()->Layers().Item(i)->Tag), i);
    EXPECT_EQ(cLayerIndex->Count(), 28);
    EXPECT_EQ(sDataDirectory, dir + "/");
    ASSERT_TRUE(oDataConnection);
    EXPECT_EQ(oDataConnection->Database, sDataDirectory);
    EXPECT_EQ(main->legend->entryCount(), 28);
    // Styled by the presentation table: the display name, not the file name.
    EXPECT_EQ(map()->Layers().Item(0)->Name, "Cities");
}

// The limit message needs all 28 standard files and a further entry listed
// behind the last of them; the further entry itself is never looked at.
TEST_F(Loading, LayerLimitMessageOnlyWhenAnEntryFollowsTheTwentyEighthLayer)
{
    struct Case { const char* extra; bool message; };
    const Case cases[] = {
        {nullptr, false},          // ends exactly at the 28th layer
        {"zz_extra", true},        // a non-standard file after 59_cities.shp
        {"00_extra", false},       // listed first: the loop ends on the last standard file
    };
    int n = 0;
    for (const Case& c : cases) {
        SCOPED_TRACE(c.extra ? c.extra : "none");
        freshMain();
        const QString dir = copyOfDataset("limit" + std::to_string(n++));
        if (c.extra)
            writeFeatures(QDir(dir).filePath(QString(c.extra) + ".shp").toStdString(), 1);
        loadDirectory(dir);
        EXPECT_EQ(frmMain().Map1->Layers().Count(), 28);
        if (c.message) {
            ASSERT_EQ(recorder().boxes.size(), 1u);
            EXPECT_EQ(recorder().boxes[0].text, kLimitText);
            EXPECT_EQ(recorder().boxes[0].icon, seam::Icon::None);
        } else {
            EXPECT_NO_BOXES();
        }
        // The layers that are in are indexed and the legend is rebuilt all the same.
        EXPECT_EQ(cLayerIndex->Count(), 28);
        EXPECT_EQ(frmMain().legend->entryCount(), 28);
    }
}

TEST_F(Loading, RefusedConnectionOrNoShapefilesKeepTheLegendAndNoStandardFileEmptiesIt)
{
    loadDirectory(q(testsupport::dataset()));
    ASSERT_EQ(main->legend->entryCount(), 28);
    recorder().clear();

    const QString missing = q(testsupport::tempDir("refused")) + "/not-there";
    loadDirectory(missing);

    ASSERT_EQ(recorder().boxes.size(), 1u);
    EXPECT_EQ(recorder().boxes[0].text, "No data found... Data Connection error #1");
    EXPECT_EQ(recorder().boxes[0].icon, seam::Icon::Exclamation);
    EXPECT_EQ(map()->Layers().Count(), 0);
    EXPECT_EQ(cLayerIndex->Count(), 0);
    EXPECT_EQ(sDataDirectory, missing + "/");
    ASSERT_TRUE(oDataConnection);
    EXPECT_EQ(oDataConnection->Database, missing + "/");
    EXPECT_EQ(main->legend->entryCount(), 28);
    recorder().clear();

    // No .shp at all: the legend stays as it was.
    const QString empty = q(testsupport::tempDir("no-shp"));
    QFile txt(QDir(empty).filePath("readme.txt"));
    ASSERT_TRUE(txt.open(QIODevice::WriteOnly));
    txt.close();
    loadDirectory(empty);
    EXPECT_NO_BOXES();
    EXPECT_EQ(map()->Layers().Count(), 0);
    EXPECT_EQ(main->legend->entryCount(), 28);

    // Shapefiles, none standard: the legend is emptied and the label says so.
    const QString other = q(testsupport::tempDir("no-standard"));
    writeFeaturesIn(other, "parcels.shp", 3);
    writeFeaturesIn(other, "15_solar_direct.shp", 3);
    loadDirectory(other, "parcels.shp");
    EXPECT_NO_BOXES();
    EXPECT_EQ(map()->Layers().Count(), 0);
    EXPECT_EQ(main->legend->entryCount(), 0);
    EXPECT_EQ(main->lblLayersCurrentlyDisplayed->text(), "- No layers found -");
}

TEST_F(Loading, NameCaseIsIgnoredForLoadingButTheTagKeepsTheListedName)
{
    // Standard names are compared whole and without case.
    for (const char* name : {"20_wind.shp", "20_WIND.SHP", "01_elevation.shp", "59_Cities.Shp", "50_protectedarea.shp",
                             "21_wind.shp"})
        EXPECT_TRUE(StandardFile(name)) << name;
    for (const char* name : {"15_solar_direct.shp", "20_wind", " 20_wind.shp", "20_wind.shp ", "", "23_wind.shp"})
        EXPECT_FALSE(StandardFile(name)) << name;

    const QString dir = q(testsupport::tempDir("upper"));
    writeFeaturesIn(dir, "20_wind.shp", 2);
    for (const QString& ext : {"shp", "shx", "dbf", "prj", "cpg"})
        QFile::rename(QDir(dir).filePath("20_wind." + ext), QDir(dir).filePath("20_WIND." + ext.toUpper()));

    loadDirectory(dir);
    ASSERT_EQ(map()->Layers().Count(), 1);
    const MapLayerPtr layer = map()->Layers().Item(0);
    EXPECT_EQ(layer->Tag, "20_WIND.SHP");
    // The exact-case default would hide the wind layer; this one keeps showing.
    EXPECT_TRUE(layer->Visible);
    EXPECT_EQ(cLayerIndex->Item("20_wind.shp"), 0);
    EXPECT_NO_BOXES();
}

TEST_F(Loading, UnreadableFilesArePassedOverWithoutAMessageAndANonStyledFileKeepsTheComponentsName)
{
    const QString dir = q(testsupport::tempDir("broken"));
    writeFeaturesIn(dir, "21_wind.shp", 4);
    QFile bad(QDir(dir).filePath("43_roads.shp"));
    ASSERT_TRUE(bad.open(QIODevice::WriteOnly));
    bad.write("this is not a shapefile at all");
    bad.close();

    loadDirectory(dir);
    EXPECT_NO_BOXES();
    EXPECT_EQ(tags(map()), QStringList{"21_wind.shp"});
    EXPECT_FALSE(cLayerIndex->contains("43_roads.shp"));
    EXPECT_EQ(map()->Layers().Item(0)->Name, "21_wind");
    EXPECT_TRUE(map()->Layers().Item(0)->Visible);
}

TEST_F(Loading, ASecondLoadReplacesTheLayersAndLeavesTheResultsAlone)
{
    loadDirectory(q(testsupport::dataset()));
    auto results = std::make_shared<Collection<ShapePtr>>();
    results->Add(std::make_shared<Rectangle>(0, 0, 1, 1), "0");
    cShapes = results;
    cSymbols = std::make_shared<Collection<SymbolPtr>>();
    cSymbols->Add(std::make_shared<Symbol>(), "0");
    main->bFirstQuery = false;

    const QString dir = q(testsupport::tempDir("second"));
    writeFeaturesIn(dir, "39_countryboundary.shp", 1);
    writeFeaturesIn(dir, "51_powerplant.shp", 2, datagen::GeomKind::Point);
    loadDirectory(dir);

    EXPECT_EQ(tags(map()), (QStringList{"51_powerplant.shp", "39_countryboundary.shp"}));
    EXPECT_EQ(cLayerIndex->Count(), 2);
    EXPECT_EQ(cShapes, results);
    EXPECT_EQ(cShapes->Count(), 1);
    EXPECT_FALSE(main->bFirstQuery);
}

TEST_F(Loading, ThePickedNameCutsThePathAnEmptyOneOnlyClearsTheMapAndOneNotInThePathFails)
{
    // The directory is cut at the first occurrence of the picked name.
    const QString dir = q(testsupport::tempDir("cut"));
    QDir(dir).mkdir("21_wind.shp");
    writeFeaturesIn(dir, "21_wind.shp/21_wind.shp", 1);
    writeFeaturesIn(dir, "39_countryboundary.shp", 1);
    LoadProject("21_wind.shp", dir + "/21_wind.shp/21_wind.shp", main->Map1, main->legend);
    EXPECT_EQ(sDataDirectory, dir + "/");
    // The folder named like a shapefile is no file and is not listed.
    EXPECT_EQ(tags(map()), QStringList{"39_countryboundary.shp"});

    LoadProject("", "", main->Map1, main->legend);
    EXPECT_EQ(map()->Layers().Count(), 0);
    EXPECT_EQ(cLayerIndex->Count(), 0);
    EXPECT_EQ(sDataDirectory, dir + "/");
    EXPECT_NO_BOXES();

    // A picked name missing from the path is a load failure.
    loadDirectory(dir);
    LoadProject("20_wind.shp", "/somewhere/else.shp", main->Map1, main->legend);
    EXPECT_EQ(recorder().texts(),
              QStringList{" Error while loading the project. Error Source:md_functions.LoadProject()"});
    // The old layers went at the first step.
    EXPECT_EQ(map()->Layers().Count(), 0);
}

TEST_F(Loading, OpenDatasetAsksForAShapefileAndUsesOnlyItsDirectory)
{
    sDataDirectory = "/start/here";
    main->mnuOpen_Click();  // the recorder cancels
    ASSERT_EQ(recorder().fileRequests.size(), 1u);
    const seam::FileRequest& r = recorder().fileRequests[0];
    EXPECT_FALSE(r.save);
    EXPECT_EQ(r.title, "Open Dataset");
    EXPECT_EQ(r.filter, "ESRI Shapefiles (*.shp)|*.shp");
    EXPECT_EQ(r.defaultExt, ".shp");
    EXPECT_EQ(r.initialDir, "/start/here");

    // Any file of the directory will do, also one that is not standard.
    const QString dir = q(testsupport::tempDir("open"));
    writeFeaturesIn(dir, "parcels.shp", 1);
    writeFeaturesIn(dir, "38_subcountrybnd1.shp", 2);
    recorder().files.push_back(testsupport::fileAnswer(QDir(dir).filePath("parcels.shp")));
    main->mnuOpen_Click();
    EXPECT_EQ(tags(map()), QStringList{"38_subcountrybnd1.shp"});
    EXPECT_EQ(sDataDirectory, dir + "/");

    // Cancelled over a loaded dataset: it stays in place.
    const auto index = cLayerIndex;
    main->mnuOpen_Click();
    EXPECT_EQ(recorder().fileRequests.back().initialDir, dir + "/");
    EXPECT_EQ(tags(map()), QStringList{"38_subcountrybnd1.shp"});
    EXPECT_EQ(sDataDirectory, dir + "/");
    EXPECT_EQ(cLayerIndex, index);
}

TEST_F(Loading, AddLayerTakesOneFileUnstyledWithItsDirectoryAsTag)
{
    const QString dir = q(testsupport::tempDir("add"));
    writeFeaturesIn(dir, "parcels.shp", 2);

    recorder().files.push_back(testsupport::fileAnswer(QDir(dir).filePath("parcels.shp")));
    main->mnuAdd_Click();
    ASSERT_EQ(recorder().fileRequests.size(), 1u);
    EXPECT_EQ(recorder().fileRequests[0].title, "Add Layer");
    EXPECT_EQ(recorder().fileRequests[0].filter, "*.shp");
    EXPECT_EQ(recorder().fileRequests[0].defaultExt, "shp");
    ASSERT_EQ(map()->Layers().Count(), 1);
    EXPECT_EQ(map()->Layers().Item(0)->Name, "parcels.shp");
    EXPECT_EQ(map()->Layers().Item(0)->Tag, dir + "/");
    EXPECT_EQ(cLayerIndex->Count(), 0);
    EXPECT_EQ(main->lblLayersCurrentlyDisplayed->text(), "parcels.shp; ");  // it ends with an update of the interface
    EXPECT_NO_BOXES();

    // A name that cannot be opened.
    recorder().files.push_back(testsupport::fileAnswer(QDir(dir).filePath("ghost.shp")));
    main->mnuAdd_Click();
    EXPECT_EQ(recorder().texts(), QStringList{"Error opening shapefile ghost.shp"});
    EXPECT_EQ(map()->Layers().Count(), 1);

    // A directory that is not there.
    recorder().clear();
    recorder().files.push_back(testsupport::fileAnswer(dir + "/gone/parcels.shp"));
    main->mnuAdd_Click();
    ASSERT_EQ(recorder().boxes.size(), 1u);
    EXPECT_EQ(recorder().boxes[0].text, "Data Connection error #1");
    EXPECT_EQ(recorder().boxes[0].icon, seam::Icon::Exclamation);
    EXPECT_EQ(sDataDirectory, dir + "/gone/");
}

// Files as other tools leave them. Each case checks what the layer holds and
// what a query gives on it, and that loading wrote to none of the files.

QMap<QString, QByteArray> filesOf(const QString& dir)
{
    QMap<QString, QByteArray> files;
    for (const QString& f : QDir(dir).entryList(QDir::Files)) {
        QFile file(QDir(dir).filePath(f));
        if (file.open(QIODevice::ReadOnly)) files[f] = file.readAll();
    }
    return files;
}

void patch(const QString& path, const std::function<void(QByteArray&)>& change)
{
    QFile f(path);
    ASSERT_TRUE(f.open(QIODevice::ReadWrite));
    QByteArray bytes = f.readAll();
    change(bytes);
    f.seek(0);
    f.write(bytes);
}

// "Wind by Power Density" from 200 up in the window, as "red,green,blue,sq km" lines.
QStringList windTable(const std::string& dir)
{
    qrun::panel(dir, qrun::kWindQuery, "200", "Max").cmdUpdateMap->click();
    QStringList out;
    if (const auto rows = QueryDataTable())
        for (const QueryDataRow& r : *rows)
            out << QString("%1,%2,%3,%4").arg(RedOf(r.color)).arg(GreenOf(r.color)).arg(BlueOf(r.color)).arg(r.area);
    return out;
}

MapLayerPtr windLayer()
{
    const MapLayerPtr layer = cLayerIndex && cLayerIndex->contains("20_wind.shp")
                                  ? frmMain().Map1->Layers().Item(cLayerIndex->Item("20_wind.shp")) : nullptr;
    if (!layer) ADD_FAILURE() << "no wind layer";
    return layer;
}

std::vector<int> idsOf(const RecordsetPtr& rs) { return rs ? rs->ids() : std::vector<int>{}; }

TEST(RealFiles, DeletedRecordsKeepTheirNumbersAndAreNoFeatures)
{
    const std::string dir = testsupport::tempDir("deleted");
    qf::writePolygons(dir, "20_wind.shp", "WINDPWRD", qf::windRow({300, 500, 700, 900}));
    patch(q(dir) + "/20_wind.dbf", [](QByteArray& b) {
        const int header = uchar(b[8]) | uchar(b[9]) << 8, record = uchar(b[10]) | uchar(b[11]) << 8;
        b[header + record] = '*';  // the second record, 500
    });
    const auto before = filesOf(q(dir));
    EXPECT_EQ(windTable(dir), (QStringList{"254,172,0,1", "255,0,0,1", "0,0,255,1"}));
    const MapLayerPtr wind = windLayer();
    ASSERT_TRUE(wind);
    EXPECT_EQ(wind->Records()->ids(), (std::vector<int>{0, 2, 3}));
    EXPECT_EQ(idsOf(wind->SearchExpression("FeatureID >= 0")), (std::vector<int>{0, 2, 3}));
    wind->Visible = true;
    EXPECT_EQ(IdentifyTextAt(2500, 500), "");  // the deleted square
    EXPECT_TRUE(IdentifyTextAt(4500, 500).contains("WINDPWRD : 700")) << IdentifyTextAt(4500, 500).toStdString();
    EXPECT_EQ(filesOf(q(dir)), before);
}

// A wind layer of two squares written as another shape type or with a
// projection file that cannot be understood.
TEST(RealFiles, ZAndMShapesReadAsPlaneShapesAndABadProjectionFileAsNone)
{
    struct Case { const char* type; std::vector<std::string> wkts; const char* prj; int shapeType; QStringList table; };
    const QStringList both{"254,172,0,1", "154,50,205,1"};
    const std::vector<std::string> squares{qf::rect(0, 0, 1000, 1000), qf::rect(2000, 0, 1000, 1000)};
    const Case cases[] = {
        {"POLYGONZ", {"POLYGON Z ((0 0 9,1000 0 9,1000 1000 9,0 1000 9,0 0 9))", squares[1]}, nullptr, moPolygon, both},
        {"POLYGONM", squares, nullptr, moPolygon, both},
        {"ARCZ", {"LINESTRING Z (0 0 5,1000 1000 7)", "LINESTRING (2000 0,3000 1000)"}, nullptr, moLine, {}},
        {"POINTZ", {"POINT Z (500 500 3)", "POINT (3000 500)"}, nullptr, moPoint, {}},
        {"MULTIPOINTM", {"MULTIPOINT M ((500 500 1),(600 500 2))", "MULTIPOINT ((3000 500))"}, nullptr, moPoint, {}},
        {"POLYGON", squares, "PROJCS[\"WGS_1984_UTM_Zone_33N\",GEOGCS[\"GCS_WGS_1984\",DATUM[", moPolygon, both},
        {"POLYGON", squares, "\x8f\x01PK\xff\xfe\x00garbage[[", moPolygon, both},
        {"POLYGON", squares, "", moPolygon, both},
    };
    GDALAllRegister();
    int n = 0;
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.type) + (c.prj ? " with a bad .prj" : ""));
        const std::string dir = testsupport::tempDir("typed" + std::to_string(n++));
        {
            GDALDatasetUniquePtr ds(GetGDALDriverManager()->GetDriverByName("ESRI Shapefile")
                                        ->Create((dir + "/20_wind.shp").c_str(), 0, 0, 0, GDT_Unknown, nullptr));
            const std::string shpt = std::string("SHPT=") + c.type;
            const char* options[] = {shpt.c_str(), nullptr};
            OGRLayer* layer = ds->CreateLayer("20_wind", nullptr, wkbUnknown, const_cast<char**>(options));
            OGRFieldDefn field("WINDPWRD", OFTReal);
            ASSERT_EQ(layer->CreateField(&field), OGRERR_NONE);
            for (size_t i = 0; i < c.wkts.size(); ++i) {
                OGRFeatureUniquePtr f(OGRFeature::CreateFeature(layer->GetLayerDefn()));
                f->SetField(0, i == 0 ? 300.0 : 500.0);
                OGRGeometry* g = nullptr;
                OGRGeometryFactory::createFromWkt(c.wkts[i].c_str(), nullptr, &g);
                f->SetGeometryDirectly(g);
                ASSERT_EQ(layer->CreateFeature(f.get()), OGRERR_NONE);
            }
        }
        QFile prj(q(dir) + "/20_wind.prj");
        ASSERT_TRUE(prj.open(QIODevice::WriteOnly));
        prj.write(c.prj ? QByteArray(c.prj) : QByteArray::fromStdString(datagen::esriPrjText()));
        prj.close();
        const auto before = filesOf(q(dir));
        EXPECT_EQ(windTable(dir), c.table);
        const MapLayerPtr wind = windLayer();
        ASSERT_TRUE(wind);
        EXPECT_EQ(wind->shapeType(), c.shapeType);
        EXPECT_EQ(wind->CoordinateSystem() != nullptr, c.prj == nullptr);
        EXPECT_EQ(wind->Records()->Count(), 2);
        // Found where the plane coordinates put it; a Z is no distance.
        EXPECT_EQ(idsOf(wind->SearchByDistance(std::make_shared<Point>(500, 500), 1, "")), std::vector<int>{0});
        EXPECT_EQ(wind->GeoDataset()->envelope(1).maxX, 3000);
        EXPECT_EQ(filesOf(q(dir)), before);
    }
}

// Text is decoded by the .cpg, else by the language driver byte of the .dbf,
// else as Latin-1; a sequence invalid in its encoding shows as U+FFFD.
TEST(RealFiles, TextFieldsAreDecodedAsTheFilesSayWithLeadingBlanksKept)
{
    struct Case { const char* cpg; char ldid; QByteArray bytes; QString text; };
    const Case cases[] = {
        {"UTF-8", 0, "\xc3\xa9!", QStringLiteral(" Caf\u00e9!")},
        {"UTF-8", 0, "\xff!", QStringLiteral(" Caf\ufffd!")},
        {"1252", 0x57, "\x80!", QStringLiteral(" Caf\u20ac!")},
        {"ISO-8859-1", 0, "\xe9\x80", QStringLiteral(" Caf\u00e9\u0080")},
        {"866", 0, "\x80!", QStringLiteral(" Caf\u0410!")},
        {nullptr, 0x03, "\x80!", QStringLiteral(" Caf\u20ac!")},   // Windows-1252
        {nullptr, 0x26, "\x80!", QStringLiteral(" Caf\u0410!")},   // code page 866
        {"SOMETHING", 0x03, "\x80!", QStringLiteral(" Caf\u20ac!")},  // a .cpg that names nothing known
        {nullptr, 0, "\xe9\x80", QStringLiteral(" Caf\u00e9\u0080")},  // Latin-1
    };
    int n = 0;
    for (const Case& c : cases) {
        SCOPED_TRACE(n);
        const std::string dir = testsupport::tempDir("text" + std::to_string(n++));
        datagen::writeShapefile(dir + "/20_wind.shp", datagen::GeomKind::Polygon, {{"WINDPWRD", 'N', 10, 1}, {"NAME", 'C', 10}},
                                {{qf::rect(0, 0, 1000, 1000), {300.0, std::string(" Caf__")}}});
        patch(q(dir) + "/20_wind.dbf", [&](QByteArray& b) {
            b[29] = c.ldid;
            b.replace(" Caf__", " Caf" + c.bytes);
        });
        QFile::remove(q(dir) + "/20_wind.cpg");
        if (c.cpg) {
            QFile cpg(q(dir) + "/20_wind.cpg");
            ASSERT_TRUE(cpg.open(QIODevice::WriteOnly));
            cpg.write(c.cpg);
        }
        EXPECT_EQ(windTable(dir), QStringList{"254,172,0,1"});
        const MapLayerPtr wind = windLayer();
        ASSERT_TRUE(wind);
        EXPECT_EQ(wind->GeoDataset()->value(0, 1).toString(), c.text);
        EXPECT_EQ(idsOf(wind->SearchExpression("NAME = '" + c.text + "'")), std::vector<int>{0});
    }
}

}  // namespace
