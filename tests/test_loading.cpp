// Opening a dataset: which files become layers, in which order, and what the
// user is told when the directory or its files are not as expected.
#include <QDir>
#include <QFile>

#include "mainwindow_fixture.h"
#include "mapping/legend.h"
#include "mapping/map.h"

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

}  // namespace
