#include "mapping/controls.h"

#include <QPalette>
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
