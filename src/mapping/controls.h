#pragma once
// The form library's conventions on Qt widgets: positions in twips, a Visible
// flag of the control's own, and list controls whose selection set from code
// raises the same click handler as the user's pick.
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QWidget>
#include <functional>

// Twips to the screen's (logical) pixel. The forms were laid out at 15 twips
// to the pixel for a narrow 8-point dialog font; like the platform did for a
// larger system font, the layout is scaled by how much wider our font is.
// Chosen once by ChooseTwipsPerPixel, which InitApplication calls after
// setting the application's font; 15 until then.
extern double TwipsPerPixel;
void ChooseTwipsPerPixel();
// A point size of the design, in the proportion of our font to its 8.25 points.
double DesignPointSize(double designPoints);

int TwipsToPx(double twips);
double PxToTwips(double px);

// A control's place in twips is kept with it, so that reading it back gives
// the design's values exactly, whatever the rounding to whole pixels.
struct TwipsRect { int Left, Top, Width, Height; };
void SetTwips(QWidget* w, int left, int top, int width, int height);
TwipsRect Twips(const QWidget* w);
// A window's outer size in twips, kept the same way.
void SetSizeTwips(QWidget* w, int width, int height);
QSize SizeTwips(const QWidget* w);
void SetLeft(QWidget* w, int twips);
void SetTop(QWidget* w, int twips);
void SetWidth(QWidget* w, int twips);
void SetHeight(QWidget* w, int twips);

// The control's own Visible property, whatever its container shows.
inline bool Visible(const QWidget* w) { return !w->isHidden(); }
void SetForeColor(QWidget* w, int rgb);
int ForeColor(const QWidget* w);

class ComboBox : public QComboBox {
    Q_OBJECT
public:
    explicit ComboBox(QWidget* parent = nullptr, bool editable = false);
    std::function<void()> Click;

    QString Text() const { return currentText(); }
    void setText(const QString& s);
    int ListCount() const { return count(); }
    int ListIndex() const { return currentIndex(); }
    // Sets the selection from code and raises Click, also when it is unchanged.
    void setListIndex(int i);
    QString List(int i) const { return itemText(i); }
    void AddItem(const QString& s) { addItem(s); }
    void Clear() { clear(); }
};

class ListBox : public QListWidget {
    Q_OBJECT
public:
    explicit ListBox(QWidget* parent = nullptr);
    int ListCount() const { return count(); }
    QString List(int i) const;
    bool Selected(int i) const;
    void setSelected(int i, bool on);
    void AddItem(const QString& s);
    void Clear() { clear(); }
};

class TextBox : public QLineEdit {
    Q_OBJECT
public:
    explicit TextBox(QWidget* parent = nullptr) : QLineEdit(parent) {}
    QString Text() const { return text(); }
};

// The form library's label: plain text, never markup.
class Label : public QLabel {
    Q_OBJECT
public:
    explicit Label(const QString& text, QWidget* parent = nullptr) : QLabel(text, parent) { setTextFormat(Qt::PlainText); }
};

// The hourglass over the whole program while a long step runs that lets no
// events through (loading a dataset, building the print window).
class WaitCursor {
public:
    WaitCursor() { QApplication::setOverrideCursor(Qt::WaitCursor); }
    ~WaitCursor() { QApplication::restoreOverrideCursor(); }
    WaitCursor(const WaitCursor&) = delete;
    WaitCursor& operator=(const WaitCursor&) = delete;
};
