#pragma once
// GEOS work on the layers: repair, clipping to the country (or to a margin
// round it) and keeping the parts of one dimension.
#include <memory>

#include "mapping/geometry.h"

class OGRGeometry;

namespace prepare {

// The GEOS geometry of an OGR geometry; none for an empty or unconvertible one.
GeomPtr toGeos(const OGRGeometry& g);
// The geometry itself when valid, else its repaired form.
GeomPtr makeValid(const GeomPtr& g);
// The parts of dimension dim (0 points, 1 lines, 2 polygons) as one
// geometry; none when there are none.
GeomPtr partsOfDimension(const GEOSGeometry* g, int dim);
GeomPtr square(double x0, double y0, double size);

// An area with a prepared form for the many tests against it.
class ClipArea {
public:
    ClipArea() = default;
    explicit ClipArea(GeomPtr area);
    const GeomPtr& area() const { return area_; }
    // The part of g inside the area, of dimension dim; none when nothing is left.
    GeomPtr clip(const GeomPtr& g, int dim) const;

private:
    GeomPtr area_;
    std::shared_ptr<const GEOSPreparedGeometry> prepared_;
};

}  // namespace prepare
