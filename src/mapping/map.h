#pragma once
// The map control: draws its layers from memory, bottom (highest index) to top
// (index 0), and raises the draw events around each repaint.
#include <QImage>
#include <QPainter>
#include <QWidget>

#include "mapping/geometry.h"
#include "mapping/maplayer.h"

class Map : public QWidget {
    Q_OBJECT
public:
    explicit Map(QWidget* parent = nullptr);
    ~Map() override;

    LayersCollection& Layers() { return layers_; }
    const LayersCollection& Layers() const { return layers_; }

    // A copy; changing it has no effect on the map.
    RectanglePtr Extent() const;
    // Moves the view (keeping the control's aspect ratio) and redraws.
    void setExtent(const Rectangle& r);
    RectanglePtr FullExtent() const;

    void setMousePointer(int code);  // 0 default, 1 arrow, 11 hourglass, 14 arrow+?, 50 zoom, 53 pan
    int MousePointer() const { return mousePointer_; }

    // Interactive pan / rubber band; hold the mouse until the button is released.
    void Pan();
    RectanglePtr TrackRectangle();
    PointPtr ToMapPoint(float xTwips, float yTwips) const;
    void CenterAt(double x, double y);

    // Paints at once on the repaint under way (inside the draw events).
    void DrawShape(const ShapePtr& shape, const SymbolPtr& symbol);
    // A full, synchronous repaint with the draw events.
    void Refresh();
    // Draws the map into another device (printer, image) at the given place
    // and size in device units, raising the draw events as a repaint does.
    void OutputMap(QPainter* painter, int x, int y, int width, int height, int option = 1);

    // Twips geometry of the control.
    int Left() const;
    int Top() const;
    int Width() const;
    int Height() const;

    // A small picture of the symbol as the map paints that kind of shape
    // (shape type codes of geometry.h); the legend uses it for its swatches.
    static void paintSymbolSample(QPainter& painter, const QRectF& box, const Symbol& symbol, int shapeType);

signals:
    void BeforeLayerDraw(int index, QPainter* hDC);
    void AfterLayerDraw(int index, QPainter* hDC);
    void BeforeTrackingLayerDraw(QPainter* hDC);
    void AfterTrackingLayerDraw(QPainter* hDC);
    void MouseDown(int button, int shift, float x, float y);
    void MouseMove(int button, int shift, float x, float y);
    void MouseUp(int button, int shift, float x, float y);

protected:
    void paintEvent(QPaintEvent*) override;
    void resizeEvent(QResizeEvent*) override;
    void mousePressEvent(QMouseEvent*) override;
    void mouseMoveEvent(QMouseEvent*) override;
    void mouseReleaseEvent(QMouseEvent*) override;
    void hideEvent(QHideEvent*) override;

private:
    struct Impl;
    std::unique_ptr<Impl> d_;
    LayersCollection layers_;
    int mousePointer_ = 0;
};
