// The map control's mouse: the events it raises and the holds of Pan and
// TrackRectangle, which run their own loop until the button is let go.
#include <QMouseEvent>
#include <QPixmap>
#include <QPointer>
#include <cmath>

#include "mapping/controls.h"
#include "mapping/map_impl.h"

namespace {

int buttonCode(Qt::MouseButtons b)
{
    int code = 0;
    if (b & Qt::LeftButton) code |= 1;
    if (b & Qt::RightButton) code |= 2;
    if (b & Qt::MiddleButton) code |= 4;
    return code;
}

int shiftCode(Qt::KeyboardModifiers m)
{
    int code = 0;
    if (m & Qt::ShiftModifier) code |= 1;
    if (m & Qt::ControlModifier) code |= 2;
    if (m & Qt::AltModifier) code |= 4;
    return code;
}

float toTwips(double px) { return float(px * TwipsPerPixel); }

QCursor zoomCursor()
{
    QPixmap pm(32, 32);
    pm.fill(Qt::transparent);
    QPainter p(&pm);
    p.setRenderHint(QPainter::Antialiasing);
    p.setPen(QPen(Qt::white, 4));
    p.drawEllipse(QPointF(12, 12), 8, 8);
    p.drawLine(QPointF(18, 18), QPointF(28, 28));
    p.setPen(QPen(Qt::black, 2));
    p.drawEllipse(QPointF(12, 12), 8, 8);
    p.drawLine(QPointF(18, 18), QPointF(28, 28));
    p.drawLine(QPointF(8, 12), QPointF(16, 12));
    p.drawLine(QPointF(12, 8), QPointF(12, 16));
    p.end();
    return QCursor(pm, 12, 12);
}
}  // namespace

// The mouse was let go while Pan or TrackRectangle held it: the hold ends
// first, then MouseUp, as the press handler that started the hold returns.
void Map::Impl::endHold()
{
    hold = Hold::None;
    loop = nullptr;
    if (band) band->hide();
    panOffset = QPoint();
    if (inPress == 0 && pendingUp) {
        Up u = *pendingUp;
        pendingUp.reset();
        emit q->MouseUp(u.button, u.shift, u.x, u.y);
    }
}

bool Map::Impl::holdLoop(Hold kind)
{
    hold = kind;
    releasePos = lastPos;
    QEventLoop local;
    loop = &local;
    QPointer<Map> guard(q);
    local.exec();
    return !guard.isNull();
}

void Map::setMousePointer(int code)
{
    mousePointer_ = code;
    switch (code) {
    case 1: setCursor(Qt::ArrowCursor); break;
    case 2: setCursor(Qt::CrossCursor); break;
    case 3: setCursor(Qt::IBeamCursor); break;
    case 11: setCursor(Qt::WaitCursor); break;
    case 12: setCursor(Qt::ForbiddenCursor); break;
    case 13: setCursor(Qt::BusyCursor); break;
    case 14: setCursor(Qt::WhatsThisCursor); break;
    case 15: setCursor(Qt::SizeAllCursor); break;
    case 50: {
        static const QCursor zoom = zoomCursor();
        setCursor(zoom);
        break;
    }
    case 53: setCursor(Qt::OpenHandCursor); break;
    default: unsetCursor(); break;
    }
}

void Map::Pan()
{
    if (d_->loop || !(d_->buttons & (Qt::LeftButton | Qt::RightButton | Qt::MiddleButton))) return;
    setCursor(Qt::ClosedHandCursor);
    if (!d_->holdLoop(Impl::Hold::Pan)) return;
    setMousePointer(mousePointer_);
    const QPointF off = d_->releasePos - d_->pressPos;
    d_->endHold();
    if (off.x() != 0 || off.y() != 0) {
        d_->sync();
        const Envelope& e = d_->extent;
        const double s = std::max(width(), 1) / (e.maxX - e.minX);
        const double dx = -off.x() / s, dy = off.y() / s;
        setExtent(Rectangle(e.minX + dx, e.minY + dy, e.maxX + dx, e.maxY + dy));
    } else {
        update();
    }
}

RectanglePtr Map::TrackRectangle()
{
    auto pointRect = [this](const QPointF& a, const QPointF& b) {
        PointPtr p1 = ToMapPoint(toTwips(a.x()), toTwips(a.y()));
        PointPtr p2 = ToMapPoint(toTwips(b.x()), toTwips(b.y()));
        return std::make_shared<Rectangle>(std::min(p1->X(), p2->X()), std::min(p1->Y(), p2->Y()),
                                           std::max(p1->X(), p2->X()), std::max(p1->Y(), p2->Y()));
    };
    if (d_->loop || !(d_->buttons & (Qt::LeftButton | Qt::RightButton | Qt::MiddleButton)))
        return pointRect(d_->lastPos, d_->lastPos);
    if (!d_->band) d_->band = new QRubberBand(QRubberBand::Rectangle, this);
    if (!d_->holdLoop(Impl::Hold::Track)) return std::make_shared<Rectangle>();
    const QPointF a = d_->pressPos, b = d_->releasePos;
    d_->endHold();
    return pointRect(a, b);
}

PointPtr Map::ToMapPoint(float xTwips, float yTwips) const
{
    d_->sync();
    const Envelope& e = d_->extent;
    const double s = std::max(width(), 1) / (e.maxX - e.minX);
    const double px = double(xTwips) / TwipsPerPixel, py = double(yTwips) / TwipsPerPixel;
    return std::make_shared<Point>(e.minX + px / s, e.maxY - py / s);
}

void Map::mousePressEvent(QMouseEvent* e)
{
    d_->buttons = e->buttons();
    d_->pressPos = d_->lastPos = e->position();
    d_->pendingUp.reset();
    ++d_->inPress;
    QPointer<Map> guard(this);
    emit MouseDown(buttonCode(e->button()), shiftCode(e->modifiers()), toTwips(e->position().x()),
                   toTwips(e->position().y()));
    if (!guard) return;
    --d_->inPress;
    if (d_->inPress == 0 && d_->pendingUp) {
        Impl::Up u = *d_->pendingUp;
        d_->pendingUp.reset();
        emit MouseUp(u.button, u.shift, u.x, u.y);
    }
}

void Map::mouseMoveEvent(QMouseEvent* e)
{
    d_->buttons = e->buttons();
    d_->lastPos = e->position();
    switch (d_->hold) {
    case Impl::Hold::Pan:
        d_->panOffset = (d_->lastPos - d_->pressPos).toPoint();
        update();
        return;
    case Impl::Hold::Track:
        d_->band->setGeometry(QRect(d_->pressPos.toPoint(), d_->lastPos.toPoint()).normalized());
        d_->band->show();
        return;
    case Impl::Hold::None:
        break;
    }
    emit MouseMove(buttonCode(e->buttons()), shiftCode(e->modifiers()), toTwips(e->position().x()),
                   toTwips(e->position().y()));
}

void Map::mouseReleaseEvent(QMouseEvent* e)
{
    d_->buttons = e->buttons();
    d_->lastPos = e->position();
    Impl::Up up{buttonCode(e->button()), shiftCode(e->modifiers()), toTwips(e->position().x()),
                toTwips(e->position().y())};
    if (d_->loop) {
        d_->releasePos = e->position();
        d_->pendingUp = up;
        d_->loop->quit();
        return;
    }
    emit MouseUp(up.button, up.shift, up.x, up.y);
}

void Map::hideEvent(QHideEvent*)
{
    // Nothing more can reach a hidden control: let a hold end where it is.
    if (d_->loop) {
        d_->releasePos = d_->lastPos;
        d_->loop->quit();
    }
    d_->buttons = Qt::NoButton;
}
