// Sources are derived from the standard dataset of the same options: its
// vectors go back to longitude/latitude under the field names of public data
// (with what such data holds besides: minor roads, proposed reserves, roads
// and lines across the border, neighbouring countries), and the rasters are
// smooth fields over the country and its surroundings.
#include "sources.h"

#include <cpl_error.h>
#include <cpl_string.h>
#include <gdal_priv.h>
#include <ogr_spatialref.h>
#include <ogrsf_frmts.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <stdexcept>

#include "geo.h"

namespace datagen {

namespace fs = std::filesystem;

namespace {

constexpr double kPi = 3.14159265358979323846;

std::runtime_error failure(const std::string& what, const std::string& path)
{
    const std::string detail = CPLGetLastErrorMsg();
    return std::runtime_error(what + " " + path + (detail.empty() ? "" : ": " + detail));
}

OGRSpatialReference lonLat()
{
    OGRSpatialReference s;
    s.SetWellKnownGeogCS("WGS84");
    s.SetAxisMappingStrategy(OAMS_TRADITIONAL_GIS_ORDER);
    return s;
}

GDALDatasetUniquePtr openStandard(const fs::path& path)
{
    GDALDatasetUniquePtr ds(GDALDataset::Open(path.string().c_str(), GDAL_OF_VECTOR | GDAL_OF_READONLY));
    if (!ds) throw failure("cannot read", path.string());
    return ds;
}

// A vector source file being written, in longitude/latitude.
class SourceWriter {
public:
    SourceWriter(const fs::path& path, const char* driver, const char* layerName, OGRwkbGeometryType type,
                 const std::vector<std::pair<std::string, OGRFieldType>>& fields)
    {
        path_ = path.string();
        if (!fs::exists(path)) {
            GDALDriver* d = GetGDALDriverManager()->GetDriverByName(driver);
            ds_.reset(d ? d->Create(path_.c_str(), 0, 0, 0, GDT_Unknown, nullptr) : nullptr);
        } else {
            ds_.reset(GDALDataset::Open(path_.c_str(), GDAL_OF_VECTOR | GDAL_OF_UPDATE));
        }
        if (!ds_) throw failure("cannot create", path_);
        OGRSpatialReference srs = lonLat();
        CPLStringList options;
        if (std::string(driver) == "ESRI Shapefile") options.AddNameValue("ENCODING", "UTF-8");
        layer_ = ds_->CreateLayer(layerName, &srs, type, options.List());
        if (!layer_) throw failure("cannot create a layer in", path_);
        for (const auto& [name, t] : fields) {
            OGRFieldDefn fd(name.c_str(), t);
            if (layer_->CreateField(&fd) != OGRERR_NONE) throw failure("cannot create a field in", path_);
        }
        layer_->StartTransaction();
    }
    ~SourceWriter()
    {
        if (layer_) layer_->CommitTransaction();
    }
    OGRFeatureUniquePtr feature() { return OGRFeatureUniquePtr(OGRFeature::CreateFeature(layer_->GetLayerDefn())); }
    void add(OGRFeature& f)
    {
        if (layer_->CreateFeature(&f) != OGRERR_NONE) throw failure("cannot write a record to", path_);
    }
    void close()
    {
        layer_->CommitTransaction();
        layer_ = nullptr;
        ds_.reset();
    }

private:
    std::string path_;
    GDALDatasetUniquePtr ds_;
    OGRLayer* layer_ = nullptr;
};

using Fill = std::function<void(OGRFeature& from, OGRFeature& to, std::size_t index)>;

// Copies a standard file into a source file, its shapes in longitude/latitude.
void convert(const fs::path& standard, SourceWriter& out, OGRCoordinateTransformation& toLonLat, const Fill& fill)
{
    GDALDatasetUniquePtr ds = openStandard(standard);
    OGRLayer* layer = ds->GetLayer(0);
    std::size_t i = 0;
    for (OGRFeatureUniquePtr f(layer->GetNextFeature()); f; f.reset(layer->GetNextFeature()), ++i) {
        std::unique_ptr<OGRGeometry> g(f->StealGeometry());
        if (!g || g->transform(&toLonLat) != OGRERR_NONE) continue;
        OGRFeatureUniquePtr o = out.feature();
        o->SetGeometryDirectly(g.release());
        fill(*f, *o, i);
        out.add(*o);
    }
}

void shiftInPlace(OGRGeometry& g, double dx, double dy)
{
    switch (wkbFlatten(g.getGeometryType())) {
    case wkbLineString: {
        OGRLineString& l = *g.toLineString();
        for (int i = 0; i < l.getNumPoints(); ++i) l.setPoint(i, l.getX(i) + dx, l.getY(i) + dy);
        break;
    }
    case wkbPolygon:
        for (OGRLinearRing* ring : *g.toPolygon()) shiftInPlace(*ring, dx, dy);
        break;
    case wkbMultiLineString:
    case wkbMultiPolygon:
    case wkbGeometryCollection:
        for (OGRGeometry* part : *g.toGeometryCollection()) shiftInPlace(*part, dx, dy);
        break;
    default:
        break;
    }
}

// A copy of g moved by (dx, dy) degrees.
std::unique_ptr<OGRGeometry> shifted(const OGRGeometry& g, double dx, double dy)
{
    std::unique_ptr<OGRGeometry> c(g.clone());
    shiftInPlace(*c, dx, dy);
    return c;
}

struct Grid {
    double west, north, step;  // degrees
    int width, height;
};

// A GeoTIFF in longitude/latitude, value(lon, lat) per pixel centre.
void writeRaster(const fs::path& path, const Grid& g, GDALDataType type, double noData,
                 const std::function<double(double, double)>& value)
{
    GDALDriver* d = GetGDALDriverManager()->GetDriverByName("GTiff");
    CPLStringList options;
    options.AddNameValue("COMPRESS", "DEFLATE");
    options.AddNameValue("ZLEVEL", "1");
    options.AddNameValue("TILED", "YES");
    GDALDatasetUniquePtr ds(d->Create(path.string().c_str(), g.width, g.height, 1, type, options.List()));
    if (!ds) throw failure("cannot create", path.string());
    double gt[6] = {g.west, g.step, 0, g.north, 0, -g.step};
    ds->SetGeoTransform(gt);
    OGRSpatialReference srs = lonLat();
    ds->SetSpatialRef(&srs);
    GDALRasterBand* band = ds->GetRasterBand(1);
    band->SetNoDataValue(noData);
    std::vector<double> row(std::size_t(g.width));
    for (int r = 0; r < g.height; ++r) {
        const double lat = g.north - (r + 0.5) * g.step;
        for (int c = 0; c < g.width; ++c) row[std::size_t(c)] = value(g.west + (c + 0.5) * g.step, lat);
        if (band->RasterIO(GF_Write, 0, r, g.width, 1, row.data(), g.width, 1, GDT_Float64, 0, 0) != CE_None)
            throw failure("cannot write", path.string());
    }
    ds.reset();
}

// The cell size of a standard grid file in km: the widest record.
double cellKmOf(const fs::path& standard)
{
    GDALDatasetUniquePtr ds = openStandard(standard);
    double widest = 0;
    OGRLayer* layer = ds->GetLayer(0);
    for (OGRFeatureUniquePtr f(layer->GetNextFeature()); f; f.reset(layer->GetNextFeature())) {
        if (const OGRGeometry* g = f->GetGeometryRef()) {
            OGREnvelope e;
            g->getEnvelope(&e);
            widest = std::max(widest, e.MaxX - e.MinX);
        }
    }
    return std::max(1.0, std::round(widest / 1000));
}

std::string upperCode(const std::string& name)
{
    std::string s;
    for (char ch : name)
        if (std::isalpha(static_cast<unsigned char>(ch)) && s.size() < 3) s += char(std::toupper(static_cast<unsigned char>(ch)));
    while (s.size() < 3) s += 'X';
    return s;
}

// Land cover: codes as a global product numbers them, texts as its table spells them.
struct LandClass {
    int code;
    const char* text;
};
const std::vector<LandClass>& landClasses()
{
    static const std::vector<LandClass> classes = {
        {10, "DENSE FOREST"}, {20, "FOREST"},       {30, "  OPEN FOREST"},
        {40, "SAVANNA"},      {50, " GRASSLAND"},   {60, "CROPLAND/GRASSLAND MOSAIC"},
        {70, "AGRICULTURE"},  {80, "COFFEE, FRUITS, AND GRAINS"}, {90, "SHRUBLAND"},
        {100, "SEMI DESERT SHRUBS"}, {110, "BARREN OR SPARSELY VEGITATED"}, {120, "ROCK"},
        {200, "WATER"},       {210, "  wetland"},
    };
    return classes;
}

std::string csvText(const std::string& s)
{
    if (s.find_first_of(",\"") == std::string::npos) return s;
    std::string q = "\"";
    for (char ch : s) q += ch == '"' ? std::string("\"\"") : std::string(1, ch);
    return q + "\"";
}

}  // namespace

void writeSources(const std::string& dirText, const Options& options)
{
    const fs::path dir(dirText);
    const fs::path src = dir / "sources";
    const fs::path standard = dir / ".standard";
    fs::create_directories(dir);
    fs::remove_all(src);
    fs::remove_all(standard);
    fs::create_directories(src);
    Options o = options;
    o.omit.clear();
    o.onFile = nullptr;
    generate(standard.string(), o);
    GDALAllRegister();
    CPLPushErrorHandler(CPLQuietErrorHandler);
    struct Cleanup {
        fs::path p;
        ~Cleanup()
        {
            CPLPopErrorHandler();
            std::error_code ec;
            fs::remove_all(p, ec);
        }
    } cleanup{standard};

    // The country in longitude/latitude.
    GDALDatasetUniquePtr boundaryDs = openStandard(standard / "39_countryboundary.shp");
    OGRLayer* boundaryLayer = boundaryDs->GetLayer(0);
    OGRSpatialReference utm(*boundaryLayer->GetSpatialRef());
    utm.SetAxisMappingStrategy(OAMS_TRADITIONAL_GIS_ORDER);
    OGRSpatialReference wgs84 = lonLat();
    std::unique_ptr<OGRCoordinateTransformation> toLonLat(OGRCreateCoordinateTransformation(&utm, &wgs84));
    if (!toLonLat) throw std::runtime_error("cannot reproject the generated country");
    OGRFeatureUniquePtr countryFeature(boundaryLayer->GetNextFeature());
    std::unique_ptr<OGRGeometry> country(countryFeature->StealGeometry());
    country->transform(toLonLat.get());
    const std::string countryName = countryFeature->GetFieldAsString(0);
    OGREnvelope env;
    country->getEnvelope(&env);
    const double cx = (env.MinX + env.MaxX) / 2, cy = (env.MinY + env.MaxY) / 2;
    const double w = env.MaxX - env.MinX, h = env.MaxY - env.MinY;
    Rng rng(options.seed, 900);

    // Countries: ours and four neighbours round it.
    {
        SourceWriter out(src / "admin.gpkg", "GPKG", "admin0", wkbMultiPolygon,
                         {{"ISO_A3", OFTString}, {"NAME_EN", OFTString}, {"POP_EST", OFTInteger64}});
        auto add = [&](const OGRGeometry& g, const std::string& iso, const std::string& name, long long pop) {
            OGRFeatureUniquePtr f = out.feature();
            f->SetGeometryDirectly(OGRGeometryFactory::forceToMultiPolygon(g.clone()));
            f->SetField(0, iso.c_str());
            f->SetField(1, name.c_str());
            f->SetField(2, GIntBig(pop));
            out.add(*f);
        };
        const std::string ours = countryName.substr(countryName.rfind(' ') + 1);
        add(*country, upperCode(ours), countryName, 20000000);
        OGRPolygon around;
        OGRLinearRing ring;
        const double mx = 0.3 * w, my = 0.3 * h;
        for (auto [x, y] : {std::pair{env.MinX - mx, env.MinY - my}, {env.MaxX + mx, env.MinY - my},
                            {env.MaxX + mx, env.MaxY + my}, {env.MinX - mx, env.MaxY + my}, {env.MinX - mx, env.MinY - my}})
            ring.addPoint(x, y);
        around.addRing(&ring);
        std::unique_ptr<OGRGeometry> rest(around.Difference(country.get()));
        NameMaker names(rng);
        const char* sides[] = {"north", "east", "south", "west"};
        for (int q = 0; q < 4; ++q) {
            // A wedge from the centre towards one side.
            const double a0 = (q - 0.5) * kPi / 2 + kPi / 2, a1 = a0 - kPi / 2;
            OGRPolygon wedge;
            OGRLinearRing wr;
            const double far = 4 * std::max(w, h);
            wr.addPoint(cx, cy);
            wr.addPoint(cx + far * std::cos(a0), cy + far * std::sin(a0));
            wr.addPoint(cx + far * std::cos(a1), cy + far * std::sin(a1));
            wr.addPoint(cx, cy);
            wedge.addRing(&wr);
            std::unique_ptr<OGRGeometry> part(rest->Intersection(&wedge));
            if (!part || part->IsEmpty()) continue;
            const std::string name = names.next();
            add(*part, upperCode(name) == upperCode(ours) ? "ZZ" + std::to_string(q) : upperCode(name),
                name + " (" + sides[q] + ")", 1000000 + rng.below(9000000));
        }
    }
    auto textOf = [](OGRFeature& f, const char* field) { return std::string(f.GetFieldAsString(field)); };
    // Districts at three levels.
    {
        SourceWriter a2(src / "admin.gpkg", "GPKG", "admin2", wkbMultiPolygon, {{"NAME_2", OFTString}, {"POP", OFTInteger64}});
        convert(standard / "37_subcountrybnd2.shp", a2, *toLonLat, [&](OGRFeature& f, OGRFeature& t, std::size_t) {
            t.SetField(0, textOf(f, "NAME").c_str());
            t.SetField(1, f.GetFieldAsInteger64("POP"));
        });
        a2.close();
        SourceWriter a3(src / "admin.gpkg", "GPKG", "admin3", wkbMultiPolygon, {{"NAME_3", OFTString}, {"POP", OFTInteger64}});
        convert(standard / "36_subcountrybnd3.shp", a3, *toLonLat, [&](OGRFeature& f, OGRFeature& t, std::size_t) {
            t.SetField(0, textOf(f, "NAME").c_str());
            t.SetField(1, f.GetFieldAsInteger64("POP"));
        });
        a3.close();
        SourceWriter a1(src / "admin1.geojson", "GeoJSON", "admin1", wkbMultiPolygon,
                        {{"NAME_1", OFTString}, {"ISO_A3", OFTString}, {"POP", OFTInteger64}});
        convert(standard / "38_subcountrybnd1.shp", a1, *toLonLat, [&](OGRFeature& f, OGRFeature& t, std::size_t) {
            t.SetField(0, textOf(f, "NAME").c_str());
            t.SetField(1, "OUR");
            t.SetField(2, f.GetFieldAsInteger64("POP"));
        });
    }
    // Roads of a street-map extract: classes to filter on, tracks, and roads
    // that go on across the border.
    const double kmLon = 1 / (111.32 * std::cos(cy * kPi / 180)), kmLat = 1 / 110.574;
    {
        SourceWriter out(src / "roads.gpkg", "GPKG", "roads", wkbLineString,
                         {{"highway", OFTString}, {"name", OFTString}, {"ref", OFTString}, {"lanes", OFTInteger}});
        std::vector<std::unique_ptr<OGRGeometry>> tracks;
        convert(standard / "43_roads.shp", out, *toLonLat, [&](OGRFeature& f, OGRFeature& t, std::size_t i) {
            const std::string ref = textOf(f, "NAME");
            const bool national = ref[0] == 'N';
            t.SetField(0, national ? (i % 3 == 0 ? "trunk" : "primary") : (i % 2 ? "secondary" : "tertiary"));
            t.SetField(1, (ref + " Road").c_str());
            t.SetField(2, ref.c_str());
            t.SetField(3, national ? 2 : 1);
            if (i % 2 == 0) tracks.push_back(shifted(*t.GetGeometryRef(), 3 * kmLon, 2 * kmLat));
        });
        for (std::size_t k = 0; k < tracks.size(); ++k) {
            OGRFeatureUniquePtr f = out.feature();
            f->SetGeometryDirectly(tracks[k].release());
            f->SetField(0, k % 2 ? "track" : "residential");
            out.add(*f);
        }
        for (int k = 0; k < 12; ++k) {
            // From 30 km inside the border to 80 km beyond it, roughly outwards.
            const double a = 2 * kPi * k / 12 + rng.uniform(-0.2, 0.2);
            OGRLineString probe;
            probe.addPoint(cx, cy);
            probe.addPoint(cx + 4000 * std::cos(a) * kmLon, cy + 4000 * std::sin(a) * kmLat);
            std::unique_ptr<OGRGeometry> border(country->Boundary());
            std::unique_ptr<OGRGeometry> cut(probe.Intersection(border.get()));
            if (!cut || cut->IsEmpty()) continue;
            OGRPoint at;
            if (cut->Centroid(&at) != OGRERR_NONE) continue;
            OGRLineString road;
            for (double km = -30; km <= 80; km += 10)
                road.addPoint(at.getX() + km * std::cos(a) * kmLon, at.getY() + km * std::sin(a) * kmLat);
            OGRFeatureUniquePtr f = out.feature();
            f->SetGeometry(&road);
            f->SetField(0, "primary");
            f->SetField(1, ("Border Road " + std::to_string(k + 1)).c_str());
            f->SetField(2, ("X" + std::to_string(k + 1)).c_str());
            out.add(*f);
        }
    }
    // Power lines with their voltage in volts; minor lines to filter out.
    {
        SourceWriter out(src / "power.geojson", "GeoJSON", "power", wkbLineString,
                         {{"power", OFTString}, {"voltage", OFTInteger}, {"name", OFTString}});
        std::vector<std::unique_ptr<OGRGeometry>> minor;
        convert(standard / "44_transmissionline.shp", out, *toLonLat, [&](OGRFeature& f, OGRFeature& t, std::size_t i) {
            t.SetField(0, "line");
            t.SetField(1, int(f.GetFieldAsInteger("VOLTAGE") * 1000));
            t.SetField(2, textOf(f, "NAME").c_str());
            if (i % 3 == 0) minor.push_back(shifted(*t.GetGeometryRef(), -2 * kmLon, 1 * kmLat));
        });
        for (auto& g : minor) {
            OGRFeatureUniquePtr f = out.feature();
            f->SetGeometryDirectly(g.release());
            f->SetField(0, "minor_line");
            f->SetField(1, 11000);
            out.add(*f);
        }
        // An interconnector to the eastern neighbour.
        OGRLineString link;
        link.addPoint(cx, cy);
        link.addPoint(env.MaxX + 0.2 * w, cy);
        OGRFeatureUniquePtr f = out.feature();
        f->SetGeometry(&link);
        f->SetField(0, "line");
        f->SetField(1, 400000);
        f->SetField(2, "Eastern Interconnector");
        out.add(*f);
    }
    // Protected areas with their status; proposed ones are not yet protected.
    {
        SourceWriter out(src / "protected_areas.gpkg", "GPKG", "protected_areas", wkbMultiPolygon,
                         {{"NAME", OFTString}, {"DESIG_ENG", OFTString}, {"STATUS", OFTString}, {"REP_AREA", OFTReal}});
        std::vector<std::pair<std::unique_ptr<OGRGeometry>, std::string>> proposed;
        convert(standard / "31_protectedarea.shp", out, *toLonLat, [&](OGRFeature& f, OGRFeature& t, std::size_t i) {
            t.SetGeometryDirectly(OGRGeometryFactory::forceToMultiPolygon(t.StealGeometry()));
            t.SetField(0, textOf(f, "NAME").c_str());
            t.SetField(1, textOf(f, "TYPE").c_str());
            t.SetField(2, "Designated");
            t.SetField(3, roundTo(rng.uniform(10, 5000), 0.01));
            if (i % 2 == 0) proposed.push_back({shifted(*t.GetGeometryRef(), 0.4 * w, -0.2 * h), textOf(f, "NAME")});
        });
        for (auto& [g, name] : proposed) {
            OGRFeatureUniquePtr f = out.feature();
            f->SetGeometryDirectly(g.release());
            f->SetField(0, ("Proposed " + name).c_str());
            f->SetField(1, "NATURE RESERVE");
            f->SetField(2, "Proposed");
            out.add(*f);
        }
    }
    struct Simple {
        const char* standard;
        const char* file;
        const char* driver;
        const char* layer;
        OGRwkbGeometryType type;
        const char* tagName;
        const char* tagValue;
    };
    const Simple simple[] = {
        {"30_lakes.shp", "lakes.geojson", "GeoJSON", "lakes", wkbPolygon, "natural", "water"},
        {"40_rivers.shp", "rivers.gpkg", "GPKG", "rivers", wkbLineString, "waterway", "river"},
        {"42_railroad.shp", "railways.geojson", "GeoJSON", "railways", wkbLineString, "railway", "rail"},
        {"50_protectedarea.shp", "heritage.geojson", "GeoJSON", "heritage", wkbPoint, "historic", "archaeological_site"},
        {"52_facilities.shp", "facilities.gpkg", "GPKG", "facilities", wkbPoint, "amenity", ""},
        {"53_airports.shp", "airports.geojson", "GeoJSON", "airports", wkbPoint, "aeroway", "aerodrome"},
    };
    for (const Simple& s : simple) {
        SourceWriter out(src / s.file, s.driver, s.layer, s.type, {{"name", OFTString}, {s.tagName, OFTString}});
        convert(standard / s.standard, out, *toLonLat, [&](OGRFeature& f, OGRFeature& t, std::size_t) {
            t.SetField(0, textOf(f, "NAME").c_str());
            const std::string tag = *s.tagValue ? s.tagValue : textOf(f, "TYPE");
            t.SetField(1, tag.c_str());
        });
    }
    {
        SourceWriter out(src / "powerplants.gpkg", "GPKG", "powerplants", wkbPoint,
                         {{"name", OFTString}, {"capacity_mw", OFTReal}});
        convert(standard / "51_powerplant.shp", out, *toLonLat, [&](OGRFeature& f, OGRFeature& t, std::size_t) {
            t.SetField(0, textOf(f, "NAME").c_str());
            t.SetField(1, f.GetFieldAsDouble("CAPACITY"));
        });
    }
    {
        // Places as a shapefile, as many gazetteers still ship them, with a
        // town of the neighbour that lies outside.
        SourceWriter out(src / "places.shp", "ESRI Shapefile", "places", wkbPoint,
                         {{"name", OFTString}, {"place", OFTString}, {"population", OFTInteger}});
        convert(standard / "59_cities.shp", out, *toLonLat, [&](OGRFeature& f, OGRFeature& t, std::size_t) {
            t.SetField(0, textOf(f, "NAME").c_str());
            const std::string type = textOf(f, "TYPE");
            t.SetField(1, type == "TOWN" ? "town" : "city");
            t.SetField(2, int(f.GetFieldAsInteger("POP")));
        });
        OGRFeatureUniquePtr f = out.feature();
        OGRPoint p(env.MaxX + 0.15 * w, cy);
        f->SetGeometry(&p);
        f->SetField(0, "Beyond the Border");
        f->SetField(1, "town");
        f->SetField(2, 12000);
        out.add(*f);
    }

    // Rasters over the country and its surroundings.
    const double margin = 0.15;
    const double west = env.MinX - margin * w, east = env.MaxX + margin * w;
    const double south = env.MinY - margin * h, north = env.MaxY + margin * h;
    // About 550 m pixels for the small country, 2,000 pixels a side for the large one.
    const double step = std::max(0.005, std::max(east - west, north - south) / 2000);
    const Grid grid{west, north, step, int(std::ceil((east - west) / step)), int(std::ceil((north - south) / step))};
    const double extentKm = std::max(w / kmLon, h / kmLat) * 1000;
    Rng fields(options.seed, 901);
    SmoothField windiness(fields, extentKm * 0.35), sunBase(fields, extentKm * 0.6), sunOwn(fields, extentKm * 0.3),
        relief(fields, extentKm * 0.45), rugged(fields, extentKm * 0.1), moisture(fields, extentKm * 0.3);
    auto metres = [&](double lon, double lat) { return Pt{(lon - cx) / kmLon * 1000, (lat - cy) / kmLat * 1000}; };
    auto southward = [&](double lat) { return (cy - lat) / h; };
    writeRaster(src / "wind_power_density.tif", grid, GDT_Float32, -9999, [&](double lon, double lat) {
        const Pt p = metres(lon, lat);
        return roundTo(1100 * std::pow(std::clamp((windiness(p.x, p.y) + 1) / 2, 0.0, 1.0), 1.35), 0.1);
    });
    auto sun = [&](double lon, double lat, double own) {
        const Pt p = metres(lon, lat);
        return std::clamp(5.2 + 1.6 * sunBase(p.x, p.y) + own * sunOwn(p.x, p.y) + 2.0 * southward(lat), 1.5, 9.5);
    };
    writeRaster(src / "ghi_kwh_day.tif", grid, GDT_Float32, -9999, [&](double lon, double lat) { return sun(lon, lat, 0.5); });
    writeRaster(src / "dni_kwh_year.tif", grid, GDT_Float32, -9999,
                [&](double lon, double lat) { return roundTo(365 * sun(lon, lat, 1.2), 1.0); });
    writeRaster(src / "pvout_tilt_kwh_day.tif", grid, GDT_Float32, -9999, [&](double lon, double lat) { return sun(lon, lat, -0.6) * 1.1; });
    auto height = [&](double lon, double lat) {
        const Pt p = metres(lon, lat);
        return std::clamp(1400 + 1300 * relief(p.x, p.y) + 400 * rugged(p.x, p.y), 0.0, 3200.0);
    };
    writeRaster(src / "dem.tif", grid, GDT_Int16, -32768, [&](double lon, double lat) { return std::round(height(lon, lat)); });
    const auto& classes = landClasses();
    writeRaster(src / "landcover.tif", grid, GDT_Byte, 0, [&](double lon, double lat) {
        const Pt p = metres(lon, lat);
        if (height(lon, lat) > 2700) return 120.0;
        const double wet = moisture(p.x, p.y) + 0.3 * rugged(p.x, p.y);
        if (wet > 0.85) return 200.0;
        if (wet > 0.7) return 210.0;
        const std::size_t band = std::min<std::size_t>(11, std::size_t(std::clamp((0.7 - wet) / 1.5, 0.0, 0.999) * 12));
        return double(classes[band].code);
    });
    {
        std::ofstream csv(src / "landcover_classes.csv", std::ios::binary);
        csv << "code,label\n";
        for (const LandClass& c : classes) csv << c.code << "," << csvText(c.text) << "\n";
        if (!csv) throw std::runtime_error("cannot write " + (src / "landcover_classes.csv").string());
    }

    // The recipe, with the cell sizes of the standard dataset of these options.
    const double windKm = cellKmOf(standard / "20_wind.shp"), elevationKm = cellKmOf(standard / "01_elevation.shp");
    const double coarseKm = cellKmOf(standard / "11_solar_direct.shp"), fineKm = cellKmOf(standard / "13_solar_direct.shp");
    std::ofstream r(dir / "recipe.toml", std::ios::binary);
    auto km = [](double v) { return std::to_string(int(v)); };
    auto solar = [&](const char* stem, const char* file, const char* unit, double cell) {
        r << "\n[" << stem << "]\nsource = \"sources/" << file << "\"\nunit = \"" << unit << "\"\ncell_km = " << km(cell) << "\n";
    };
    r << "# marlowan-prepare recipe for the sources of the generated country.\n"
         "crs = \"auto\"\n"
         "\n[39_countryboundary]\nsource = \"sources/admin.gpkg\"\nlayer = \"admin0\"\nwhere = \"NAME_EN = '" << countryName << "'\"\n"
         "\n[01_elevation]\nsource = \"sources/dem.tif\"\ncell_km = " << km(elevationKm) << "\n"
         "\n[02_landuse]\nsource = \"sources/landcover.tif\"\nclasses = \"sources/landcover_classes.csv\"\n";
    solar("11_solar_direct", "dni_kwh_year.tif", "kWh/m2/year", coarseKm);
    solar("12_solar_tilt", "pvout_tilt_kwh_day.tif", "kWh/m2/day", coarseKm);
    solar("13_solar_direct", "dni_kwh_year.tif", "kWh/m2/year", fineKm);
    solar("14_solar_glo", "ghi_kwh_day.tif", "kWh/m2/day", fineKm);
    solar("15_solar_glo", "ghi_kwh_day.tif", "kWh/m2/day", coarseKm);
    solar("16_solar_tilt", "pvout_tilt_kwh_day.tif", "kWh/m2/day", fineKm);
    solar("17_solar_direct", "dni_kwh_year.tif", "kWh/m2/year", coarseKm);
    solar("18_solar_tilt", "pvout_tilt_kwh_day.tif", "kWh/m2/day", coarseKm);
    r << "\n[20_wind]\nsource = \"sources/wind_power_density.tif\"\ncell_km = " << km(windKm) << "\n"
         "\n[30_lakes]\nsource = \"sources/lakes.geojson\"\nkeep = [\"name\"]\n"
         "\n[31_protectedarea]\nsource = \"sources/protected_areas.gpkg\"\nwhere = \"STATUS = 'Designated'\"\n"
         "keep = [\"NAME\", \"DESIG_ENG\"]\n"
         "\n[36_subcountrybnd3]\nsource = \"sources/admin.gpkg\"\nlayer = \"admin3\"\n"
         "\n[37_subcountrybnd2]\nsource = \"sources/admin.gpkg\"\nlayer = \"admin2\"\n"
         "\n[38_subcountrybnd1]\nsource = \"sources/admin1.geojson\"\nfield = \"NAME_1\"\nkeep = [\"POP\"]\n"
         "\n[40_rivers]\nsource = \"sources/rivers.gpkg\"\n"
         "\n[42_railroad]\nsource = \"sources/railways.geojson\"\n"
         "\n[43_roads]\nsource = \"sources/roads.gpkg\"\n"
         "where = \"highway IN ('motorway', 'trunk', 'primary', 'secondary')\"\nkeep = [\"highway\", \"name\", \"ref\"]\n"
         "margin_km = 25\n"
         "\n[44_transmissionline]\nsource = \"sources/power.geojson\"\nwhere = \"power = 'line' AND voltage >= 66000\"\n"
         "keep = [\"name\", \"voltage\"]\n"
         "\n[50_protectedarea]\nsource = \"sources/heritage.geojson\"\n"
         "\n[51_powerplant]\nsource = \"sources/powerplants.gpkg\"\n"
         "\n[52_facilities]\nsource = \"sources/facilities.gpkg\"\n"
         "\n[53_airports]\nsource = \"sources/airports.geojson\"\n"
         "\n[59_cities]\nsource = \"sources/places.shp\"\n";
    r.close();
    if (!r) throw std::runtime_error("cannot write " + (dir / "recipe.toml").string());
}

}  // namespace datagen
