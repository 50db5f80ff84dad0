// marlowan-prepare: cell means, reprojection and clipping, class texts, the
// result opening in the program, and the refusal of bad input.
#include <QProcess>
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

struct PrepareRun { int code = -1; std::string out, err; };

PrepareRun prepareRun(const std::string& recipe, const std::string& outdir, bool force = false)
{
    std::ostringstream out, err;
    const int code = prepare::run({recipe, outdir, force, false}, out, err);
    return {code, out.str(), err.str()};
}

void writeText(const std::string& path, const std::string& text) { std::ofstream(path, std::ios::binary) << text; }

std::string readText(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
}

// A one-band GeoTIFF, north row first; epsg 0 gives a raster without a system.
void writeTiff(const std::string& path, int epsg, double x0, double yTop, double pixel, int w, int h,
               const std::vector<double>& values, GDALDataType type = GDT_Float32, double noData = -1)
{
    GDALAllRegister();
    GDALDatasetUniquePtr ds(GetGDALDriverManager()->GetDriverByName("GTiff")->Create(path.c_str(), w, h, 1, type, nullptr));
    double gt[6] = {x0, pixel, 0, yTop, 0, -pixel};
    ds->SetGeoTransform(gt);
    if (OGRSpatialReference srs; epsg && srs.importFromEPSG(epsg) == OGRERR_NONE) ds->SetSpatialRef(&srs);
    ds->GetRasterBand(1)->SetNoDataValue(noData);
    ASSERT_EQ(ds->GetRasterBand(1)->RasterIO(GF_Write, 0, 0, w, h, const_cast<double*>(values.data()), w, h,
                                             GDT_Float64, 0, 0), CE_None);
}

// A GeoJSON file in longitude/latitude with one text field.
void writeGeoJson(const std::string& path, const std::vector<std::pair<std::string, std::string>>& features)
{
    std::string text;
    for (const auto& [wkt, name] : features) {
        OGRGeometry* g = nullptr;
        OGRGeometryFactory::createFromWkt(wkt.c_str(), nullptr, &g);
        const std::unique_ptr<char, void (*)(void*)> json(OGRGeometryUniquePtr(g)->exportToJson(), VSIFree);
        text += (text.empty() ? "" : ",") + std::string(R"({"type":"Feature","properties":{"name":")") + name + R"("},"geometry":)" + json.get() + "}";
    }
    writeText(path, R"({"type":"FeatureCollection","features":[)" + text + "]}");
}

// The country "Home", 2 km high and `width` m wide, in the generated system (EPSG:32633), and a neighbour far away.
void writeBoundary(const std::string& dir, double width)
{
    datagen::writeShapefile(dir + "/boundary.shp", datagen::GeomKind::Polygon, {{"NAME", 'C', 20}},
                            {{qf::rect(500000, 1998000, width, 2000), {std::string("Home")}},
                             {qf::rect(0, 0, 1000, 1000), {std::string("Elsewhere")}}});
}

// A recipe in that system cut to "Home", with these tables, run into DIR/out.
PrepareRun prepareIn(const std::string& dir, double width, const std::string& tables)
{
    writeBoundary(dir, width);
    writeText(dir + "/recipe.toml", "crs = \"EPSG:32633\"\n[39_countryboundary]\nsource = \"boundary.shp\"\n"
                                    "where = \"NAME = 'Home'\"\n" + tables);
    return prepareRun(dir + "/recipe.toml", dir + "/out");
}

double measure(const GeoDatasetPtr& d, int fid)
{
    double v = 0;
    const GEOSGeometry* g = d->geom(fid).get();
    const int type = GEOSGeomTypeId_r(geosContext(), g);
    (type == GEOS_POLYGON || type == GEOS_MULTIPOLYGON ? GEOSArea_r : GEOSLength_r)(geosContext(), g, &v);
    return v;
}

GeoDatasetPtr openOut(const std::string& dir, const std::string& file) { return GeoDataset::open(QString::fromStdString(dir + "/" + file)); }

}  // namespace

// Pixels of 500 m, cells of 1 km (2 x 2 pixels); the right column of cells is cut in half by the boundary. -1 is no
// data. A class raster of 1 km pixels, cut the same way, gives the texts of its table with their blanks.
TEST(Prepare, CellsHoldTheMeanOfTheirValidPixelsClassesTheirTextsAndBothAreClippedToTheBoundary)
{
    const std::string dir = testsupport::tempDir("prepare-cells"), out = dir + "/out";
    writeTiff(dir + "/wind.tif", 32633, 500000, 2000000, 500, 6, 4,
              {1, 2, 3, 4, -1, -1,  //
               5, 6, 8, -1, -1, -1,
               10, 10, 20, 20, 100, 200,
               10, 10, 20, 20, 300, 400});
    writeTiff(dir + "/cover.tif", 32633, 500000, 2000000, 1000, 4, 2, {1, 1, 2, 2, 3, 0, 2, 2}, GDT_Byte, 0);
    writeText(dir + "/classes.csv", "code,label\n1,  forest\n2,\"COFFEE, FRUITS\"\n3, GRASS\n9,unused\n");
    const PrepareRun r = prepareIn(dir, 2500, "[20_wind]\nsource = \"wind.tif\"\ncell_km = 1\n"
                                              "[14_solar_glo]\nsource = \"wind.tif\"\ncell_km = 1\nunit = \"kWh/m2/year\"\n"
                                              "[02_landuse]\nsource = \"cover.tif\"\nclasses = \"classes.csv\"\n");
    ASSERT_EQ(r.code, 0) << r.err;
    struct Cell { double mean, areaKm2; };
    const Cell cells[] = {{3.5, 1}, {5, 1}, {10, 1}, {20, 1}, {250, 0.5}};  // the cell of no data is left out
    auto wind = openOut(out, "20_wind.shp"), solar = openOut(out, "14_solar_glo.shp");
    ASSERT_TRUE(wind && solar && wind->count() == 5 && solar->count() == 5);
    for (int i = 0; i < 5; ++i) {
        SCOPED_TRACE(i);
        EXPECT_DOUBLE_EQ(wind->value(i, wind->fieldIndex("WINDPWRD")).toDouble(), cells[i].mean);
        EXPECT_NEAR(solar->value(i, solar->fieldIndex("ANNGLO")).toDouble(), cells[i].mean / 365, 5e-5);
        EXPECT_NEAR(measure(wind, i), cells[i].areaKm2 * 1e6, 1e-6);
    }
    // The files the program reads besides: the projection in ESRI spelling, the code page.
    const std::string prj = readText(out + "/20_wind.prj");
    EXPECT_TRUE(prj.starts_with("PROJCS[\"WGS_1984_UTM_Zone_33N\"") && prj.find("UNIT[\"Meter\",1.0]") != std::string::npos) << prj;
    EXPECT_EQ(readText(out + "/20_wind.cpg"), "UTF-8");

    auto land = openOut(out, "02_landuse.shp");
    ASSERT_TRUE(land);
    std::map<QString, double> areas;
    for (int i = 0; i < land->count(); ++i) areas[land->value(i, land->fieldIndex("LAND_USE")).toString()] += measure(land, i);
    EXPECT_EQ(areas, (std::map<QString, double>{{"  forest", 2e6}, {"COFFEE, FRUITS", 1e6}, {" GRASS", 1e6}}));
}

TEST(Prepare, ReprojectedLayersCoverTheBoundaryRoadsKeepTheirMarginAndGeneratedSourcesOpenInTheProgram)
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

    auto boundary = openOut(out, "39_countryboundary.shp"), lakes = openOut(out, "30_lakes.shp"), rivers = openOut(out, "40_rivers.shp"),
         roads = openOut(out, "43_roads.shp"), lines = openOut(out, "44_transmissionline.shp"),
         cities = openOut(out, "59_cities.shp"), states = openOut(out, "38_subcountrybnd1.shp");
    ASSERT_TRUE(boundary && lakes && rivers && roads && lines && cities && states);
    // The lake outside is gone, the bow tie repaired; one of everything else.
    ASSERT_EQ((std::array{boundary->count(), lakes->count(), rivers->count(), roads->count(), lines->count(), cities->count(), states->count()}),
              (std::array{1, 2, 1, 1, 1, 1, 1}));
    const double country = measure(boundary, 0);
    EXPECT_NEAR(country, 1.21e10, 0.01e10);  // one degree square near 10.5 N: 109.5 km by 110.6 km
    EXPECT_NEAR(measure(lakes, 0), country, country * 1e-9);
    EXPECT_TRUE(measure(lakes, 1) > 0 && boundary->extent().contains(lakes->extent()));
    EXPECT_EQ(lakes->value(1, lakes->fieldIndex("name")).toString(), "Bow tie");
    EXPECT_NEAR(measure(roads, 0), measure(rivers, 0) + 50000, 300);  // 25 km beyond each side
    EXPECT_NEAR(measure(lines, 0), measure(rivers, 0) + 20000, 300);
    EXPECT_EQ(cities->value(0, 0).toString(), "In");
    EXPECT_EQ(states->value(0, states->fieldIndex("NAME")).toString(), "  North Province");
    EXPECT_NE(r.out.find("43_roads.shp"), std::string::npos) << "the summary names each file";

    // The generated sources: the result opens in the program and a query runs.
    const std::string generated = testsupport::tempDir("prepare-generated");
    datagen::Options options;
    datagen::writeSources(generated, options);
    const PrepareRun run = prepareRun(generated + "/recipe.toml", generated + "/out");
    ASSERT_EQ(run.code, 0) << run.err;

    FrmMain& form = qf::panel(generated + "/out", qf::kWindQuery, "200", "Max");
    EXPECT_EQ(form.Map1->Layers().Count(), 26);  // all but 21_wind and 22_wind
    EXPECT_TRUE(testsupport::recorder().boxes.empty());
    form.cmdUpdateMap->click();
    EXPECT_GE(QueryDataTable().value_or(std::vector<QueryDataRow>{}).size(), 3u);
}

// Each bad input names the recipe line and the source, exits with 2 and leaves OUTDIR as it was.
TEST(Prepare, BadInputIsRefusedWithItsLineAndOutdirStaysUntouched)
{
    const std::string dir = testsupport::tempDir("prepare-bad");
    writeBoundary(dir, 2000);
    writeTiff(dir + "/wind.tif", 32633, 500000, 2000000, 500, 4, 4, std::vector<double>(16, 300));
    writeTiff(dir + "/nocrs.tif", 0, 500000, 2000000, 500, 4, 4, std::vector<double>(16, 300));
    writeText(dir + "/junk.tif", "not a raster");
    datagen::writeShapefile(dir + "/roads.shp", datagen::GeomKind::Line, {{"CLASS", 'C', 10}},
                            {{"LINESTRING(500000 1999000,502000 1999000)", {std::string("primary")}}});
    // The recipe: crs on line 1, the boundary's where on line 4, the wind table from line 5, its source on line 6;
    // each case puts one text in the place of another.
    const std::string good = "crs = \"EPSG:32633\"\n[39_countryboundary]\nsource = \"boundary.shp\"\nwhere = \"NAME = 'Home'\"\n"
                             "[20_wind]\nsource = \"wind.tif\"\n";
    struct Case { const char *from, *to, *message; };
    const Case cases[] = {
        {"wind.tif", "missing.tif", "recipe.toml line 6 ([20_wind], source missing.tif): the source does not exist"},
        {"wind.tif", "junk.tif", "line 6 ([20_wind], source junk.tif): the source cannot be read as a raster"},
        {"wind.tif", "nocrs.tif", "line 6 ([20_wind], source nocrs.tif): the raster has no coordinate system"},
        {"Home", "Atlantis", "line 4 ([39_countryboundary], source boundary.shp): the boundary source selects no boundary"},
        {"NAME =", "NAME ===", "line 4 ([39_countryboundary], source boundary.shp): OGR rejects the filter"},
        {"32633", "4326", "recipe.toml line 1: the coordinate system \"EPSG:4326\" is not projected in metres"},
        {"tif\"\n", "tif\"\nunit = \"W/m2\"\n", "line 7: unknown key \"unit\" in [20_wind]"},
        {"tif\"\n", "tif\"\n[14_solar_glo]\nsource = \"wind.tif\"\nunit = \"MJ/m2\"\n", "line 9: unknown unit \"MJ/m2\" in [14_solar_glo]"},
        {"tif\"\n", "tif\"\n[41_canals]\nsource = \"roads.shp\"\n", "line 7: unknown table [41_canals]"},
        {"tif\"\n", "tif\"\n[43_roads]\nsource = \"roads.shp\"\nkeep = [\"highway\"]\n",
         "line 9 ([43_roads], source roads.shp): unknown field \"highway\" in keep (the source has CLASS)"},
        {"tif\"\n", "tif\"\n[43_roads]\nsource = \"roads.shp\"\nlayer = \"roads2\"\n",
         "line 7 ([43_roads], source roads.shp): the source has no layer \"roads2\" (it has roads)"},
    };
    const std::string out = dir + "/out";
    fs::create_directories(out);
    writeText(out + "/20_wind.shp", "the former dataset");
    writeText(dir + "/recipe.toml", "");
    auto entries = [](const std::string& d) { return std::distance(fs::directory_iterator(d), fs::directory_iterator()); };
    const auto before = entries(dir);
    for (const Case& c : cases) {
        SCOPED_TRACE(c.message);
        std::string recipe = good;
        writeText(dir + "/recipe.toml", recipe.replace(recipe.find(c.from), std::string(c.from).size(), c.to));
        const PrepareRun r = prepareRun(dir + "/recipe.toml", out, true);
        EXPECT_EQ(r.code, 2);
        EXPECT_NE(r.err.find(c.message), std::string::npos) << r.err;
        EXPECT_EQ(entries(out), 1);
        EXPECT_EQ(entries(dir), before) << "no work folder is left";
    }

    // The program itself: a non-empty OUTDIR without --force.
    QProcess p;
    p.start(QStringLiteral(MARLOWAN_BIN_DIR "/marlowan-prepare"), {QString::fromStdString(dir + "/recipe.toml"), QString::fromStdString(out)});
    ASSERT_TRUE(p.waitForFinished(60000));
    EXPECT_EQ(p.exitCode(), 2);
    EXPECT_TRUE(p.readAllStandardError().contains("is not empty; give --force to replace it"));
    EXPECT_EQ(readText(out + "/20_wind.shp"), "the former dataset");
}
