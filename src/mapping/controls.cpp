#include "mapping/controls.h"

#include <QFontMetricsF>
#include <QPalette>
#include <cmath>

#include "mapping/symbol.h"

double TwipsPerPixel = 15;

namespace {

// The design's narrow dialog font (8.25 points at 96 dpi, 15 twips to the
// pixel) is reckoned at 5.65 pixels a letter over the alphabet, the width at
// which the design's longest captions just fill their controls; the same
// measure of our font, in logical pixels, tells how much larger the forms
// must be drawn. Logical pixels already carry the screen's device pixel
// ratio, so a screen scaled by 2 doubles every form with the same factor.
constexpr double kDesignLetterWidth = 5.65;
constexpr double kDesignPoints = 8.25;

}  // namespace

void ChooseTwipsPerPixel()
{
    const QFont font = QApplication::font();
    const QString alphabet = QStringLiteral("abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ");
    const double letter = QFontMetricsF(font).horizontalAdvance(alphabet) / alphabet.size();
    if (letter > 0) TwipsPerPixel = 15.0 * kDesignLetterWidth / letter;
}

double DesignPointSize(double designPoints)
{
    return designPoints * QApplication::font().pointSizeF() / kDesignPoints;
}

int TwipsToPx(double twips) { return int(std::lround(twips / TwipsPerPixel)); }
double PxToTwips(double px) { return px * TwipsPerPixel; }

namespace {

const char* const kTwipsProperty = "twips";

// Edges are rounded, not lengths, so that controls that meet in the design
// meet on the screen.
QRect pixelsOf(const TwipsRect& t)
{
    const int left = TwipsToPx(t.Left), top = TwipsToPx(t.Top);
    return QRect(left, top, TwipsToPx(t.Left + t.Width) - left, TwipsToPx(t.Top + t.Height) - top);
}

void place(QWidget* w, const TwipsRect& t)
{
    w->setProperty(kTwipsProperty, QRect(t.Left, t.Top, t.Width, t.Height));
    w->setGeometry(pixelsOf(t));
}

}  // namespace

void SetTwips(QWidget* w, int left, int top, int width, int height) { place(w, {left, top, width, height}); }

TwipsRect Twips(const QWidget* w)
{
    const QRect g = w->geometry();
    const QVariant kept = w->property(kTwipsProperty);
    if (kept.isValid()) {
        const QRect k = kept.toRect();
        const TwipsRect t{k.x(), k.y(), k.width(), k.height()};
        if (pixelsOf(t) == g) return t;
    }
    // Moved by other means: read back from the pixels.
    auto tw = [](int px) { return int(std::lround(PxToTwips(px))); };
    return {tw(g.x()), tw(g.y()), tw(g.width()), tw(g.height())};
}

void SetLeft(QWidget* w, int twips) { TwipsRect t = Twips(w); t.Left = twips; place(w, t); }
void SetTop(QWidget* w, int twips) { TwipsRect t = Twips(w); t.Top = twips; place(w, t); }
void SetWidth(QWidget* w, int twips) { TwipsRect t = Twips(w); t.Width = twips; place(w, t); }
void SetHeight(QWidget* w, int twips) { TwipsRect t = Twips(w); t.Height = twips; place(w, t); }

void SetSizeTwips(QWidget* w, int width, int height)
{
    w->setProperty(kTwipsProperty, QRect(0, 0, width, height));
    w->resize(TwipsToPx(width), TwipsToPx(height));
}

QSize SizeTwips(const QWidget* w)
{
    const QVariant kept = w->property(kTwipsProperty);
    if (kept.isValid()) {
        const QSize k = kept.toRect().size();
        if (QSize(TwipsToPx(k.width()), TwipsToPx(k.height())) == w->size()) return k;
    }
    return QSize(int(std::lround(PxToTwips(w->width()))), int(std::lround(PxToTwips(w->height()))));
}

void SetForeColor(QWidget* w, int rgb)
{
    QPalette p = w->palette();
    QColor c(RedOf(rgb), GreenOf(rgb), BlueOf(rgb));
    p.setColor(QPalette::WindowText, c);
    p.setColor(QPalette::Text, c);
    p.setColor(QPalette::ButtonText, c);
    w->setPalette(p);
}

int ForeColor(const QWidget* w)
{
    QColor c = w->palette().color(QPalette::WindowText);
    return RGB(c.red(), c.green(), c.blue());
}

ComboBox::ComboBox(QWidget* parent, bool editable) : QComboBox(parent)
{
    setEditable(editable);
    setInsertPolicy(QComboBox::NoInsert);
    // The user's pick raises Click also when the same entry is picked again.
    connect(this, QOverload<int>::of(&QComboBox::activated), this, [this](int) {
        if (Click) Click();
    });
}

void ComboBox::setText(const QString& s)
{
    if (isEditable()) {
        setEditText(s);
        return;
    }
    int i = findText(s, Qt::MatchExactly | Qt::MatchCaseSensitive);
    if (i >= 0) setCurrentIndex(i);
}

void ComboBox::setListIndex(int i)
{
    setCurrentIndex(i);
    if (Click) Click();
}

ListBox::ListBox(QWidget* parent) : QListWidget(parent)
{
    setSelectionMode(QAbstractItemView::MultiSelection);
}

QString ListBox::List(int i) const
{
    const QListWidgetItem* it = item(i);
    return it ? it->text() : QString();
}

bool ListBox::Selected(int i) const
{
    const QListWidgetItem* it = item(i);
    return it && it->isSelected();
}

void ListBox::setSelected(int i, bool on)
{
    if (QListWidgetItem* it = item(i)) it->setSelected(on);
}

void ListBox::AddItem(const QString& s) { addItem(s); }
