#include "mapping/controls.h"

#include <QGlyphRun>
#include <QPainter>
#include <QPalette>
#include <QTextLayout>
#include <cmath>

#include "mapping/symbol.h"

int TwipsToPx(double twips) { return int(std::lround(twips / TwipsPerPixel)); }
double PxToTwips(double px) { return px * TwipsPerPixel; }

void SetTwips(QWidget* w, int left, int top, int width, int height)
{
    w->setGeometry(TwipsToPx(left), TwipsToPx(top), TwipsToPx(width), TwipsToPx(height));
}

TwipsRect Twips(const QWidget* w)
{
    const QRect g = w->geometry();
    return {g.x() * TwipsPerPixel, g.y() * TwipsPerPixel, g.width() * TwipsPerPixel, g.height() * TwipsPerPixel};
}

void SetLeft(QWidget* w, int twips) { w->move(TwipsToPx(twips), w->y()); }
void SetTop(QWidget* w, int twips) { w->move(w->x(), TwipsToPx(twips)); }
void SetWidth(QWidget* w, int twips) { w->resize(TwipsToPx(twips), w->height()); }
void SetHeight(QWidget* w, int twips) { w->resize(w->width(), TwipsToPx(twips)); }

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
