// marlowan-prepare: cell means, reprojection and clipping, class texts, the
// result opening in the program, and the refusal of bad input.
#include <QFileInfo>
#include <QProcess>
#include <cpl_string.h>
#include <filesystem>
#include <fstream>
#include <gdal_priv.h>
#include <ogrsf_frmts.h>
#include <sstream>

#include "mapping/geodataset.h"
#include "mapping/map.h"
#include "prepare/prepare.h"
#include "query_fixture.h"
#include "results/frmShowQueryData.h"
#include "sources.h"

namespace fs = std::filesystem;

namespace {

struct PrepareRun {
    int code = -1;
    std::string out, err;
};

PrepareRun prepareRun(const std::string& recipe, const std::string& outdir, bool force = false)
{
    std::ostringstream out, err;
    PrepareRun r;
    r.code = prepare::run({recipe, outdir, force, false}, out, err);
    r.out = out.str();
    r.err = err.str();
    return r;
}

void writeText(const std::string& path, const std::string& text)
{
    std::ofstream(path, std::ios::binary) << text;
}

// A one-band GeoTIFF, north row first; epsg 0 gives a raster without a system.
void writeTiff(const std::string& path, int epsg, double x0, double yTop, double pixel, int w, int h,
               const std::vector<double>& values, GDALDataType type = GDT_Float32, double noData = -1)
{
    GDALAllRegister();
    GDALDatasetUniquePtr ds(GetGDALDriverManager()->GetDriverByName("GTiff")->Create(path.c_str(), w, h, 1, type, nullptr));
    double gt[6] = {x0, pixel, 0, yTop, 0, -pixel};
    ds->SetGeoTransform(gt);
    if (epsg) {
        OGRSpatialReference srs;
        srs.importFromEPSG(epsg);
        ds->SetSpatialRef(&srs);
    }
    ds->GetRasterBand(1)->SetNoDataValue(noData);
    ASSERT_EQ(ds->GetRasterBand(1)->RasterIO(GF_Write, 0, 0, w, h, const_cast<double*>(values.data()), w, h,
                                             GDT_Float64, 0, 0), CE_None);
}

// A GeoJSON file in longitude/latitude with one text field.
void writeGeoJson(const std::string& path, const std::vector<std::pair<std::string, std::string>>& features)
{
    std::string text = R"({"type":"FeatureCollection","features":[)";
    for (size_t i = 0; i < features.size(); ++i) {
        OGRGeometry* g = nullptr;
        OGRGeometryFactory::createFromWkt(features[i].first.c_str(), nullptr, &g);
        char* json = g->exportToJson();
        text += std::string(i ? "," : "") + R"({"type":"Feature","properties":{"name":")" + features[i].second +
                R"("},"geometry":)" + json + "}";
        CPLFree(json);
        OGRGeometryFactory::destroyGeometry(g);
    }
    writeText(path, text + "]}");
}

// The country "Home" (a rectangle in the generated system, EPSG:32633) and a
// neighbour far away.
void writeBoundary(const std::string& dir, double x0, double y0, double x1, double y1)
{
    datagen::writeShapefile(dir + "/boundary.shp", datagen::GeomKind::Polygon, {{"NAME", 'C', 20}},
                            {{qf::rect(x0, y0, x1 - x0, y1 - y0), {std::string("Home")}},
                             {qf::rect(0, 0, 1000, 1000), {std::string("Elsewhere")}}});
}

double measure(const GeoDatasetPtr& d, int fid)
{
    double v = 0;
    auto g = d->geom(fid).get();
    if (GEOSGeomTypeId_r(geosContext(), g) == GEOS_POLYGON || GEOSGeomTypeId_r(geosContext(), g) == GEOS_MULTIPOLYGON)
        GEOSArea_r(geosContext(), g, &v);
    else
        GEOSLength_r(geosContext(), g, &v);
    return v;
}

GeoDatasetPtr openOut(const std::string& dir, const std::string& file)
{
    return GeoDataset::open(QString::fromStdString(dir + "/" + file));
}

const char* kBoundaryTable = "[39_countryboundary]\nsource = \"boundary.shp\"\nwhere = \"NAME = 'Home'\"\n";

// Pixels of 500 m, cells of 1 km (2 x 2 pixels); the right column of cells is
// cut in half by the boundary. -1 is no data.
std::string handMadeDataset()
{
    static std::string out;
    if (!out.empty()) return out;
    const std::string dir = testsupport::tempDir("prepare-cells");
    writeBoundary(dir, 500000, 1998000, 502500, 2000000);
    writeTiff(dir + "/wind.tif", 32633, 500000, 2000000, 500, 6, 4,
              {1, 2, 3, 4, -1, -1,  //
               5, 6, 8, -1, -1, -1,
               10, 10, 20, 20, 100, 200,
               10, 10, 20, 20, 300, 400});
    writeText(dir + "/recipe.toml", std::string("crs = \"EPSG:32633\"\n") + kBoundaryTable +
                                        "[20_wind]\nsource = \"wind.tif\"\ncell_km = 1\n"
                                        "[14_solar_glo]\nsource = \"wind.tif\"\ncell_km = 1\nunit = \"kWh/m2/year\"\n");
    const PrepareRun r = prepareRun(dir + "/recipe.toml", dir + "/out");
    EXPECT_EQ(r.code, 0) << r.err;
    out = dir + "/out";
    return out;
}

}  // namespace

TEST(Prepare, CellsHoldTheMeanOfTheirValidPixelsAndAreClippedToTheBoundary)
{
    const std::string out = handMadeDataset();
    struct Cell { double mean, areaKm2; };
    const Cell cells[] = {{3.5, 1}, {5, 1}, {10, 1}, {20, 1}, {250, 0.5}};  // the cell of no data is left out
    auto wind = openOut(out, "20_wind.shp"), solar = openOut(out, "14_solar_glo.shp");
    ASSERT_TRUE(wind && solar);
    ASSERT_EQ(wind->count(), 5);
    ASSERT_EQ(solar->count(), 5);
    for (int i = 0; i < 5; ++i) {
        SCOPED_TRACE(i);
        EXPECT_DOUBLE_EQ(wind->value(i, wind->fieldIndex("WINDPWRD")).toDouble(), cells[i].mean);
        EXPECT_NEAR(solar->value(i, solar->fieldIndex("ANNGLO")).toDouble(), cells[i].mean / 365, 5e-5);
        EXPECT_NEAR(measure(wind, i), cells[i].areaKm2 * 1e6, 1e-6);
    }
    // The files the program reads besides: the projection in ESRI spelling, the code page.
    std::ifstream prj(out + "/20_wind.prj"), cpg(out + "/20_wind.cpg");
    const std::string prjText((std::istreambuf_iterator<char>(prj)), {}), cpgText((std::istreambuf_iterator<char>(cpg)), {});
    EXPECT_EQ(prjText.rfind("PROJCS[\"WGS_1984_UTM_Zone_33N\"", 0), 0u) << prjText;
    EXPECT_NE(prjText.find("UNIT[\"Meter\",1.0]"), std::string::npos);
    EXPECT_EQ(cpgText, "UTF-8");
}

TEST(Prepare, ReprojectedLayersCoverTheBoundaryAndNothingOutsideRoadsKeepTheirMargin)
{
    const std::string dir = testsupport::tempDir("prepare-vectors");
    writeGeoJson(dir + "/country.geojson", {{"POLYGON((14.5 10,15.5 10,15.5 11,14.5 11,14.5 10))", "Home"}});
    writeGeoJson(dir + "/water.geojson", {{"POLYGON((14 9.5,16 9.5,16 11.5,14 11.5,14 9.5))", "Big"},
                                          {"POLYGON((20 20,21 20,21 21,20 20))", "Outside"},
                                          {"POLYGON((14.8 10.2,15 10.4,15 10.2,14.8 10.4,14.8 10.2))", "Bow tie"}});
    writeGeoJson(dir + "/lines.geojson", {{"LINESTRING(13.5 10.5,16.5 10.5)", "Across"}});
    writeGeoJson(dir + "/places.geojson", {{"POINT(15 10.5)", "In"}, {"POINT(17 10.5)", "Out"}});
    // A shapefile source: its texts keep their leading blanks.
    datagen::writeShapefile(dir + "/states.shp", datagen::GeomKind::Polygon, {{"NAME_1", 'C', 30}},
                            {{qf::rect(450000, 1110000, 100000, 50000), {std::string("  North Province")}}});
    writeText(dir + "/recipe.toml",
              "crs = \"auto\"\n[39_countryboundary]\nsource = \"country.geojson\"\n"
              "[30_lakes]\nsource = \"water.geojson\"\n[40_rivers]\nsource = \"lines.geojson\"\n"
              "[43_roads]\nsource = \"lines.geojson\"\n[44_transmissionline]\nsource = \"lines.geojson\"\nmargin_km = 10\n"
              "[59_cities]\nsource = \"places.geojson\"\n[38_subcountrybnd1]\nsource = \"states.shp\"\nfield = \"NAME_1\"\n");
    const std::string out = dir + "/out";
    const PrepareRun r = prepareRun(dir + "/recipe.toml", out);
    ASSERT_EQ(r.code, 0) << r.err;

    auto boundary = openOut(out, "39_countryboundary.shp"), lakes = openOut(out, "30_lakes.shp");
    ASSERT_TRUE(boundary && lakes);
    ASSERT_EQ(boundary->count(), 1);
    ASSERT_EQ(lakes->count(), 2);  // the lake outside is gone, the bow tie repaired
    const double country = measure(boundary, 0);
    EXPECT_NEAR(country, 1.21e10, 0.01e10);  // one degree square near 10.5 N: 109.5 km by 110.6 km
    EXPECT_NEAR(measure(lakes, 0), country, country * 1e-9);
    EXPECT_GT(measure(lakes, 1), 0);
    EXPECT_TRUE(boundary->extent().contains(lakes->extent()));
    EXPECT_EQ(lakes->value(1, lakes->fieldIndex("name")).toString(), "Bow tie");

    auto rivers = openOut(out, "40_rivers.shp"), roads = openOut(out, "43_roads.shp"),
         lines = openOut(out, "44_transmissionline.shp"), cities = openOut(out, "59_cities.shp");
    ASSERT_TRUE(rivers && roads && lines && cities);
    ASSERT_EQ(rivers->count(), 1);
    ASSERT_EQ(roads->count(), 1);
    ASSERT_EQ(lines->count(), 1);
    EXPECT_NEAR(measure(roads, 0), measure(rivers, 0) + 50000, 300);  // 25 km beyond each side
    EXPECT_NEAR(measure(lines, 0), measure(rivers, 0) + 20000, 300);
    ASSERT_EQ(cities->count(), 1);
    EXPECT_EQ(cities->value(0, 0).toString(), "In");

    auto states = openOut(out, "38_subcountrybnd1.shp");
    ASSERT_TRUE(states);
    ASSERT_EQ(states->count(), 1);
    EXPECT_EQ(states->value(0, states->fieldIndex("NAME")).toString(), "  North Province");
    EXPECT_NE(r.out.find("43_roads.shp"), std::string::npos) << "the summary names each file";
}

TEST(Prepare, ClassRasterGivesTheTextsOfItsTableWithTheirBlanks)
{
    const std::string dir = testsupport::tempDir("prepare-classes");
    writeBoundary(dir, 500000, 1998000, 504000, 2000000);
    writeTiff(dir + "/cover.tif", 32633, 500000, 2000000, 1000, 4, 2, {1, 1, 2, 2, 3, 0, 2, 2}, GDT_Byte, 0);
    writeText(dir + "/classes.csv", "code,label\n1,  forest\n2,\"COFFEE, FRUITS\"\n3, GRASS\n9,unused\n");
    writeText(dir + "/recipe.toml", std::string("crs = \"EPSG:32633\"\n") + kBoundaryTable +
                                        "[02_landuse]\nsource = \"cover.tif\"\nclasses = \"classes.csv\"\n");
    const PrepareRun r = prepareRun(dir + "/recipe.toml", dir + "/out");
    ASSERT_EQ(r.code, 0) << r.err;
    auto land = openOut(dir + "/out", "02_landuse.shp");
    ASSERT_TRUE(land);
    std::map<QString, double> areas;
    for (int i = 0; i < land->count(); ++i) areas[land->value(i, land->fieldIndex("LAND_USE")).toString()] += measure(land, i);
    const std::map<QString, double> expected = {{"  forest", 2e6}, {"COFFEE, FRUITS", 4e6}, {" GRASS", 1e6}};
    EXPECT_EQ(areas, expected);
}

TEST(Prepare, GeneratedSourcesOpenInTheProgramAndAQueryRuns)
{
    const std::string dir = testsupport::tempDir("prepare-generated");
    datagen::Options options;
    datagen::writeSources(dir, options);
    const PrepareRun r = prepareRun(dir + "/recipe.toml", dir + "/out");
    ASSERT_EQ(r.code, 0) << r.err;

    FrmMain& f = qrun::panel(dir + "/out", qrun::kWindQuery, "200", "Max");
    EXPECT_EQ(f.Map1->Layers().Count(), 26);  // all but 21_wind and 22_wind
    EXPECT_TRUE(testsupport::recorder().boxes.empty());
    f.cmdUpdateMap->click();
    const auto rows = QueryDataTable();
    ASSERT_TRUE(rows);
    EXPECT_GE(rows->size(), 3u);

    // The hand-made cells: the one of 250 W/m2, half a square kilometre.
    qrun::panel(handMadeDataset(), qrun::kWindQuery, "200", "Max").cmdUpdateMap->click();
    const auto cells = QueryDataTable();
    ASSERT_TRUE(cells);
    ASSERT_EQ(cells->size(), 1u);
    EXPECT_NEAR((*cells)[0].area, 0.5, 1e-9);
    EXPECT_EQ((*cells)[0].description, "Wind Power Density >= 200 and < 300");
}

// Each bad input names the recipe line and the source, exits with 2 and
// leaves OUTDIR as it was.
TEST(Prepare, BadInputIsRefusedWithItsLineAndOutdirStaysUntouched)
{
    const std::string dir = testsupport::tempDir("prepare-bad");
    writeBoundary(dir, 500000, 1998000, 502000, 2000000);
    writeTiff(dir + "/wind.tif", 32633, 500000, 2000000, 500, 4, 4, std::vector<double>(16, 300));
    writeTiff(dir + "/nocrs.tif", 0, 500000, 2000000, 500, 4, 4, std::vector<double>(16, 300));
    writeText(dir + "/junk.tif", "not a raster");
    datagen::writeShapefile(dir + "/roads.shp", datagen::GeomKind::Line, {{"CLASS", 'C', 10}},
                            {{"LINESTRING(500000 1999000,502000 1999000)", {std::string("primary")}}});
    struct Case { const char* crs; const char* where; const char* wind; const char* more; const char* message; };
    // The recipe: crs on line 1, the boundary's where on line 4, the wind table from line 5, its source on line 6.
    const Case cases[] = {
        {"EPSG:32633", "NAME = 'Home'", "source = \"missing.tif\"", "",
         "recipe.toml line 6 ([20_wind], source missing.tif): the source does not exist"},
        {"EPSG:32633", "NAME = 'Home'", "source = \"junk.tif\"", "", "line 6 ([20_wind], source junk.tif): the source cannot be read as a raster"},
        {"EPSG:32633", "NAME = 'Home'", "source = \"nocrs.tif\"", "", "line 6 ([20_wind], source nocrs.tif): the raster has no coordinate system"},
        {"EPSG:32633", "NAME = 'Atlantis'", "source = \"wind.tif\"", "", "line 4 ([39_countryboundary], source boundary.shp): the boundary source selects no boundary"},
        {"EPSG:32633", "NAME === 'Home'", "source = \"wind.tif\"", "", "line 4 ([39_countryboundary], source boundary.shp): OGR rejects the filter"},
        {"EPSG:4326", "NAME = 'Home'", "source = \"wind.tif\"", "", "recipe.toml line 1: the coordinate system \"EPSG:4326\" is not projected in metres"},
        {"EPSG:32633", "NAME = 'Home'", "source = \"wind.tif\"\nunit = \"W/m2\"", "", "line 7: unknown key \"unit\" in [20_wind]"},
        {"EPSG:32633", "NAME = 'Home'", "source = \"wind.tif\"", "[14_solar_glo]\nsource = \"wind.tif\"\nunit = \"MJ/m2\"",
         "line 9: unknown unit \"MJ/m2\" in [14_solar_glo]"},
        {"EPSG:32633", "NAME = 'Home'", "source = \"wind.tif\"", "[41_canals]\nsource = \"roads.shp\"", "line 7: unknown table [41_canals]"},
        {"EPSG:32633", "NAME = 'Home'", "source = \"wind.tif\"", "[43_roads]\nsource = \"roads.shp\"\nkeep = [\"highway\"]",
         "line 9 ([43_roads], source roads.shp): unknown field \"highway\" in keep (the source has CLASS)"},
        {"EPSG:32633", "NAME = 'Home'", "source = \"wind.tif\"", "[43_roads]\nsource = \"roads.shp\"\nlayer = \"roads2\"",
         "line 7 ([43_roads], source roads.shp): the source has no layer \"roads2\" (it has roads)"},
    };
    const std::string out = dir + "/out";
    fs::create_directories(out);
    writeText(out + "/20_wind.shp", "the former dataset");
    writeText(dir + "/recipe.toml", "");
    const auto entries = std::distance(fs::directory_iterator(dir), fs::directory_iterator());
    for (const Case& c : cases) {
        SCOPED_TRACE(c.message);
        writeText(dir + "/recipe.toml", std::string("crs = \"") + c.crs + "\"\n[39_countryboundary]\nsource = \"boundary.shp\"\n"
                                            "where = \"" + c.where + "\"\n[20_wind]\n" + c.wind + "\n" + c.more + "\n");
        const PrepareRun r = prepareRun(dir + "/recipe.toml", out, true);
        EXPECT_EQ(r.code, 2);
        EXPECT_NE(r.err.find(c.message), std::string::npos) << r.err;
        EXPECT_EQ(std::distance(fs::directory_iterator(out), fs::directory_iterator()), 1);
        EXPECT_EQ(std::distance(fs::directory_iterator(dir), fs::directory_iterator()), entries) << "no work folder is left";
    }

    // The program itself: a non-empty OUTDIR without --force.
    QProcess p;
    p.start(QStringLiteral(MARLOWAN_BIN_DIR "/marlowan-prepare"),
            {QString::fromStdString(dir + "/recipe.toml"), QString::fromStdString(out)});
    ASSERT_TRUE(p.waitForFinished(60000));
    EXPECT_EQ(p.exitCode(), 2);
    EXPECT_TRUE(p.readAllStandardError().contains("is not empty; give --force to replace it"));
    std::ifstream kept(out + "/20_wind.shp");
    EXPECT_EQ(std::string((std::istreambuf_iterator<char>(kept)), {}), "the former dataset");
}
