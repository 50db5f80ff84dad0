// The dataset generator: the files the program expects, the quirks of their
// texts and values, determinism, and the sizes of the two datasets.
#include <gtest/gtest.h>

#include <gdal_priv.h>
#include <ogrsf_frmts.h>

#include <sys/wait.h>
#include <unistd.h>

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

#include "datagen.h"

namespace fs = std::filesystem;

namespace {

fs::path tempDir(const std::string& name)
{
#ifdef MARLOWAN_TEST_TMP
    fs::path root = MARLOWAN_TEST_TMP;
#else
    fs::path root = fs::temp_directory_path() / "marlowan-test";
#endif
    fs::path p = root / ("datagen-" + std::to_string(getpid()) + "-" + name);
    fs::remove_all(p);
    fs::create_directories(p);
    return p;
}

std::string readBytes(const fs::path& p)
{
    std::ifstream in(p, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

// The text of one field in every record, straight from the .dbf bytes.
std::vector<std::string> rawDbfColumn(const fs::path& dbf, const std::string& field)
{
    const std::string b = readBytes(dbf);
    auto u16 = [&](std::size_t at) { return static_cast<unsigned>(static_cast<unsigned char>(b.at(at))) |
                                            static_cast<unsigned>(static_cast<unsigned char>(b.at(at + 1))) << 8; };
    const std::uint32_t records = u16(4) | u16(6) << 16;
    const std::size_t headerLen = u16(8), recordLen = u16(10);
    std::size_t offset = 1, width = 0;
    bool found = false;
    for (std::size_t at = 32; b.at(at) != '\x0d'; at += 32) {
        const std::string name = b.substr(at, 11).c_str();
        const std::size_t len = static_cast<unsigned char>(b.at(at + 16));
        if (name == field) {
            width = len;
            found = true;
            break;
        }
        offset += len;
    }
    if (!found) throw std::runtime_error("no field " + field + " in " + dbf.string());
    std::vector<std::string> out;
    for (std::uint32_t r = 0; r < records; ++r) out.push_back(b.substr(headerLen + r * recordLen + offset, width));
    return out;
}

struct Opened {
    GDALDatasetUniquePtr ds;
    OGRLayer* layer = nullptr;
};

Opened open(const fs::path& shp)
{
    static const bool registered = (GDALAllRegister(), true);
    (void)registered;
    Opened o;
    o.ds.reset(GDALDataset::Open(shp.string().c_str(), GDAL_OF_VECTOR | GDAL_OF_READONLY));
    if (o.ds) o.layer = o.ds->GetLayer(0);
    return o;
}

std::vector<double> realColumn(const fs::path& shp, const std::string& field)
{
    Opened o = open(shp);
    if (!o.layer) throw std::runtime_error("cannot open " + shp.string());
    std::vector<double> out;
    const int idx = o.layer->GetLayerDefn()->GetFieldIndex(field.c_str());
    if (idx < 0) throw std::runtime_error("no field " + field);
    for (auto& f : *o.layer) out.push_back(f->GetFieldAsDouble(idx));
    return out;
}

bool hasExactly(const std::vector<double>& v, double x)
{
    for (double d : v)
        if (d == x) return true;
    return false;
}

struct Expected {
    OGRwkbGeometryType geometry;
    std::vector<std::pair<std::string, char>> fields;  // 'C', 'N', 'I'
};

std::vector<std::pair<std::string, char>> solarFields(const std::string& suffix)
{
    std::vector<std::pair<std::string, char>> f = {{"Cell_ID", 'I'}, {"Gridcode", 'I'}, {"Lon", 'N'}, {"Lat", 'N'}};
    for (const char* m : {"JAN", "FEB", "MAR", "APR", "MAY", "JUN", "JUL", "AUG", "SEP", "OCT", "NOV", "DEC", "ANN"})
        f.push_back({m + suffix, 'N'});
    return f;
}

const std::map<std::string, Expected>& expectations()
{
    static const std::map<std::string, Expected> e = {
        {"01_elevation.shp", {wkbPolygon, {{"Elev_m", 'N'}}}},
        {"02_landuse.shp", {wkbPolygon, {{"LAND_USE", 'C'}}}},
        {"11_solar_direct.shp", {wkbPolygon, solarFields("DIR")}},
        {"12_solar_tilt.shp", {wkbPolygon, solarFields("TILT")}},
        {"13_solar_direct.shp", {wkbPolygon, solarFields("DIR")}},
        {"14_solar_glo.shp", {wkbPolygon, solarFields("GLO")}},
        {"15_solar_glo.shp", {wkbPolygon, solarFields("GLO")}},
        {"16_solar_tilt.shp", {wkbPolygon, solarFields("TILT")}},
        {"17_solar_direct.shp", {wkbPolygon, solarFields("DIR")}},
        {"18_solar_tilt.shp", {wkbPolygon, solarFields("TILT")}},
        {"20_wind.shp", {wkbPolygon, {{"WINDPWRD", 'N'}, {"WINDCLASS", 'I'}}}},
        {"21_wind.shp", {wkbPolygon, {{"SPEED", 'N'}}}},
        {"22_wind.shp", {wkbPolygon, {{"SPEED", 'N'}}}},
        {"30_lakes.shp", {wkbPolygon, {{"NAME", 'C'}}}},
        {"31_protectedarea.shp", {wkbPolygon, {{"NAME", 'C'}, {"TYPE", 'C'}}}},
        {"36_subcountrybnd3.shp", {wkbPolygon, {{"NAME", 'C'}, {"POP", 'I'}}}},
        {"37_subcountrybnd2.shp", {wkbPolygon, {{"NAME", 'C'}, {"POP", 'I'}}}},
        {"38_subcountrybnd1.shp", {wkbPolygon, {{"NAME", 'C'}, {"POP", 'I'}}}},
        {"39_countryboundary.shp", {wkbPolygon, {{"NAME", 'C'}}}},
        {"40_rivers.shp", {wkbLineString, {{"NAME", 'C'}}}},
        {"42_railroad.shp", {wkbLineString, {{"NAME", 'C'}}}},
        {"43_roads.shp", {wkbLineString, {{"NAME", 'C'}}}},
        {"44_transmissionline.shp", {wkbLineString, {{"NAME", 'C'}, {"VOLTAGE", 'I'}}}},
        {"50_protectedarea.shp", {wkbPoint, {{"NAME", 'C'}}}},
        {"51_powerplant.shp", {wkbPoint, {{"NAME", 'C'}, {"CAPACITY", 'N'}}}},
        {"52_facilities.shp", {wkbPoint, {{"NAME", 'C'}, {"TYPE", 'C'}}}},
        {"53_airports.shp", {wkbPoint, {{"NAME", 'C'}}}},
        {"59_cities.shp", {wkbPoint, {{"NAME", 'C'}, {"TYPE", 'C'}, {"POP", 'I'}}}},
    };
    return e;
}

char kindOf(OGRFieldType t)
{
    switch (t) {
    case OFTString: return 'C';
    case OFTReal: return 'N';
    case OFTInteger:
    case OFTInteger64: return 'I';
    default: return '?';
    }
}

double polygonArea(const fs::path& shp)
{
    Opened o = open(shp);
    double sum = 0;
    for (auto& f : *o.layer) {
        const OGRGeometry* g = f->GetGeometryRef();
        if (auto* p = dynamic_cast<const OGRPolygon*>(g)) sum += p->get_Area();
        if (auto* m = dynamic_cast<const OGRMultiPolygon*>(g)) sum += m->get_Area();
    }
    return sum;
}

class SmallDataset : public ::testing::Test {
protected:
    static void SetUpTestSuite()
    {
        dir_ = tempDir("small");
        datagen::Options o;
        datagen::generate(dir_.string(), o);
    }
    static fs::path dir_;
};
fs::path SmallDataset::dir_;

}  // namespace

TEST_F(SmallDataset, HasAllStandardFilesWithTheirGeometryFieldsAndProjection)
{
    ASSERT_EQ(datagen::standardFiles().size(), 28u);
    ASSERT_EQ(expectations().size(), 28u);
    Opened country = open(dir_ / "39_countryboundary.shp");
    ASSERT_TRUE(country.layer);
    OGREnvelope land;
    ASSERT_EQ(country.layer->GetExtent(&land), OGRERR_NONE);
    for (const std::string& name : datagen::standardFiles()) {
        SCOPED_TRACE(name);
        ASSERT_EQ(expectations().count(name), 1u);
        const Expected& exp = expectations().at(name);
        Opened o = open(dir_ / name);
        ASSERT_TRUE(o.layer) << "not readable";
        EXPECT_EQ(wkbFlatten(o.layer->GetGeomType()), exp.geometry);
        OGRFeatureDefn* defn = o.layer->GetLayerDefn();
        for (const auto& [field, kind] : exp.fields) {
            const int idx = defn->GetFieldIndex(field.c_str());
            ASSERT_GE(idx, 0) << field;
            EXPECT_STREQ(defn->GetFieldDefn(idx)->GetNameRef(), field.c_str());  // case as the program looks it up
            EXPECT_EQ(kindOf(defn->GetFieldDefn(idx)->GetType()), kind) << field;
        }
        EXPECT_GT(o.layer->GetFeatureCount(), 0);
        // Everything lies in the country; grid squares may reach one cell beyond.
        OGREnvelope env;
        ASSERT_EQ(o.layer->GetExtent(&env, TRUE), OGRERR_NONE);
        EXPECT_GE(env.MinX, land.MinX - 40000);
        EXPECT_LE(env.MaxX, land.MaxX + 40000);
        EXPECT_GE(env.MinY, land.MinY - 40000);
        EXPECT_LE(env.MaxY, land.MaxY + 40000);
        fs::path prj = (dir_ / name).replace_extension(".prj");
        EXPECT_EQ(readBytes(prj), datagen::esriPrjText());
    }
    EXPECT_NE(datagen::esriPrjText().find("UNIT[\"Meter\",1.0]"), std::string::npos);
    EXPECT_NE(datagen::esriPrjText().find("PROJCS["), std::string::npos);
}

TEST_F(SmallDataset, CoveragesTileTheCountryAndCountsSuitTheDefaultView)
{
    const double country = polygonArea(dir_ / "39_countryboundary.shp");
    EXPECT_GT(country, 150e9);  // about 600 by 450 km
    EXPECT_LT(country, 270e9);
    for (const char* tiling : {"02_landuse.shp", "01_elevation.shp", "36_subcountrybnd3.shp", "37_subcountrybnd2.shp",
                               "38_subcountrybnd1.shp"})
        EXPECT_NEAR(polygonArea(dir_ / tiling) / country, 1.0, 0.002) << tiling;
    // Grid squares cover the country.
    EXPECT_GE(polygonArea(dir_ / "20_wind.shp"), country);

    auto count = [&](const char* name) { return open(dir_ / name).layer->GetFeatureCount(); };
    EXPECT_LT(count("43_roads.shp"), 50);
    EXPECT_LT(count("44_transmissionline.shp"), 400);
    EXPECT_LT(count("59_cities.shp"), 50);
    EXPECT_GE(count("02_landuse.shp"), 60);
    EXPECT_LE(count("02_landuse.shp"), 150);
    EXPECT_GE(count("20_wind.shp"), 200);
    EXPECT_LE(count("20_wind.shp"), 1000);
    EXPECT_GT(count("13_solar_direct.shp"), count("11_solar_direct.shp"));
}

TEST_F(SmallDataset, LandUseTextsKeepTheirBlanksInTheDbf)
{
    const auto values = rawDbfColumn(dir_ / "02_landuse.dbf", "LAND_USE");
    ASSERT_FALSE(values.empty());
    EXPECT_EQ(values[0].size(), 60u);
    bool leading = false, blank = false, lower = false, unknown = false, oddSpelling = false;
    for (const std::string& v : values) {
        const auto first = v.find_first_not_of(' ');
        if (first == std::string::npos) blank = true;
        else if (first > 0) leading = true;
        const std::string t = first == std::string::npos ? "" : v.substr(first, v.find_last_not_of(' ') - first + 1);
        lower = lower || t == "forest";
        unknown = unknown || t == "ICE";
        oddSpelling = oddSpelling || t == "BARREN OR SPARSELY VEGITATED";
    }
    EXPECT_TRUE(leading) << "no value with leading blanks";
    EXPECT_TRUE(blank) << "no empty value";
    EXPECT_TRUE(lower);
    EXPECT_TRUE(unknown);
    EXPECT_TRUE(oddSpelling);
}

TEST_F(SmallDataset, ClassValuesFallExactlyOnTheBreaks)
{
    const auto wind = realColumn(dir_ / "20_wind.shp", "WINDPWRD");
    for (double b : {200.0, 300.0, 400.0, 500.0, 600.0, 800.0}) EXPECT_TRUE(hasExactly(wind, b)) << b;
    bool below = false, above = false;
    for (double v : wind) {
        EXPECT_GE(v, 0.0);
        EXPECT_LE(v, 1000.0);
        below = below || v < 200;
        above = above || v > 800;
    }
    EXPECT_TRUE(below && above);
    // The class number follows the value, an exact break counting upwards.
    Opened o = open(dir_ / "20_wind.shp");
    for (auto& f : *o.layer) {
        const double v = f->GetFieldAsDouble("WINDPWRD");
        const int expected = 1 + (v >= 200) + (v >= 300) + (v >= 400) + (v >= 500) + (v >= 600) + (v >= 800);
        ASSERT_EQ(f->GetFieldAsInteger("WINDCLASS"), expected) << v;
    }

    const std::map<std::string, std::string> solar = {
        {"11_solar_direct.shp", "ANNDIR"}, {"12_solar_tilt.shp", "ANNTILT"}, {"13_solar_direct.shp", "ANNDIR"},
        {"14_solar_glo.shp", "ANNGLO"},    {"15_solar_glo.shp", "ANNGLO"},   {"16_solar_tilt.shp", "ANNTILT"},
        {"17_solar_direct.shp", "ANNDIR"}, {"18_solar_tilt.shp", "ANNTILT"}};
    for (const auto& [file, field] : solar) {
        SCOPED_TRACE(file);
        const auto v = realColumn(dir_ / file, field);
        for (double t = 2.0; t <= 9.0; t += 0.5) EXPECT_TRUE(hasExactly(v, t)) << t;
        for (double x : v) {
            EXPECT_GE(x, 1.5);
            EXPECT_LE(x, 9.5);
        }
    }

    const auto elev = realColumn(dir_ / "01_elevation.shp", "Elev_m");
    const double breaks[] = {200, 400, 600, 800, 1000, 1200, 1400, 1600, 1800, 2000, 2200, 2500, 3000};
    std::set<int> classes;
    for (double e : elev) {
        EXPECT_GE(e, 0.0);
        EXPECT_LE(e, 3200.0);
        int k = 0;
        while (k < 13 && e >= breaks[k]) ++k;
        classes.insert(k);
    }
    EXPECT_EQ(classes.size(), 14u);
}

TEST(Datagen, SameSeedGivesTheSameBytesAndOmittingChangesNothingElse)
{
    const fs::path a = tempDir("seed7a"), b = tempDir("seed7b"), c = tempDir("seed8"), d = tempDir("seed7omit");
    datagen::Options o;
    o.seed = 7;
    datagen::generate(a.string(), o);
    datagen::generate(b.string(), o);
    o.omit = {"59_cities.shp", "51_powerplant"};
    datagen::generate(d.string(), o);
    o.omit.clear();
    o.seed = 8;
    datagen::generate(c.string(), o);
    for (const std::string& name : datagen::standardFiles()) {
        SCOPED_TRACE(name);
        for (const char* ext : {".dbf", ".shp"}) {
            const std::string file = fs::path(name).replace_extension(ext).string();
            EXPECT_EQ(readBytes(a / file), readBytes(b / file));
            if (fs::exists(d / file)) EXPECT_EQ(readBytes(a / file), readBytes(d / file)) << "changed by omitting others";
        }
    }
    EXPECT_NE(readBytes(a / "20_wind.dbf"), readBytes(c / "20_wind.dbf"));
    EXPECT_NE(readBytes(a / "02_landuse.shp"), readBytes(c / "02_landuse.shp"));
}

TEST(Datagen, OmitLeavesFilesOutAndRemovesEarlierOnes)
{
    const fs::path dir = tempDir("omit");
    datagen::Options o;
    datagen::generate(dir.string(), o);
    ASSERT_TRUE(fs::exists(dir / "43_roads.shp"));
    o.omit = {"43_roads.shp", "20_WIND"};
    datagen::generate(dir.string(), o);
    for (const char* ext : {".shp", ".shx", ".dbf", ".prj", ".cpg"}) {
        EXPECT_FALSE(fs::exists(dir / (std::string("43_roads") + ext))) << ext;
        EXPECT_FALSE(fs::exists(dir / (std::string("20_wind") + ext))) << ext;
    }
    std::size_t shapefiles = 0;
    for (const auto& e : fs::directory_iterator(dir)) shapefiles += e.path().extension() == ".shp";
    EXPECT_EQ(shapefiles, 26u);

    o.omit = {"44_power.shp"};
    EXPECT_THROW(datagen::generate(dir.string(), o), std::runtime_error);
    o.omit.clear();
    o.size = "medium";
    EXPECT_THROW(datagen::generate(dir.string(), o), std::runtime_error);
}

TEST(Datagen, WriteShapefileKeepsTextBytesAndTypes)
{
    const fs::path dir = tempDir("writer");
    const fs::path shp = dir / "hand.shp";
    datagen::writeShapefile(shp.string(), datagen::GeomKind::Point,
                            {{"NAME", 'C', 12}, {"VALUE", 'N', 10, 3}, {"COUNT", 'I'}},
                            {{"POINT (10 20)", {std::string("  forest"), 2.5, 7LL}},
                             {"POINT (30 40)", {std::string(""), std::monostate{}, 12LL}},
                             {"POINT (50 60)", {std::string("WATER")}}},
                            false);
    EXPECT_FALSE(fs::exists(dir / "hand.prj"));
    const auto names = rawDbfColumn(dir / "hand.dbf", "NAME");
    ASSERT_EQ(names.size(), 3u);
    EXPECT_EQ(names[0], "  forest    ");
    EXPECT_EQ(names[1], std::string(12, ' '));
    EXPECT_EQ(names[2], "WATER       ");

    Opened o = open(shp);
    ASSERT_TRUE(o.layer);
    EXPECT_EQ(wkbFlatten(o.layer->GetGeomType()), wkbPoint);
    OGRFeatureDefn* defn = o.layer->GetLayerDefn();
    EXPECT_EQ(defn->GetFieldDefn(1)->GetType(), OFTReal);
    EXPECT_EQ(defn->GetFieldDefn(2)->GetType(), OFTInteger);
    OGRFeatureUniquePtr first(o.layer->GetNextFeature());
    EXPECT_DOUBLE_EQ(first->GetFieldAsDouble(1), 2.5);
    EXPECT_EQ(first->GetFieldAsInteger(2), 7);
    OGRFeatureUniquePtr second(o.layer->GetNextFeature());
    EXPECT_FALSE(second->IsFieldSetAndNotNull(1));
    const auto* p = second->GetGeometryRef()->toPoint();
    EXPECT_DOUBLE_EQ(p->getX(), 30);
    EXPECT_DOUBLE_EQ(p->getY(), 40);
    o.ds.reset();

    // Written again with a projection: the old files give way.
    datagen::writeShapefile(shp.string(), datagen::GeomKind::Polygon, {{"ID", 'I'}},
                            {{"POLYGON ((0 0, 0 10, 10 10, 10 0, 0 0))", {1LL}}});
    EXPECT_EQ(readBytes(dir / "hand.prj"), datagen::esriPrjText());
    EXPECT_EQ(wkbFlatten(open(shp).layer->GetGeomType()), wkbPolygon);

    EXPECT_THROW(datagen::writeShapefile((dir / "bad.shp").string(), datagen::GeomKind::Point,
                                         {{"MUCH_TOO_LONG", 'C'}}, {}),
                 std::runtime_error);
    EXPECT_THROW(datagen::writeShapefile((dir / "bad.shp").string(), datagen::GeomKind::Point, {{"A", 'C'}},
                                         {{"POINT (1", {}}}),
                 std::runtime_error);
}

#if defined(MARLOWAN_GENDATA) || defined(MARLOWAN_BIN_DIR)
TEST(Datagen, CommandLineRefusesBadArgumentsWithUsage)
{
#ifdef MARLOWAN_GENDATA
    const std::string exe = MARLOWAN_GENDATA;
#else
    const std::string exe = std::string(MARLOWAN_BIN_DIR) + "/marlowan-gendata";
#endif
    if (!fs::exists(exe)) GTEST_SKIP() << "no " << exe;
    const fs::path dir = tempDir("cli");
    const std::string log = (dir / "out.txt").string();
    auto run = [&](const std::string& args) {
        const int status = std::system((exe + " " + args + " > " + log + " 2>&1").c_str());
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    };
    EXPECT_EQ(run("--size huge " + (dir / "x").string()), 2);
    EXPECT_NE(readBytes(log).find("usage:"), std::string::npos);
    EXPECT_EQ(run("--omit 99_nothing.shp " + (dir / "x").string()), 2);
    EXPECT_EQ(run("--seed abc " + (dir / "x").string()), 2);
    EXPECT_EQ(run(""), 2);
    EXPECT_EQ(run("--bogus " + (dir / "x").string()), 2);
    EXPECT_EQ(run("--seed 3 --omit 43_roads,44_transmissionline " + (dir / "ok").string()), 0);
    EXPECT_EQ(readBytes(log), "");
    EXPECT_TRUE(fs::exists(dir / "ok" / "20_wind.shp"));
    EXPECT_FALSE(fs::exists(dir / "ok" / "43_roads.shp"));
    EXPECT_FALSE(fs::exists(dir / "ok" / "44_transmissionline.shp"));
}
#endif

TEST(Datagen, LargeDatasetMeetsItsCounts)
{
    const fs::path dir = tempDir("large");
    datagen::Options o;
    o.size = "large";
    std::map<std::string, std::size_t> counts;
    o.onFile = [&](const std::string& file, std::size_t n) { counts[file] = n; };
    datagen::generate(dir.string(), o);
    EXPECT_EQ(counts.size(), 28u);
    EXPECT_GE(counts["20_wind.shp"], 20000u);
    for (const char* fine : {"13_solar_direct.shp", "14_solar_glo.shp", "16_solar_tilt.shp"})
        EXPECT_GE(counts[fine], 50000u) << fine;
    EXPECT_GE(counts["43_roads.shp"], 2000u);
    EXPECT_GE(counts["44_transmissionline.shp"], 500u);
    EXPECT_GE(counts["02_landuse.shp"], 5000u);
    EXPECT_GE(counts["31_protectedarea.shp"], 100u);
    // The callback tells what is on disk.
    EXPECT_EQ(open(dir / "20_wind.shp").layer->GetFeatureCount(), static_cast<GIntBig>(counts["20_wind.shp"]));
    fs::remove_all(dir);
}
