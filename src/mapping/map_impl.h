#pragma once
// Inside of the map control, shared by its three source files: the view and
// its extent (map.cpp), the drawing (map_draw.cpp), the mouse (map_events.cpp).
#include <QEventLoop>
#include <QRubberBand>
#include <optional>

#include "mapping/map.h"

namespace mapview {

// Polygons and lines whose box is smaller than this, in pixels both ways,
// are drawn as their box.
constexpr double SmallFeature = 3.5;

// Map units to device pixels: x grows to the right, y downwards.
struct Xf {
    double s = 1, ax = 0, ay = 0;
    Xf() = default;
    Xf(const QRectF& box, const Envelope& e)
    {
        s = box.width() / (e.maxX - e.minX);
        ax = box.left() - e.minX * s;
        ay = box.top() + e.maxY * s;
    }
    QPointF map(double x, double y) const { return {ax + x * s, ay - y * s}; }
    QRectF map(const Envelope& e) const { return QRectF(map(e.minX, e.maxY), map(e.maxX, e.minY)); }
};

// The asked rectangle grown on its shorter side to the shape of w x h.
Envelope fitted(const Envelope& e, double w, double h);

struct Look;

}  // namespace mapview

struct Map::Impl {
    using Xf = mapview::Xf;
    using Look = mapview::Look;

    explicit Impl(Map* q) : q(q) {}
    Map* q;

    // What was last asked for, and the view in force: the asked rectangle grown
    // on its shorter side to the control's aspect. A resize fits the asked
    // rectangle anew, so what was asked for stays in view.
    Envelope asked{0, 0, 1, 1};
    Envelope extent{0, 0, 1, 1};
    QSize fittedTo;
    int layerCount = 0;
    // From the first layer of an empty map until the view is first moved, the
    // view follows the full extent, so a dataset loaded layer by layer shows whole.
    bool followFull = false;

    QImage cache;
    bool valid = false;

    struct Pass {
        QPainter* painter;
        Xf xf;
        double scale;
        QRectF box;
        Envelope view;
    };
    Pass* pass = nullptr;  // the render under way
    bool again = false;    // the view moved during a render

    // The mouse.
    Qt::MouseButtons buttons;
    QPointF pressPos, lastPos, releasePos;
    enum class Hold { None, Pan, Track } hold = Hold::None;
    QEventLoop* loop = nullptr;
    QPoint panOffset;
    QRubberBand* band = nullptr;
    int inPress = 0;
    struct Up { int button, shift; float x, y; };
    std::optional<Up> pendingUp;

    LayersCollection& layers() { return q->layers_; }

    void sync();
    void layersChanged();
    Envelope fullEnvelope();
    void moveTo(const Envelope& e);

    // Drawing.
    void renderCache();
    void run(QPainter& p, const QRectF& box, const Envelope& view, double scale);
    void drawLayer(const Pass& ps, const MapLayer& layer);
    static void drawFeature(QPainter& p, const Xf& xf, const std::vector<QPolygonF>& parts, const Envelope& env,
                            const Look& look, QPolygonF& device);
    void drawLabels(const Pass& ps, const GeoDataset& ds, const std::vector<int>& ids, LabelRenderer& labels);
    void drawShape(const Pass& ps, const Shape& shape, const Symbol& symbol);

    // The mouse.
    void endHold();
    bool holdLoop(Hold kind);
};
