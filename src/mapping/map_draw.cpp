// The map control's drawing: a layer pass over the features in view, the
// result shapes drawn inside the draw events, symbol samples for the legend.
#include <QPainterPath>
#include <QPointer>
#include <QSet>
#include <cmath>

#include "mapping/map_impl.h"

namespace mapview {

QColor colorOf(int c) { return QColor(RedOf(c), GreenOf(c), BlueOf(c)); }

Qt::BrushStyle fillPattern(int style)
{
    switch (style) {
    case 1: return Qt::NoBrush;
    case 2: return Qt::HorPattern;
    case 3: return Qt::VerPattern;
    case 4: return Qt::BDiagPattern;
    case 5: return Qt::FDiagPattern;
    case 6: return Qt::CrossPattern;
    case 7: return Qt::DiagCrossPattern;
    case 8: return Qt::Dense6Pattern;
    case 9: return Qt::Dense4Pattern;
    case 10: return Qt::Dense2Pattern;
    default: return Qt::SolidPattern;
    }
}

Qt::PenStyle lineStyle(int style)
{
    switch (style) {
    case 1: return Qt::DashLine;
    case 2: return Qt::DotLine;
    case 3: return Qt::DashDotLine;
    case 4: return Qt::DashDotDotLine;
    default: return Qt::SolidLine;
    }
}

enum class Kind { Polygon, Line, Point };

Kind kindOf(int shapeType)
{
    switch (shapeType) {
    case moPoint: return Kind::Point;
    case moLine: return Kind::Line;
    default: return Kind::Polygon;
    }
}

// Pens and brush of one symbol for one kind of shape, made once per change of
// symbol rather than per feature.
struct Look {
    Kind kind = Kind::Polygon;
    QPen pen;
    QBrush brush;
    QColor dot;          // colour of a feature too small to draw
    double marker = 7;   // marker size in device pixels
    int markerStyle = 0;
};

// Widths up to one pixel become cosmetic pens, the fastest the raster engine has.
double penWidth(double size, double scale)
{
    double w = size * scale;
    return w <= 1.0 ? 0.0 : w;
}

Look makeLook(const Symbol& s, Kind kind, double scale)
{
    Look look;
    look.kind = kind;
    QColor color = colorOf(s.Color);
    switch (kind) {
    case Kind::Polygon: {
        Qt::BrushStyle pattern = fillPattern(s.Style);
        look.brush = pattern == Qt::NoBrush ? QBrush(Qt::NoBrush) : QBrush(color, pattern);
        look.pen = s.Outline ? QPen(colorOf(s.OutlineColor), penWidth(s.Size, scale)) : QPen(Qt::NoPen);
        look.dot = pattern == Qt::SolidPattern || !s.Outline ? color : colorOf(s.OutlineColor);
        break;
    }
    case Kind::Line:
        look.pen = QPen(color, penWidth(s.Size, scale), lineStyle(s.Style), Qt::FlatCap, Qt::BevelJoin);
        look.brush = Qt::NoBrush;
        look.dot = color;
        break;
    case Kind::Point:
        // Sizes below 3 are taken as "not set": a marker must stay visible.
        look.marker = (s.Size >= 3 ? s.Size : 7.0) * scale;
        look.markerStyle = s.Style;
        if (s.Style == 3) {
            look.pen = QPen(color, std::max(1.0, std::round(look.marker / 4)));
            look.brush = Qt::NoBrush;
        } else {
            look.pen = s.Outline ? QPen(colorOf(s.OutlineColor), penWidth(1, scale)) : QPen(Qt::NoPen);
            look.brush = QBrush(color);
        }
        look.dot = color;
        break;
    }
    return look;
}

void applyLook(QPainter& p, const Look& look)
{
    p.setPen(look.pen);
    p.setBrush(look.brush);
}

void drawMarker(QPainter& p, const QPointF& c, const Look& look)
{
    const double d = look.marker, r = d / 2;
    switch (look.markerStyle) {
    case 1:
        p.drawRect(QRectF(c.x() - r, c.y() - r, d, d));
        break;
    case 2: {
        const QPointF tri[3] = {{c.x(), c.y() - r}, {c.x() + r, c.y() + r}, {c.x() - r, c.y() + r}};
        p.drawPolygon(tri, 3);
        break;
    }
    case 3:
        p.drawLine(QPointF(c.x() - r, c.y()), QPointF(c.x() + r, c.y()));
        p.drawLine(QPointF(c.x(), c.y() - r), QPointF(c.x(), c.y() + r));
        break;
    default:
        p.drawEllipse(c, r, r);
        break;
    }
}

// Device outline of a ring or path, in whole pixels, without the runs of
// points that fall on the same pixel: at full extent most vertices do.
void toDevice(const QPolygonF& in, const Xf& t, QPolygonF& out)
{
    out.resize(0);
    out.reserve(in.size());
    double lastX = std::nan(""), lastY = 0;
    for (const QPointF& pt : in) {
        double x = std::round(t.ax + pt.x() * t.s), y = std::round(t.ay - pt.y() * t.s);
        if (x == lastX && y == lastY) continue;
        out.append(QPointF(x, y));
        lastX = x;
        lastY = y;
    }
}

bool numberOf(const QVariant& v, double& out)
{
    switch (v.typeId()) {
    case QMetaType::Double:
    case QMetaType::Float:
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
        out = v.toDouble();
        return true;
    case QMetaType::QString: {
        bool ok = false;
        out = v.toString().trimmed().toDouble(&ok);
        return ok;
    }
    default:
        return false;
    }
}

QString textOf(const QVariant& v)
{
    switch (v.typeId()) {
    case QMetaType::QString: return v.toString();
    case QMetaType::Double:
    case QMetaType::Float: return QString::number(v.toDouble(), 'g', 15);
    default: return v.isValid() ? v.toString() : QString();
    }
}

// Rings, paths and points of a GEOS geometry, in map units.
void collectGeom(GEOSContextHandle_t h, const GEOSGeometry* g, std::vector<QPolygonF>& rings,
                 std::vector<QPointF>& points)
{
    if (!g) return;
    auto seqToPolygon = [&](const GEOSGeometry* line) {
        const GEOSCoordSequence* seq = GEOSGeom_getCoordSeq_r(h, line);
        unsigned int n = 0;
        if (!seq || !GEOSCoordSeq_getSize_r(h, seq, &n)) return;
        QPolygonF poly;
        poly.reserve(int(n));
        for (unsigned int i = 0; i < n; ++i) {
            double x = 0, y = 0;
            GEOSCoordSeq_getXY_r(h, seq, i, &x, &y);
            poly.append(QPointF(x, y));
        }
        rings.push_back(std::move(poly));
    };
    switch (GEOSGeomTypeId_r(h, g)) {
    case GEOS_POINT: {
        if (GEOSisEmpty_r(h, g) == 1) return;
        double x = 0, y = 0;
        GEOSGeomGetX_r(h, g, &x);
        GEOSGeomGetY_r(h, g, &y);
        points.emplace_back(x, y);
        break;
    }
    case GEOS_LINESTRING:
    case GEOS_LINEARRING:
        seqToPolygon(g);
        break;
    case GEOS_POLYGON: {
        if (GEOSisEmpty_r(h, g) == 1) return;
        seqToPolygon(GEOSGetExteriorRing_r(h, g));
        int holes = GEOSGetNumInteriorRings_r(h, g);
        for (int i = 0; i < holes; ++i) seqToPolygon(GEOSGetInteriorRingN_r(h, g, i));
        break;
    }
    default: {
        int n = GEOSGetNumGeometries_r(h, g);
        for (int i = 0; i < n; ++i) collectGeom(h, GEOSGetGeometryN_r(h, g, i), rings, points);
        break;
    }
    }
}

}  // namespace mapview

using namespace mapview;

void Map::Impl::renderCache()
{
    sync();
    const QSize size = q->size().expandedTo(QSize(1, 1));
    const qreal dpr = q->devicePixelRatioF();
    const QSize pixels(int(std::ceil(size.width() * dpr)), int(std::ceil(size.height() * dpr)));
    if (cache.size() != pixels) cache = QImage(pixels, QImage::Format_ARGB32_Premultiplied);
    cache.setDevicePixelRatio(dpr);
    // Font point sizes on the image as on the screen.
    cache.setDotsPerMeterX(int(std::lround(q->logicalDpiX() / 0.0254)));
    cache.setDotsPerMeterY(int(std::lround(q->logicalDpiY() / 0.0254)));
    cache.fill(Qt::white);
    // Valid before the events run, so that a repaint asked for by a handler
    // only blits.
    valid = true;
    again = false;
    {
        QPainter p(&cache);
        run(p, QRectF(QPointF(0, 0), QSizeF(size)), extent, 1.0);
    }
    if (again) {
        valid = false;
        q->update();
    }
}

void Map::Impl::run(QPainter& p, const QRectF& box, const Envelope& view, double scale)
{
    Pass here{&p, Xf(box, view), scale, box, view};
    Pass* outer = pass;
    pass = &here;
    QPointer<Map> guard(q);
    try {
        for (int i = layers().Count() - 1; i >= 0; --i) {
            if (i >= layers().Count()) continue;
            MapLayerPtr layer = layers().Item(i);
            if (!layer || !layer->Visible) continue;
            emit q->BeforeLayerDraw(i, &p);
            if (!guard) return;
            p.save();
            try {
                drawLayer(here, *layer);
            } catch (...) {
                // A layer that cannot be drawn leaves the others to be drawn.
            }
            p.restore();
            emit q->AfterLayerDraw(i, &p);
            if (!guard) return;
        }
        emit q->BeforeTrackingLayerDraw(&p);
        if (!guard) return;
        emit q->AfterTrackingLayerDraw(&p);
        if (!guard) return;
    } catch (...) {
    }
    pass = outer;
}

void Map::Impl::drawLayer(const Pass& ps, const MapLayer& layer)
{
    GeoDatasetPtr ds = layer.GeoDataset();
    if (!ds || ds->count() == 0) return;
    QPainter& p = *ps.painter;
    p.setRenderHint(QPainter::Antialiasing, false);
    p.setClipRect(ps.box, Qt::IntersectClip);

    auto breaks = std::dynamic_pointer_cast<ClassBreaksRenderer>(layer.Renderer);
    auto values = std::dynamic_pointer_cast<ValueMapRenderer>(layer.Renderer);
    auto labels = std::dynamic_pointer_cast<LabelRenderer>(layer.Renderer);
    int field = -1;
    if (breaks) field = ds->fieldIndex(breaks->Field);
    if (values) field = ds->fieldIndex(values->Field);
    static const Symbol fallback;
    const Symbol* base = layer.Symbol ? layer.Symbol.get() : &fallback;
    const int layerType = ds->shapeType();

    // A pixel of margin so that outlines at the edge of the view are drawn.
    const double m = 2 / ps.xf.s;
    const Envelope query{ps.view.minX - m, ps.view.minY - m, ps.view.maxX + m, ps.view.maxY + m};
    const std::vector<int> ids = ds->candidates(query);

    const Symbol* current = nullptr;
    Kind currentKind = Kind::Polygon;
    Look look;
    QPolygonF device;
    for (int fid : ids) {
        const Symbol* s = base;
        if (field >= 0) {
            const QVariant& v = ds->value(fid, field);
            if (breaks) {
                double x = 0;
                if (numberOf(v, x)) {
                    const SymbolPtr& cls = breaks->Symbol(breaks->classOf(x));
                    if (cls) s = cls.get();
                }
            } else {
                int k = values->indexOf(textOf(v));
                if (k >= 0) {
                    SymbolPtr cls = values->Symbol(k);
                    if (cls) s = cls.get();
                }
            }
        }
        int type = ds->recordShapeType(fid);
        if (type == moNullShape) continue;
        Kind kind = kindOf(type == moRectangle ? moPolygon : (type ? type : layerType));
        if (s != current || kind != currentKind || !current) {
            look = makeLook(*s, kind, ps.scale);
            applyLook(p, look);
            current = s;
            currentKind = kind;
        }
        drawFeature(p, ps.xf, ds->parts(fid), ds->envelope(fid), look, device);
    }
    if (labels) drawLabels(ps, *ds, ids, *labels);
}

void Map::Impl::drawFeature(QPainter& p, const Xf& xf, const std::vector<QPolygonF>& parts, const Envelope& env,
                        const Look& look, QPolygonF& device)
{
    if (look.kind == Kind::Point) {
        for (const QPolygonF& part : parts)
            for (const QPointF& pt : part) drawMarker(p, xf.map(pt.x(), pt.y()), look);
        return;
    }
    const QRectF box = xf.map(env);
    if (box.width() < SmallFeature && box.height() < SmallFeature) {
        // A few pixels at most: its box, snapped to pixels so that cells of
        // a grid tile without gaps. Far cheaper than the outline.
        int x0 = int(std::lround(box.left())), x1 = int(std::lround(box.right()));
        int y0 = int(std::lround(box.top())), y1 = int(std::lround(box.bottom()));
        if (x1 == x0) ++x1;
        if (y1 == y0) ++y1;
        p.fillRect(QRect(x0, y0, x1 - x0, y1 - y0), look.dot);
        return;
    }
    if (look.kind == Kind::Line) {
        for (const QPolygonF& part : parts) {
            toDevice(part, xf, device);
            if (device.size() == 1) device.append(device.first());
            p.drawPolyline(device);
        }
        return;
    }
    if (parts.size() == 1) {
        toDevice(parts.front(), xf, device);
        p.drawPolygon(device);
        return;
    }
    QPainterPath path;
    path.setFillRule(Qt::OddEvenFill);
    for (const QPolygonF& ring : parts) {
        toDevice(ring, xf, device);
        path.addPolygon(device);
        path.closeSubpath();
    }
    p.drawPath(path);
}

void Map::Impl::drawLabels(const Pass& ps, const GeoDataset& ds, const std::vector<int>& ids, LabelRenderer& labels)
{
    const int field = ds.fieldIndex(labels.Field);
    if (field < 0) return;
    SymbolPtr sym = labels.Symbol(0);
    QPainter& p = *ps.painter;
    QFont font(sym->Font.Name);
    font.setPointSizeF(sym->Font.Size > 0 ? sym->Font.Size : 8.25);
    font.setBold(sym->Font.Bold);
    p.setFont(font);
    // A text symbol left at the symbol's default colour writes in black.
    p.setPen(sym->Color == Symbol().Color ? QColor(Qt::black) : colorOf(sym->Color));
    p.setBrush(Qt::NoBrush);
    QSet<QString> written;
    GEOSContextHandle_t h = geosContext();
    for (int fid : ids) {
        QString text = textOf(ds.value(fid, field));
        if (text.trimmed().isEmpty()) continue;
        const Envelope& env = ds.envelope(fid);
        double x = (env.minX + env.maxX) / 2, y = (env.minY + env.maxY) / 2;
        if (const GeomPtr& g = ds.geom(fid); g && ds.recordShapeType(fid) == moPolygon) {
            // A point inside the polygon, for the middle of its box may lie outside.
            if (GEOSGeometry* inside = GEOSPointOnSurface_r(h, g.get())) {
                GEOSGeomGetX_r(h, inside, &x);
                GEOSGeomGetY_r(h, inside, &y);
                GEOSGeom_destroy_r(h, inside);
            }
        }
        const QPointF c = ps.xf.map(x, y);
        if (!ps.box.contains(c)) continue;
        if (!labels.AllowDuplicates) {
            if (written.contains(text)) continue;
            written.insert(text);
        }
        p.drawText(QRectF(c.x() - 2000, c.y() - 200, 4000, 400), Qt::AlignCenter, text);
    }
}

void Map::Impl::drawShape(const Pass& ps, const Shape& shape, const Symbol& symbol)
{
    const Envelope env = shape.envelope();
    if (!env.intersects(ps.view)) return;
    QPainter& p = *ps.painter;
    p.save();
    p.setRenderHint(QPainter::Antialiasing, false);
    p.setClipRect(ps.box, Qt::IntersectClip);
    std::vector<QPolygonF> rings;
    std::vector<QPointF> points;
    int type = shape.shapeType();
    if (type == moRectangle) {
        rings.push_back(QPolygonF(QRectF(env.minX, env.minY, env.maxX - env.minX, env.maxY - env.minY)));
    } else if (type == moPoint) {
        const auto& pt = static_cast<const Point&>(shape);
        points.emplace_back(pt.X(), pt.Y());
    } else {
        const QRectF box = ps.xf.map(env);
        if (box.width() < SmallFeature && box.height() < SmallFeature) {
            // Drawn as its box anyway: no need to walk the outline.
            Look look = makeLook(symbol, kindOf(type == moLine ? moLine : moPolygon), ps.scale);
            applyLook(p, look);
            QPolygonF device;
            drawFeature(p, ps.xf, {}, env, look, device);
            p.restore();
            return;
        }
        GeomPtr g = shape.geom();
        collectGeom(geosContext(), g.get(), rings, points);
    }
    if (!points.empty()) {
        Look look = makeLook(symbol, Kind::Point, ps.scale);
        applyLook(p, look);
        for (const QPointF& pt : points) drawMarker(p, ps.xf.map(pt.x(), pt.y()), look);
    }
    if (!rings.empty()) {
        Look look = makeLook(symbol, kindOf(type == moLine ? moLine : moPolygon), ps.scale);
        applyLook(p, look);
        QPolygonF device;
        drawFeature(p, ps.xf, rings, env, look, device);
    }
    p.restore();
}

void Map::DrawShape(const ShapePtr& shape, const SymbolPtr& symbol)
{
    if (!shape) throw MapError("DrawShape: no shape");
    if (!symbol) throw MapError("DrawShape: no symbol");
    if (d_->pass) {
        d_->drawShape(*d_->pass, *shape, *symbol);
        return;
    }
    // Outside a repaint: onto the picture as it stands.
    d_->sync();
    if (d_->cache.isNull()) {
        d_->cache = QImage(size().expandedTo(QSize(1, 1)), QImage::Format_ARGB32_Premultiplied);
        d_->cache.fill(Qt::white);
    }
    const QSizeF logical = QSizeF(d_->cache.size()) / d_->cache.devicePixelRatio();
    QPainter p(&d_->cache);
    const QRectF box(QPointF(0, 0), logical);
    Impl::Pass ps{&p, Xf(box, d_->extent), 1.0, box, d_->extent};
    d_->drawShape(ps, *shape, *symbol);
    update();
}

void Map::paintSymbolSample(QPainter& p, const QRectF& box, const Symbol& symbol, int shapeType)
{
    p.save();
    p.setRenderHint(QPainter::Antialiasing, false);
    const Kind kind = kindOf(shapeType == moRectangle ? moPolygon : shapeType);
    Look look = makeLook(symbol, kind, 1.0);
    if (kind == Kind::Point) look.marker = std::min(look.marker, box.height() - 2);
    applyLook(p, look);
    const QPointF c = box.center();
    switch (kind) {
    case Kind::Polygon:
        p.drawRect(box.adjusted(0, 0, -1, -1));
        break;
    case Kind::Line:
        p.drawLine(QPointF(box.left(), std::floor(c.y())), QPointF(box.right(), std::floor(c.y())));
        break;
    case Kind::Point:
        drawMarker(p, c, look);
        break;
    }
    p.restore();
}

void Map::paintEvent(QPaintEvent*)
{
    const qreal dpr = devicePixelRatioF();
    if (!d_->valid || d_->cache.isNull() || d_->cache.devicePixelRatio() != dpr ||
        d_->cache.size() != QSize(int(std::ceil(width() * dpr)), int(std::ceil(height() * dpr))))
        d_->renderCache();
    QPainter p(this);
    if (!d_->panOffset.isNull()) p.fillRect(rect(), Qt::white);
    p.drawImage(QPointF(d_->panOffset), d_->cache);
}
