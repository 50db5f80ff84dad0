#include "mapping/map.h"

#include <cmath>

#include "mapping/controls.h"
#include "mapping/map_impl.h"

namespace mapview {

Envelope fitted(const Envelope& e, double w, double h)
{
    w = std::max(w, 1.0);
    h = std::max(h, 1.0);
    const double ew = e.maxX - e.minX, eh = e.maxY - e.minY;
    const double cx = (e.minX + e.maxX) / 2, cy = (e.minY + e.maxY) / 2;
    if (!(ew > 0) && !(eh > 0)) return {cx - w / h / 2, cy - 0.5, cx + w / h / 2, cy + 0.5};
    const double aspect = w / h;
    // The side that is kept keeps its exact bounds, and the grown one never
    // ends up a hair short of them: callers compare sizes with the full extent.
    if (!(eh > 0) || ew / eh > aspect) {
        const double half = ew / aspect / 2;
        return {e.minX, std::min(cy - half, e.minY), e.maxX, std::max(cy + half, e.maxY)};
    }
    const double half = eh * aspect / 2;
    return {std::min(cx - half, e.minX), e.minY, std::max(cx + half, e.maxX), e.maxY};
}

}  // namespace mapview

using mapview::fitted;

void Map::Impl::sync()
{
    if (layers().Count() > 0 && layerCount == 0) {
        layerCount = layers().Count();
        followFull = true;
        Envelope full = fullEnvelope();
        if (!full.isEmpty()) asked = full;
        fittedTo = QSize();
    }
    if (q->size() != fittedTo) {
        extent = fitted(asked, q->width(), q->height());
        fittedTo = q->size();
    }
}

void Map::Impl::layersChanged()
{
    const int n = layers().Count();
    if (n > 0 && layerCount == 0) followFull = true;
    if (n > 0 && followFull) {
        Envelope full = fullEnvelope();
        if (!full.isEmpty()) asked = full;
        fittedTo = QSize();
    }
    layerCount = n;
    valid = false;
    q->update();
}

Envelope Map::Impl::fullEnvelope()
{
    Envelope all;
    for (const MapLayerPtr& layer : layers()) {
        if (!layer || !layer->GeoDataset()) continue;
        const Envelope& e = layer->GeoDataset()->extent();
        if (e.isEmpty()) continue;
        if (all.isEmpty())
            all = e;
        else
            all.expand(e);
    }
    if (all.isEmpty()) return all;
    double w = all.maxX - all.minX, h = all.maxY - all.minY;
    double margin = std::max(w, h) * 0.01;
    if (margin == 0) margin = 0.5;
    return {all.minX - margin, all.minY - margin, all.maxX + margin, all.maxY + margin};
}

void Map::Impl::moveTo(const Envelope& e)
{
    followFull = false;
    asked = e;
    fittedTo = QSize();
    sync();
    if (pass) {
        again = true;
        return;
    }
    q->Refresh();
}

Map::Map(QWidget* parent) : QWidget(parent), d_(std::make_unique<Impl>(this))
{
    setAttribute(Qt::WA_OpaquePaintEvent);
    setMouseTracking(true);
    layers_.changed = [this] { d_->layersChanged(); };
}

Map::~Map()
{
    layers_.changed = nullptr;
    if (d_->loop) d_->loop->quit();
}

RectanglePtr Map::Extent() const
{
    d_->sync();
    return Rectangle::fromEnvelope(d_->extent);
}

void Map::setExtent(const Rectangle& r)
{
    // An empty rectangle (a click where a drag was awaited) leaves the view.
    if (!(r.Width() > 0) || !(r.Height() > 0) || !std::isfinite(r.Width()) || !std::isfinite(r.Height())) return;
    d_->moveTo({r.Left, r.Bottom, r.Right, r.Top});
}

RectanglePtr Map::FullExtent() const
{
    Envelope e = d_->fullEnvelope();
    if (e.isEmpty()) return std::make_shared<Rectangle>();
    return Rectangle::fromEnvelope(e);
}

void Map::CenterAt(double x, double y)
{
    d_->sync();
    const Envelope& e = d_->extent;
    const double hw = (e.maxX - e.minX) / 2, hh = (e.maxY - e.minY) / 2;
    d_->moveTo({x - hw, y - hh, x + hw, y + hh});
}

void Map::Refresh()
{
    // A handler that refreshes inside a repaint: the repaint under way reads
    // the layers afresh anyway.
    if (d_->pass) return;
    d_->renderCache();
    update();
}

void Map::OutputMap(QPainter* painter, int x, int y, int width, int height, int option)
{
    if (!painter || width <= 0 || height <= 0) return;
    // What the control shows, grown to the box's shape.
    d_->sync();
    const Envelope view = fitted(d_->extent, width, height);
    double scale = 1.0;
    if (QPaintDevice* dev = painter->device()) scale = std::max(1.0, dev->logicalDpiX() / 96.0);
    const QRectF box(x, y, width, height);
    painter->save();
    painter->setClipRect(box, Qt::IntersectClip);
    painter->fillRect(box, Qt::white);
    QPointer<Map> guard(this);
    d_->run(*painter, box, view, scale);
    if (guard) painter->restore();
}

int Map::Left() const { return Twips(this).Left; }
int Map::Top() const { return Twips(this).Top; }
int Map::Width() const { return Twips(this).Width; }
int Map::Height() const { return Twips(this).Height; }

void Map::resizeEvent(QResizeEvent*)
{
    // A resize that was pending before the first show may bring the size the
    // picture was already made for.
    const qreal dpr = d_->cache.isNull() ? 1.0 : d_->cache.devicePixelRatio();
    if (d_->cache.isNull() || QSizeF(d_->cache.size()) / dpr != QSizeF(size())) d_->valid = false;
}
