#include "mapping/geometry.h"

#include <cmath>
#include <cstdarg>
#include <cstdio>
#include <string>

namespace {

// GEOS reports through this handler; we keep the last message and throw from
// our own code once the call has returned, never from inside GEOS.
struct GeosThreadContext {
    GEOSContextHandle_t handle = nullptr;
    std::string lastError;
    GeosThreadContext() {
        handle = GEOS_init_r();
        GEOSContext_setErrorMessageHandler_r(handle, &GeosThreadContext::onError, this);
        GEOSContext_setNoticeMessageHandler_r(handle, &GeosThreadContext::onNotice, this);
    }
    ~GeosThreadContext() { GEOS_finish_r(handle); }
    static void onError(const char* message, void* userdata) {
        static_cast<GeosThreadContext*>(userdata)->lastError = message ? message : "GEOS error";
    }
    static void onNotice(const char*, void*) {}
};

GeosThreadContext& ctx()
{
    thread_local GeosThreadContext c;
    return c;
}

[[noreturn]] void fail(const char* what)
{
    std::string m = what;
    if (!ctx().lastError.empty()) m += ": " + ctx().lastError;
    ctx().lastError.clear();
    throw MapError(m);
}

GEOSGeometry* cloneOf(const GEOSGeometry* g)
{
    GEOSGeometry* c = GEOSGeom_clone_r(geosContext(), g);
    if (!c) fail("clone");
    return c;
}

// Keeps only the polygonal parts of a result; null when none remain.
GeomPtr polygonalPart(GeomPtr g)
{
    auto h = geosContext();
    if (!g || GEOSisEmpty_r(h, g.get())) return nullptr;
    int type = GEOSGeomTypeId_r(h, g.get());
    if (type == GEOS_POLYGON || type == GEOS_MULTIPOLYGON) return g;
    if (type != GEOS_GEOMETRYCOLLECTION) return nullptr;
    std::vector<GEOSGeometry*> parts;
    int n = GEOSGetNumGeometries_r(h, g.get());
    for (int i = 0; i < n; ++i) {
        const GEOSGeometry* part = GEOSGetGeometryN_r(h, g.get(), i);
        int t = GEOSGeomTypeId_r(h, part);
        if (t == GEOS_POLYGON && !GEOSisEmpty_r(h, part)) {
            parts.push_back(cloneOf(part));
        } else if (t == GEOS_MULTIPOLYGON) {
            int m = GEOSGetNumGeometries_r(h, part);
            for (int j = 0; j < m; ++j) parts.push_back(cloneOf(GEOSGetGeometryN_r(h, part, j)));
        }
    }
    if (parts.empty()) return nullptr;
    if (parts.size() == 1) return adoptGeom(parts[0]);
    return adoptGeom(GEOSGeom_createCollection_r(h, GEOS_MULTIPOLYGON, parts.data(), unsigned(parts.size())));
}

bool isPolygonal(const GEOSGeometry* g)
{
    int t = GEOSGeomTypeId_r(geosContext(), g);
    return t == GEOS_POLYGON || t == GEOS_MULTIPOLYGON;
}

}  // namespace

GEOSContextHandle_t geosContext() { return ctx().handle; }

void GeomDeleter::operator()(GEOSGeometry* g) const
{
    if (g) GEOSGeom_destroy_r(geosContext(), g);
}

void PreparedDeleter::operator()(const GEOSPreparedGeometry* g) const
{
    if (g) GEOSPreparedGeom_destroy_r(geosContext(), g);
}

GeomPtr adoptGeom(GEOSGeometry* g)
{
    if (!g) fail("geometry operation failed");
    return GeomPtr(g, GeomDeleter());
}

void Envelope::expand(const Envelope& o)
{
    if (o.isEmpty()) return;
    if (isEmpty()) { *this = o; return; }
    minX = std::min(minX, o.minX);
    minY = std::min(minY, o.minY);
    maxX = std::max(maxX, o.maxX);
    maxY = std::max(maxY, o.maxY);
}

Envelope Envelope::of(const GEOSGeometry* g)
{
    Envelope e;
    if (!g) return e;
    auto h = geosContext();
    if (GEOSisEmpty_r(h, g)) return e;
    if (!GEOSGeom_getXMin_r(h, g, &e.minX) || !GEOSGeom_getYMin_r(h, g, &e.minY) ||
        !GEOSGeom_getXMax_r(h, g, &e.maxX) || !GEOSGeom_getYMax_r(h, g, &e.maxY))
        return Envelope();
    return e;
}

ShapePtr shapeFromGeom(GeomPtr g)
{
    if (!g) return nullptr;
    auto h = geosContext();
    if (GEOSisEmpty_r(h, g.get())) return nullptr;
    switch (GEOSGeomTypeId_r(h, g.get())) {
    case GEOS_POLYGON:
    case GEOS_MULTIPOLYGON:
        return std::make_shared<Polygon>(std::move(g));
    case GEOS_LINESTRING:
    case GEOS_LINEARRING:
    case GEOS_MULTILINESTRING:
        return std::make_shared<Line>(std::move(g));
    case GEOS_POINT:
        return std::make_shared<Point>(std::move(g));
    default: {
        // A mixed collection: the polygonal part wins, as overlays of areas want.
        if (GeomPtr poly = polygonalPart(g)) return std::make_shared<Polygon>(std::move(poly));
        return nullptr;
    }
    }
}

PolygonPtr asPolygon(const ShapePtr& s)
{
    if (!s) return nullptr;
    auto p = std::dynamic_pointer_cast<Polygon>(s);
    if (!p) throw MapError("shape is not a polygon");
    return p;
}

// --- Rectangle ---------------------------------------------------------------

void Rectangle::ScaleRectangle(double factor)
{
    double cx = (Left + Right) / 2, cy = (Bottom + Top) / 2;
    double hw = Width() * factor / 2, hh = Height() * factor / 2;
    Left = cx - hw;
    Right = cx + hw;
    Bottom = cy - hh;
    Top = cy + hh;
}

GeomPtr Rectangle::geom() const
{
    auto h = geosContext();
    double l = std::min(Left, Right), r = std::max(Left, Right);
    double b = std::min(Bottom, Top), t = std::max(Bottom, Top);
    return adoptGeom(GEOSGeom_createRectangle_r(h, l, b, r, t));
}

PolygonPtr Rectangle::Buffer(double distance, const RectanglePtr&) const
{
    GeomPtr g = geom();
    if (distance != 0) g = adoptGeom(GEOSBuffer_r(geosContext(), g.get(), distance, 8));
    if (!isPolygonal(g.get())) throw MapError("rectangle has no area");
    return std::make_shared<Polygon>(std::move(g));
}

// --- Point -------------------------------------------------------------------

Point::Point(double x, double y) : x_(x), y_(y)
{
    g_ = adoptGeom(GEOSGeom_createPointFromXY_r(geosContext(), x, y));
}

Point::Point(GeomPtr g) : g_(std::move(g))
{
    auto h = geosContext();
    if (GEOSGeomTypeId_r(h, g_.get()) != GEOS_POINT || !GEOSGeomGetX_r(h, g_.get(), &x_) ||
        !GEOSGeomGetY_r(h, g_.get(), &y_))
        fail("not a point");
}

double Point::DistanceTo(const ShapePtr& shape) const
{
    if (!shape) throw MapError("distance to nothing");
    double d = 0;
    GeomPtr other = shape->geom();
    if (!GEOSDistance_r(geosContext(), g_.get(), other.get(), &d)) fail("distance");
    return d;
}

// --- GeoShape ----------------------------------------------------------------

GeoShape::GeoShape(GeomPtr g) : g_(std::move(g))
{
    if (!g_) throw MapError("empty shape");
    env_ = Envelope::of(g_.get());
}

GeoShape::GeoShape(GeomPtr g, const Envelope& env) : g_(std::move(g)), env_(env)
{
    if (!g_) throw MapError("empty shape");
}

const GEOSPreparedGeometry* GeoShape::prepared() const
{
    if (!prepared_) {
        const GEOSPreparedGeometry* p = GEOSPrepare_r(geosContext(), g_.get());
        if (!p) fail("prepare");
        prepared_.reset(p);
    }
    return prepared_.get();
}

ShapePtr GeoShape::Union(const ShapePtr& other, const RectanglePtr&) const
{
    if (!other) throw MapError("union with nothing");
    GeomPtr o = other->geom();
    return shapeFromGeom(adoptGeom(GEOSUnion_r(geosContext(), g_.get(), o.get())));
}

ShapePtr GeoShape::Intersect(const ShapePtr& other, const RectanglePtr&) const
{
    if (!other) throw MapError("intersect with nothing");
    auto h = geosContext();
    Envelope oe = other->envelope();
    if (!env_.intersects(oe)) return nullptr;  // disjoint boxes: the overlay would be empty
    GeomPtr o = other->geom();
    const bool areas = shapeType() == moPolygon && isPolygonal(o.get());
    if (areas) {
        // Exact shortcuts for the common cases: one lies inside the other. The
        // inner one comes back as it is; geometries are never changed once made.
        if (env_.contains(oe) && GEOSPreparedContainsProperly_r(h, prepared(), o.get()) == 1)
            return shapeFromGeom(o);
        if (auto os = std::dynamic_pointer_cast<const GeoShape>(other)) {
            if (oe.contains(env_) && GEOSPreparedContainsProperly_r(h, os->prepared(), g_.get()) == 1)
                return shapeFromGeom(g_);
        }
        // Boxes that meet at a corner: the exact test costs a fraction of the overlay.
        if (GEOSPreparedIntersects_r(h, prepared(), o.get()) == 0) return nullptr;
    }
    GeomPtr r = adoptGeom(GEOSIntersection_r(h, g_.get(), o.get()));
    if (GEOSisEmpty_r(h, r.get())) return nullptr;
    if (areas) return shapeFromGeom(polygonalPart(r));
    return shapeFromGeom(r);
}

ShapePtr GeoShape::Difference(const ShapePtr& other, const RectanglePtr&) const
{
    if (!other) throw MapError("difference with nothing");
    auto h = geosContext();
    if (!env_.intersects(other->envelope())) return shapeFromGeom(g_);  // nothing to take away
    GeomPtr o = other->geom();
    if (shapeType() == moPolygon && other->shapeType() == moPolygon) {
        if (auto os = std::dynamic_pointer_cast<const GeoShape>(other)) {
            if (other->envelope().contains(env_) && GEOSPreparedContainsProperly_r(h, os->prepared(), g_.get()) == 1)
                return nullptr;  // wholly inside: nothing is left
            if (GEOSPreparedIntersects_r(h, os->prepared(), g_.get()) == 0) return shapeFromGeom(g_);  // nothing to take away
        }
    }
    GeomPtr r = adoptGeom(GEOSDifference_r(h, g_.get(), o.get()));
    if (GEOSisEmpty_r(h, r.get())) return nullptr;
    if (shapeType() == moPolygon) return shapeFromGeom(polygonalPart(r));
    return shapeFromGeom(r);
}

PolygonPtr GeoShape::Buffer(double distance) const
{
    GeomPtr r = adoptGeom(GEOSBuffer_r(geosContext(), g_.get(), distance, 8));
    GeomPtr poly = polygonalPart(r);
    if (!poly) throw MapError("buffer has no area");
    return std::make_shared<Polygon>(std::move(poly));
}

PointPtr GeoShape::Centroid() const
{
    GeomPtr c = adoptGeom(GEOSGetCentroid_r(geosContext(), g_.get()));
    if (GEOSisEmpty_r(geosContext(), c.get())) throw MapError("no centroid");
    return std::make_shared<Point>(std::move(c));
}

double GeoShape::Area() const
{
    double a = 0;
    if (!GEOSArea_r(geosContext(), g_.get(), &a)) fail("area");
    return a;
}

int Polygon::partCount() const { return GEOSGetNumGeometries_r(geosContext(), g_.get()); }

GeomPtr geomFromWkt(const char* wkt)
{
    auto h = geosContext();
    GEOSWKTReader* r = GEOSWKTReader_create_r(h);
    GEOSGeometry* g = GEOSWKTReader_read_r(h, r, wkt);
    GEOSWKTReader_destroy_r(h, r);
    return adoptGeom(g);
}

std::string geomToWkt(const GEOSGeometry* g)
{
    auto h = geosContext();
    GEOSWKTWriter* w = GEOSWKTWriter_create_r(h);
    GEOSWKTWriter_setTrim_r(h, w, 1);
    char* s = GEOSWKTWriter_write_r(h, w, g);
    std::string out = s ? s : "";
    GEOSFree_r(h, s);
    GEOSWKTWriter_destroy_r(h, w);
    return out;
}
