#pragma once
// Shapes of the mapping component over GEOS. Geometries are immutable and
// shared, so a shape handed out by a record stays valid after the cursor moves.
#include <geos_c.h>
#include <memory>
#include <QPolygonF>
#include <QRectF>
#include <vector>

#include "mapping/maperror.h"

// Shape type codes of the component.
enum ShapeTypeCode { moPoint = 21, moLine = 22, moPolygon = 23, moRectangle = 24, moNullShape = 0 };

GEOSContextHandle_t geosContext();  // one per thread, with a non-throwing message handler

struct GeomDeleter { void operator()(GEOSGeometry* g) const; };
struct PreparedDeleter { void operator()(const GEOSPreparedGeometry* g) const; };
using GeomPtr = std::shared_ptr<const GEOSGeometry>;
using PreparedPtr = std::unique_ptr<const GEOSPreparedGeometry, PreparedDeleter>;

// Takes ownership of a GEOS result; a null result becomes a MapError carrying GEOS's message.
GeomPtr adoptGeom(GEOSGeometry* g);

struct Envelope {
    double minX = 0, minY = 0, maxX = -1, maxY = -1;  // empty when max < min
    bool isEmpty() const { return maxX < minX || maxY < minY; }
    bool intersects(const Envelope& o) const {
        return !isEmpty() && !o.isEmpty() && minX <= o.maxX && o.minX <= maxX && minY <= o.maxY && o.minY <= maxY;
    }
    bool contains(const Envelope& o) const {
        return !isEmpty() && !o.isEmpty() && minX <= o.minX && o.maxX <= maxX && minY <= o.minY && o.maxY <= maxY;
    }
    void expand(const Envelope& o);
    QRectF toRect() const { return QRectF(minX, minY, maxX - minX, maxY - minY); }
    static Envelope of(const GEOSGeometry* g);
};

class Shape;
class Rectangle;
class Point;
class Polygon;
class Line;
using ShapePtr = std::shared_ptr<Shape>;
using RectanglePtr = std::shared_ptr<Rectangle>;
using PointPtr = std::shared_ptr<Point>;
using PolygonPtr = std::shared_ptr<Polygon>;
using LinePtr = std::shared_ptr<Line>;

class Shape : public std::enable_shared_from_this<Shape> {
public:
    virtual ~Shape() = default;
    virtual int shapeType() const = 0;
    // The GEOS geometry of the shape (a rectangle builds its polygon).
    virtual GeomPtr geom() const = 0;
    virtual Envelope envelope() const = 0;
};

// Turns a GEOS geometry into the component's shape object: polygonal results
// become a Polygon (one or more parts), lines a Line, points a Point.
ShapePtr shapeFromGeom(GeomPtr g);
// A result taken "as a Polygon": anything else is a misuse.
PolygonPtr asPolygon(const ShapePtr& s);

class Rectangle : public Shape {
public:
    Rectangle() = default;
    Rectangle(double left, double bottom, double right, double top) : Left(left), Right(right), Bottom(bottom), Top(top) {}
    static RectanglePtr fromEnvelope(const Envelope& e) { return std::make_shared<Rectangle>(e.minX, e.minY, e.maxX, e.maxY); }

    double Left = 0, Right = 0, Bottom = 0, Top = 0;
    double Width() const { return Right - Left; }
    double Height() const { return Top - Bottom; }
    // Scales in place about the centre; a factor below 1 makes it smaller.
    void ScaleRectangle(double factor);
    // The rectangle grown by distance as a polygon; distance 0 gives the like polygon.
    PolygonPtr Buffer(double distance, const RectanglePtr& extent = nullptr) const;
    RectanglePtr copy() const { return std::make_shared<Rectangle>(*this); }

    int shapeType() const override { return moRectangle; }
    GeomPtr geom() const override;
    Envelope envelope() const override { return {Left, Bottom, Right, Top}; }
};

class Point : public Shape {
public:
    Point(double x, double y);
    explicit Point(GeomPtr g);
    double X() const { return x_; }
    double Y() const { return y_; }
    // Distance in map units to the nearest place of the shape.
    double DistanceTo(const ShapePtr& shape) const;

    int shapeType() const override { return moPoint; }
    GeomPtr geom() const override { return g_; }
    Envelope envelope() const override { return {x_, y_, x_, y_}; }

private:
    double x_, y_;
    GeomPtr g_;
};

// Polygon and line share the overlays. Results of Intersect and Difference are
// none when empty; the Rectangle argument is the working extent, which holds
// all data and so never cuts a result.
class GeoShape : public Shape {
public:
    explicit GeoShape(GeomPtr g);
    // With its box already known, as a layer keeps it for each record.
    GeoShape(GeomPtr g, const Envelope& env);
    GeomPtr geom() const override { return g_; }
    Envelope envelope() const override { return env_; }

    ShapePtr Union(const ShapePtr& other, const RectanglePtr& extent = nullptr) const;
    ShapePtr Intersect(const ShapePtr& other, const RectanglePtr& extent = nullptr) const;
    ShapePtr Difference(const ShapePtr& other, const RectanglePtr& extent = nullptr) const;
    PolygonPtr Buffer(double distance) const;
    PointPtr Centroid() const;
    double Area() const;

    // Prepared form, made at first use; for exact pre-tests (contains, disjoint).
    const GEOSPreparedGeometry* prepared() const;

protected:
    GeomPtr g_;
    Envelope env_;
    mutable PreparedPtr prepared_;
};

class Polygon : public GeoShape {
public:
    using GeoShape::GeoShape;
    int shapeType() const override { return moPolygon; }
    int partCount() const;
};

class Line : public GeoShape {
public:
    using GeoShape::GeoShape;
    int shapeType() const override { return moLine; }
};

// Geometry parsing helpers, used by tests and tools.
GeomPtr geomFromWkt(const char* wkt);
std::string geomToWkt(const GEOSGeometry* g);
