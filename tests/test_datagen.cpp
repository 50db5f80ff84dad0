// The dataset generator: the files the program expects, the quirks of their
// texts and values, determinism, and the size of the large dataset.
#include <gdal_priv.h>
#include <gtest/gtest.h>
#include <ogrsf_frmts.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <set>

#include "datagen.h"

namespace fs = std::filesystem;

namespace {

fs::path tempDir(const std::string& name)
{
    const fs::path p = fs::path(MARLOWAN_TEST_TMP) / ("datagen-" + std::to_string(getpid()) + "-" + name);
    fs::remove_all(p), fs::create_directories(p);
    return p;
}

std::string readBytes(const fs::path& p)
{
    std::ifstream in(p, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
}

// The text of one field in every record, straight from the .dbf bytes.
std::vector<std::string> rawDbfColumn(const fs::path& dbf, const std::string& field)
{
    const std::string b = readBytes(dbf);
    auto u16 = [&](std::size_t at) { return unsigned(static_cast<unsigned char>(b.at(at))) |
                                            unsigned(static_cast<unsigned char>(b.at(at + 1))) << 8; };
    const unsigned records = u16(4) | u16(6) << 16;
    const std::size_t headerLen = u16(8), recordLen = u16(10);
    std::size_t offset = 1, at = 32;
    for (; b.at(at) != '\x0d' && b.substr(at, 11).c_str() != field; at += 32)
        offset += static_cast<unsigned char>(b.at(at + 16));
    if (b.at(at) == '\x0d') throw std::runtime_error("no field " + field + " in " + dbf.string());
    std::vector<std::string> out;
    for (unsigned r = 0; r < records; ++r) out.push_back(b.substr(headerLen + r * recordLen + offset, static_cast<unsigned char>(b.at(at + 16))));
    return out;
}

struct Opened {
    GDALDatasetUniquePtr ds;
    OGRLayer* layer = nullptr;
};

Opened open(const fs::path& shp)
{
    GDALAllRegister();
    Opened o{GDALDatasetUniquePtr(GDALDataset::Open(shp.string().c_str(), GDAL_OF_VECTOR | GDAL_OF_READONLY))};
    if (o.ds) o.layer = o.ds->GetLayer(0);
    if (!o.layer) throw std::runtime_error("cannot open " + shp.string());
    return o;
}

// The distinct values of a field.
std::set<double> realColumn(const fs::path& shp, const std::string& field)
{
    Opened o = open(shp);
    std::set<double> out;
    const int idx = o.layer->GetLayerDefn()->GetFieldIndex(field.c_str());
    if (idx < 0) throw std::runtime_error("no field " + field);
    for (auto& f : *o.layer) out.insert(f->GetFieldAsDouble(idx));
    return out;
}

using Fields = std::vector<std::pair<std::string, char>>;  // 'C', 'N', 'I'

// The geometry and fields of each standard file.
const std::map<std::string, std::pair<OGRwkbGeometryType, Fields>>& expectations()
{
    auto solar = [](const std::string& suffix) {
        Fields f = {{"Cell_ID", 'I'}, {"Gridcode", 'I'}, {"Lon", 'N'}, {"Lat", 'N'}};
        for (const char* m : {"JAN", "FEB", "MAR", "APR", "MAY", "JUN", "JUL", "AUG", "SEP", "OCT", "NOV", "DEC", "ANN"}) f.push_back({m + suffix, 'N'});
        return f;
    };
    const Fields name = {{"NAME", 'C'}}, namePop = {{"NAME", 'C'}, {"POP", 'I'}}, speed = {{"SPEED", 'N'}},
                 nameType = {{"NAME", 'C'}, {"TYPE", 'C'}}, dir = solar("DIR"), tilt = solar("TILT"), glo = solar("GLO");
    static const std::map<std::string, std::pair<OGRwkbGeometryType, Fields>> e = {
        {"01_elevation.shp", {wkbPolygon, {{"Elev_m", 'N'}}}}, {"02_landuse.shp", {wkbPolygon, {{"LAND_USE", 'C'}}}},
        {"11_solar_direct.shp", {wkbPolygon, dir}}, {"12_solar_tilt.shp", {wkbPolygon, tilt}}, {"13_solar_direct.shp", {wkbPolygon, dir}},
        {"14_solar_glo.shp", {wkbPolygon, glo}}, {"15_solar_glo.shp", {wkbPolygon, glo}}, {"16_solar_tilt.shp", {wkbPolygon, tilt}},
        {"17_solar_direct.shp", {wkbPolygon, dir}}, {"18_solar_tilt.shp", {wkbPolygon, tilt}},
        {"20_wind.shp", {wkbPolygon, {{"WINDPWRD", 'N'}, {"WINDCLASS", 'I'}}}}, {"21_wind.shp", {wkbPolygon, speed}},
        {"22_wind.shp", {wkbPolygon, speed}}, {"30_lakes.shp", {wkbPolygon, name}}, {"31_protectedarea.shp", {wkbPolygon, nameType}},
        {"36_subcountrybnd3.shp", {wkbPolygon, namePop}}, {"37_subcountrybnd2.shp", {wkbPolygon, namePop}},
        {"38_subcountrybnd1.shp", {wkbPolygon, namePop}}, {"39_countryboundary.shp", {wkbPolygon, name}},
        {"40_rivers.shp", {wkbLineString, name}}, {"42_railroad.shp", {wkbLineString, name}}, {"43_roads.shp", {wkbLineString, name}},
        {"44_transmissionline.shp", {wkbLineString, {{"NAME", 'C'}, {"VOLTAGE", 'I'}}}}, {"50_protectedarea.shp", {wkbPoint, name}},
        {"51_powerplant.shp", {wkbPoint, {{"NAME", 'C'}, {"CAPACITY", 'N'}}}}, {"52_facilities.shp", {wkbPoint, nameType}},
        {"53_airports.shp", {wkbPoint, name}}, {"59_cities.shp", {wkbPoint, {{"NAME", 'C'}, {"TYPE", 'C'}, {"POP", 'I'}}}},
    };
    return e;
}

char kindOf(OGRFieldType t)
{ return t == OFTString ? 'C' : t == OFTReal ? 'N' : t == OFTInteger || t == OFTInteger64 ? 'I' : '?'; }

double polygonArea(const fs::path& shp)
{
    double sum = 0;
    Opened o = open(shp);
    for (auto& f : *o.layer) sum += OGR_G_Area(OGRGeometry::ToHandle(f->GetGeometryRef()));
    return sum;
}

// The small dataset with the default options, made once.
const fs::path& small()
{
    static const fs::path dir = [] { fs::path d = tempDir("small"); datagen::generate(d.string(), {}); return d; }();
    return dir;
}

}  // namespace

TEST(SmallDataset, HasAllStandardFilesWithTheirGeometryFieldsProjectionAndCoverage)
{
    OGREnvelope land;
    ASSERT_EQ(open(small() / "39_countryboundary.shp").layer->GetExtent(&land), OGRERR_NONE);
    for (const std::string& name : datagen::standardFiles()) {
        SCOPED_TRACE(name);
        ASSERT_EQ(expectations().count(name), 1u);
        const auto& [geometry, fields] = expectations().at(name);
        Opened o = open(small() / name);
        EXPECT_EQ(wkbFlatten(o.layer->GetGeomType()), geometry);
        OGRFeatureDefn* defn = o.layer->GetLayerDefn();
        for (const auto& [field, kind] : fields) {
            const int idx = defn->GetFieldIndex(field.c_str());
            ASSERT_GE(idx, 0) << field;
            // The name in the case the program looks it up with.
            EXPECT_EQ(defn->GetFieldDefn(idx)->GetNameRef() + std::string(1, kindOf(defn->GetFieldDefn(idx)->GetType())), field + kind);
        }
        EXPECT_GT(o.layer->GetFeatureCount(), 0);
        // Everything lies in the country; grid squares may reach one cell beyond.
        OGREnvelope env;
        ASSERT_EQ(o.layer->GetExtent(&env, TRUE), OGRERR_NONE);
        EXPECT_TRUE(env.MinX >= land.MinX - 4e4 && env.MaxX <= land.MaxX + 4e4 && env.MinY >= land.MinY - 4e4 && env.MaxY <= land.MaxY + 4e4);
        EXPECT_EQ(readBytes(fs::path(small() / name).replace_extension(".prj")), datagen::esriPrjText());
    }
    const double country = polygonArea(small() / "39_countryboundary.shp");
    EXPECT_NEAR(country, 210e9, 60e9);  // about 600 by 450 km
    for (const char* tiling : {"02_landuse.shp", "01_elevation.shp", "36_subcountrybnd3.shp", "37_subcountrybnd2.shp",
                               "38_subcountrybnd1.shp"})
        EXPECT_NEAR(polygonArea(small() / tiling) / country, 1.0, 0.002) << tiling;
    EXPECT_GE(polygonArea(small() / "20_wind.shp"), country);  // grid squares cover the country
    auto count = [&](const char* name) { return open(small() / name).layer->GetFeatureCount(); };
    for (const auto& [file, lo, hi] : {std::tuple{"43_roads.shp", 1, 49}, {"44_transmissionline.shp", 1, 399},
                                       {"59_cities.shp", 1, 49}, {"02_landuse.shp", 60, 150}, {"20_wind.shp", 200, 1000}})
        EXPECT_TRUE(count(file) >= lo && count(file) <= hi) << file << ": " << count(file);
    EXPECT_GT(count("13_solar_direct.shp"), count("11_solar_direct.shp"));
}

TEST(SmallDataset, TextsKeepTheirBlanksAndClassValuesFallExactlyOnTheBreaks)
{
    std::set<std::string> trimmed;
    bool leading = false;
    for (const std::string& v : rawDbfColumn(small() / "02_landuse.dbf", "LAND_USE")) {
        const auto first = v.find_first_not_of(' ');
        leading = leading || (first != std::string::npos && first > 0);
        trimmed.insert(first == std::string::npos ? "" : v.substr(first, v.find_last_not_of(' ') - first + 1));
    }
    EXPECT_TRUE(leading) << "no value with leading blanks";
    for (const char* quirk : {"", "forest", "ICE", "BARREN OR SPARSELY VEGITATED"})
        EXPECT_EQ(trimmed.count(quirk), 1u) << "no value \"" << quirk << '"';

    // Wind: every break taken exactly, the class number counting an exact break upwards.
    Opened o = open(small() / "20_wind.shp");
    for (auto& f : *o.layer) {
        const double v = f->GetFieldAsDouble("WINDPWRD");
        const int expected = 1 + (v >= 200) + (v >= 300) + (v >= 400) + (v >= 500) + (v >= 600) + (v >= 800);
        ASSERT_EQ(f->GetFieldAsInteger("WINDCLASS"), expected) << v;
    }
    const std::set<double> wind = realColumn(small() / "20_wind.shp", "WINDPWRD");
    for (double b : {200, 300, 400, 500, 600, 800}) EXPECT_EQ(wind.count(b), 1u) << b;
    EXPECT_TRUE(*wind.begin() >= 0 && *wind.begin() < 200 && *wind.rbegin() > 800 && *wind.rbegin() <= 1000);

    for (const std::string& file : datagen::standardFiles()) {
        if (file.find("_solar_") == std::string::npos) continue;
        const auto v = realColumn(small() / file, expectations().at(file).second.back().first);  // the ANN field
        for (double t = 2.0; t <= 9.0; t += 0.5) EXPECT_EQ(v.count(t), 1u) << file << " " << t;
        EXPECT_TRUE(*v.begin() >= 1.5 && *v.rbegin() <= 9.5) << file << ": " << *v.begin() << " to " << *v.rbegin();
    }

    const double breaks[] = {200, 400, 600, 800, 1000, 1200, 1400, 1600, 1800, 2000, 2200, 2500, 3000};
    std::set<long> classes;
    for (double e : realColumn(small() / "01_elevation.shp", "Elev_m")) {
        EXPECT_TRUE(e >= 0.0 && e <= 3200.0) << e;
        classes.insert(std::upper_bound(std::begin(breaks), std::end(breaks), e) - std::begin(breaks));
    }
    EXPECT_EQ(classes.size(), 14u);
}

TEST(Datagen, SameSeedGivesTheSameBytesAndOmittingOverAnEarlierRunRemovesOnlyThoseFiles)
{
    const fs::path a = tempDir("seed7a"), b = tempDir("seed7b"), c = tempDir("seed8");
    datagen::Options o{.seed = 7};
    datagen::generate(a.string(), o);
    datagen::generate(b.string(), o);
    o.omit = {"59_cities.shp", "51_POWERPLANT"};
    datagen::generate(a.string(), o);
    for (const std::string& name : datagen::standardFiles()) {
        const bool omitted = name == "59_cities.shp" || name == "51_powerplant.shp";
        for (const char* ext : {".shp", ".shx", ".dbf", ".prj", ".cpg"}) {
            const fs::path file = fs::path(name).replace_extension(ext);
            if (omitted) EXPECT_FALSE(fs::exists(a / file)) << file;
            else EXPECT_EQ(readBytes(a / file), readBytes(b / file)) << file;
        }
    }
    o = {.seed = 8};
    datagen::generate(c.string(), o);
    EXPECT_NE(readBytes(a / "20_wind.dbf"), readBytes(c / "20_wind.dbf"));
    o.omit = {"44_power.shp"};
    EXPECT_THROW(datagen::generate(c.string(), o), std::runtime_error);
}

TEST(Datagen, LargeDatasetMeetsItsCounts)
{
    const fs::path dir = tempDir("large");
    std::map<std::string, size_t> counts;
    const datagen::Options o{.size = "large", .onFile = [&](const std::string& file, std::size_t n) { counts[file] = n; }};
    datagen::generate(dir.string(), o);
    EXPECT_EQ(counts.size(), 28u);
    for (const auto& [file, n] : {std::pair{"20_wind.shp", 20000}, {"13_solar_direct.shp", 50000}, {"43_roads.shp", 2000},
                                  {"44_transmissionline.shp", 500}, {"02_landuse.shp", 5000}})
        EXPECT_GE(counts[file], size_t(n)) << file;
    // The callback tells what is on disk.
    EXPECT_EQ(open(dir / "20_wind.shp").layer->GetFeatureCount(), static_cast<GIntBig>(counts["20_wind.shp"]));
    fs::remove_all(dir);
}
