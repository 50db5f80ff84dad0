#include "mapping/controls.h"

#include <QFontMetricsF>
#include <QGlyphRun>
#include <QPainter>
#include <QPalette>
#include <QTextLayout>
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

// --- Label ------------------------------------------------------------------

void Label::changeEvent(QEvent* e)
{
    if (e->type() == QEvent::FontChange) {
        raw_ = QRawFont();
        pieces_.clear();
        kerning_.clear();
    }
    QLabel::changeEvent(e);
}

// The glyphs of a piece as the text engine shapes it, or none where that
// takes more than one run of the label's own font.
const Label::Piece* Label::pieceOf(const QString& text)
{
    auto it = pieces_.constFind(text);
    if (it != pieces_.constEnd()) return it->glyphs.isEmpty() ? nullptr : &*it;
    if (pieces_.size() > 4096) pieces_.clear();  // captions of many different words
    Piece piece;
    QTextLayout layout(text, font());
    layout.beginLayout();
    QTextLine line = layout.createLine();
    layout.endLayout();
    const QList<QGlyphRun> runs = layout.glyphRuns();
    if (line.isValid() && runs.size() == 1 && runs[0].rawFont() == raw_) {
        piece.glyphs = runs[0].glyphIndexes();
        piece.positions = runs[0].positions();
        for (QPointF& p : piece.positions) p.ry() -= line.ascent();
        piece.advance = line.horizontalAdvance();
    }
    it = pieces_.insert(text, piece);
    return it->glyphs.isEmpty() ? nullptr : &*it;
}

// What the font's pair kerning adds between two pieces.
qreal Label::kerning(QChar a, QChar b)
{
    const quint32 pair = (quint32(a.unicode()) << 16) | b.unicode();
    auto it = kerning_.constFind(pair);
    if (it != kerning_.constEnd()) return *it;
    const QFontMetricsF metrics(font());
    const qreal k = metrics.horizontalAdvance(QString(a) + b) - metrics.horizontalAdvance(a) - metrics.horizontalAdvance(b);
    kerning_.insert(pair, k);
    return k;
}

namespace {

// Characters that a piece of their own shapes as the whole line would: no
// marks, no right-to-left or complex scripts, no line breaks or tabs.
bool standsAlone(QChar c)
{
    return c.unicode() < 0x0590 && !c.isMark() && c.category() != QChar::Other_Control && (c == u' ' || !c.isSpace());
}

}  // namespace

void Label::paintEvent(QPaintEvent* e)
{
    const QString caption = text();
    const QRect area = contentsRect();
    const Qt::TextInteractionFlags interactive = Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard | Qt::TextEditable;
    if (!isEnabled() || textFormat() != Qt::PlainText || margin() != 0 || indent() > 0 || frameWidth() != 0 || buddy() ||
        (textInteractionFlags() & interactive) || layoutDirection() != Qt::LeftToRight ||
        alignment() != (Qt::AlignLeft | Qt::AlignTop) || caption.isEmpty())
        return QLabel::paintEvent(e);
    if (!raw_.isValid()) raw_ = QRawFont::fromFont(font());

    QList<quint32> glyphs;
    QList<QPointF> positions;
    qreal x = 0;
    for (qsizetype i = 0; i < caption.size();) {
        const QChar c = caption[i];
        if (!standsAlone(c)) return QLabel::paintEvent(e);
        qsizetype n = 1;
        if (c.isLetter())
            while (i + n < caption.size() && caption[i + n].isLetter() && standsAlone(caption[i + n])) ++n;
        const Piece* piece = pieceOf(caption.mid(i, n));
        if (!piece) return QLabel::paintEvent(e);
        if (i > 0) x += kerning(caption[i - 1], c);
        glyphs += piece->glyphs;
        for (const QPointF& p : piece->positions) positions.push_back(p + QPointF(x, 0));
        x += piece->advance;
        i += n;
    }
    if (x > area.width()) return QLabel::paintEvent(e);

    QPainter painter(this);
    QGlyphRun run;
    run.setRawFont(raw_);
    run.setGlyphIndexes(glyphs);
    run.setPositions(positions);
    painter.setPen(palette().color(foregroundRole()));
    painter.drawGlyphRun(QPointF(area.left(), area.top() + raw_.ascent()), run);
}
