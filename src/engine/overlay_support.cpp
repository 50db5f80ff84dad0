#include "engine/overlay_support.h"

#include <algorithm>
#include <cmath>

namespace overlay {

// --- Selection ------------------------------------------------------------------

Selection::Selection(const RecordsetPtr& records)
{
    if (!records) return;
    ds_ = records->dataset();
    ids_ = records->ids();
    const size_t n = size_t(ds_->count());
    position_.assign(n, -1);
    shapes_.resize(n);
    made_.assign(n, 0);
    for (size_t i = 0; i < ids_.size(); ++i) position_[size_t(ids_[i])] = int(i);
}

int Selection::positionOf(int fid) const
{
    if (fid < 0 || size_t(fid) >= position_.size()) return -1;
    return position_[size_t(fid)];
}

std::vector<int> Selection::near(const Envelope& env) const
{
    std::vector<int> out;
    if (!ds_) return out;
    for (int fid : ds_->candidates(env))
        if (positionOf(fid) >= 0) out.push_back(fid);
    return out;
}

const ShapePtr& Selection::shape(int fid)
{
    if (!made_[size_t(fid)]) {
        shapes_[size_t(fid)] = ds_->shape(fid);
        made_[size_t(fid)] = 1;
    }
    return shapes_[size_t(fid)];
}

bool Selection::isPolygon(int fid) const { return ds_->recordShapeType(fid) == moPolygon; }

Recordset recordAt(const GeoDatasetPtr& ds, int fid) { return Recordset(ds, std::vector<int>{fid}); }

// --- NearbyParts ------------------------------------------------------------------

namespace {

int vertexCount(const GEOSGeometry* g)
{
    int n = GEOSGetNumCoordinates_r(geosContext(), g);
    return n < 0 ? 0 : n;
}

uint64_t tileKey(int level, int64_t ix, int64_t iy)
{
    return (uint64_t(level) << 58) | (uint64_t(ix) << 29) | uint64_t(iy);
}

constexpr int kMaxLevel = 20;

}  // namespace

NearbyParts::NearbyParts(PolygonPtr whole, int maxVertices) : whole_(std::move(whole)), maxVertices_(maxVertices)
{
    if (!whole_) return;
    root_.shape = whole_;
    root_.vertices = vertexCount(whole_->geom().get());
    const Envelope e = whole_->envelope();
    x0_ = e.minX;
    y0_ = e.minY;
    size_ = std::max(e.maxX - e.minX, e.maxY - e.minY);
}

// Tile (level, ix, iy) covers the square of side size/2^level at (ix, iy),
// grown by half a side all round. So each tile lies inside its parent's, and
// any box no wider than half a side fits into the tile of its lower left corner.
Envelope NearbyParts::tileRect(int level, int64_t ix, int64_t iy) const
{
    const double s = size_ / double(int64_t(1) << level);
    return {x0_ + (double(ix) - 0.5) * s, y0_ + (double(iy) - 0.5) * s, x0_ + (double(ix) + 1.5) * s,
            y0_ + (double(iy) + 1.5) * s};
}

const NearbyParts::Tile& NearbyParts::tile(int level, int64_t ix, int64_t iy)
{
    if (level == 0) return root_;
    const uint64_t key = tileKey(level, ix, iy);
    if (auto it = tiles_.find(key); it != tiles_.end()) return it->second;

    const Tile& parent = tile(level - 1, ix >> 1, iy >> 1);
    Tile t;
    if (parent.shape) {
        const Envelope r = tileRect(level, ix, iy);
        const Envelope pe = parent.shape->envelope();
        if (r.contains(pe)) {
            t = parent;
        } else if (r.intersects(pe)) {
            auto h = geosContext();
            GeomPtr cut = adoptGeom(GEOSClipByRect_r(h, parent.shape->geom().get(), r.minX, r.minY, r.maxX, r.maxY));
            // The fast rectangle clip: whatever it leaves on the tile's border lies
            // beyond the part that an overlay with a shape inside the tile looks at.
            // Only the area counts.
            if (auto poly = std::dynamic_pointer_cast<Polygon>(shapeFromGeom(cut))) {
                t.shape = poly;
                t.vertices = vertexCount(poly->geom().get());
            }
        }
    }
    return tiles_.emplace(key, std::move(t)).first->second;
}

PolygonPtr NearbyParts::around(const Envelope& env)
{
    if (!whole_ || env.isEmpty()) return whole_;
    if (root_.vertices <= maxVertices_ || size_ <= 0) return whole_;

    // Keep the tile's border clear of the shape, also beyond the margin that
    // the overlay itself clips its inputs to.
    const double w = env.maxX - env.minX, hgt = env.maxY - env.minY;
    const double margin = 0.25 * std::max(w, hgt) + 1e-6 * size_;
    const Envelope e{env.minX - margin, env.minY - margin, env.maxX + margin, env.maxY + margin};

    const Tile* cur = &root_;
    for (int level = 1; level <= kMaxLevel && cur->vertices > maxVertices_; ++level) {
        const double s = size_ / double(int64_t(1) << level);
        const double fx = std::floor((e.minX - x0_) / s), fy = std::floor((e.minY - y0_) / s);
        const double cells = double(int64_t(1) << level);
        if (fx < 0 || fy < 0 || fx >= cells || fy >= cells) break;
        const int64_t ix = int64_t(fx), iy = int64_t(fy);
        if (!tileRect(level, ix, iy).contains(e)) break;
        cur = &tile(level, ix, iy);
        if (!cur->shape) return nullptr;
    }
    return cur->shape;
}

// --- PolygonSet ----------------------------------------------------------------------

PolygonSet::PolygonSet(std::vector<GeomPtr> parts) : parts_(std::move(parts))
{
    auto h = geosContext();
    envs_.reserve(parts_.size());
    for (const GeomPtr& g : parts_) envs_.push_back(Envelope::of(g.get()));
    shapes_.resize(parts_.size());
    tree_ = GEOSSTRtree_create_r(h, 10);
    if (!tree_) throw MapError("no index");
    for (size_t i = 0; i < parts_.size(); ++i)
        if (!envs_[i].isEmpty()) GEOSSTRtree_insert_r(h, tree_, parts_[i].get(), reinterpret_cast<void*>(i));
}

PolygonSet::~PolygonSet()
{
    if (tree_) GEOSSTRtree_destroy_r(geosContext(), tree_);
}

std::vector<int> PolygonSet::near(const Shape& shape) const
{
    std::vector<int> out;
    const Envelope env = shape.envelope();
    if (env.isEmpty() || parts_.empty()) return out;
    GeomPtr g = shape.geom();
    auto collect = [](void* item, void* data) {
        static_cast<std::vector<int>*>(data)->push_back(int(reinterpret_cast<size_t>(item)));
    };
    GEOSSTRtree_query_r(geosContext(), tree_, g.get(), collect, &out);
    // The index may be generous at the borders; only boxes that meet count.
    std::erase_if(out, [&](int i) { return !envs_[size_t(i)].intersects(env); });
    std::sort(out.begin(), out.end());
    return out;
}

const GeoShape& PolygonSet::part(int i)
{
    auto& s = shapes_[size_t(i)];
    if (!s) s = std::make_shared<Polygon>(parts_[size_t(i)]);
    return *s;
}

PolygonPtr PolygonSet::whole()
{
    if (!wholeMade_) {
        whole_ = unionAll(parts_);
        wholeMade_ = true;
    }
    return whole_;
}

// Only the parts that meet the shape count; the cut with their union is the
// union of the cuts with each, all of them inside the shape and so small.
ShapePtr PolygonSet::intersect(const ShapePtr& shape)
{
    if (!shape) throw MapError("intersect with nothing");
    const std::vector<int> ids = near(*shape);
    if (ids.empty()) return nullptr;
    auto h = geosContext();
    GeomPtr g = shape->geom();
    const Envelope e = shape->envelope();
    const int type = GEOSGeomTypeId_r(h, g.get());
    const bool areas = type == GEOS_POLYGON || type == GEOS_MULTIPOLYGON;
    auto test = [](char answer) {
        if (answer != 0 && answer != 1) throw MapError("predicate failed");
        return answer == 1;
    };
    std::vector<int> hits;
    for (int i : ids) {
        const GEOSPreparedGeometry* p = part(i).prepared();
        if (areas && envs_[size_t(i)].contains(e) && test(GEOSPreparedContainsProperly_r(h, p, g.get())))
            return shapeFromGeom(adoptGeom(GEOSGeom_clone_r(h, g.get())));
        if (test(GEOSPreparedIntersects_r(h, p, g.get()))) hits.push_back(i);
    }
    if (hits.empty()) return nullptr;
    if (hits.size() == 1) return part(hits.front()).Intersect(shape);
    std::vector<GeomPtr> pieces;
    for (int i : hits)
        if (ShapePtr piece = part(i).Intersect(shape)) pieces.push_back(piece->geom());
    return unionAll(pieces);
}

// Likewise only the parts that meet the shape take something away.
ShapePtr PolygonSet::subtractFrom(const ShapePtr& shape)
{
    auto geo = std::dynamic_pointer_cast<GeoShape>(shape);
    if (!geo) throw MapError("difference of nothing");
    auto h = geosContext();
    GeomPtr g = shape->geom();
    auto test = [](char answer) {
        if (answer != 0 && answer != 1) throw MapError("predicate failed");
        return answer == 1;
    };
    std::vector<int> hits;
    for (int i : near(*shape)) {
        const GEOSPreparedGeometry* p = part(i).prepared();
        if (envs_[size_t(i)].contains(shape->envelope()) && test(GEOSPreparedContainsProperly_r(h, p, g.get())))
            return nullptr;
        if (test(GEOSPreparedIntersects_r(h, p, g.get()))) hits.push_back(i);
    }
    if (hits.empty()) return shape;
    if (hits.size() == 1) return geo->Difference(shapes_[size_t(hits.front())]);
    // Each of them meets the shape: a pre-test of their union, made for this
    // cut alone, would only cost its preparation.
    std::vector<GeomPtr> near;
    for (int i : hits) near.push_back(parts_[size_t(i)]);
    PolygonPtr all = unionAll(near);
    if (!all) return shape;
    return shapeFromGeom(adoptGeom(GEOSDifference_r(h, g.get(), all->geom().get())));
}

// --- union ------------------------------------------------------------------------

PolygonPtr unionAll(const std::vector<GeomPtr>& polygons)
{
    if (polygons.empty()) return nullptr;
    if (polygons.size() == 1) return asPolygon(shapeFromGeom(polygons.front()));
    auto h = geosContext();
    std::vector<GEOSGeometry*> parts;
    parts.reserve(polygons.size());
    try {
        for (const GeomPtr& g : polygons) {
            GEOSGeometry* c = GEOSGeom_clone_r(h, g.get());
            if (!c) throw MapError("clone failed");
            parts.push_back(c);
        }
    } catch (...) {
        for (GEOSGeometry* c : parts) GEOSGeom_destroy_r(h, c);
        throw;
    }
    GeomPtr all = adoptGeom(GEOSGeom_createCollection_r(h, GEOS_GEOMETRYCOLLECTION, parts.data(), unsigned(parts.size())));
    return asPolygon(shapeFromGeom(adoptGeom(GEOSUnaryUnion_r(h, all.get()))));
}

}  // namespace overlay
