// Opening a dataset: which files become layers, in which order, and what the
// user is told when the directory or its files are not as expected.
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

using Loading = MainTest;

// The full dataset loads; the limit message needs all 28 standard files and a
// further entry listed behind the last of them, which is never looked at.
TEST_F(Loading, FullDatasetStacksByNameTheLimitMessageComesAfterTheTwentyEighthLayerRefusalsAndSecondLoads)
{
    // None: it ends exactly at the 28th layer; a non-standard file after 59_cities.shp;
    // one listed first, where the loop ends on the last standard file.
    for (const auto& [extra, message] : {std::pair{"", false}, {"zz_extra", true}, {"00_extra", false}}) {
        SCOPED_TRACE(extra);
        freshMain();
        const QString dir = q(testsupport::tempDir(std::string("limit") + extra));
        datagen::generate(dir.toStdString(), {});
        if (*extra) writeFeatures(QDir(dir).filePath(QString(extra) + ".shp").toStdString(), 1);
        loadDirectory(dir);
        // Stacked by name with the cities on top, every tag indexed, styled by the presentation table.
        const LayersCollection& layers = frmMain().Map1->Layers();
        ASSERT_EQ(layers.Count(), 28);
        EXPECT_EQ((QStringList{layers.Item(0)->Tag, layers.Item(17)->Tag, layers.Item(27)->Tag, layers.Item(0)->Name}),
                  (QStringList{"59_cities.shp", "20_wind.shp", "01_elevation.shp", "Cities"}));
        for (int i = 0; i < 28; ++i) EXPECT_EQ(cLayerIndex->Item(layers.Item(i)->Tag), i);
        EXPECT_TRUE(sDataDirectory == dir + "/" && oDataConnection && oDataConnection->Database == sDataDirectory);
        EXPECT_EQ(recorder().texts(), message ? QStringList{kLimitText} : QStringList());
        // The layers that are in are indexed and the legend is rebuilt all the same.
        EXPECT_TRUE(cLayerIndex->Count() == 28 && frmMain().legend->entryCount() == 28);
    }

    // A refused connection or a directory without shapefiles keeps the legend; one without a standard file empties it.
    main = &freshMain();
    loadDirectory(q(testsupport::dataset()));
    ASSERT_EQ(main->legend->entryCount(), 28);
    recorder().clear();

    const QString missing = q(testsupport::tempDir("refused")) + "/not-there";
    loadDirectory(missing);

    ASSERT_EQ(recorder().texts(), QStringList{"No data found... Data Connection error #1"});
    EXPECT_EQ(recorder().boxes[0].icon, seam::Icon::Exclamation);
    EXPECT_TRUE(map()->Layers().Count() == 0 && cLayerIndex->Count() == 0 && main->legend->entryCount() == 28);
    EXPECT_TRUE(sDataDirectory == missing + "/" && oDataConnection && oDataConnection->Database == missing + "/");
    recorder().clear();

    // No .shp at all: the legend stays as it was.
    loadDirectory(q(testsupport::tempDir("no-shp")));
    EXPECT_NO_BOXES();
    EXPECT_TRUE(map()->Layers().Count() == 0 && main->legend->entryCount() == 28);

    // Shapefiles, none standard: the legend is emptied and the label says so.
    const QString other = q(testsupport::tempDir("no-standard"));
    for (const char* file : {"parcels.shp", "15_solar_direct.shp"}) writeFeaturesIn(other, file, 3);
    loadDirectory(other, "parcels.shp");
    EXPECT_NO_BOXES();
    EXPECT_TRUE(map()->Layers().Count() == 0 && main->legend->entryCount() == 0);
    EXPECT_EQ(main->lblLayersCurrentlyDisplayed->text(), "- No layers found -");

    // A second load replaces the layers, passes over unreadable files, leaves the results alone and ignores name case.
    loadDirectory(q(testsupport::dataset()));
    auto results = std::make_shared<Collection<ShapePtr>>();
    results->Add(std::make_shared<Rectangle>(0, 0, 1, 1), "0");
    cShapes = results;
    cSymbols = std::make_shared<Collection<SymbolPtr>>();
    cSymbols->Add(std::make_shared<Symbol>(), "0");
    main->bFirstQuery = false;

    // A file that cannot be read is passed over without a message.
    const QString dir = q(testsupport::tempDir("second"));
    writeFeaturesIn(dir, "21_wind.shp", 4);
    writeFeaturesIn(dir, "51_powerplant.shp", 2, datagen::GeomKind::Point);
    if (QFile bad(QDir(dir).filePath("43_roads.shp")); !bad.open(QIODevice::WriteOnly) || bad.write("not a shapefile at all") < 0) FAIL();
    loadDirectory(dir);
    ASSERT_EQ(tags(map()), (QStringList{"51_powerplant.shp", "21_wind.shp"}));
    // A standard file without a style keeps the component's name and shows.
    EXPECT_TRUE(cLayerIndex->Count() == 2 && map()->Layers().Item(1)->Name == "21_wind" && map()->Layers().Item(1)->Visible);
    EXPECT_TRUE(cShapes == results && cShapes->Count() == 1 && !main->bFirstQuery);

    // Standard names are compared whole and without case.
    for (const char* name : {"20_WIND.SHP", "59_Cities.Shp", "21_wind.shp"}) EXPECT_TRUE(StandardFile(name)) << name;
    for (const char* name : {"15_solar_direct.shp", "20_wind", " 20_wind.shp", "20_wind.shp ", ""}) EXPECT_FALSE(StandardFile(name)) << name;

    const QString upper = q(testsupport::tempDir("upper"));
    writeFeaturesIn(upper, "20_wind.shp", 2);
    for (const QString& ext : {"shp", "shx", "dbf", "prj", "cpg"})
        QFile::rename(QDir(upper).filePath("20_wind." + ext), QDir(upper).filePath("20_WIND." + ext.toUpper()));

    loadDirectory(upper);
    ASSERT_EQ(tags(map()), QStringList{"20_WIND.SHP"});
    // The exact-case default would hide the wind layer; this one keeps showing.
    EXPECT_TRUE(map()->Layers().Item(0)->Visible && cLayerIndex->Item("20_wind.shp") == 0);
    EXPECT_NO_BOXES();
}

TEST_F(Loading, ThePickedNameCutsThePathOpenDatasetUsesOnlyItsDirectoryAndAddLayerTakesOneFileUnstyled)
{
    // The directory is cut at the first occurrence of the picked name.
    const QString dir = q(testsupport::tempDir("cut"));
    QDir(dir).mkdir("21_wind.shp");
    writeFeaturesIn(dir, "21_wind.shp/21_wind.shp", 1);
    writeFeaturesIn(dir, "39_countryboundary.shp", 1);
    LoadProject("21_wind.shp", dir + "/21_wind.shp/21_wind.shp", main->Map1, main->legend);
    // The folder named like a shapefile is no file and is not listed.
    EXPECT_TRUE(sDataDirectory == dir + "/" && tags(map()) == QStringList{"39_countryboundary.shp"});

    LoadProject("", "", main->Map1, main->legend);
    EXPECT_TRUE(map()->Layers().Count() == 0 && cLayerIndex->Count() == 0 && sDataDirectory == dir + "/");
    EXPECT_NO_BOXES();

    // A picked name missing from the path is a load failure.
    loadDirectory(dir);
    LoadProject("20_wind.shp", "/somewhere/else.shp", main->Map1, main->legend);
    EXPECT_EQ(recorder().texts(), QStringList{" Error while loading the project. Error Source:md_functions.LoadProject()"});
    EXPECT_EQ(map()->Layers().Count(), 0);  // the old layers went at the first step

    // Open Dataset: the dialog, and the directory of the pick.
    recorder().clear();
    sDataDirectory = "/start/here";
    main->mnuOpen_Click();  // the recorder cancels
    ASSERT_EQ(recorder().fileRequests.size(), 1u);
    const seam::FileRequest& r = recorder().fileRequests[0];
    EXPECT_EQ((QStringList{r.title, r.filter, r.defaultExt, r.initialDir, r.save ? "save" : "open"}),
              (QStringList{"Open Dataset", "ESRI Shapefiles (*.shp)|*.shp", ".shp", "/start/here", "open"}));

    // Any file of the directory will do, also one that is not standard.
    const QString home = q(testsupport::tempDir("open"));
    for (const char* file : {"parcels.shp", "38_subcountrybnd1.shp"}) writeFeaturesIn(home, file, 1);
    auto pick = [&](const QString& path) { recorder().files.push_back(testsupport::fileAnswer(path)); };
    pick(QDir(home).filePath("parcels.shp"));
    main->mnuOpen_Click();
    EXPECT_TRUE(tags(map()) == QStringList{"38_subcountrybnd1.shp"} && sDataDirectory == home + "/");

    // Cancelled over a loaded dataset: it stays in place.
    const auto index = cLayerIndex;
    main->mnuOpen_Click();
    EXPECT_EQ(recorder().fileRequests.back().initialDir, home + "/");
    EXPECT_TRUE(tags(map()) == QStringList{"38_subcountrybnd1.shp"} && sDataDirectory == home + "/" && cLayerIndex == index);

    // Add Layer puts the file on top, unstyled, with its directory as tag and unindexed.
    recorder().clear();
    pick(QDir(home).filePath("parcels.shp"));
    main->mnuAdd_Click();
    ASSERT_EQ(recorder().fileRequests.size(), 1u);
    const seam::FileRequest& add = recorder().fileRequests[0];
    EXPECT_EQ((QStringList{add.title, add.filter, add.defaultExt}), (QStringList{"Add Layer", "*.shp", "shp"}));
    ASSERT_EQ(map()->Layers().Count(), 2);
    EXPECT_EQ(map()->Layers().Item(0)->Name + "|" + map()->Layers().Item(0)->Tag, "parcels.shp|" + home + "/");
    EXPECT_EQ(cLayerIndex->Count(), 1);
    EXPECT_TRUE(main->lblLayersCurrentlyDisplayed->text().startsWith("parcels.shp; "));  // it ends with an update of the interface
    EXPECT_NO_BOXES();

    // A name that cannot be opened.
    pick(QDir(home).filePath("ghost.shp"));
    main->mnuAdd_Click();
    EXPECT_EQ(recorder().texts(), QStringList{"Error opening shapefile ghost.shp"});
    EXPECT_EQ(map()->Layers().Count(), 2);

    // A directory that is not there.
    recorder().clear();
    pick(home + "/gone/parcels.shp");
    main->mnuAdd_Click();
    EXPECT_EQ(recorder().texts(), QStringList{"Data Connection error #1"});
    EXPECT_EQ(sDataDirectory, home + "/gone/");
}

QMap<QString, QByteArray> filesOf(const QString& dir)
{
    QMap<QString, QByteArray> files;
    for (const QFileInfo& fi : QDir(dir).entryInfoList(QDir::Files))
        if (QFile f(fi.filePath()); f.open(QIODevice::ReadOnly)) files[fi.fileName()] = f.readAll();
    return files;
}

// Four wind features of a shape type, WINDPWRD 300, 500, 700 and 900, NAME " Caf__",
// 2 km apart: squares, lines from their centres or the centres.
void writeWind(const std::string& dir, const std::string& shpt)
{
    GDALAllRegister();
    GDALDatasetUniquePtr ds(GetGDALDriverManager()->GetDriverByName("ESRI Shapefile")
                                ->Create((dir + "/20_wind.shp").c_str(), 0, 0, 0, GDT_Unknown, nullptr));
    const std::string type = "SHPT=" + shpt;
    const char* options[] = {type.c_str(), "ENCODING=UTF-8", nullptr};
    OGRLayer* layer = ds->CreateLayer("20_wind", nullptr, wkbUnknown, const_cast<char**>(options));
    OGRFieldDefn wind("WINDPWRD", OFTReal), name("NAME", OFTString);
    ASSERT_TRUE(layer->CreateField(&wind) == OGRERR_NONE && layer->CreateField(&name) == OGRERR_NONE);
    for (int i = 0; i < 4; ++i) {
        const std::string c = std::to_string(2000 * i + 500) + " 500";
        const std::string wkt = shpt.starts_with("POLYGON") ? qf::rect(2000 * i, 0, 1000, 1000)
                                : shpt.starts_with("ARC") ? "LINESTRING(" + c + "," + std::to_string(2000 * i + 1000) + " 1000)"
                                : shpt.starts_with("MULTI") ? "MULTIPOINT((" + c + "))" : "POINT(" + c + ")";
        OGRFeatureUniquePtr f(OGRFeature::CreateFeature(layer->GetLayerDefn()));
        OGRGeometry* g = nullptr;
        OGRGeometryFactory::createFromWkt(wkt.c_str(), nullptr, &g);
        f->SetField(0, 300.0 + 200 * i), f->SetField(1, " Caf__"), f->SetGeometryDirectly(g);
        ASSERT_EQ(layer->CreateFeature(f.get()), OGRERR_NONE);
    }
}

// Files as other tools leave them: the layer loads, holds what the file holds,
// "Wind by Power Density" from 200 up gives the table, and no file is written.
TEST(RealFiles, LayersLoadAsOtherToolsLeaveThem)
{
    // Text is decoded by the .cpg, else by the language driver byte, else as Latin-1.
    // text: two bytes in the place of "__"; prj: none for a good one.
    struct Case { std::string shpt; QByteArray text; char ldid; const char* cpg; QByteArray prj; QString name;
                  QStringList table = {"254,172,0,1", "154,50,205,1", "255,0,0,1", "0,0,255,1"};
                  std::vector<int> ids = {0, 1, 2, 3}; };
    const Case cases[] = {
        // The second record deleted: it keeps its number and is no feature.
        {"POLYGON", {}, 0, "UTF-8", {}, " Caf__", {"254,172,0,1", "255,0,0,1", "0,0,255,1"}, {0, 2, 3}},
        // Z and M are dropped: drawn and queried as the plain types.
        {"POLYGONZ", {}, 0, "UTF-8", {}, " Caf__"},
        {"POLYGONM", {}, 0, "UTF-8", {}, " Caf__"},
        {"ARCZ", {}, 0, "UTF-8", {}, " Caf__", {}},
        {"POINTZ", {}, 0, "UTF-8", {}, " Caf__", {}},
        {"MULTIPOINTM", {}, 0, "UTF-8", {}, " Caf__", {}},
        // A projection file that cannot be understood is none.
        {"POLYGON", {}, 0, "UTF-8", "PROJCS[\"WGS_1984_UTM_Zone_33N\",GEOGCS[\"GCS_WGS_1984\",DATUM[", " Caf__"},
        {"POLYGON", {}, 0, "UTF-8", "\x8f\x01PK\xff\xfe garbage[[", " Caf__"},
        {"POLYGON", {}, 0, "UTF-8", "", " Caf__"},
        {"POLYGON", "\xc3\xa9", 0, "UTF-8", {}, QStringLiteral(" Caf\u00e9")},
        {"POLYGON", "\xff!", 0, "UTF-8", {}, QStringLiteral(" Caf\ufffd!")},  // invalid: U+FFFD
        {"POLYGON", "\x80!", 0x57, "1252", {}, QStringLiteral(" Caf\u20ac!")},
        {"POLYGON", "\xe9\x80", 0, "ISO-8859-1", {}, QStringLiteral(" Caf\u00e9\u0080")},
        {"POLYGON", "\x80!", 0, "866", {}, QStringLiteral(" Caf\u0410!")},
        {"POLYGON", "\x80!", 0x03, nullptr, {}, QStringLiteral(" Caf\u20ac!")},  // Windows-1252
        {"POLYGON", "\x80!", 0x03, "SOMETHING", {}, QStringLiteral(" Caf\u20ac!")},
        {"POLYGON", "\xe9\x80", 0, nullptr, {}, QStringLiteral(" Caf\u00e9\u0080")},  // Latin-1
    };
    int n = 0;
    for (const Case& c : cases) {
        SCOPED_TRACE(n);
        const std::string dir = testsupport::tempDir("real" + std::to_string(n++));
        writeWind(dir, c.shpt);
        QMap<QString, QByteArray> files = filesOf(q(dir));
        QByteArray& dbf = files["20_wind.dbf"];
        dbf[29] = c.ldid;
        if (!c.text.isEmpty()) dbf.replace(" Caf__", " Caf" + c.text);
        if (c.ids.size() == 3) dbf[(uchar(dbf[8]) | uchar(dbf[9]) << 8) + (uchar(dbf[10]) | uchar(dbf[11]) << 8)] = '*';
        files["20_wind.cpg"] = c.cpg ? QByteArray(c.cpg) : QByteArray();
        files["20_wind.prj"] = c.prj.isNull() ? QByteArray::fromStdString(datagen::esriPrjText()) : c.prj;
        for (auto it = files.begin(); it != files.end(); ++it)
            if (QFile f(q(dir) + "/" + it.key()); !(it->isNull() ? f.remove() : f.open(QIODevice::WriteOnly) && f.write(*it) == it->size()))
                FAIL() << it.key().toStdString();
        const auto before = filesOf(q(dir));

        qf::panel(dir, qf::kWindQuery, "200", "Max").cmdUpdateMap->click();
        QStringList table;
        if (const auto rows = QueryDataTable())
            for (const QueryDataRow& r : *rows)
                table << QString("%1,%2,%3,%4").arg(RedOf(r.color)).arg(GreenOf(r.color)).arg(BlueOf(r.color)).arg(r.area);
        EXPECT_EQ(table, c.table);
        ASSERT_TRUE(cLayerIndex->contains("20_wind.shp")) << "the layer was passed over";
        const MapLayerPtr wind = frmMain().Map1->Layers().Item(cLayerIndex->Item("20_wind.shp"));
        EXPECT_EQ(wind->shapeType(), c.shpt.starts_with("POLYGON") ? moPolygon : c.shpt.starts_with("ARC") ? moLine : moPoint);
        EXPECT_TRUE((wind->CoordinateSystem() != nullptr) == c.prj.isNull() && wind->Records()->ids() == c.ids);
        // The text as decoded, leading blank included, is what a search compares; a deleted record is never selected.
        const RecordsetPtr named = wind->SearchExpression("NAME = '" + c.name + "' OR FeatureID = 1");
        EXPECT_EQ(named ? named->ids() : std::vector<int>{}, c.ids);
        // Identify finds the second feature where the plane coordinates put it.
        wind->Visible = true;
        EXPECT_EQ(IdentifyTextAt(2500, 500).contains("WINDPWRD : 500"), c.ids.size() == 4);
        EXPECT_EQ(filesOf(q(dir)), before);
    }
}

}  // namespace
