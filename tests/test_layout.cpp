// Every form in every arrangement of the query panel, as drawn with the font in use: each caption fits its control and
// runs under no other control, and no two controls overlap that the design keeps apart. Run at the default scale and
// again with the screen scaled by 2.
#include <QGroupBox>
#include <QPushButton>
#include <QRadioButton>
#include <QStyle>
#include <QTextLayout>

#include "app/frmSplash.h"
#include "app/messages.h"
#include "info/frmInfo.h"
#include "mainwindow_fixture.h"
#include "print/frmPrint.h"
#include "results/frmShowQueryData.h"
#include "workspace/frmShowLayersDialog.h"

using namespace fixture;

namespace {

QRect designOf(const QWidget* w) { return w->property("twips").toRect(); }

QString describe(const QWidget* w)
{
    const QString caption = w->property("text").toString() + w->property("title").toString();  // of a label, button or frame
    const QRect d = designOf(w);
    return QString("%1 \"%2\" at %3,%4 %5x%6").arg(w->metaObject()->className(), caption.left(40)).arg(d.x()).arg(d.y()).arg(d.width()).arg(d.height());
}

// The words of a text as drawn in an area with the given flags, each as the box of its letters.
QList<QRect> linesOf(const QFont& font, const QRect& area, int flags, const QString& text)
{
    QTextLayout layout(text, font);
    QTextOption option(Qt::Alignment(flags & Qt::AlignHorizontal_Mask));
    option.setWrapMode(flags & Qt::TextWordWrap ? QTextOption::WordWrap : QTextOption::NoWrap);
    layout.setTextOption(option);
    layout.beginLayout();
    qreal height = 0;
    for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine())
        line.setLineWidth(area.width()), line.setPosition(QPointF(0, height)), height += line.height();
    layout.endLayout();
    const qreal dy = flags & Qt::AlignVCenter ? (area.height() - height) / 2 : flags & Qt::AlignBottom ? area.height() - height : 0;
    QList<QRect> out;
    const QFontMetricsF fm(font);
    for (int i = 0; i < layout.lineCount(); ++i) {
        const QTextLine line = layout.lineAt(i);
        const QString part = text.mid(line.textStart(), line.textLength());
        const qreal x = area.left() + line.naturalTextRect().left(), baseline = area.top() + dy + line.y() + line.ascent();
        for (qsizetype at = 0; at < part.size();) {
            const qsizetype end = part.indexOf(' ', at) < 0 ? part.size() : part.indexOf(' ', at);
            if (end > at) out << fm.tightBoundingRect(part.mid(at, end - at)).translated(x + fm.horizontalAdvance(part.left(at)), baseline).toRect();
            at = end + 1;
        }
    }
    return out;
}

// Where a control's caption is drawn, line by line in its parent's coordinates, and whether it fits the control.
struct Caption { QList<QRect> lines; bool fits = true; };

std::optional<Caption> captionOf(QWidget* w)
{
    const QFontMetrics fm(w->font());
    const QRect box = w->geometry();
    auto placed = [&](const QList<QRect>& lines) {
        Caption c;
        for (const QRect& r : lines) c.lines << r.translated(box.topLeft()), c.fits = c.fits && w->rect().adjusted(-1, -1, 1, 1).contains(r);  // a pixel for rounding
        return c;
    };
    auto centred = [&](QSize need) { return placed({QRect(QPoint((box.width() - need.width()) / 2, (box.height() - need.height()) / 2), need)}); };
    if (auto* c = qobject_cast<LayerCheckBox*>(w)) return placed(linesOf(w->font(), c->textArea(), LayerCheckBox::kCaptionFlags, c->text()));
    if (auto* l = qobject_cast<QLabel*>(w)) {
        if (l->text().isEmpty()) return std::nullopt;
        const int flags = int(l->alignment()) | (l->wordWrap() ? Qt::TextWordWrap : 0);
        Caption c = placed(linesOf(w->font(), l->contentsRect(), flags, l->text()));
        for (const QRect& r : c.lines) c.fits = c.fits && l->contentsRect().translated(box.topLeft()).adjusted(-1, -1, 1, 1).contains(r);
        return c;
    }
    if (auto* b = qobject_cast<QAbstractButton*>(w); qobject_cast<QCheckBox*>(w) || qobject_cast<QRadioButton*>(w)) {
        const int mark = w->style()->pixelMetric(qobject_cast<QCheckBox*>(w) ? QStyle::PM_IndicatorHeight : QStyle::PM_ExclusiveIndicatorHeight);
        const QSize need(w->sizeHint().width(), b->text().isEmpty() ? mark : std::max(mark, fm.height()));
        return placed({QRect(QPoint(0, (box.height() - need.height()) / 2), need)});
    }
    if (auto* b = qobject_cast<QPushButton*>(w)) {
        const int margins = w->style()->pixelMetric(QStyle::PM_ButtonMargin) + 2 * w->style()->pixelMetric(QStyle::PM_DefaultFrameWidth);
        return centred(QSize(fm.horizontalAdvance(b->text()) + margins, fm.height()));
    }
    if (auto* g = qobject_cast<QGroupBox*>(w); g && !g->title().isEmpty())  // the title, a letter in from each side
        return centred(QSize(fm.horizontalAdvance(g->title() + "MM"), fm.height()));
    return std::nullopt;
}

// Labels, check boxes, option buttons and frames draw their captions alone; the others paint their whole area.
bool opaque(const QWidget* w)
{
    return w->autoFillBackground() || !(qobject_cast<const QLabel*>(w) || qobject_cast<const QCheckBox*>(w) ||
                                        qobject_cast<const QRadioButton*>(w) || qobject_cast<const QGroupBox*>(w));
}

bool meet(const QList<QRect>& a, const QList<QRect>& b)
{
    return std::any_of(a.begin(), a.end(), [&](const QRect& x) { return std::any_of(b.begin(), b.end(), [&](const QRect& y) { return x.intersects(y); }); });
}

// The problems of one window as it stands.
QStringList problemsOf(QWidget* window, const QString& where)
{
    QStringList out;
    for (QWidget* w : window->findChildren<QWidget*>()) {
        if (!w->isVisibleTo(window) || !designOf(w).isValid()) continue;
        const QObjectList& stack = w->parentWidget()->children();  // lowest first
        QList<QWidget*> siblings;
        for (QObject* o : stack)
            if (auto* s = qobject_cast<QWidget*>(o); s && s != w && s->isVisibleTo(window) && designOf(s).isValid()) siblings << s;
        auto above = [&](QWidget* s) { return stack.indexOf(s) > stack.indexOf(w); };
        // A control that lies wholly under another is never seen.
        if (std::any_of(siblings.begin(), siblings.end(), [&](QWidget* s) { return above(s) && opaque(s) && s->geometry().contains(w->geometry()); }))
            continue;
        const auto caption = captionOf(w);
        if (caption && !caption->fits) out << where + ": the caption does not fit " + describe(w);
        for (QWidget* s : siblings) {
            if (caption && above(s) && opaque(s) && meet(caption->lines, {s->geometry()}))
                out << where + ": the caption of " + describe(w) + " runs under " + describe(s);
            const auto other = above(s) ? captionOf(s) : std::nullopt;
            if (caption && other && meet(caption->lines, other->lines))
                out << where + ": the captions of " + describe(w) + " and " + describe(s) + " overprint";
            if (above(s) && w->geometry().intersects(s->geometry()) && !designOf(w).intersects(designOf(s)))
                out << where + ": " + describe(w) + " overlaps " + describe(s);
        }
    }
    return out;
}

TEST(Layout, EveryCaptionFitsInEveryFormAndArrangement)
{
    QStringList problems;
    unloadFrmMain();
    ResetProgramState();
    problems << problemsOf(&frmSplash(), "splash");
    discardFrmSplash();
    FrmMain& f = frmMain();
    loadDirectory(q(testsupport::dataset()));
    problems << problemsOf(&f, "no query");
    for (int i = 0; i < f.cboSelectQuery->ListCount(); ++i) {
        f.cboSelectQuery->setListIndex(i);
        f.cmdShowData->setVisible(true);
        problems << problemsOf(&f, f.cboSelectQuery->Text());
    }
    ASSERT_FALSE(f.bFirstQuery);
    f.cmdZoomIn_Click();
    ASSERT_TRUE(Visible(f.cmdOriginalMap));
    // Every refusal of the parameter checks, in the label of progress texts.
    for (const char* text : {"Max. Wind Power Density should be > Min. Wind Power Density",
                             "Please enter a numeric value for Max. Wind Power Density",
                             "Proximity to transmission must be >=0.001 and <= 25km.",
                             "Max. Solar Resource should be > Min. Solar Resource"}) {
        DisplayError(text);
        problems << problemsOf(&f, text);
    }
    f.optEditLegend[1]->setChecked(true);
    problems << problemsOf(&f, "legend");

    frmShowLayersDialog().Form_Activate();
    problems << problemsOf(&frmShowLayersDialog(), "Change Layers");
    ShowFrmInfo();
    problems << problemsOf(&frmInfo(), "Map Information");

    FrmShowQueryData& table = frmShowQueryData();
    for (int i = 0; i < kQueryDataRows; ++i) {
        table.lblArea[i]->setText("1,234,567.89 sq km");
        table.lblDescription[i]->setText(i % 2 ? "Wind Power Density >= 600 and < 800" : "Solar Resource >= 6.5 < 7.0");
        for (QWidget* w : std::initializer_list<QWidget*>{table.shpLayerColor[i], table.lblArea[i], table.lblDescription[i]}) w->setVisible(true);
    }
    problems << problemsOf(&table, "Query Results");

    f.mnuPrint_Click();
    problems << problemsOf(&frmPrint(), "Print Map");
    UnloadFrmPrint(), unloadFrmMain();
    EXPECT_TRUE(problems.isEmpty()) << TwipsPerPixel << " twips to the pixel\n" << problems.join("\n").toStdString();
}

}  // namespace
