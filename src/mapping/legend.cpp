#include "mapping/legend.h"

#include <QFileInfo>
#include <QImage>
#include <QMouseEvent>
#include <QPainter>
#include <QPointer>
#include <QScrollBar>
#include <QStyle>
#include <QStyleOptionButton>
#include <QWheelEvent>
#include <cmath>
#include <limits>

#include "mapping/map.h"

namespace {

constexpr int Margin = 4;
constexpr int RowHeight = 20;
constexpr int ClassHeight = 18;
constexpr int EntryGap = 4;
constexpr int BoxSize = 13;
constexpr int NameX = 22;
constexpr int SwatchW = 20, SwatchH = 12;
constexpr int ClassSwatchX = 26;
constexpr int ClassTextX = 52;

// Break values as people read them: the hair-lowered solar breaks show as the
// round numbers they stand for.
QString legendNumber(double v)
{
    QString s = QString::number(v, 'g', 6);
    if (s.contains('e')) s = QString::number(v, 'f', 0);
    return s;
}

}  // namespace

struct Legend::Impl {
    struct Class {
        SymbolPtr symbol;
        QString label;
    };
    struct Entry {
        MapLayerPtr layer;
        QString name;
        int shapeType = moPolygon;
        SymbolPtr symbol;  // a swatch beside the name when the layer has no classes
        std::vector<Class> classes;
        int top = 0;       // in content coordinates
        int height = 0;
    };

    QPointer<Map> map;
    std::vector<Entry> entries;
    QScrollBar* bar = nullptr;
    int contentHeight = 0;
    int contentWidth = 0;

    static std::vector<Class> breakClasses(const ClassBreaksRenderer& r, const GeoDataset* ds)
    {
        std::vector<Class> out;
        const int n = r.BreakCount();
        if (n == 0) {
            out.push_back({r.Symbol(0), QString()});
            return out;
        }
        // The lowest class starts at 0 unless the data goes below it.
        const double lowest = ds ? ds->lowestNumber(ds->fieldIndex(r.Field)) : std::numeric_limits<double>::infinity();
        const double b0 = r.Break(0);
        double lo = b0 > 0 && !(lowest < 0) ? 0 : lowest;
        out.push_back({r.Symbol(0), lo < b0 ? legendNumber(lo) + " - " + legendNumber(b0)
                                            : "up to " + legendNumber(b0)});
        for (int i = 1; i < n; ++i)
            out.push_back({r.Symbol(i), legendNumber(r.Break(i - 1)) + " - " + legendNumber(r.Break(i))});
        out.push_back({r.Symbol(n), legendNumber(r.Break(n - 1)) + " +"});
        return out;
    }

    void layout(const QFontMetrics& fm)
    {
        int y = Margin;
        contentWidth = 0;
        for (Entry& e : entries) {
            e.top = y;
            const int nameX = e.classes.empty() ? NameX + SwatchW + 4 : NameX;
            contentWidth = std::max(contentWidth, nameX + fm.horizontalAdvance(e.name) + Margin);
            for (const Class& c : e.classes)
                contentWidth = std::max(contentWidth, ClassTextX + fm.horizontalAdvance(c.label) + Margin);
            e.height = RowHeight + int(e.classes.size()) * ClassHeight;
            y += e.height + EntryGap;
        }
        contentHeight = y + Margin;
    }

    static void swatch(QPainter& p, const QRectF& box, const Symbol& symbol, int shapeType)
    {
        Map::paintSymbolSample(p, box, symbol, shapeType);
        // An area without an edge gets a faint one here, so that a white class
        // still shows as a box.
        if ((shapeType == moPolygon || shapeType == moRectangle) && !symbol.Outline) {
            p.save();
            p.setPen(QColor(160, 160, 160));
            p.setBrush(Qt::NoBrush);
            p.drawRect(box.adjusted(0, 0, -1, -1));
            p.restore();
        }
    }

    void paintContent(QPainter& p, QWidget* w, int width)
    {
        for (const Entry& e : entries) {
            const int y = e.top;
            QStyleOptionButton box;
            box.initFrom(w);
            box.rect = QRect(Margin, y + (RowHeight - BoxSize) / 2, BoxSize, BoxSize);
            box.state = QStyle::State_Enabled | (e.layer && e.layer->Visible ? QStyle::State_On : QStyle::State_Off);
            w->style()->drawPrimitive(QStyle::PE_IndicatorCheckBox, &box, &p, w);
            int nameX = NameX;
            if (e.classes.empty() && e.symbol) {
                swatch(p, QRectF(NameX, y + (RowHeight - SwatchH) / 2, SwatchW, SwatchH), *e.symbol, e.shapeType);
                nameX += SwatchW + 4;
            }
            p.setPen(Qt::black);
            p.drawText(QRect(nameX, y, std::max(width, contentWidth) - nameX, RowHeight),
                       Qt::AlignVCenter | Qt::AlignLeft, e.name);
            int cy = y + RowHeight;
            for (const Class& c : e.classes) {
                if (c.symbol) swatch(p, QRectF(ClassSwatchX, cy + (ClassHeight - SwatchH) / 2, SwatchW, SwatchH),
                                     *c.symbol, e.shapeType);
                p.setPen(Qt::black);
                p.drawText(QRect(ClassTextX, cy, std::max(width, contentWidth) - ClassTextX, ClassHeight),
                           Qt::AlignVCenter | Qt::AlignLeft, c.label);
                cy += ClassHeight;
            }
        }
    }
};

Legend::Legend(QWidget* parent) : QWidget(parent), d_(std::make_unique<Impl>())
{
    setAutoFillBackground(false);
    d_->bar = new QScrollBar(Qt::Vertical, this);
    d_->bar->hide();
    connect(d_->bar, &QScrollBar::valueChanged, this, qOverload<>(&QWidget::update));
}

Legend::~Legend() = default;

void Legend::BindLegendToMap(Map* map)
{
    d_->map = map;
}

void Legend::ClearLegend()
{
    d_->entries.clear();
    d_->layout(fontMetrics());
    resizeEvent(nullptr);
    update();
}

void Legend::FillLegend(bool on)
{
    d_->entries.clear();
    if (on && d_->map) {
        const LayersCollection& layers = d_->map->Layers();
        for (int i = 0; i < layers.Count(); ++i) {
            MapLayerPtr layer = layers.Item(i);
            Impl::Entry e;
            e.layer = layer;
            e.name = layer->Name;
            GeoDatasetPtr ds = layer->GeoDataset();
            if (ds) e.shapeType = ds->shapeType();
            e.symbol = layer->Symbol;
            if (auto r = std::dynamic_pointer_cast<ClassBreaksRenderer>(layer->Renderer)) {
                e.classes = Impl::breakClasses(*r, ds.get());
            } else if (auto v = std::dynamic_pointer_cast<ValueMapRenderer>(layer->Renderer)) {
                for (int k = 0; k < v->ValueCount(); ++k) e.classes.push_back({v->Symbol(k), v->Value(k)});
            }
            d_->entries.push_back(std::move(e));
        }
    }
    d_->layout(fontMetrics());
    resizeEvent(nullptr);
    update();
}

bool Legend::SaveLegendBitmap(const QString& path)
{
    if (path.isEmpty()) return false;
    d_->layout(fontMetrics());
    const int w = std::max(width(), d_->contentWidth), h = std::max(height(), d_->contentHeight);
    QImage image(std::max(w, 1), std::max(h, 1), QImage::Format_RGB32);
    image.fill(Qt::white);
    {
        QPainter p(&image);
        p.setFont(font());
        d_->paintContent(p, this, w);
    }
    return image.save(path, "BMP");
}

void Legend::clickCheckBox(int index)
{
    if (index < 0 || index >= int(d_->entries.size())) return;
    const MapLayerPtr& layer = d_->entries[size_t(index)].layer;
    if (!layer) return;
    layer->Visible = !layer->Visible;
    const bool now = layer->Visible;
    update();
    emit AfterSetLayerVisible(index, now);
}

int Legend::entryCount() const
{
    return int(d_->entries.size());
}

QString Legend::entryName(int index) const
{
    if (index < 0 || index >= entryCount()) return QString();
    return d_->entries[size_t(index)].name;
}

QStringList Legend::entryClasses(int index) const
{
    QStringList out;
    if (index < 0 || index >= entryCount()) return out;
    for (const auto& c : d_->entries[size_t(index)].classes) out << c.label;
    return out;
}

void Legend::paintEvent(QPaintEvent*)
{
    QPainter p(this);
    p.fillRect(rect(), Qt::white);
    p.translate(0, -(d_->bar->isVisible() ? d_->bar->value() : 0));
    d_->paintContent(p, this, width());
}

void Legend::mousePressEvent(QMouseEvent* e)
{
    if (e->button() != Qt::LeftButton) return;
    const QPoint pos = e->position().toPoint() + QPoint(0, d_->bar->isVisible() ? d_->bar->value() : 0);
    for (int i = 0; i < entryCount(); ++i) {
        const Impl::Entry& entry = d_->entries[size_t(i)];
        // The box and the name beside it, as with an ordinary check box.
        if (pos.y() >= entry.top && pos.y() < entry.top + RowHeight && pos.x() >= Margin - 2) {
            clickCheckBox(i);
            return;
        }
    }
}

void Legend::resizeEvent(QResizeEvent*)
{
    QScrollBar* bar = d_->bar;
    const int overflow = d_->contentHeight - height();
    if (overflow > 0) {
        const int bw = bar->sizeHint().width();
        bar->setGeometry(width() - bw, 0, bw, height());
        bar->setRange(0, overflow);
        bar->setPageStep(height());
        bar->setSingleStep(ClassHeight);
        bar->show();
    } else {
        bar->setValue(0);
        bar->hide();
    }
}

void Legend::wheelEvent(QWheelEvent* e)
{
    if (!d_->bar->isVisible()) {
        e->ignore();
        return;
    }
    const int steps = e->angleDelta().y() / 120;
    d_->bar->setValue(d_->bar->value() - steps * 3 * ClassHeight);
    e->accept();
}
