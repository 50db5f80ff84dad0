#pragma once
// Building blocks of the fictional country: a portable random source, smooth
// value fields, the country outline with clipping, grids, tessellations and
// wobbly shapes.
#include <cstdint>
#include <memory>
#include <random>
#include <set>
#include <string>
#include <vector>

#include <ogr_api.h>
#include <ogr_geometry.h>

namespace datagen {

struct Pt {
    double x = 0, y = 0;
};

// Uses only the engine's raw output, whose sequence the standard fixes, so a
// seed gives the same data with every standard library.
class Rng {
public:
    Rng(unsigned seed, unsigned stream);
    double uniform();                                   // [0, 1)
    double uniform(double lo, double hi) { return lo + (hi - lo) * uniform(); }
    unsigned below(unsigned n);                         // [0, n)
    bool chance(double p) { return uniform() < p; }
    double normal();                                    // mean 0, deviation 1

private:
    std::mt19937 engine_;
};

// A smooth field as a sum of plane waves; values roughly in [-1, 1].
class SmoothField {
public:
    SmoothField(Rng& rng, double wavelength, int waves = 7);
    double operator()(double x, double y) const;

private:
    struct Wave {
        double kx, ky, phase, amplitude;
    };
    std::vector<Wave> waves_;
    double norm_ = 1;
};

// Ranks values into [0, 1]: the smallest gets 0, the largest 1, ties by index.
std::vector<double> ranks(const std::vector<double>& values);

// Sets the `perTarget` values nearest to each target to the target exactly.
void pinToTargets(std::vector<double>& values, const std::vector<double>& targets, std::size_t perTarget);

double roundTo(double v, double step);

// The country outline, with tests and clipping through prepared geometry.
class Country {
public:
    Country(Rng& rng, Pt centre, double width, double height, int vertices);
    ~Country();
    Country(const Country&) = delete;
    Country& operator=(const Country&) = delete;

    const OGRPolygon& polygon() const { return polygon_; }
    const OGREnvelope& envelope() const { return envelope_; }
    double area() const { return polygon_.get_Area(); }

    bool contains(double x, double y) const;
    bool contains(const OGRGeometry& g) const;
    bool intersects(const OGRGeometry& g) const;
    // The part of g inside the country, of g's dimension (2: polygons,
    // 1: lines); null when nothing of that dimension is left.
    std::unique_ptr<OGRGeometry> clip(const OGRGeometry& g) const;
    Pt randomInside(Rng& rng) const;
    // A point at least `margin` inside the outline (falls back to any inside point).
    Pt randomInside(Rng& rng, double margin) const;
    Pt boundaryPoint(double fraction) const;  // fraction of the ring, [0, 1)

private:
    OGRPolygon polygon_;
    OGREnvelope envelope_;
    OGRPreparedGeometryH prepared_ = nullptr;
};

OGRPolygon square(double x0, double y0, double size);

// Square cells of a grid aligned on multiples of size, north row first, that
// touch the country.
struct Cell {
    double x0, y0;  // south-west corner
    double size;
    double cx() const { return x0 + size / 2; }
    double cy() const { return y0 + size / 2; }
};
std::vector<Cell> gridCells(const Country& country, double size);

// Jittered grid points over the envelope grown by one spacing.
std::vector<Pt> jitteredPoints(Rng& rng, const OGREnvelope& env, double spacing, double jitter);

// Voronoi cells of the seeds, clipped to the country; the result is aligned
// with the seeds and holds null for a seed whose cell lies outside.
std::vector<std::unique_ptr<OGRGeometry>> voronoiCells(const std::vector<Pt>& seeds, const Country& country);

// A closed blob of roughly radius r around c.
OGRPolygon blob(Rng& rng, Pt c, double r, int vertices);

// A line from a to b that meanders sideways by up to `wiggle` of its length.
OGRLineString wobblyPath(Rng& rng, Pt a, Pt b, double step, double wiggle);

// Polygonal union of the pieces.
std::unique_ptr<OGRGeometry> unionOf(const std::vector<const OGRGeometry*>& pieces);

Pt centroidOf(const OGRGeometry& g);
double distance(Pt a, Pt b);

// Fictional geographic coordinates of a map position, in degrees.
double longitudeOf(double x, double y);
double latitudeOf(double y);

// Pronounceable fictional names, unique within one generator.
class NameMaker {
public:
    explicit NameMaker(Rng& rng) : rng_(rng) {}
    std::string next();

private:
    Rng& rng_;
    std::set<std::string> used_;
};

}  // namespace datagen
