#pragma once
// Helpers that let the overlay loops skip work whose outcome is known without
// changing what they produce: record shapes kept for a run (so each prepares
// its index once), candidates of a spatial index in record order, and the
// parts of a large polygon near a small one.
#include <QString>
#include <cstdint>
#include <unordered_map>
#include <vector>

#include "mapping/geometry.h"
#include "mapping/recordset.h"

namespace overlay {

// The number of records a search selected; none selects nothing.
inline int countOf(const RecordsetPtr& records)
{
    return records ? records->CalculateStatistics("FeatureID")->Count : 0;
}

// The steps of a worker: a failure ends the worker until its overlay loop has
// begun (tolerant set), and from then on a failing step is passed over.
struct Steps {
    bool tolerant = false;
    template <typename F>
    void operator()(F&& fn) const
    {
        if (!tolerant) return fn();
        try {
            fn();
        } catch (...) {
        }
    }
};

// A failing step of an overlay loop is passed over; the loop goes on.
template <typename F>
void passOver(F&& step)
{
    try {
        step();
    } catch (...) {
    }
}


// The records of one selection, with their shapes made at first use.
class Selection {
public:
    Selection() = default;
    explicit Selection(const RecordsetPtr& records);

    bool isEmpty() const { return ids_.empty(); }
    const GeoDatasetPtr& dataset() const { return ds_; }
    const std::vector<int>& ids() const { return ids_; }
    // Position of the record in the selection, -1 when not selected.
    int positionOf(int fid) const;
    // Selected records whose boxes meet env, in record order.
    std::vector<int> near(const Envelope& env) const;
    // The record's shape; the same object for the whole run. None for a null shape.
    const ShapePtr& shape(int fid);
    bool isPolygon(int fid) const;

private:
    GeoDatasetPtr ds_;
    std::vector<int> ids_;
    std::vector<int> position_;
    std::vector<ShapePtr> shapes_;
    std::vector<char> made_;
};

// A one-record cursor on fid, for reading the attributes of a record that
// was reached through the index rather than by walking the selection.
Recordset recordAt(const GeoDatasetPtr& ds, int fid);

// A large polygon cut at first use into nested, overlapping tiles. around(env)
// gives a polygon that equals the whole inside a rectangle holding env with a
// margin, so an overlay with a shape inside env gives the same result as one
// with the whole, at the cost of the vertices near env only.
class NearbyParts {
public:
    explicit NearbyParts(PolygonPtr whole, int maxVertices = 400);
    const PolygonPtr& whole() const { return whole_; }
    // None where the whole has no area near env.
    PolygonPtr around(const Envelope& env);

private:
    struct Tile {
        PolygonPtr shape;
        int vertices = 0;
    };
    const Tile& tile(int level, int64_t ix, int64_t iy);
    Envelope tileRect(int level, int64_t ix, int64_t iy) const;

    PolygonPtr whole_;
    int maxVertices_;
    Tile root_;
    double x0_ = 0, y0_ = 0, size_ = 0;
    std::unordered_map<uint64_t, Tile> tiles_;
};

// Polygons whose union is meant, kept apart. Near a shape the union of all
// equals the union of the parts whose boxes meet the shape's box, so a cut
// with the union needs those few parts only, and the whole union of
// thousands of parts is made only when it is asked for.
class PolygonSet {
public:
    explicit PolygonSet(std::vector<GeomPtr> parts);
    PolygonSet(const PolygonSet&) = delete;
    PolygonSet& operator=(const PolygonSet&) = delete;
    ~PolygonSet();

    size_t size() const { return parts_.size(); }
    // Parts whose boxes meet the shape's box, in the order given.
    std::vector<int> near(const Shape& shape) const;
    // The union of all parts, made at first use. None for no parts.
    PolygonPtr whole();
    // The same point set as whole()->Intersect(shape), and like it a
    // Polygon or none (a failing cut throws). The shape itself comes back
    // when one part holds it in its interior.
    ShapePtr intersect(const ShapePtr& shape);
    // The same point set as shape->Difference(whole()), and like it none when
    // nothing is left (a failing cut throws). The shape itself comes back when
    // no part meets it.
    ShapePtr subtractFrom(const ShapePtr& shape);

private:
    const GeoShape& part(int i);

    std::vector<GeomPtr> parts_;
    std::vector<Envelope> envs_;
    std::vector<std::shared_ptr<Polygon>> shapes_;  // for the prepared tests, made at first use
    GEOSSTRtree* tree_ = nullptr;
    PolygonPtr whole_;
    bool wholeMade_ = false;
};

// Polygons united in one call (a cascaded union): the same area as uniting
// them one after another.
PolygonPtr unionAll(const std::vector<GeomPtr>& polygons);

}  // namespace overlay
