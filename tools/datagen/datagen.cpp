// The standard dataset of a fictional country. Every file draws from its own
// random stream, so leaving one out does not change the others; what several
// files share (outline, fields, cities, power plants, districts) is made once.
#include "datagen.h"

#include <cpl_error.h>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <filesystem>
#include <map>
#include <optional>
#include <stdexcept>

#include "geo.h"
#include "shapefile_writer.h"

namespace datagen {

namespace fs = std::filesystem;

namespace {

struct Scale {
    Pt centre;
    double width, height;      // of the country's bounding box, metres
    int outlineVertices;
    double elevationCell, landUseSpacing, windCell, solarCoarse, solarFine, districtSpacing;
    int lakes, protectedAreas, states, provinces;
    int rivers, railroads, roads, transmissionLines;
    int historicSites, powerPlants, facilities, airports, cities;
    int windSpeedZones, windRegimes;
};

const Scale kSmall{{500e3, 1650e3}, 600e3, 450e3, 240, 30e3, 52e3, 20e3, 40e3, 20e3, 45e3,
                   5, 8, 6, 20, 8, 5, 30, 20, 8, 10, 15, 5, 20, 10, 5};
const Scale kLarge{{1700e3, 1700e3}, 3200e3, 2800e3, 900, 50e3, 32e3, 15e3, 40e3, 10e3, 60e3,
                   60, 120, 27, 300, 80, 60, 2000, 500, 100, 150, 300, 60, 400, 40, 20};
// A mid-sized country at the resolution of a national wind atlas: a 1 km wind
// grid (about 250,000 cells), 2.5 km solar grids, 20,000 land-use seeds.
const Scale kHuge{{500e3, 1650e3}, 685e3, 515e3, 400, 5e3, 4.2e3, 1e3, 10e3, 2.5e3, 12e3,
                  60, 400, 10, 60, 40, 40, 5000, 1500, 100, 150, 300, 40, 400, 20, 10};


struct City {
    std::string name;
    Pt at;
    std::string type;
    long long pop;
};

struct Plant {
    std::string name;
    Pt at;
    double capacity;
};

struct Region {
    std::string name;
    long long pop;
    std::unique_ptr<OGRGeometry> shape;
};

struct Districts {
    std::vector<Region> level3, level2, level1;  // finest first
};

class World {
public:
    World(const Scale& s, unsigned seed)
        : scale(s), seed(seed), rng(seed, 0), country(rng, s.centre, s.width, s.height, s.outlineVertices),
          relief(rng, s.width * 0.45), ruggedness(rng, s.width * 0.2), moisture(rng, s.width * 0.5),
          windiness(rng, s.width * 0.35), sunBase(rng, s.width * 0.6), sunDirect(rng, s.width * 0.3),
          sunTilt(rng, s.width * 0.3), sunGlobal(rng, s.width * 0.3)
    {
        NameMaker names(rng);
        countryName = names.next();
        placeCities(names);
        placePlants(names);
    }

    Rng stream(unsigned file) const { return Rng(seed, file); }
    double elevationIndex(double x, double y) const { return relief(x, y) + 0.25 * ruggedness(x, y); }
    const Districts& districts();

    const Scale& scale;
    unsigned seed;
    Rng rng;
    Country country;
    SmoothField relief, ruggedness, moisture, windiness, sunBase, sunDirect, sunTilt, sunGlobal;
    std::string countryName;
    std::vector<City> cities;  // largest first
    std::vector<Plant> plants;

private:
    void placeCities(NameMaker& names);
    void placePlants(NameMaker& names);
    std::optional<Districts> districts_;
};

void World::placeCities(NameMaker& names)
{
    double spacing = 0.6 * std::sqrt(country.area() / scale.cities);
    const int provincial = std::max(5, scale.cities / 15);
    for (int attempt = 1; static_cast<int>(cities.size()) < scale.cities; ++attempt) {
        if (attempt % 1000 == 0) spacing *= 0.8;  // crowded: let towns come closer
        Pt p = country.randomInside(rng, spacing / 4);
        bool crowded = false;
        for (const City& c : cities) crowded = crowded || distance(c.at, p) < spacing;
        if (crowded) continue;
        const std::size_t i = cities.size();
        City c{names.next(), p, "TOWN", 0};
        if (i == 0) {
            c.type = "CAPITAL";
            c.pop = static_cast<long long>(rng.uniform(1.2e6, scale.cities > 100 ? 6e6 : 2.5e6));
        } else if (static_cast<int>(i) <= provincial) {
            c.type = "PROVINCIAL CAPITAL";
            c.pop = static_cast<long long>(rng.uniform(8e4, 6e5));
        } else {
            c.pop = static_cast<long long>(rng.uniform(4e3, 7e4));
        }
        cities.push_back(c);
    }
}

void World::placePlants(NameMaker& names)
{
    for (int i = 0; i < scale.powerPlants; ++i) {
        Pt p = country.randomInside(rng, 2000);
        plants.push_back({names.next() + " Power Station", p, roundTo(rng.uniform(5, 1200), 0.1)});
    }
}

// Nested divisions: the finest cells are a clipped tessellation; each coarser
// level unites the finer regions whose centres lie nearest to one of its seeds.
const Districts& World::districts()
{
    if (districts_) return *districts_;
    Rng r = stream(36);
    NameMaker names(r);
    Districts d;
    auto cells = voronoiCells(jitteredPoints(r, country.envelope(), scale.districtSpacing, 0.4), country);
    for (auto& c : cells) {
        if (!c) continue;
        d.level3.push_back({names.next(), static_cast<long long>(5000 + 250000 * std::pow(r.uniform(), 2.5)),
                            std::move(c)});
    }
    auto group = [&](const std::vector<Region>& finer, int count, const std::string& suffix) {
        std::vector<Pt> seeds;
        for (int i = 0; i < count; ++i) seeds.push_back(country.randomInside(r));
        std::vector<std::vector<const OGRGeometry*>> members(seeds.size());
        std::vector<long long> pops(seeds.size(), 0);
        for (const Region& f : finer) {
            const Pt c = centroidOf(*f.shape);
            std::size_t best = 0;
            for (std::size_t s = 1; s < seeds.size(); ++s)
                if (distance(c, seeds[s]) < distance(c, seeds[best])) best = s;
            members[best].push_back(f.shape.get());
            pops[best] += f.pop;
        }
        std::vector<Region> out;
        for (std::size_t s = 0; s < seeds.size(); ++s) {
            if (members[s].empty()) continue;
            auto shape = unionOf(members[s]);
            if (shape) out.push_back({names.next() + suffix, pops[s], std::move(shape)});
        }
        return out;
    };
    d.level2 = group(d.level3, scale.provinces, " District");
    d.level1 = group(d.level2, scale.states, "");
    districts_ = std::move(d);
    return *districts_;
}

// ---- the files -------------------------------------------------------------

using Writer = std::size_t (*)(World&, const std::string& path, Rng&);

std::string join(const char* a, const std::string& b)
{
    return std::string(a) + b;
}

std::size_t elevation(World& w, const std::string& path, Rng&)
{
    ShapefileWriter out(path, GeomKind::Polygon, {{"Elev_m", 'N', 10, 1}});
    auto cells = gridCells(w.country, w.scale.elevationCell);
    std::vector<double> v;
    for (const Cell& c : cells) v.push_back(w.elevationIndex(c.cx(), c.cy()));
    auto u = ranks(v);
    // Skewed towards the lowlands; the ranks reach both 0 and 3200 m.
    for (std::size_t i = 0; i < cells.size(); ++i) v[i] = roundTo(3200 * std::pow(u[i], 1.5), 1.0);
    for (std::size_t i = 0; i < cells.size(); ++i) {
        auto shape = w.country.clip(square(cells[i].x0, cells[i].y0, cells[i].size));
        if (shape) out.add(shape.get(), {v[i]});
    }
    out.close();
    return out.count();
}

std::size_t landUse(World& w, const std::string& path, Rng& r)
{
    // Wettest first; the moisture rank of a polygon picks its band.
    static const std::vector<std::string> bands = {
        "MANGROVES", "WETLAND", "HUMID AREAS", "DENSE FOREST", "FOREST", "MIXED FOREST", "OPEN FOREST",
        "SAVANNA", "GRASSLAND", "CROPLAND/GRASSLAND MOSAIC", "AGRICULTURE", "PASTURES",
        "DRYLAND CROPLAND AND PASTURE", "SHRUBLAND", "SEMI DESERT SHRUBS", "BARREN OR SPARSELY VEGITATED"};
    // Texts as messy data has them: unknown names, other cases, outer blanks, empty.
    static const std::vector<std::string> oddities = {
        "ICE", "GLACIER", "forest", "  forest", "  SHRUBLAND", "Savanna", "GRASSLAND  ", "WATER ", "",
        "  forest ", "OTHER", "OTHER LAND", "HUMID AREA", "COFFEE, FRUITS, AND GRAINS", "WATER",
        "IRRIGATED CROPLAND AND PASTURE", "TEPUIS(TABLE MOUNTAINS)"};
    ShapefileWriter out(path, GeomKind::Polygon, {{"LAND_USE", 'C', 60}});
    auto cells = voronoiCells(jitteredPoints(r, w.country.envelope(), w.scale.landUseSpacing, 0.42), w.country);
    std::vector<std::unique_ptr<OGRGeometry>> shapes;
    for (auto& c : cells)
        if (c) shapes.push_back(std::move(c));
    std::vector<double> wet, high;
    for (const auto& s : shapes) {
        const Pt c = centroidOf(*s);
        wet.push_back(w.moisture(c.x, c.y) + 0.3 * r.normal());
        high.push_back(w.elevationIndex(c.x, c.y));
    }
    auto wetRank = ranks(wet);
    auto highRank = ranks(high);
    std::vector<std::string> value(shapes.size());
    for (std::size_t i = 0; i < shapes.size(); ++i) {
        const auto band = std::min(bands.size() - 1, static_cast<std::size_t>((1 - wetRank[i]) * bands.size()));
        value[i] = highRank[i] > 0.95 ? (r.chance(0.5) ? "ROCK" : "BARREN TUNDRA") : bands[band];
    }
    for (std::size_t i = 0; i < shapes.size(); ++i)
        for (const City& c : w.cities)
            if (c.pop > 50000) {
                OGRPoint p(c.at.x, c.at.y);
                if (shapes[i]->Contains(&p)) value[i] = c.type == "CAPITAL" ? "URBAN AREAS" : "URBAN";
            }
    // Each odd text on at least one polygon, more of them in a large set.
    std::vector<std::size_t> order(shapes.size());
    for (std::size_t i = 0; i < order.size(); ++i) order[i] = i;
    for (std::size_t i = order.size(); i > 1; --i) std::swap(order[i - 1], order[r.below(static_cast<unsigned>(i))]);
    const std::size_t copies = std::max<std::size_t>(1, shapes.size() / 150);
    for (std::size_t k = 0; k < oddities.size() * copies && k < order.size(); ++k)
        value[order[k]] = oddities[k % oddities.size()];
    for (std::size_t i = 0; i < shapes.size(); ++i) out.add(shapes[i].get(), {value[i]});
    out.close();
    return out.count();
}

std::size_t solar(World& w, const std::string& path, Rng& r, const std::string& suffix, double cellSize)
{
    static const char* months[] = {"JAN", "FEB", "MAR", "APR", "MAY", "JUN", "JUL", "AUG", "SEP", "OCT", "NOV", "DEC"};
    std::vector<FieldSpec> fields = {{"Cell_ID", 'I', 9}, {"Gridcode", 'I', 9}, {"Lon", 'N', 12, 6}, {"Lat", 'N', 12, 6}};
    for (const char* m : months) fields.push_back({m + suffix, 'N', 8, 3});
    fields.push_back({"ANN" + suffix, 'N', 10, 3});
    ShapefileWriter out(path, GeomKind::Polygon, fields);

    const SmoothField& own = suffix == "DIR" ? w.sunDirect : suffix == "TILT" ? w.sunTilt : w.sunGlobal;
    const double seasonality = suffix == "DIR" ? 0.28 : suffix == "TILT" ? 0.10 : 0.22;
    auto cells = gridCells(w.country, cellSize);
    std::vector<double> v;
    for (const Cell& c : cells) {
        const double south = (w.scale.centre.y - c.cy()) / w.scale.height;  // sunnier towards the south
        v.push_back(0.6 * w.sunBase(c.cx(), c.cy()) + 0.3 * own(c.cx(), c.cy()) + 0.8 * south);
    }
    auto u = ranks(v);
    for (std::size_t i = 0; i < cells.size(); ++i) v[i] = roundTo(1.5 + 8.0 * u[i], 0.001);
    std::vector<double> targets;
    for (double t = 2.0; t <= 9.0; t += 0.5) targets.push_back(t);
    pinToTargets(v, targets, std::max<std::size_t>(1, cells.size() / 400));

    for (std::size_t i = 0; i < cells.size(); ++i) {
        const Cell& c = cells[i];
        const double lat = latitudeOf(c.cy());
        std::vector<AttrValue> values = {static_cast<long long>(i + 1), static_cast<long long>(std::lround(v[i] * 100)),
                                         roundTo(longitudeOf(c.cx(), c.cy()), 1e-6), roundTo(lat, 1e-6)};
        const double swing = seasonality * std::min(1.0, std::fabs(lat) / 20 + 0.3);
        for (int m = 0; m < 12; ++m) {
            const double f = 1 + swing * std::cos(2 * 3.14159265358979 * (m - 5) / 12) + 0.02 * r.normal();
            values.push_back(roundTo(std::max(0.1, v[i] * f), 0.001));
        }
        values.push_back(v[i]);
        out.add(std::make_unique<OGRPolygon>(square(c.x0, c.y0, c.size)).get(), values);
    }
    out.close();
    return out.count();
}

template <int Coarse, const char* Suffix>
std::size_t solarFile(World& w, const std::string& path, Rng& r)
{
    return solar(w, path, r, Suffix, Coarse ? w.scale.solarCoarse : w.scale.solarFine);
}

constexpr char kDir[] = "DIR";
constexpr char kTilt[] = "TILT";
constexpr char kGlo[] = "GLO";

int windClass(double v)
{
    static const double bounds[] = {200, 300, 400, 500, 600, 800};
    int k = 1;
    for (double b : bounds)
        if (v >= b) ++k;
    return k;
}

std::size_t wind(World& w, const std::string& path, Rng& r)
{
    ShapefileWriter out(path, GeomKind::Polygon, {{"WINDPWRD", 'N', 10, 2}, {"WINDCLASS", 'I', 2}});
    auto cells = gridCells(w.country, w.scale.windCell);
    std::vector<double> v;
    for (const Cell& c : cells) v.push_back(w.windiness(c.cx(), c.cy()) + 0.25 * r.normal());
    auto u = ranks(v);
    for (std::size_t i = 0; i < cells.size(); ++i) v[i] = roundTo(1000 * std::pow(u[i], 1.35), 0.01);
    pinToTargets(v, {200, 300, 400, 500, 600, 800}, std::max<std::size_t>(2, cells.size() / 300));
    for (std::size_t i = 0; i < cells.size(); ++i)
        out.add(std::make_unique<OGRPolygon>(square(cells[i].x0, cells[i].y0, cells[i].size)).get(),
                {v[i], static_cast<long long>(windClass(v[i]))});
    out.close();
    return out.count();
}

// The two further wind files hold small measurement areas, not a cover of the
// country: they load with the plain default symbol and would otherwise hide
// everything drawn beneath them.
std::vector<std::unique_ptr<OGRGeometry>> measurementAreas(World& w, Rng& r, int count)
{
    std::vector<std::unique_ptr<OGRGeometry>> out;
    const double rad = w.scale.width / 70;
    for (int attempt = 0; static_cast<int>(out.size()) < count && attempt < 100 * count; ++attempt)
        if (auto shape = w.country.clip(blob(r, w.country.randomInside(r, rad * 1.5), rad, 24))) out.push_back(std::move(shape));
    return out;
}

std::size_t windSpeed(World& w, const std::string& path, Rng& r)
{
    ShapefileWriter out(path, GeomKind::Polygon, {{"SPEED", 'N', 6, 2}, {"HEIGHT", 'I', 4}});
    for (const auto& z : measurementAreas(w, r, w.scale.windSpeedZones)) {
        const Pt c = centroidOf(*z);
        out.add(z.get(), {roundTo(7 + 2.5 * w.windiness(c.x, c.y), 0.01), 50LL});
    }
    out.close();
    return out.count();
}

std::size_t windRegime(World& w, const std::string& path, Rng& r)
{
    ShapefileWriter out(path, GeomKind::Polygon, {{"ZONE", 'C', 30}, {"SPEED", 'N', 6, 2}});
    int i = 0;
    for (const auto& z : measurementAreas(w, r, w.scale.windRegimes)) {
        const Pt c = centroidOf(*z);
        out.add(z.get(), {"Regime " + std::to_string(++i), roundTo(6 + 2 * w.windiness(c.x, c.y), 0.01)});
    }
    out.close();
    return out.count();
}

std::size_t lakes(World& w, const std::string& path, Rng& r)
{
    ShapefileWriter out(path, GeomKind::Polygon, {{"NAME", 'C', 40}});
    NameMaker names(r);
    const double rmax = w.scale.width / (w.scale.lakes > 20 ? 120 : 50);
    std::vector<std::pair<Pt, double>> placed;
    for (int attempt = 0; static_cast<int>(placed.size()) < w.scale.lakes && attempt < 100 * w.scale.lakes; ++attempt) {
        const double rad = r.uniform(rmax / 3, rmax);
        const Pt c = w.country.randomInside(r, rad * 1.5);
        bool apart = true;
        for (const auto& [q, qr] : placed) apart = apart && distance(c, q) > 1.6 * (rad + qr);
        if (!apart) continue;
        auto shape = w.country.clip(blob(r, c, rad, 36));
        if (!shape) continue;
        placed.push_back({c, rad});
        out.add(shape.get(), {"Lake " + names.next()});
    }
    out.close();
    return out.count();
}

std::size_t protectedAreas(World& w, const std::string& path, Rng& r)
{
    static const char* types[] = {"NATIONAL PARK", "FOREST RESERVE", "WILDLIFE SANCTUARY", "NATURE RESERVE"};
    static const char* titles[] = {"National Park", "Forest Reserve", "Wildlife Sanctuary", "Nature Reserve"};
    ShapefileWriter out(path, GeomKind::Polygon, {{"NAME", 'C', 60}, {"TYPE", 'C', 30}});
    NameMaker names(r);
    // Many reserves are smaller ones: they cover a share of the country alike.
    const double rmax = w.scale.width / (w.scale.protectedAreas > 200 ? 85 : w.scale.protectedAreas > 20 ? 45 : 15);
    for (int attempt = 0; static_cast<int>(out.count()) < w.scale.protectedAreas && attempt < 1000; ++attempt) {
        const double rad = r.uniform(rmax / 3, rmax);
        auto shape = w.country.clip(blob(r, w.country.randomInside(r), rad, 48));
        if (!shape) continue;
        const unsigned t = r.below(4);
        out.add(shape.get(), {names.next() + " " + titles[t], std::string(types[t])});
    }
    out.close();
    return out.count();
}

std::size_t districtFile(const std::vector<Region>& regions, const std::string& path)
{
    ShapefileWriter out(path, GeomKind::Polygon, {{"NAME", 'C', 40}, {"POP", 'I', 9}});
    for (const Region& reg : regions) out.add(reg.shape.get(), {reg.name, reg.pop});
    out.close();
    return out.count();
}

std::size_t districts3(World& w, const std::string& path, Rng&) { return districtFile(w.districts().level3, path); }
std::size_t districts2(World& w, const std::string& path, Rng&) { return districtFile(w.districts().level2, path); }
std::size_t districts1(World& w, const std::string& path, Rng&) { return districtFile(w.districts().level1, path); }

std::size_t countryBoundary(World& w, const std::string& path, Rng&)
{
    ShapefileWriter out(path, GeomKind::Polygon, {{"NAME", 'C', 40}});
    out.add(&w.country.polygon(), {join("Republic of ", w.countryName)});
    out.close();
    return out.count();
}

// Adds a clipped path; false when nothing of it lies inside.
bool addPath(ShapefileWriter& out, World& w, const OGRLineString& line, const std::vector<AttrValue>& values)
{
    auto shape = w.country.clip(line);
    if (!shape) return false;
    out.add(shape.get(), values);
    return true;
}

std::size_t rivers(World& w, const std::string& path, Rng& r)
{
    ShapefileWriter out(path, GeomKind::Line, {{"NAME", 'C', 40}});
    NameMaker names(r);
    const double step = w.scale.width / 150;
    for (int attempt = 0; static_cast<int>(out.count()) < w.scale.rivers && attempt < 20 * w.scale.rivers; ++attempt) {
        // Rise in the highest of a few places, end at the nearest of a few coast points.
        Pt source = w.country.randomInside(r);
        for (int k = 0; k < 4; ++k) {
            Pt p = w.country.randomInside(r);
            if (w.elevationIndex(p.x, p.y) > w.elevationIndex(source.x, source.y)) source = p;
        }
        Pt mouth = w.country.boundaryPoint(r.uniform());
        for (int k = 0; k < 5; ++k) {
            Pt p = w.country.boundaryPoint(r.uniform());
            if (distance(p, source) < distance(mouth, source)) mouth = p;
        }
        addPath(out, w, wobblyPath(r, source, mouth, step, 0.15), {names.next() + " River"});
    }
    out.close();
    return out.count();
}

std::size_t railroads(World& w, const std::string& path, Rng& r)
{
    ShapefileWriter out(path, GeomKind::Line, {{"NAME", 'C', 60}});
    const double step = w.scale.width / 120;
    for (std::size_t i = 1; i < w.cities.size() && static_cast<int>(out.count()) < w.scale.railroads; ++i) {
        // Each town is linked to the nearest larger one.
        std::size_t to = 0;
        for (std::size_t j = 1; j < i; ++j)
            if (distance(w.cities[i].at, w.cities[j].at) < distance(w.cities[i].at, w.cities[to].at)) to = j;
        addPath(out, w, wobblyPath(r, w.cities[to].at, w.cities[i].at, step, 0.04),
                {w.cities[to].name + " - " + w.cities[i].name + " Railway"});
    }
    out.close();
    return out.count();
}

std::vector<std::pair<std::size_t, std::size_t>> nearestPairs(const std::vector<City>& cities, int perCity)
{
    std::vector<std::pair<std::size_t, std::size_t>> pairs;
    for (std::size_t i = 0; i < cities.size(); ++i) {
        std::vector<std::size_t> others;
        for (std::size_t j = 0; j < cities.size(); ++j)
            if (j != i) others.push_back(j);
        std::stable_sort(others.begin(), others.end(), [&](std::size_t a, std::size_t b) {
            return distance(cities[i].at, cities[a].at) < distance(cities[i].at, cities[b].at);
        });
        for (int k = 0; k < perCity && k < static_cast<int>(others.size()); ++k) {
            auto p = std::minmax(i, others[static_cast<std::size_t>(k)]);
            if (std::find(pairs.begin(), pairs.end(), std::pair(p.first, p.second)) == pairs.end())
                pairs.push_back({p.first, p.second});
        }
    }
    return pairs;
}

std::size_t roads(World& w, const std::string& path, Rng& r)
{
    ShapefileWriter out(path, GeomKind::Line, {{"NAME", 'C', 40}});
    const double step = w.scale.width / 200;
    int number = 0;
    for (auto [a, b] : nearestPairs(w.cities, 2)) {
        if (static_cast<int>(out.count()) >= w.scale.roads) break;
        addPath(out, w, wobblyPath(r, w.cities[a].at, w.cities[b].at, step, 0.05), {"N" + std::to_string(++number)});
    }
    // Feeder roads from the towns into the country round them.
    const double reach = std::min(w.scale.width, w.scale.height) / 8;
    for (int attempt = 0; static_cast<int>(out.count()) < w.scale.roads && attempt < 20 * w.scale.roads; ++attempt) {
        const City& from = w.cities[r.below(static_cast<unsigned>(w.cities.size()))];
        const double ang = r.uniform(0, 2 * 3.14159265358979);
        const double len = r.uniform(reach / 4, reach);
        const Pt to{from.at.x + len * std::cos(ang), from.at.y + len * std::sin(ang)};
        if (!w.country.contains(to.x, to.y)) continue;
        addPath(out, w, wobblyPath(r, from.at, to, step, 0.08), {"R" + std::to_string(100 + ++number)});
    }
    out.close();
    return out.count();
}

std::size_t transmissionLines(World& w, const std::string& path, Rng& r)
{
    ShapefileWriter out(path, GeomKind::Line, {{"NAME", 'C', 60}, {"VOLTAGE", 'I', 4}});
    const double step = w.scale.width / 150;
    auto full = [&] { return static_cast<int>(out.count()) >= w.scale.transmissionLines; };
    // A backbone between the larger towns first, then each plant to its nearest town.
    const std::size_t major = std::min<std::size_t>(w.cities.size(), std::max<std::size_t>(6, w.cities.size() / 8));
    for (std::size_t i = 1; i < major && !full(); ++i) {
        std::size_t to = 0;
        for (std::size_t j = 1; j < i; ++j)
            if (distance(w.cities[i].at, w.cities[j].at) < distance(w.cities[i].at, w.cities[to].at)) to = j;
        addPath(out, w, wobblyPath(r, w.cities[to].at, w.cities[i].at, step, 0.02),
                {w.cities[to].name + " - " + w.cities[i].name, 400LL});
    }
    for (const Plant& p : w.plants) {
        if (full()) break;
        std::size_t to = 0;
        for (std::size_t j = 1; j < w.cities.size(); ++j)
            if (distance(p.at, w.cities[j].at) < distance(p.at, w.cities[to].at)) to = j;
        addPath(out, w, wobblyPath(r, p.at, w.cities[to].at, step, 0.03),
                {p.name + " - " + w.cities[to].name, p.capacity > 300 ? 220LL : 132LL});
    }
    for (auto [a, b] : nearestPairs(w.cities, 3)) {
        if (full()) break;
        addPath(out, w, wobblyPath(r, w.cities[a].at, w.cities[b].at, step, 0.03),
                {w.cities[a].name + " - " + w.cities[b].name, r.chance(0.5) ? 66LL : 132LL});
    }
    for (int attempt = 0; !full() && attempt < 10 * w.scale.transmissionLines; ++attempt) {
        const City& a = w.cities[r.below(static_cast<unsigned>(w.cities.size()))];
        const City& b = w.cities[r.below(static_cast<unsigned>(w.cities.size()))];
        if (&a == &b) continue;
        addPath(out, w, wobblyPath(r, a.at, b.at, step, 0.03), {a.name + " - " + b.name, 66LL});
    }
    out.close();
    return out.count();
}

OGRPoint point(Pt p)
{
    return OGRPoint(p.x, p.y);
}

std::size_t historicSites(World& w, const std::string& path, Rng& r)
{
    static const char* forms[] = {"Ruins of ", "Fort ", "Old Monastery of ", "Rock Paintings of ", "Citadel of "};
    ShapefileWriter out(path, GeomKind::Point, {{"NAME", 'C', 60}});
    NameMaker names(r);
    for (int i = 0; i < w.scale.historicSites; ++i) {
        OGRPoint p = point(w.country.randomInside(r, 1000));
        out.add(&p, {join(forms[r.below(5)], names.next())});
    }
    out.close();
    return out.count();
}

std::size_t powerPlants(World& w, const std::string& path, Rng&)
{
    ShapefileWriter out(path, GeomKind::Point, {{"NAME", 'C', 60}, {"CAPACITY", 'N', 10, 1}});
    for (const Plant& pl : w.plants) {
        OGRPoint p = point(pl.at);
        out.add(&p, {pl.name, pl.capacity});
    }
    out.close();
    return out.count();
}

std::size_t facilities(World& w, const std::string& path, Rng& r)
{
    static const char* types[] = {"HOSPITAL", "SCHOOL", "MINE", "PORT", "SUBSTATION", "FACTORY", "DAM"};
    static const char* titles[] = {"Hospital", "School", "Mine", "Port", "Substation", "Works", "Dam"};
    ShapefileWriter out(path, GeomKind::Point, {{"NAME", 'C', 60}, {"TYPE", 'C', 30}});
    NameMaker names(r);
    for (int i = 0; i < w.scale.facilities; ++i) {
        OGRPoint p = point(w.country.randomInside(r, 1000));
        const unsigned t = r.below(7);
        out.add(&p, {names.next() + " " + titles[t], std::string(types[t])});
    }
    out.close();
    return out.count();
}

std::size_t airports(World& w, const std::string& path, Rng& r)
{
    ShapefileWriter out(path, GeomKind::Point, {{"NAME", 'C', 60}});
    for (int i = 0; i < w.scale.airports; ++i) {
        // Near the larger towns, a few kilometres out.
        const City& c = w.cities[static_cast<std::size_t>(i) % w.cities.size()];
        Pt at = c.at;
        for (int k = 0; k < 20; ++k) {
            const double ang = r.uniform(0, 2 * 3.14159265358979);
            const Pt p{roundTo(c.at.x + 8000 * std::cos(ang), 1.0), roundTo(c.at.y + 8000 * std::sin(ang), 1.0)};
            if (w.country.contains(p.x, p.y)) {
                at = p;
                break;
            }
        }
        OGRPoint p = point(at);
        out.add(&p, {c.name + (i == 0 ? " International Airport" : " Airport")});
    }
    out.close();
    return out.count();
}

std::size_t cities(World& w, const std::string& path, Rng&)
{
    ShapefileWriter out(path, GeomKind::Point, {{"NAME", 'C', 40}, {"TYPE", 'C', 30}, {"POP", 'I', 9}});
    for (const City& c : w.cities) {
        OGRPoint p = point(c.at);
        out.add(&p, {c.name, c.type, c.pop});
    }
    out.close();
    return out.count();
}

struct FileEntry {
    const char* name;
    Writer write;
};

const std::vector<FileEntry>& fileTable()
{
    static const std::vector<FileEntry> table = {
        {"01_elevation.shp", elevation},
        {"02_landuse.shp", landUse},
        {"11_solar_direct.shp", solarFile<1, kDir>},
        {"12_solar_tilt.shp", solarFile<1, kTilt>},
        {"13_solar_direct.shp", solarFile<0, kDir>},
        {"14_solar_glo.shp", solarFile<0, kGlo>},
        {"15_solar_glo.shp", solarFile<1, kGlo>},
        {"16_solar_tilt.shp", solarFile<0, kTilt>},
        {"17_solar_direct.shp", solarFile<1, kDir>},
        {"18_solar_tilt.shp", solarFile<1, kTilt>},
        {"20_wind.shp", wind},
        {"21_wind.shp", windSpeed},
        {"22_wind.shp", windRegime},
        {"30_lakes.shp", lakes},
        {"31_protectedarea.shp", protectedAreas},
        {"36_subcountrybnd3.shp", districts3},
        {"37_subcountrybnd2.shp", districts2},
        {"38_subcountrybnd1.shp", districts1},
        {"39_countryboundary.shp", countryBoundary},
        {"40_rivers.shp", rivers},
        {"42_railroad.shp", railroads},
        {"43_roads.shp", roads},
        {"44_transmissionline.shp", transmissionLines},
        {"50_protectedarea.shp", historicSites},
        {"51_powerplant.shp", powerPlants},
        {"52_facilities.shp", facilities},
        {"53_airports.shp", airports},
        {"59_cities.shp", cities},
    };
    return table;
}

// GDAL's own reports would only repeat what the exception says.
struct QuietErrors {
    QuietErrors() { CPLPushErrorHandler(CPLQuietErrorHandler); }
    ~QuietErrors() { CPLPopErrorHandler(); }
};

std::string lower(std::string s)
{
    for (char& c : s) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return s;
}

}  // namespace

const std::vector<std::string>& standardFiles()
{
    static const std::vector<std::string> names = [] {
        std::vector<std::string> v;
        for (const auto& e : fileTable()) v.push_back(e.name);
        return v;
    }();
    return names;
}

std::string standardName(const std::string& name)
{
    std::string n = lower(name);
    if (n.size() < 4 || n.compare(n.size() - 4, 4, ".shp") != 0) n += ".shp";
    for (const auto& s : standardFiles())
        if (s == n) return s;
    return {};
}

void generate(const std::string& dir, const Options& options)
{
    const Scale* scale = options.size == "small"   ? &kSmall
                         : options.size == "large" ? &kLarge
                         : options.size == "huge"  ? &kHuge
                                                   : nullptr;
    if (!scale) throw std::runtime_error("unknown size \"" + options.size + "\" (small, large or huge)");
    std::set<std::string> omit;
    for (const auto& o : options.omit) {
        const std::string s = standardName(o);
        if (s.empty()) throw std::runtime_error("not a standard file: " + o);
        omit.insert(s);
    }
    std::error_code ec;
    fs::create_directories(dir, ec);
    if (!fs::is_directory(dir)) throw std::runtime_error("cannot create directory " + dir);

    QuietErrors quiet;
    World world(*scale, options.seed);
    const auto& table = fileTable();
    for (std::size_t i = 0; i < table.size(); ++i) {
        const std::string path = (fs::path(dir) / table[i].name).string();
        if (omit.count(table[i].name)) {
            removeShapefile(path);
            continue;
        }
        Rng rng = world.stream(static_cast<unsigned>(100 + i));
        const std::size_t n = table[i].write(world, path, rng);
        if (options.onFile) options.onFile(table[i].name, n);
    }
}

}  // namespace datagen
