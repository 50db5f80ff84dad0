// The scale bar control: the round length for an extent and unit, where the bar goes, and its colours.
#include <QImage>
#include <QPixmap>
#include <gtest/gtest.h>

#include "mapping/scalebar.h"
#include "support/testsupport.h"

namespace {

// A bar the size of the print window's: 4935 x 735 twips, for a map 329 pixels wide.
void configure(ScaleBar& sb, int units, double left, double top, double right, double bottom)
{
    sb.resize(329, 49);
    sb.setScreenExtent(96, 48, 425, 241), sb.setMapExtent(left, top, right, bottom), sb.setMapUnits(units);
    sb.setShowOutline(true), sb.setBackColor(0xFFFFFF), sb.setBarColor1(0x808080), sb.setBarColor2(0xFFC0C0);
    QFont f("Arial Narrow");
    f.setPointSizeF(8);
    sb.setBarFont(f), sb.setDivisions(3), sb.setBarWidthRatio(0.6f), sb.setLabelMode(ScaleBar::DivisionLabelsAndUnit);
}

QRgb rgbAt(const QImage& im, int x, int y) { return im.pixel(x, y) & 0xFFFFFF; }

TEST(ScaleBar, RoundLengthUnitLabelsAndColoursFollowTheExtentUnitCodeAndModeAndWithoutAScaleOnlyTheBackgroundShows)
{
    // The round length is the largest of 1, 2, 2.5 and 5 times a power of ten not above the value.
    const std::pair<double, double> lengths[] = {{1, 1},       {1.9, 1},     {2, 2},         {2.4, 2},     {2.5, 2.5},
                                                 {4.99, 2.5},  {5, 5},       {9.99, 5},      {10, 10},     {0.3, 0.25},
                                                 {1000, 1000}, {999.9, 500}, {44528, 25000}, {0.001, 0.001}};
    for (auto [v, expected] : lengths) EXPECT_DOUBLE_EQ(ScaleBar::roundLengthBelow(v), expected) << v;

    // Without a usable scale (no labels in the row) nothing but the background is drawn.
    struct Case {
        const char* what; int units; double left, top, right, bottom; int divisions; float ratio; QStringList labels; QString unit;
    };
    const QStringList km75 = {"0", "25", "50", "75"};
    const Case cases[] = {
        {"160 km of metres", ScaleBar::Meters, 0, 100000, 160000, 0, 3, 0.6f, km75, "Kilometers"},
        {"1.1 km of metres", ScaleBar::Meters, 0, 500, 1100, 0, 3, 0.6f, {"0", "200", "400", "600"}, "Meters"},
        {"100,000 feet", ScaleBar::Feet, 0, 1000, 100000, 0, 3, 0.6f, {"0", "2.5", "5", "7.5"}, "Miles"},
        {"3,000 feet", ScaleBar::Feet, 0, 1000, 3000, 0, 3, 0.6f, {"0", "500", "1,000", "1,500"}, "Feet"},
        {"2 degrees at the equator", ScaleBar::Degrees, 10, 1, 12, -1, 3, 0.6f, km75, "Kilometers"},
        // A degree of longitude is half as long at 60 degrees.
        {"2 degrees at 60 north", ScaleBar::Degrees, 10, 61, 12, 59, 3, 0.6f, {"0", "20", "40", "60"}, "Kilometers"},
        {"four divisions on half the width", ScaleBar::Meters, 0, 1, 170000, 0, 4, 0.5f, {"0", "20", "40", "60", "80"}, "Kilometers"},
        {"map extent without width", ScaleBar::Meters, 5, 10, 5, 0, 3, 0.6f},
        {"degrees at the pole", ScaleBar::Degrees, 0, 91, 10, 89, 3, 0.6f},
        {"no divisions", ScaleBar::Meters, 0, 100000, 160000, 0, 0, 0.6f},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        ScaleBar sb;
        configure(sb, c.units, c.left, c.top, c.right, c.bottom);
        sb.setDivisions(c.divisions), sb.setBarWidthRatio(c.ratio), sb.setBackColor(0x00FFFF);  // yellow in the platform's order
        const ScaleBar::Layout l = sb.layout();
        ASSERT_EQ(l.valid, !c.labels.isEmpty());
        if (!l.valid) {
            const QImage im = sb.grab().toImage();
            for (int y = 0; y < im.height(); ++y)
                for (int x = 0; x < im.width(); ++x) ASSERT_EQ(rgbAt(im, x, y), 0xFFFF00u) << x << "," << y;
            continue;
        }
        EXPECT_EQ(l.labels, c.labels);
        EXPECT_EQ(l.unitName, c.unit);
        // Never longer than the ratio allows, never shorter than half of it.
        EXPECT_TRUE(l.bar.width() <= c.ratio * sb.width() + 0.5 && l.bar.width() >= c.ratio * sb.width() / 2);
        ASSERT_EQ(int(l.ticks.size()), c.divisions + 1);
        EXPECT_EQ(std::pair(l.ticks.front(), l.ticks.back()), std::pair(l.bar.left(), l.bar.left() + l.bar.width()));
        // The bar's length in pixels is its ground length at the map's scale.
        EXPECT_NEAR(l.bar.width() * l.groundPerPixel, l.division * c.divisions, l.groundPerPixel);
    }

    const std::pair<int, QStringList> modes[] = {{ScaleBar::NoLabels, {"", "", "", ""}},
        {ScaleBar::EndLabel, {"", "", "", "75 Kilometers"}}, {ScaleBar::DivisionLabels, km75}};
    for (const auto& [mode, labels] : modes) {
        ScaleBar sb;
        configure(sb, ScaleBar::Meters, 0, 100000, 160000, 0);
        sb.setLabelMode(mode);
        EXPECT_EQ(sb.layout().labels, labels) << mode;
    }

    // The divisions alternate the two bar colours inside an outline.
    ScaleBar sb;
    configure(sb, ScaleBar::Meters, 0, 100000, 160000, 0);
    const ScaleBar::Layout l = sb.layout();
    ASSERT_TRUE(l.valid);
    const QImage im = sb.grab().toImage();
    const int midY = l.bar.top() + l.bar.height() / 2;
    const QRgb grey = 0x808080, lightBlue = 0xC0C0FF;  // 0xFFC0C0 is blue-green-red
    for (int i = 0; i < 3; ++i) EXPECT_EQ(rgbAt(im, (l.ticks[i] + l.ticks[i + 1]) / 2, midY), i == 1 ? lightBlue : grey) << i;
    EXPECT_EQ(QList<QRgb>({rgbAt(im, l.bar.left(), midY), rgbAt(im, (l.ticks[0] + l.ticks[1]) / 2, l.bar.top()),
                           rgbAt(im, 0, 0)}), QList<QRgb>({0x000000u, 0x000000u, 0xFFFFFFu}));

    sb.setShowOutline(false);
    EXPECT_EQ(rgbAt(sb.grab().toImage(), l.bar.left(), midY), grey);
}

}  // namespace
