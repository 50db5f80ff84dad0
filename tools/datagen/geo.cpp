#include "geo.h"

#include <geos_c.h>

#include <algorithm>
#include <cmath>
#include <numeric>
#include <stdexcept>

namespace datagen {

namespace {
constexpr double kPi = 3.14159265358979323846;
}

// ---- random source -------------------------------------------------------

Rng::Rng(unsigned seed, unsigned stream)
{
    std::seed_seq seq{seed, stream, 0x6d61726cu};
    engine_.seed(seq);
}

double Rng::uniform()
{
    return static_cast<double>(engine_()) / 4294967296.0;
}

unsigned Rng::below(unsigned n)
{
    return static_cast<unsigned>((static_cast<std::uint64_t>(engine_()) * n) >> 32);
}

double Rng::normal()
{
    const double u1 = 1.0 - uniform();  // (0, 1]
    const double u2 = uniform();
    return std::sqrt(-2.0 * std::log(u1)) * std::cos(2 * kPi * u2);
}

// ---- fields --------------------------------------------------------------

SmoothField::SmoothField(Rng& rng, double wavelength, int waves)
{
    double sum = 0;
    for (int i = 0; i < waves; ++i) {
        const double lambda = wavelength * rng.uniform(0.3, 1.3);
        const double dir = rng.uniform(0, 2 * kPi);
        const double k = 2 * kPi / lambda;
        const double amp = lambda / wavelength;  // long waves dominate
        waves_.push_back({k * std::cos(dir), k * std::sin(dir), rng.uniform(0, 2 * kPi), amp});
        sum += amp;
    }
    norm_ = sum > 0 ? sum / 2 : 1;
}

double SmoothField::operator()(double x, double y) const
{
    double v = 0;
    for (const auto& w : waves_) v += w.amplitude * std::sin(w.kx * x + w.ky * y + w.phase);
    return v / norm_;
}

std::vector<double> ranks(const std::vector<double>& values)
{
    std::vector<std::size_t> order(values.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::stable_sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) { return values[a] < values[b]; });
    std::vector<double> out(values.size(), 0.0);
    const double last = values.size() > 1 ? static_cast<double>(values.size() - 1) : 1.0;
    for (std::size_t r = 0; r < order.size(); ++r) out[order[r]] = static_cast<double>(r) / last;
    return out;
}

void pinToTargets(std::vector<double>& values, const std::vector<double>& targets, std::size_t perTarget)
{
    std::vector<bool> taken(values.size(), false);
    for (double t : targets) {
        std::vector<std::size_t> order(values.size());
        std::iota(order.begin(), order.end(), std::size_t{0});
        std::stable_sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) {
            return std::fabs(values[a] - t) < std::fabs(values[b] - t);
        });
        std::size_t done = 0;
        for (std::size_t i : order) {
            if (done == perTarget) break;
            if (taken[i]) continue;
            values[i] = t;
            taken[i] = true;
            ++done;
        }
    }
}

double roundTo(double v, double step)
{
    return std::round(v / step) * step;
}

// ---- country -------------------------------------------------------------

Country::Country(Rng& rng, Pt centre, double width, double height, int vertices)
{
    // A star-shaped outline (one radius per bearing) is always a simple ring.
    struct Harmonic {
        int k;
        double amp, phase;
    };
    std::vector<Harmonic> harmonics;
    for (int k = 2; k <= 9; ++k)
        harmonics.push_back({k, rng.uniform(0.03, 0.11) / std::pow(k / 2.0, 0.7), rng.uniform(0, 2 * kPi)});
    std::vector<Pt> raw;
    double minX = 1e300, maxX = -1e300, minY = 1e300, maxY = -1e300;
    for (int i = 0; i < vertices; ++i) {
        const double t = 2 * kPi * i / vertices;
        double r = 1.0;
        for (const auto& h : harmonics) r += h.amp * std::sin(h.k * t + h.phase);
        r += 0.006 * rng.normal();  // a ragged coast
        r = std::clamp(r, 0.55, 1.4);
        Pt p{r * std::cos(t), r * std::sin(t)};
        raw.push_back(p);
        minX = std::min(minX, p.x);
        maxX = std::max(maxX, p.x);
        minY = std::min(minY, p.y);
        maxY = std::max(maxY, p.y);
    }
    OGRLinearRing ring;
    for (const Pt& p : raw) {
        const double x = centre.x + (p.x - (minX + maxX) / 2) / (maxX - minX) * width;
        const double y = centre.y + (p.y - (minY + maxY) / 2) / (maxY - minY) * height;
        ring.addPoint(roundTo(x, 1.0), roundTo(y, 1.0));
    }
    ring.closeRings();
    polygon_.addRing(&ring);
    polygon_.getEnvelope(&envelope_);
    prepared_ = OGRCreatePreparedGeometry(OGRGeometry::ToHandle(&polygon_));
    if (!prepared_) throw std::runtime_error("GDAL lacks GEOS support: cannot prepare the country outline");
}

Country::~Country()
{
    if (prepared_) OGRDestroyPreparedGeometry(prepared_);
}

bool Country::contains(double x, double y) const
{
    OGRPoint p(x, y);
    return contains(p);
}

bool Country::contains(const OGRGeometry& g) const
{
    return OGRPreparedGeometryContains(prepared_, OGRGeometry::ToHandle(const_cast<OGRGeometry*>(&g)));
}

bool Country::intersects(const OGRGeometry& g) const
{
    return OGRPreparedGeometryIntersects(prepared_, OGRGeometry::ToHandle(const_cast<OGRGeometry*>(&g)));
}

namespace {

// Keeps the parts of dimension dim of a clipping result, dropping crumbs.
std::unique_ptr<OGRGeometry> keepDimension(std::unique_ptr<OGRGeometry> g, int dim)
{
    if (!g || g->IsEmpty()) return nullptr;
    std::vector<const OGRGeometry*> parts;
    std::vector<const OGRGeometry*> stack{g.get()};
    while (!stack.empty()) {
        const OGRGeometry* cur = stack.back();
        stack.pop_back();
        if (auto* coll = dynamic_cast<const OGRGeometryCollection*>(cur)) {
            for (int i = coll->getNumGeometries() - 1; i >= 0; --i) stack.push_back(coll->getGeometryRef(i));
        } else if (cur->getDimension() == dim) {
            parts.push_back(cur);
        }
    }
    if (dim == 2) {
        auto multi = std::make_unique<OGRMultiPolygon>();
        for (auto* p : parts)
            if (p->toPolygon()->get_Area() > 1.0) multi->addGeometry(p);
        if (multi->getNumGeometries() == 0) return nullptr;
        if (multi->getNumGeometries() == 1) return std::unique_ptr<OGRGeometry>(multi->getGeometryRef(0)->clone());
        return multi;
    }
    auto multi = std::make_unique<OGRMultiLineString>();
    for (auto* p : parts)
        if (p->toLineString()->get_Length() > 1.0) multi->addGeometry(p);
    if (multi->getNumGeometries() == 0) return nullptr;
    if (multi->getNumGeometries() == 1) return std::unique_ptr<OGRGeometry>(multi->getGeometryRef(0)->clone());
    return multi;
}

}  // namespace

std::unique_ptr<OGRGeometry> Country::clip(const OGRGeometry& g) const
{
    if (contains(g)) return std::unique_ptr<OGRGeometry>(g.clone());
    if (!intersects(g)) return nullptr;
    return keepDimension(std::unique_ptr<OGRGeometry>(g.Intersection(&polygon_)), g.getDimension());
}

Pt Country::randomInside(Rng& rng) const
{
    for (;;) {
        const double x = rng.uniform(envelope_.MinX, envelope_.MaxX);
        const double y = rng.uniform(envelope_.MinY, envelope_.MaxY);
        if (contains(x, y)) return {roundTo(x, 1.0), roundTo(y, 1.0)};
    }
}

Pt Country::randomInside(Rng& rng, double margin) const
{
    for (int attempt = 0; attempt < 200; ++attempt) {
        Pt p = randomInside(rng);
        OGRPoint pt(p.x, p.y);
        if (polygon_.getExteriorRing()->Distance(&pt) >= margin) return p;
    }
    return randomInside(rng);
}

Pt Country::boundaryPoint(double fraction) const
{
    const OGRLinearRing* ring = polygon_.getExteriorRing();
    const int n = ring->getNumPoints() - 1;
    const int i = std::clamp(static_cast<int>(fraction * n), 0, n - 1);
    return {ring->getX(i), ring->getY(i)};
}

// ---- grids and tessellations ---------------------------------------------

OGRPolygon square(double x0, double y0, double size)
{
    OGRLinearRing ring;
    ring.addPoint(x0, y0);
    ring.addPoint(x0, y0 + size);
    ring.addPoint(x0 + size, y0 + size);
    ring.addPoint(x0 + size, y0);
    ring.addPoint(x0, y0);
    OGRPolygon poly;
    poly.addRing(&ring);
    return poly;
}

std::vector<Cell> gridCells(const Country& country, double size)
{
    const OGREnvelope& env = country.envelope();
    const long c0 = static_cast<long>(std::floor(env.MinX / size));
    const long c1 = static_cast<long>(std::ceil(env.MaxX / size));
    const long r0 = static_cast<long>(std::floor(env.MinY / size));
    const long r1 = static_cast<long>(std::ceil(env.MaxY / size));
    std::vector<Cell> cells;
    for (long r = r1 - 1; r >= r0; --r) {
        for (long c = c0; c < c1; ++c) {
            Cell cell{c * size, r * size, size};
            if (country.contains(cell.cx(), cell.cy()) || country.intersects(square(cell.x0, cell.y0, size)))
                cells.push_back(cell);
        }
    }
    return cells;
}

std::vector<Pt> jitteredPoints(Rng& rng, const OGREnvelope& env, double spacing, double jitter)
{
    std::vector<Pt> pts;
    for (double y = env.MaxY + spacing / 2; y > env.MinY - spacing; y -= spacing)
        for (double x = env.MinX - spacing / 2; x < env.MaxX + spacing; x += spacing)
            pts.push_back({roundTo(x + rng.uniform(-jitter, jitter) * spacing, 1.0),
                           roundTo(y + rng.uniform(-jitter, jitter) * spacing, 1.0)});
    return pts;
}

namespace {

struct GeosContext {
    GEOSContextHandle_t h = GEOS_init_r();
    ~GeosContext() { GEOS_finish_r(h); }
};

}  // namespace

std::vector<std::unique_ptr<OGRGeometry>> voronoiCells(const std::vector<Pt>& seeds, const Country& country)
{
    std::vector<std::unique_ptr<OGRGeometry>> out(seeds.size());
    if (seeds.empty()) return out;
    GeosContext ctx;
    std::vector<GEOSGeometry*> points;
    double minX = 1e300, maxX = -1e300, minY = 1e300, maxY = -1e300;
    for (const Pt& s : seeds) {
        points.push_back(GEOSGeom_createPointFromXY_r(ctx.h, s.x, s.y));
        minX = std::min(minX, s.x);
        maxX = std::max(maxX, s.x);
        minY = std::min(minY, s.y);
        maxY = std::max(maxY, s.y);
    }
    const OGREnvelope& env = country.envelope();
    minX = std::min(minX, env.MinX) - 1000;
    maxX = std::max(maxX, env.MaxX) + 1000;
    minY = std::min(minY, env.MinY) - 1000;
    maxY = std::max(maxY, env.MaxY) + 1000;
    GEOSGeometry* sites = GEOSGeom_createCollection_r(ctx.h, GEOS_MULTIPOINT, points.data(),
                                                       static_cast<unsigned>(points.size()));
    GEOSGeometry* frame = GEOSGeom_createRectangle_r(ctx.h, minX, minY, maxX, maxY);
    GEOSGeometry* diagram = sites && frame ? GEOSVoronoiDiagram_r(ctx.h, sites, frame, 0.0, 0) : nullptr;
    if (sites) GEOSGeom_destroy_r(ctx.h, sites);
    if (frame) GEOSGeom_destroy_r(ctx.h, frame);
    if (!diagram) throw std::runtime_error("Voronoi diagram failed");

    // Buckets of seeds, to find the seed that owns each cell.
    const double bucket = std::max(1.0, std::sqrt((maxX - minX) * (maxY - minY) / seeds.size()));
    const long nx = static_cast<long>((maxX - minX) / bucket) + 1;
    const long ny = static_cast<long>((maxY - minY) / bucket) + 1;
    std::vector<std::vector<std::size_t>> buckets(static_cast<std::size_t>(nx * ny));
    auto bx = [&](double x) { return std::clamp(static_cast<long>((x - minX) / bucket), 0L, nx - 1); };
    auto by = [&](double y) { return std::clamp(static_cast<long>((y - minY) / bucket), 0L, ny - 1); };
    for (std::size_t i = 0; i < seeds.size(); ++i)
        buckets[static_cast<std::size_t>(by(seeds[i].y) * nx + bx(seeds[i].x))].push_back(i);

    GEOSWKBWriter* writer = GEOSWKBWriter_create_r(ctx.h);
    const int n = GEOSGetNumGeometries_r(ctx.h, diagram);
    for (int i = 0; i < n; ++i) {
        const GEOSGeometry* cellGeos = GEOSGetGeometryN_r(ctx.h, diagram, i);
        std::size_t size = 0;
        unsigned char* wkb = GEOSWKBWriter_write_r(ctx.h, writer, cellGeos, &size);
        if (!wkb) continue;
        OGRGeometry* cell = nullptr;
        OGRGeometryFactory::createFromWkb(wkb, nullptr, &cell, static_cast<int>(size));
        GEOSFree_r(ctx.h, wkb);
        std::unique_ptr<OGRGeometry> owned(cell);
        if (!owned) continue;
        // A Voronoi cell is convex, so its centroid lies in it and the nearest
        // seed to the centroid is the cell's own.
        OGREnvelope e;
        owned->getEnvelope(&e);
        const Pt c = centroidOf(*owned);
        std::size_t best = seeds.size();
        double bestD = 1e300;
        for (long yy = by(e.MinY); yy <= by(e.MaxY); ++yy)
            for (long xx = bx(e.MinX); xx <= bx(e.MaxX); ++xx)
                for (std::size_t s : buckets[static_cast<std::size_t>(yy * nx + xx)]) {
                    const double d = distance(c, seeds[s]);
                    if (d < bestD) {
                        bestD = d;
                        best = s;
                    }
                }
        if (best == seeds.size() || out[best]) continue;
        out[best] = country.clip(*owned);
    }
    GEOSWKBWriter_destroy_r(ctx.h, writer);
    GEOSGeom_destroy_r(ctx.h, diagram);
    return out;
}

// ---- shapes --------------------------------------------------------------

OGRPolygon blob(Rng& rng, Pt c, double r, int vertices)
{
    double amp[4], phase[4];
    for (int k = 0; k < 4; ++k) {
        amp[k] = rng.uniform(0.03, 0.16) / (k + 1);
        phase[k] = rng.uniform(0, 2 * kPi);
    }
    OGRLinearRing ring;
    for (int i = 0; i < vertices; ++i) {
        const double t = 2 * kPi * i / vertices;
        double f = 1.0;
        for (int k = 0; k < 4; ++k) f += amp[k] * std::sin((k + 2) * t + phase[k]);
        f += 0.03 * rng.normal();
        f = std::max(f, 0.4);
        ring.addPoint(roundTo(c.x + r * f * std::cos(t), 1.0), roundTo(c.y + r * f * std::sin(t), 1.0));
    }
    ring.closeRings();
    OGRPolygon poly;
    poly.addRing(&ring);
    return poly;
}

OGRLineString wobblyPath(Rng& rng, Pt a, Pt b, double step, double wiggle)
{
    const double len = distance(a, b);
    const int n = std::max(2, static_cast<int>(len / step));
    const double nx = len > 0 ? -(b.y - a.y) / len : 0;
    const double ny = len > 0 ? (b.x - a.x) / len : 0;
    const double p1 = rng.uniform(0, 2 * kPi), p2 = rng.uniform(0, 2 * kPi);
    const double f1 = rng.uniform(1.0, 2.5), f2 = rng.uniform(3.0, 7.0);
    const double a1 = rng.uniform(-1, 1) * wiggle * len, a2 = rng.uniform(0.1, 0.35) * wiggle * len;
    OGRLineString line;
    for (int i = 0; i <= n; ++i) {
        const double t = static_cast<double>(i) / n;
        const double env = std::sin(kPi * t);
        const double off = env * (a1 * std::sin(kPi * f1 * t + p1) * 0.5 + a1 * 0.5 * env +
                                  a2 * std::sin(2 * kPi * f2 * t + p2));
        const double jitter = (i == 0 || i == n) ? 0 : 0.15 * step * rng.normal();
        line.addPoint(roundTo(a.x + (b.x - a.x) * t + nx * (off + jitter), 1.0),
                      roundTo(a.y + (b.y - a.y) * t + ny * (off + jitter), 1.0));
    }
    return line;
}

std::unique_ptr<OGRGeometry> unionOf(const std::vector<const OGRGeometry*>& pieces)
{
    OGRMultiPolygon multi;
    for (const OGRGeometry* p : pieces) {
        if (!p) continue;
        if (auto* mp = dynamic_cast<const OGRMultiPolygon*>(p)) {
            for (int i = 0; i < mp->getNumGeometries(); ++i) multi.addGeometry(mp->getGeometryRef(i));
        } else if (dynamic_cast<const OGRPolygon*>(p)) {
            multi.addGeometry(p);
        }
    }
    if (multi.IsEmpty()) return nullptr;
    return keepDimension(std::unique_ptr<OGRGeometry>(multi.UnionCascaded()), 2);
}

Pt centroidOf(const OGRGeometry& g)
{
    OGRPoint c;
    if (g.Centroid(&c) != OGRERR_NONE || c.IsEmpty()) {
        OGREnvelope e;
        g.getEnvelope(&e);
        return {(e.MinX + e.MaxX) / 2, (e.MinY + e.MaxY) / 2};
    }
    return {c.getX(), c.getY()};
}

double distance(Pt a, Pt b)
{
    return std::hypot(a.x - b.x, a.y - b.y);
}

double latitudeOf(double y)
{
    return y / 110574.0;
}

double longitudeOf(double x, double y)
{
    return 15.0 + (x - 500000.0) / (111320.0 * std::cos(latitudeOf(y) * kPi / 180.0));
}

// ---- names ---------------------------------------------------------------

std::string NameMaker::next()
{
    static const char* onsets[] = {"b", "d", "f", "g", "k", "l", "m", "n", "p", "r", "s", "t", "v", "z",
                                   "br", "dr", "gr", "kr", "st", "tr", "sh", "ch", "th", "h"};
    static const char* vowels[] = {"a", "e", "i", "o", "u", "a", "o", "ia", "ea", "ou", "ai"};
    static const char* codas[] = {"", "", "", "n", "r", "l", "s", "m", "nd", "rt", "sk"};
    static const char* endings[] = {"", "", "", "a", "o", "en", "ar", "ia", "ova", "ine", "ak", "ir"};
    for (int attempt = 0;; ++attempt) {
        std::string name;
        const int syllables = 1 + static_cast<int>(rng_.below(2));
        for (int s = 0; s < syllables; ++s) {
            name += onsets[rng_.below(std::size(onsets))];
            name += vowels[rng_.below(std::size(vowels))];
            name += codas[rng_.below(std::size(codas))];
        }
        name += endings[rng_.below(std::size(endings))];
        if (name.size() < 4) {
            name += vowels[rng_.below(std::size(vowels))];
            name += 'n';
        }
        name[0] = static_cast<char>(name[0] - 'a' + 'A');
        if (attempt > 50) {
            name += ' ';
            name += std::to_string(used_.size());
        }
        if (used_.insert(name).second) return name;
    }
}

}  // namespace datagen
