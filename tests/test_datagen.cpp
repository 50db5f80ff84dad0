// The dataset generator: the files the program expects, the quirks of their texts and values, determinism, and the size
// of the large dataset. The files are read back as the program reads them.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <set>

#include "datagen.h"
#include "mapping/geodataset.h"
#include "support/testsupport.h"

namespace fs = std::filesystem;

namespace {

std::string readBytes(const fs::path& p)
{
    std::ifstream in(p, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
}

// A file of the small dataset (generated once), or of another directory.
GeoDatasetPtr open(const std::string& name, const fs::path& dir = testsupport::dataset())
{
    GeoDatasetPtr d = GeoDataset::open(QString::fromStdString((dir / name).string()));
    if (!d) throw std::runtime_error("cannot open " + name);
    return d;
}

// The values of a field in record order, texts with their leading blanks.
std::vector<QVariant> column(const std::string& file, const char* field)
{
    const GeoDatasetPtr d = open(file);
    const int idx = d->fieldIndex(field);
    if (idx < 0) throw std::runtime_error(std::string("no field ") + field + " in " + file);
    std::vector<QVariant> out;
    for (int i = 0; i < d->count(); ++i) out.push_back(d->value(i, idx));
    return out;
}

std::set<double> distinct(const std::string& file, const char* field)
{
    std::set<double> out;
    for (const QVariant& v : column(file, field)) out.insert(v.toDouble());
    return out;
}

using Fields = std::vector<std::pair<std::string, char>>;  // 'C', 'N', 'I'

// The geometry and fields of each standard file.
const std::map<std::string, std::pair<int, Fields>>& expectations()
{
    auto solar = [](const std::string& suffix) {
        Fields f = {{"Cell_ID", 'I'}, {"Gridcode", 'I'}, {"Lon", 'N'}, {"Lat", 'N'}};
        for (const char* m : {"JAN", "FEB", "MAR", "APR", "MAY", "JUN", "JUL", "AUG", "SEP", "OCT", "NOV", "DEC", "ANN"}) f.push_back({m + suffix, 'N'});
        return f;
    };
    const Fields name = {{"NAME", 'C'}}, namePop = {{"NAME", 'C'}, {"POP", 'I'}}, speed = {{"SPEED", 'N'}},
                 nameType = {{"NAME", 'C'}, {"TYPE", 'C'}}, dir = solar("DIR"), tilt = solar("TILT"), glo = solar("GLO");
    static const std::map<std::string, std::pair<int, Fields>> e = {
        {"01_elevation.shp", {moPolygon, {{"Elev_m", 'N'}}}}, {"02_landuse.shp", {moPolygon, {{"LAND_USE", 'C'}}}},
        {"11_solar_direct.shp", {moPolygon, dir}}, {"12_solar_tilt.shp", {moPolygon, tilt}}, {"13_solar_direct.shp", {moPolygon, dir}},
        {"14_solar_glo.shp", {moPolygon, glo}}, {"15_solar_glo.shp", {moPolygon, glo}}, {"16_solar_tilt.shp", {moPolygon, tilt}},
        {"17_solar_direct.shp", {moPolygon, dir}}, {"18_solar_tilt.shp", {moPolygon, tilt}},
        {"20_wind.shp", {moPolygon, {{"WINDPWRD", 'N'}, {"WINDCLASS", 'I'}}}}, {"21_wind.shp", {moPolygon, speed}},
        {"22_wind.shp", {moPolygon, speed}}, {"30_lakes.shp", {moPolygon, name}}, {"31_protectedarea.shp", {moPolygon, nameType}},
        {"36_subcountrybnd3.shp", {moPolygon, namePop}}, {"37_subcountrybnd2.shp", {moPolygon, namePop}},
        {"38_subcountrybnd1.shp", {moPolygon, namePop}}, {"39_countryboundary.shp", {moPolygon, name}},
        {"40_rivers.shp", {moLine, name}}, {"42_railroad.shp", {moLine, name}}, {"43_roads.shp", {moLine, name}},
        {"44_transmissionline.shp", {moLine, {{"NAME", 'C'}, {"VOLTAGE", 'I'}}}}, {"50_protectedarea.shp", {moPoint, name}},
        {"51_powerplant.shp", {moPoint, {{"NAME", 'C'}, {"CAPACITY", 'N'}}}}, {"52_facilities.shp", {moPoint, nameType}},
        {"53_airports.shp", {moPoint, name}}, {"59_cities.shp", {moPoint, {{"NAME", 'C'}, {"TYPE", 'C'}, {"POP", 'I'}}}},
    };
    return e;
}

double polygonArea(const std::string& file)
{
    double sum = 0;
    const GeoDatasetPtr d = open(file);
    for (int i = 0; i < d->count(); ++i) sum += asPolygon(d->shape(i))->Area();
    return sum;
}

}  // namespace

TEST(Datagen, StandardFilesAndTheirValuesTheSameBytesForASeedOmittedFilesRemovedAndTheLargeDatasetsCounts)
{
    const Envelope land = open("39_countryboundary.shp")->extent();
    // Everything lies in the country; grid squares may reach one cell beyond.
    const Envelope reach{land.minX - 4e4, land.minY - 4e4, land.maxX + 4e4, land.maxY + 4e4};
    for (const std::string& name : datagen::standardFiles()) {
        SCOPED_TRACE(name);
        ASSERT_EQ(expectations().count(name), 1u);
        const auto& [geometry, fields] = expectations().at(name);
        const GeoDatasetPtr d = open(name);
        EXPECT_EQ(d->shapeType(), geometry);
        for (const auto& [field, kind] : fields) {
            const int idx = d->fieldIndex(QString::fromStdString(field));
            ASSERT_GE(idx, 0) << field;
            // The name in the case the program looks it up with.
            const FieldDef& f = d->fields()[size_t(idx)];
            const char type = f.type == moString ? 'C' : f.type == moDouble ? 'N' : f.type == moLong ? 'I' : '?';
            EXPECT_EQ(f.name.toStdString() + type, field + kind);
        }
        EXPECT_TRUE(d->count() > 0 && reach.contains(d->extent()));
        EXPECT_EQ(readBytes(fs::path(testsupport::dataset()) / fs::path(name).replace_extension(".prj")), datagen::esriPrjText());
    }
    const double country = polygonArea("39_countryboundary.shp");
    EXPECT_NEAR(country, 210e9, 60e9);  // about 600 by 450 km
    for (const char* tiling : {"02_landuse.shp", "01_elevation.shp", "36_subcountrybnd3.shp", "37_subcountrybnd2.shp",
                               "38_subcountrybnd1.shp"})
        EXPECT_NEAR(polygonArea(tiling) / country, 1.0, 0.002) << tiling;
    EXPECT_GE(polygonArea("20_wind.shp"), country);  // grid squares cover the country
    auto count = [&](const char* name) { return open(name)->count(); };
    for (const auto& [file, lo, hi] : {std::tuple{"43_roads.shp", 1, 49}, {"44_transmissionline.shp", 1, 399},
                                       {"59_cities.shp", 1, 49}, {"02_landuse.shp", 60, 150}, {"20_wind.shp", 200, 1000}})
        EXPECT_TRUE(count(file) >= lo && count(file) <= hi) << file << ": " << count(file);
    EXPECT_GT(count("13_solar_direct.shp"), count("11_solar_direct.shp"));

    // Land-use texts keep their blanks and quirks.
    std::set<QString> trimmed;
    bool leading = false;
    for (const QVariant& v : column("02_landuse.shp", "LAND_USE")) {
        leading = leading || (v.toString().startsWith(' ') && !v.toString().trimmed().isEmpty());
        trimmed.insert(v.toString().trimmed());
    }
    EXPECT_TRUE(leading) << "no value with leading blanks";
    for (const char* quirk : {"", "forest", "ICE", "BARREN OR SPARSELY VEGITATED"})
        EXPECT_EQ(trimmed.count(quirk), 1u) << "no value \"" << quirk << '"';

    // Wind: every break taken exactly, the class number counting an exact break upwards.
    const std::vector<QVariant> power = column("20_wind.shp", "WINDPWRD"), cls = column("20_wind.shp", "WINDCLASS");
    for (size_t i = 0; i < power.size(); ++i) {
        const double v = power[i].toDouble();
        ASSERT_EQ(cls[i].toInt(), 1 + (v >= 200) + (v >= 300) + (v >= 400) + (v >= 500) + (v >= 600) + (v >= 800)) << v;
    }
    const std::set<double> wind = distinct("20_wind.shp", "WINDPWRD");
    for (double b : {200, 300, 400, 500, 600, 800}) EXPECT_EQ(wind.count(b), 1u) << b;
    EXPECT_TRUE(*wind.begin() >= 0 && *wind.begin() < 200 && *wind.rbegin() > 800 && *wind.rbegin() <= 1000);

    for (const std::string& file : datagen::standardFiles()) {
        if (file.find("_solar_") == std::string::npos) continue;
        const auto v = distinct(file, expectations().at(file).second.back().first.c_str());  // the ANN field
        for (double t = 2.0; t <= 9.0; t += 0.5) EXPECT_EQ(v.count(t), 1u) << file << " " << t;
        EXPECT_TRUE(*v.begin() >= 1.5 && *v.rbegin() <= 9.5) << file << ": " << *v.begin() << " to " << *v.rbegin();
    }

    const double breaks[] = {200, 400, 600, 800, 1000, 1200, 1400, 1600, 1800, 2000, 2200, 2500, 3000};
    std::set<long> classes;
    for (double e : distinct("01_elevation.shp", "Elev_m")) {
        EXPECT_TRUE(e >= 0.0 && e <= 3200.0) << e;
        classes.insert(std::upper_bound(std::begin(breaks), std::end(breaks), e) - std::begin(breaks));
    }
    EXPECT_EQ(classes.size(), 14u);

    // The same seed gives the same bytes; omitting over an earlier run removes only those files.
    const fs::path a = testsupport::tempDir("seed7a"), b = testsupport::tempDir("seed7b"), c = testsupport::tempDir("seed8");
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

    // The large dataset meets its counts.
    const fs::path dir = testsupport::tempDir("large");
    std::map<std::string, size_t> counts;
    o = {.size = "large", .onFile = [&](const std::string& file, std::size_t n) { counts[file] = n; }};
    datagen::generate(dir.string(), o);
    EXPECT_EQ(counts.size(), 28u);
    for (const auto& [file, n] : {std::pair{"20_wind.shp", 20000}, {"13_solar_direct.shp", 50000}, {"43_roads.shp", 2000},
                                  {"44_transmissionline.shp", 500}, {"02_landuse.shp", 5000}})
        EXPECT_GE(counts[file], size_t(n)) << file;
    // The callback tells what is on disk.
    EXPECT_EQ(open("20_wind.shp", dir)->count(), int(counts["20_wind.shp"]));
    fs::remove_all(dir);
}

