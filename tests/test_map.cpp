// The map control: draw events and their order, what lies over what, class
// colours at the breaks, the view's geometry and the mouse holds.
#include <gtest/gtest.h>

#include <QApplication>
#include <QImage>
#include <QMouseEvent>
#include <QPainter>

#include "datagen.h"
#include "mapping/map.h"
#include "support/testsupport.h"

namespace {

using datagen::AttrValue;
using datagen::FeatureSpec;
using datagen::FieldSpec;
using datagen::GeomKind;

std::string square(double x0, double y0, double x1, double y1)
{
    auto n = [](double v) { return std::to_string(v); };
    return "POLYGON((" + n(x0) + " " + n(y0) + ", " + n(x1) + " " + n(y0) + ", " + n(x1) + " " + n(y1) + ", " +
           n(x0) + " " + n(y1) + ", " + n(x0) + " " + n(y0) + "))";
}

ShapePtr shapeOf(const std::string& wkt) { return shapeFromGeom(geomFromWkt(wkt.c_str())); }

QRgb rgbOf(int c) { return qRgb(RedOf(c), GreenOf(c), BlueOf(c)); }

SymbolPtr solid(int color)
{
    auto s = std::make_shared<Symbol>();
    s->Color = color;
    s->Outline = false;
    return s;
}

constexpr int Red = RGB(255, 0, 0);
constexpr int Blue = RGB(0, 0, 255);
constexpr int Green = RGB(0, 160, 0);
constexpr int Black = RGB(0, 0, 0);
const QRgb White = qRgb(255, 255, 255);

// Records the draw events as short texts, with the painter each one brought.
struct EventLog {
    QStringList events;
    std::vector<QPainter*> painters;
    explicit EventLog(Map& map)
    {
        QObject::connect(&map, &Map::BeforeLayerDraw, &map, [this](int i, QPainter* p) { add("before " + QString::number(i), p); });
        QObject::connect(&map, &Map::AfterLayerDraw, &map, [this](int i, QPainter* p) { add("after " + QString::number(i), p); });
        QObject::connect(&map, &Map::BeforeTrackingLayerDraw, &map, [this](QPainter* p) { add("before tracking", p); });
        QObject::connect(&map, &Map::AfterTrackingLayerDraw, &map, [this](QPainter* p) { add("after tracking", p); });
    }
    void add(const QString& e, QPainter* p)
    {
        events << e;
        painters.push_back(p);
    }
    void clear()
    {
        events.clear();
        painters.clear();
    }
};

class MapTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        dir = testsupport::tempDir("map-" + std::string(::testing::UnitTest::GetInstance()->current_test_info()->name()));
        map.resize(200, 200);
    }

    MapLayerPtr layer(const std::string& name, GeomKind kind, const std::vector<FeatureSpec>& features,
                      const std::vector<FieldSpec>& fields = {{"VALUE", 'N'}})
    {
        const std::string path = dir + "/" + name + ".shp";
        datagen::writeShapefile(path, kind, fields, features, false);
        GeoDatasetPtr ds = GeoDataset::open(QString::fromStdString(path));
        EXPECT_TRUE(ds) << path;
        auto l = std::make_shared<MapLayer>();
        l->setGeoDataset(ds);
        l->Name = QString::fromStdString(name);
        return l;
    }

    MapLayerPtr polygons(const std::string& name, const std::vector<std::string>& wkts, int color)
    {
        std::vector<FeatureSpec> f;
        for (const auto& w : wkts) f.push_back({w, {1.0}});
        MapLayerPtr l = layer(name, GeomKind::Polygon, f);
        l->Symbol = solid(color);
        return l;
    }

    // With the view at 0..100 on a 200 px square: two pixels to the unit.
    static QPoint px(double x, double y) { return QPoint(int(x * 2), int((100 - y) * 2)); }
    QRgb at(const QImage& img, double x, double y) { return img.pixel(px(x, y)); }
    QImage picture() { return map.grab().toImage().convertToFormat(QImage::Format_RGB32); }

    std::string dir;
    Map map;
};

// ---- the draw events ----

TEST_F(MapTest, RefreshRaisesEventsForVisibleLayersBottomToTopThenTracking)
{
    MapLayerPtr a = polygons("a", {square(10, 10, 20, 20)}, Red);
    MapLayerPtr b = polygons("b", {square(30, 30, 40, 40)}, Red);
    MapLayerPtr c = polygons("c", {square(50, 50, 60, 60)}, Red);
    map.Layers().Add(a);
    map.Layers().Add(b);
    map.Layers().Add(c);  // c is on top, index 0; a is index 2
    b->Visible = false;
    map.setExtent(Rectangle(0, 0, 100, 100));

    EventLog log(map);
    map.Refresh();
    EXPECT_EQ(log.events, QStringList({"before 2", "after 2", "before 0", "after 0", "before tracking", "after tracking"}));
    ASSERT_NE(log.painters.front(), nullptr);
    for (QPainter* p : log.painters) EXPECT_EQ(p, log.painters.front());

    // A layer without data is still a visible layer of the repaint.
    auto empty = std::make_shared<MapLayer>();
    map.Layers().Add(empty);
    log.clear();
    map.Refresh();
    EXPECT_EQ(log.events, QStringList({"before 3", "after 3", "before 1", "after 1", "before 0", "after 0",
                                       "before tracking", "after tracking"}));
}

TEST_F(MapTest, EmptyMapStillRaisesTheTrackingEvents)
{
    EventLog log(map);
    map.Refresh();
    EXPECT_EQ(log.events, QStringList({"before tracking", "after tracking"}));
    log.clear();
    map.Refresh();
    EXPECT_EQ(log.events.size(), 2);
}

TEST_F(MapTest, RepaintOfUnchangedMapOnlyBlitsAndChangesRenderAgain)
{
    map.Layers().Add(polygons("a", {square(10, 10, 50, 50)}, Red));
    map.setExtent(Rectangle(0, 0, 100, 100));
    EventLog log(map);
    map.Refresh();
    ASSERT_EQ(log.events.size(), 4);

    // What the main window's repaint for a label does to the map.
    log.clear();
    QImage img = picture();
    EXPECT_TRUE(log.events.isEmpty()) << log.events.join(", ").toStdString();
    EXPECT_EQ(at(img, 30, 30), rgbOf(Red));

    // Moving the view redraws at once, within the call.
    map.setExtent(Rectangle(0, 0, 50, 50));
    EXPECT_EQ(log.events.size(), 4);

    // A new size or a new layer makes the next repaint render afresh.
    log.clear();
    map.resize(240, 200);
    picture();
    EXPECT_EQ(log.events.size(), 4);
    log.clear();
    map.Layers().Add(polygons("b", {square(60, 60, 70, 70)}, Blue));
    EXPECT_TRUE(log.events.isEmpty());
    picture();
    EXPECT_EQ(log.events.size(), 6);
}

TEST_F(MapTest, ShapesDrawnInFirstBeforeLayerDrawLieUnderEveryLayer)
{
    // Bottom: an edge-only square on the right; top: a filled square on the left.
    MapLayerPtr edge = polygons("edge", {square(60, 10, 90, 90)}, Green);
    edge->Symbol->Style = 1;
    edge->Symbol->Outline = true;
    edge->Symbol->OutlineColor = Black;
    map.Layers().Add(edge);
    map.Layers().Add(polygons("fill", {square(0, 0, 50, 100)}, Red));
    map.setExtent(Rectangle(0, 0, 100, 100));

    // A result symbol as a query makes it: only Color and Outline set.
    auto result = std::make_shared<Symbol>();
    result->Color = Blue;
    result->Outline = false;
    bool drawn = false;
    int firstIndex = -1;
    QObject::connect(&map, &Map::BeforeLayerDraw, &map, [&](int index, QPainter*) {
        if (drawn) return;
        firstIndex = index;
        map.DrawShape(shapeOf(square(0, 0, 100, 100)), result);
        drawn = true;
    });
    QObject::connect(&map, &Map::AfterTrackingLayerDraw, &map, [&](QPainter*) { drawn = false; });
    map.Refresh();
    QImage img = picture();

    EXPECT_EQ(firstIndex, 1);
    EXPECT_EQ(at(img, 25, 50), rgbOf(Red)) << "a filled layer covers the result";
    EXPECT_EQ(at(img, 75, 50), rgbOf(Blue)) << "the result shows through an edge-only layer, solid";
    EXPECT_EQ(at(img, 55, 50), rgbOf(Blue));
    EXPECT_EQ(img.pixel(px(60, 50)), rgbOf(Black)) << "the edge lies over the result";
}

TEST_F(MapTest, DrawShapeOutsideARepaintPaintsOnThePictureAtOnce)
{
    map.setExtent(Rectangle(0, 0, 100, 100));
    EventLog log(map);
    map.DrawShape(shapeOf(square(20, 20, 40, 40)), solid(Green));
    EXPECT_TRUE(log.events.isEmpty());
    QImage img = picture();
    EXPECT_EQ(at(img, 30, 30), rgbOf(Green));
    EXPECT_EQ(at(img, 60, 60), White);
    EXPECT_THROW(map.DrawShape(nullptr, solid(Green)), MapError);
}

// ---- how features look ----

TEST_F(MapTest, ClassBreakValueOnABreakTakesTheLowerClass)
{
    // One square per value, left to right; the null one keeps the layer symbol.
    const std::vector<AttrValue> values = {199.9, 200.0, 200.1, 300.0, 300.5, 1e6, -5.0, std::monostate{}};
    std::vector<FeatureSpec> f;
    for (size_t i = 0; i < values.size(); ++i)
        f.push_back({square(i * 12.0 + 1, 40, i * 12.0 + 11, 60), {values[i]}});
    MapLayerPtr l = layer("wind", GeomKind::Polygon, f, {{"WINDPWRD", 'N', 19, 4}});
    l->Symbol = solid(RGB(90, 90, 90));
    auto r = std::make_shared<ClassBreaksRenderer>();
    r->Field = "WINDPWRD";
    r->setBreakCount(2);
    r->setBreak(0, 200);
    r->setBreak(1, 300);
    const int colors[3] = {RGB(255, 255, 255) - 1, RGB(222, 184, 135), RGB(0, 0, 255)};
    for (int i = 0; i < 3; ++i) {
        r->Symbol(i)->Color = colors[i];
        r->Symbol(i)->Outline = false;
    }
    l->Renderer = r;
    map.Layers().Add(l);
    map.setExtent(Rectangle(0, 0, 100, 100));
    QImage img = picture();

    const int expected[] = {colors[0], colors[0], colors[1], colors[1], colors[2], colors[2], colors[0], RGB(90, 90, 90)};
    for (size_t i = 0; i < values.size(); ++i)
        EXPECT_EQ(at(img, i * 12.0 + 6, 50), rgbOf(expected[i])) << "square " << i;
}

TEST_F(MapTest, ValueMapMatchesTheStoredTextExactly)
{
    const std::vector<std::string> texts = {"FOREST", " FOREST", "forest", "WATER"};
    std::vector<FeatureSpec> f;
    for (size_t i = 0; i < texts.size(); ++i) f.push_back({square(i * 20.0 + 2, 40, i * 20.0 + 18, 60), {texts[i]}});
    MapLayerPtr l = layer("landuse", GeomKind::Polygon, f, {{"LAND_USE", 'C', 40}});
    l->Symbol = solid(RGB(90, 90, 90));
    auto r = std::make_shared<ValueMapRenderer>();
    r->Field = "LAND_USE";
    r->setValueCount(2);
    r->setValue(0, "FOREST");
    r->setValue(1, "WATER");
    r->Symbol(0)->Color = RGB(26, 129, 78);
    r->Symbol(1)->Color = RGB(102, 140, 190);
    l->Renderer = r;
    map.Layers().Add(l);
    map.setExtent(Rectangle(0, 0, 100, 100));
    QImage img = picture();

    EXPECT_EQ(at(img, 10, 50), rgbOf(RGB(26, 129, 78)));
    EXPECT_EQ(at(img, 30, 50), rgbOf(RGB(90, 90, 90))) << "a leading blank is part of the value";
    EXPECT_EQ(at(img, 50, 50), rgbOf(RGB(90, 90, 90))) << "values are matched with case";
    EXPECT_EQ(at(img, 70, 50), rgbOf(RGB(102, 140, 190)));
}

TEST_F(MapTest, RendererOnAFieldTheLayerLacksDrawsTheLayerSymbol)
{
    MapLayerPtr l = polygons("nofield", {square(10, 10, 90, 90)}, Green);
    auto r = std::make_shared<ClassBreaksRenderer>();
    r->Field = "WINDPWRD";
    r->setBreakCount(1);
    r->Symbol(0)->Color = Red;
    r->Symbol(1)->Color = Red;
    l->Renderer = r;
    MapLayerPtr text = layer("text", GeomKind::Polygon, {{square(40, 40, 60, 60), {std::string("abc")}}}, {{"WINDPWRD", 'C', 10}});
    text->Symbol = solid(Blue);
    text->Renderer = r;  // a value that is no number
    map.Layers().Add(l);
    map.Layers().Add(text);
    map.setExtent(Rectangle(0, 0, 100, 100));
    QImage img = picture();
    EXPECT_EQ(at(img, 20, 20), rgbOf(Green));
    EXPECT_EQ(at(img, 50, 50), rgbOf(Blue));
}

TEST_F(MapTest, StylesOfPolygonsLinesAndMarkers)
{
    MapLayerPtr hatch = polygons("hatch", {square(5, 60, 45, 95)}, Green);
    hatch->Symbol->Style = 4;
    MapLayerPtr hollow = polygons("hollow", {square(55, 60, 95, 95)}, Green);
    hollow->Symbol->Style = 1;
    hollow->Symbol->Outline = true;
    hollow->Symbol->OutlineColor = Red;
    MapLayerPtr road = layer("road", GeomKind::Line, {{"LINESTRING(5 30, 95 30)", {1.0}}});
    road->Symbol->Color = Blue;
    road->Symbol->Size = 3;
    MapLayerPtr towns = layer("towns", GeomKind::Point, {{"POINT(20 10)", {1.0}}, {"POINT(80 10)", {1.0}}});
    towns->Symbol->Color = Red;
    towns->Symbol->Style = 1;
    for (auto& l : {hatch, hollow, road, towns}) map.Layers().Add(l);
    map.setExtent(Rectangle(0, 0, 100, 100));
    QImage img = picture();

    int green = 0, white = 0;
    for (int x = px(10, 0).x(); x < px(40, 0).x(); ++x) {
        QRgb c = img.pixel(x, px(0, 80).y());
        green += c == rgbOf(Green);
        white += c == White;
    }
    EXPECT_GT(green, 3) << "the hatch is drawn in the fill colour";
    EXPECT_GT(white, green) << "a hatch is no solid fill";

    EXPECT_EQ(at(img, 75, 78), White) << "an edge-only polygon has no fill";
    EXPECT_EQ(img.pixel(px(55, 78)), rgbOf(Red));
    int blue = 0;
    for (int y = px(0, 30).y() - 5; y <= px(0, 30).y() + 5; ++y) blue += img.pixel(px(50, 0).x(), y) == rgbOf(Blue);
    EXPECT_EQ(blue, 3) << "a line of size 3 is three pixels wide";
    EXPECT_EQ(at(img, 20, 10), rgbOf(Red));
    EXPECT_EQ(img.pixel(px(20, 10) + QPoint(2, 2)), rgbOf(Red)) << "a marker is more than a pixel";
    EXPECT_EQ(at(img, 50, 10), White);
}

// ---- the view ----

TEST_F(MapTest, SetExtentKeepsTheControlsAspectAboutTheCentre)
{
    map.resize(200, 100);
    struct Case { Rectangle asked, expected; };
    const Case cases[] = {
        {{0, 0, 100, 100}, {-50, 0, 150, 100}},  // too tall: widened
        {{0, 0, 400, 100}, {0, -50, 400, 150}},  // too wide: heightened
        {{10, 10, 50, 30}, {10, 10, 50, 30}},    // right already
    };
    for (const Case& c : cases) {
        map.setExtent(c.asked);
        RectanglePtr e = map.Extent();
        EXPECT_DOUBLE_EQ(e->Left, c.expected.Left);
        EXPECT_DOUBLE_EQ(e->Right, c.expected.Right);
        EXPECT_DOUBLE_EQ(e->Bottom, c.expected.Bottom);
        EXPECT_DOUBLE_EQ(e->Top, c.expected.Top);
    }

    // Reading gives a copy.
    RectanglePtr copy = map.Extent();
    copy->ScaleRectangle(0.5);
    EXPECT_DOUBLE_EQ(map.Extent()->Width(), 40);

    // A resize keeps what was asked for in view.
    map.resize(100, 200);
    RectanglePtr e = map.Extent();
    EXPECT_DOUBLE_EQ(e->Left, 10);
    EXPECT_DOUBLE_EQ(e->Right, 50);
    EXPECT_DOUBLE_EQ(e->Bottom, -20);
    EXPECT_DOUBLE_EQ(e->Top, 60);
}

TEST_F(MapTest, EmptyRectangleLeavesTheExtentAndDrawsNothing)
{
    map.setExtent(Rectangle(0, 0, 100, 100));
    EventLog log(map);
    for (const Rectangle& r : {Rectangle(5, 5, 5, 20), Rectangle(5, 5, 20, 5), Rectangle(5, 5, 5, 5), Rectangle(20, 5, 5, 20)})
        map.setExtent(r);
    EXPECT_TRUE(log.events.isEmpty());
    EXPECT_DOUBLE_EQ(map.Extent()->Left, 0);
    EXPECT_DOUBLE_EQ(map.Extent()->Width(), 100);
}

TEST_F(MapTest, FirstLayerSetsTheFullExtentAndFullExtentEnclosesAllLayers)
{
    map.Layers().Add(polygons("a", {square(1000, 5000, 3000, 7000)}, Red));
    RectanglePtr e = map.Extent();
    EXPECT_LE(e->Left, 1000);
    EXPECT_GE(e->Right, 3000);
    EXPECT_LE(e->Bottom, 5000);
    EXPECT_GE(e->Top, 7000);
    EXPECT_LT(e->Width(), 2500) << "the view is about the layer, not more";

    // Until the view is moved, it follows the layers as they come.
    map.Layers().Add(polygons("a2", {square(3000, 7000, 3500, 7600)}, Red));
    e = map.Extent();
    RectanglePtr whole = map.FullExtent();
    EXPECT_GE(e->Width(), whole->Width()) << "a freshly loaded dataset shows whole";
    EXPECT_GE(e->Height(), whole->Height());
    EXPECT_GE(e->Top, 7600);

    map.setExtent(Rectangle(1500, 5500, 1600, 5600));
    map.Layers().Add(polygons("b", {square(-4000, 0, -2000, 100)}, Red));
    EXPECT_DOUBLE_EQ(map.Extent()->Width(), 100) << "a further layer leaves the view";
    RectanglePtr full = map.FullExtent();
    EXPECT_LE(full->Left, -4000);
    EXPECT_GE(full->Right, 3000);
    EXPECT_LE(full->Bottom, 0);
    EXPECT_GE(full->Top, 7000);

    // After a clear, the next first layer sets the view again.
    map.Layers().Clear();
    map.Layers().Add(polygons("c", {square(0, 0, 10, 10)}, Red));
    EXPECT_LT(map.Extent()->Width(), 15);
}

TEST_F(MapTest, ToMapPointAndCenterAtAgree)
{
    map.resize(200, 100);
    map.setExtent(Rectangle(0, 0, 200, 100));  // one unit to the pixel
    struct Case { float x, y; double mx, my; };
    for (const Case& c : {Case{0, 0, 0, 100}, Case{3000, 1500, 200, 0}, Case{1500, 750, 100, 50}, Case{150, 300, 10, 80}}) {
        PointPtr p = map.ToMapPoint(c.x, c.y);
        EXPECT_DOUBLE_EQ(p->X(), c.mx);
        EXPECT_DOUBLE_EQ(p->Y(), c.my);
    }

    EventLog log(map);
    map.CenterAt(30, 40);
    EXPECT_EQ(log.events, QStringList({"before tracking", "after tracking"})) << "CenterAt redraws";
    RectanglePtr e = map.Extent();
    EXPECT_DOUBLE_EQ(e->Left, -70);
    EXPECT_DOUBLE_EQ(e->Top, 90);
    EXPECT_DOUBLE_EQ(e->Width(), 200);
    PointPtr middle = map.ToMapPoint(1500, 750);
    EXPECT_DOUBLE_EQ(middle->X(), 30);
    EXPECT_DOUBLE_EQ(middle->Y(), 40);
}

// ---- the mouse ----

class MapMouseTest : public MapTest {
protected:
    void SetUp() override
    {
        MapTest::SetUp();
        map.resize(200, 100);
        map.setExtent(Rectangle(0, 0, 200, 100));
        QObject::connect(&map, &Map::MouseDown, &map, [this](int b, int s, float x, float y) {
            log << QString("down %1 %2 %3 %4").arg(b).arg(s).arg(x).arg(y);
            if (onDown) onDown();
        });
        QObject::connect(&map, &Map::MouseMove, &map,
                         [this](int b, int s, float x, float y) { log << QString("move %1 %2 %3 %4").arg(b).arg(s).arg(x).arg(y); });
        QObject::connect(&map, &Map::MouseUp, &map,
                         [this](int b, int s, float x, float y) { log << QString("up %1 %2 %3 %4").arg(b).arg(s).arg(x).arg(y); });
    }

    QMouseEvent* event(QEvent::Type t, QPointF pos, Qt::MouseButton b, Qt::MouseButtons held,
                       Qt::KeyboardModifiers mods = Qt::NoModifier)
    {
        return new QMouseEvent(t, pos, map.mapToGlobal(pos), b, held, mods);
    }
    // The rest of a gesture waits in the queue, as it would while a hold runs.
    void queue(QMouseEvent* e) { QCoreApplication::postEvent(&map, e); }
    void press(QPointF pos, Qt::MouseButton b = Qt::LeftButton, Qt::KeyboardModifiers mods = Qt::NoModifier)
    {
        std::unique_ptr<QMouseEvent> e(event(QEvent::MouseButtonPress, pos, b, b, mods));
        QApplication::sendEvent(&map, e.get());
    }

    QStringList log;
    std::function<void()> onDown;
};

TEST_F(MapMouseTest, ButtonsAndKeysAreCodedAndPositionsAreInTwips)
{
    press({10, 20}, Qt::RightButton, Qt::ControlModifier);
    std::unique_ptr<QMouseEvent> mv(event(QEvent::MouseMove, {11, 21}, Qt::NoButton, Qt::MiddleButton, Qt::ShiftModifier | Qt::AltModifier));
    QApplication::sendEvent(&map, mv.get());
    std::unique_ptr<QMouseEvent> up(event(QEvent::MouseButtonRelease, {12, 22}, Qt::LeftButton, Qt::NoButton, Qt::ShiftModifier));
    QApplication::sendEvent(&map, up.get());
    EXPECT_EQ(log, QStringList({"down 2 2 150 300", "move 4 5 165 315", "up 1 1 180 330"}));
}

TEST_F(MapMouseTest, ClickWithoutMovementTracksAnEmptyRectangleAndLeavesTheView)
{
    RectanglePtr tracked;
    onDown = [&] {
        tracked = map.TrackRectangle();
        log << "tracked";
        map.setExtent(*tracked);
    };
    queue(event(QEvent::MouseButtonRelease, {50, 50}, Qt::LeftButton, Qt::NoButton));
    press({50, 50});
    ASSERT_TRUE(tracked);
    EXPECT_TRUE(tracked->Width() == 0 || tracked->Height() == 0);
    EXPECT_EQ(log, QStringList({"down 1 0 750 750", "tracked", "up 1 0 750 750"})) << "MouseUp comes after the hold";
    EXPECT_DOUBLE_EQ(map.Extent()->Left, 0);
    EXPECT_DOUBLE_EQ(map.Extent()->Width(), 200);
}

TEST_F(MapMouseTest, DragTracksTheRectangleInMapUnits)
{
    RectanglePtr tracked;
    onDown = [&] { tracked = map.TrackRectangle(); log << "tracked"; };
    queue(event(QEvent::MouseMove, {40, 30}, Qt::NoButton, Qt::LeftButton));
    queue(event(QEvent::MouseMove, {60, 50}, Qt::NoButton, Qt::LeftButton));
    queue(event(QEvent::MouseButtonRelease, {60, 50}, Qt::LeftButton, Qt::NoButton));
    press({20, 20});
    ASSERT_TRUE(tracked);
    EXPECT_DOUBLE_EQ(tracked->Left, 20);
    EXPECT_DOUBLE_EQ(tracked->Right, 60);
    EXPECT_DOUBLE_EQ(tracked->Top, 80);
    EXPECT_DOUBLE_EQ(tracked->Bottom, 50);
    EXPECT_EQ(log, QStringList({"down 1 0 300 300", "tracked", "up 1 0 900 750"})) << "no MouseMove while held";
}

TEST_F(MapMouseTest, PanMovesTheViewWithTheMouseAndRedraws)
{
    EventLog draws(map);
    onDown = [&] { map.Pan(); log << "panned"; };
    queue(event(QEvent::MouseMove, {120, 60}, Qt::NoButton, Qt::LeftButton));
    queue(event(QEvent::MouseButtonRelease, {150, 40}, Qt::LeftButton, Qt::NoButton));
    press({100, 50});
    RectanglePtr e = map.Extent();
    EXPECT_DOUBLE_EQ(e->Left, -50);
    EXPECT_DOUBLE_EQ(e->Bottom, -10);
    EXPECT_DOUBLE_EQ(e->Width(), 200);
    EXPECT_EQ(draws.events, QStringList({"before tracking", "after tracking"}));
    EXPECT_EQ(log, QStringList({"down 1 0 1500 750", "panned", "up 1 0 2250 600"}));
}

TEST_F(MapMouseTest, HoldsReturnAtOnceWithoutAButtonDown)
{
    RectanglePtr r = map.TrackRectangle();
    ASSERT_TRUE(r);
    EXPECT_TRUE(r->Width() == 0 || r->Height() == 0);
    map.Pan();
    EXPECT_DOUBLE_EQ(map.Extent()->Left, 0);

    // Also after a completed click.
    press({10, 10});
    std::unique_ptr<QMouseEvent> up(event(QEvent::MouseButtonRelease, {10, 10}, Qt::LeftButton, Qt::NoButton));
    QApplication::sendEvent(&map, up.get());
    map.Pan();
    EXPECT_EQ(map.TrackRectangle()->Width(), 0);
}

TEST_F(MapMouseTest, MousePointerCodesGiveCursors)
{
    struct Case { int code; Qt::CursorShape shape; };
    for (const Case& c : {Case{1, Qt::ArrowCursor}, Case{11, Qt::WaitCursor}, Case{14, Qt::WhatsThisCursor},
                          Case{53, Qt::OpenHandCursor}}) {
        map.setMousePointer(c.code);
        EXPECT_EQ(map.MousePointer(), c.code);
        EXPECT_EQ(map.cursor().shape(), c.shape) << c.code;
    }
    map.setMousePointer(50);
    EXPECT_NE(map.cursor().shape(), Qt::ArrowCursor);
    map.setMousePointer(11);
    map.setMousePointer(0);
    EXPECT_EQ(map.cursor().shape(), Qt::ArrowCursor) << "the default again, not the hourglass";
}

// ---- output to another device ----

TEST_F(MapTest, OutputMapDrawsIntoTheBoxWithTheDrawEvents)
{
    map.Layers().Add(polygons("left", {square(0, 0, 50, 100)}, Red));
    map.setExtent(Rectangle(0, 0, 100, 100));
    map.Refresh();

    QImage page(300, 200, QImage::Format_RGB32);
    page.fill(qRgb(128, 128, 128));
    EventLog log(map);
    bool drawn = false;
    QObject::connect(&map, &Map::BeforeLayerDraw, &map, [&](int, QPainter*) {
        if (!drawn) map.DrawShape(shapeOf(square(60, 10, 90, 40)), solid(Blue));
        drawn = true;
    });
    {
        QPainter p(&page);
        map.OutputMap(&p, 100, 50, 100, 100, 1);
        EXPECT_EQ(log.events, QStringList({"before 0", "after 0", "before tracking", "after tracking"}));
        for (QPainter* e : log.painters) EXPECT_EQ(e, &p);
    }
    // One unit to the pixel inside the box at (100, 50).
    EXPECT_EQ(page.pixel(125, 100), rgbOf(Red));
    EXPECT_EQ(page.pixel(175, 125), rgbOf(Blue)) << "DrawShape in the event reached the page";
    EXPECT_EQ(page.pixel(175, 60), White);
    EXPECT_EQ(page.pixel(50, 50), qRgb(128, 128, 128)) << "nothing outside the box";
    EXPECT_EQ(page.pixel(250, 100), qRgb(128, 128, 128));

    // The control's own picture is untouched.
    log.clear();
    QImage own = picture();
    EXPECT_TRUE(log.events.isEmpty());
    EXPECT_EQ(at(own, 75, 25), White);
}

}  // namespace
