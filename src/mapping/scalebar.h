#pragma once
// The scale bar control: a bar of a round ground length, cut into divisions
// of alternating colours, with the length of each division written above it
// and the unit's name beside it. The scale comes from a map extent (map units)
// and the screen extent (pixels) that the map occupies.
#include <QFont>
#include <QRect>
#include <QStringList>
#include <QWidget>

class ScaleBar : public QWidget {
    Q_OBJECT
public:
    // Map unit codes.
    enum Unit { Degrees = 0, Feet = 1, Meters = 2 };
    // Label modes.
    enum Labels { NoLabels = 0, EndLabel = 1, DivisionLabels = 2, DivisionLabelsAndUnit = 3 };

    struct Extent {
        double Left = 0, Top = 0, Right = 0, Bottom = 0;
    };

    explicit ScaleBar(QWidget* parent = nullptr);

    void setMapExtent(double left, double top, double right, double bottom);
    void setScreenExtent(double left, double top, double right, double bottom);
    Extent MapExtent() const { return map_; }
    Extent ScreenExtent() const { return screen_; }

    // Colours in the platform's form: red + 256 * green + 65536 * blue.
    void setShowOutline(bool on);
    void setBackColor(int color);
    void setBarColor1(int color);
    void setBarColor2(int color);
    void setDivisions(int n);
    void setBarFont(const QFont& font);
    void setMapUnits(int code);
    void setBarWidthRatio(float ratio);
    void setLabelMode(int mode);

    bool ShowOutline() const { return showOutline_; }
    int BackColor() const { return backColor_; }
    int BarColor1() const { return barColor1_; }
    int BarColor2() const { return barColor2_; }
    int Divisions() const { return divisions_; }
    QFont BarFont() const { return font_; }
    int MapUnits() const { return mapUnits_; }
    float BarWidthRatio() const { return barWidthRatio_; }
    int LabelMode() const { return labelMode_; }

    // Redraws at once.
    void Refresh();

    // What the control draws for its present size and properties.
    struct Layout {
        bool valid = false;            // false: nothing but the background
        double groundPerPixel = 0;     // in the display unit
        double division = 0;           // ground length of one division, display unit
        QString unitName;              // "Kilometers", "Meters", "Miles", "Feet"
        QRect bar;                     // the whole bar, control pixels
        std::vector<int> ticks;        // x of each division boundary, left to right
        QStringList labels;            // the text over each tick ("" where none)
    };
    Layout layout() const;

    // The largest of 1, 2, 2.5 and 5 times a power of ten that is not above v (v > 0).
    static double roundLengthBelow(double v);
    static QColor toQColor(int color);

protected:
    void paintEvent(QPaintEvent*) override;

private:
    Extent map_, screen_;
    bool showOutline_ = false;
    int backColor_ = 0xFFFFFF;
    int barColor1_ = 0x000000;
    int barColor2_ = 0xFFFFFF;
    int divisions_ = 4;
    QFont font_;
    int mapUnits_ = Meters;
    float barWidthRatio_ = 0.5f;
    int labelMode_ = EndLabel;
};
