#include "prepare/geom.h"

#include <ogr_geometry.h>
#include <vector>

namespace prepare {

GeomPtr toGeos(const OGRGeometry& g)
{
    if (g.IsEmpty()) return nullptr;
    GEOSGeometry* gg = g.exportToGEOS(geosContext());
    return gg ? GeomPtr(gg, GeomDeleter()) : nullptr;
}

GeomPtr makeValid(const GeomPtr& g)
{
    auto h = geosContext();
    if (!g || GEOSisValid_r(h, g.get()) == 1) return g;
    GEOSGeometry* v = GEOSMakeValid_r(h, g.get());
    return v ? GeomPtr(v, GeomDeleter()) : nullptr;
}

namespace {

void collect(GEOSContextHandle_t h, const GEOSGeometry* g, int dim, std::vector<GEOSGeometry*>& out)
{
    const int type = GEOSGeomTypeId_r(h, g);
    if (type == GEOS_MULTIPOINT || type == GEOS_MULTILINESTRING || type == GEOS_MULTIPOLYGON ||
        type == GEOS_GEOMETRYCOLLECTION) {
        for (int i = 0; i < GEOSGetNumGeometries_r(h, g); ++i) collect(h, GEOSGetGeometryN_r(h, g, i), dim, out);
        return;
    }
    const int d = type == GEOS_POINT ? 0 : type == GEOS_POLYGON ? 2 : 1;
    if (d == dim && !GEOSisEmpty_r(h, g)) out.push_back(GEOSGeom_clone_r(h, g));
}

}  // namespace

GeomPtr partsOfDimension(const GEOSGeometry* g, int dim)
{
    if (!g) return nullptr;
    auto h = geosContext();
    std::vector<GEOSGeometry*> parts;
    collect(h, g, dim, parts);
    if (parts.empty()) return nullptr;
    if (parts.size() == 1) return GeomPtr(parts[0], GeomDeleter());
    const int multi = dim == 0 ? GEOS_MULTIPOINT : dim == 1 ? GEOS_MULTILINESTRING : GEOS_MULTIPOLYGON;
    return adoptGeom(GEOSGeom_createCollection_r(h, multi, parts.data(), unsigned(parts.size())));
}

GeomPtr square(double x0, double y0, double size)
{
    return adoptGeom(GEOSGeom_createRectangle_r(geosContext(), x0, y0, x0 + size, y0 + size));
}

ClipArea::ClipArea(GeomPtr area) : area_(std::move(area))
{
    prepared_.reset(GEOSPrepare_r(geosContext(), area_.get()), PreparedDeleter());
}

GeomPtr ClipArea::clip(const GeomPtr& g, int dim) const
{
    if (!g) return nullptr;
    auto h = geosContext();
    if (GEOSPreparedContains_r(h, prepared_.get(), g.get()) == 1) return partsOfDimension(g.get(), dim);
    if (GEOSPreparedIntersects_r(h, prepared_.get(), g.get()) != 1) return nullptr;
    GEOSGeometry* piece = GEOSIntersection_r(h, g.get(), area_.get());
    if (!piece) return nullptr;
    GeomPtr owned(piece, GeomDeleter());
    return partsOfDimension(owned.get(), dim);
}

}  // namespace prepare
