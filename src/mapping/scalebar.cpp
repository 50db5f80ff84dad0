#include "mapping/scalebar.h"

#include <QFontMetrics>
#include <QLocale>
#include <QPainter>
#include <cmath>

#include "mapping/symbol.h"

namespace {

constexpr double kEarthRadius = 6378137.0;  // metres, equatorial
constexpr double kPi = 3.14159265358979323846;
constexpr int kBarHeight = 5;
// The bar's bottom edge stands at this fraction of the height, the labels
// close above it: the print page shows the band just above the control's
// lower fifth.
constexpr double kBarBottom = 0.8;
constexpr int kLabelGap = 1;
constexpr int kUnitGap = 4;

QString numberText(double v)
{
    // Division lengths are 1, 2, 2.5 or 5 times a power of ten; printing with
    // twelve decimals and trimming keeps "2.5" and "0.25" free of binary noise.
    QString s = QLocale(QLocale::English, QLocale::UnitedStates).toString(v, 'f', 12);
    if (s.contains('.')) {
        while (s.endsWith('0')) s.chop(1);
        if (s.endsWith('.')) s.chop(1);
    }
    return s;
}

}  // namespace

ScaleBar::ScaleBar(QWidget* parent) : QWidget(parent)
{
    setAttribute(Qt::WA_OpaquePaintEvent);
}

void ScaleBar::setMapExtent(double left, double top, double right, double bottom)
{
    map_ = {left, top, right, bottom};
    update();
}

void ScaleBar::setScreenExtent(double left, double top, double right, double bottom)
{
    screen_ = {left, top, right, bottom};
    update();
}

void ScaleBar::setShowOutline(bool on) { showOutline_ = on; update(); }
void ScaleBar::setBackColor(int color) { backColor_ = color; update(); }
void ScaleBar::setBarColor1(int color) { barColor1_ = color; update(); }
void ScaleBar::setBarColor2(int color) { barColor2_ = color; update(); }
void ScaleBar::setDivisions(int n) { divisions_ = n; update(); }
void ScaleBar::setBarFont(const QFont& font) { font_ = font; update(); }
void ScaleBar::setMapUnits(int code) { mapUnits_ = code; update(); }
void ScaleBar::setBarWidthRatio(float ratio) { barWidthRatio_ = ratio; update(); }
void ScaleBar::setLabelMode(int mode) { labelMode_ = mode; update(); }

void ScaleBar::Refresh() { repaint(); }

QColor ScaleBar::toQColor(int color) { return QColor(RedOf(color), GreenOf(color), BlueOf(color)); }

double ScaleBar::roundLengthBelow(double v)
{
    double p = std::pow(10.0, std::floor(std::log10(v)));
    // log10 can land a hair below a whole power; step up when it did.
    if (p * 10 <= v) p *= 10;
    for (double m : {5.0, 2.5, 2.0, 1.0})
        if (m * p <= v * (1 + 1e-12)) return m * p;
    return p / 2;
}

ScaleBar::Layout ScaleBar::layout() const
{
    Layout out;
    const double mapWidth = std::abs(map_.Right - map_.Left);
    const double screenWidth = std::abs(screen_.Right - screen_.Left);
    if (!(mapWidth > 0) || !(screenWidth > 0) || !std::isfinite(mapWidth) || divisions_ < 1 || !(barWidthRatio_ > 0))
        return out;

    // Ground per screen pixel in the base unit: feet for feet data, else metres.
    double perPixel = mapWidth / screenWidth;
    if (mapUnits_ == Degrees) {
        const double midLat = (map_.Top + map_.Bottom) / 2 * kPi / 180;
        const double c = std::cos(midLat);
        if (!(c > 1e-9)) return out;
        perPixel *= kPi / 180 * kEarthRadius * c;
    }
    const bool feet = mapUnits_ == Feet;
    const double maxBarPx = barWidthRatio_ * width();
    const double maxDivision = maxBarPx * perPixel / divisions_;
    if (!(maxDivision > 0) || !std::isfinite(maxDivision)) return out;

    const double big = feet ? 5280.0 : 1000.0;
    double toDisplay = 1;
    if (maxDivision >= big) {
        toDisplay = 1 / big;
        out.unitName = feet ? "Miles" : "Kilometers";
    } else {
        out.unitName = feet ? "Feet" : "Meters";
    }
    out.groundPerPixel = perPixel * toDisplay;
    out.division = roundLengthBelow(maxDivision * toDisplay);
    const double divisionPx = out.division / out.groundPerPixel;
    const int barPx = int(std::lround(divisionPx * divisions_));
    if (barPx < divisions_) return out;

    QFontMetrics fm(font_);
    for (int i = 0; i <= divisions_; ++i) {
        QString text;
        if (labelMode_ == DivisionLabels || labelMode_ == DivisionLabelsAndUnit)
            text = numberText(out.division * i);
        else if (labelMode_ == EndLabel && i == divisions_)
            text = numberText(out.division * i) + " " + out.unitName;
        out.labels << text;
    }
    const int unitWidth = labelMode_ == DivisionLabelsAndUnit ? kUnitGap + fm.horizontalAdvance(out.unitName) : 0;
    int x0 = (width() - barPx - unitWidth) / 2;
    x0 = std::max(x0, fm.horizontalAdvance(out.labels.front()) / 2 + 1);
    const int barTop = int(std::lround(kBarBottom * height())) - kBarHeight + 1;
    out.bar = QRect(x0, barTop, barPx, kBarHeight);
    for (int i = 0; i <= divisions_; ++i) out.ticks.push_back(x0 + int(std::lround(divisionPx * i)));
    out.valid = true;
    return out;
}

void ScaleBar::paintEvent(QPaintEvent*)
{
    QPainter p(this);
    p.fillRect(rect(), toQColor(backColor_));
    const Layout l = layout();
    if (!l.valid) return;

    const QColor outline(0, 0, 0);
    for (int i = 0; i < divisions_; ++i) {
        QRect seg(l.ticks[size_t(i)], l.bar.top(), l.ticks[size_t(i) + 1] - l.ticks[size_t(i)], l.bar.height());
        p.fillRect(seg, toQColor(i % 2 == 0 ? barColor1_ : barColor2_));
        if (showOutline_) {
            p.setPen(outline);
            p.setBrush(Qt::NoBrush);
            p.drawRect(seg.adjusted(0, 0, -1, -1));
        }
    }

    p.setFont(font_);
    p.setPen(outline);
    QFontMetrics fm(font_);
    // Figures have no descenders: they sit right on the line above the bar.
    const int baseline = l.bar.top() - kLabelGap;
    for (int i = 0; i <= divisions_; ++i) {
        const QString& t = l.labels[i];
        if (t.isEmpty()) continue;
        p.drawText(l.ticks[size_t(i)] - fm.horizontalAdvance(t) / 2, baseline, t);
    }
    if (labelMode_ == DivisionLabelsAndUnit) {
        p.drawText(l.bar.right() + 1 + kUnitGap, l.bar.bottom() + 1, l.unitName);
    }
}
