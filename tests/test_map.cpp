// The map control: draw events and their order, what lies over what, class colours, the view and the mouse holds.
#include <gtest/gtest.h>

#include <QApplication>
#include <QImage>
#include <QMouseEvent>
#include <QPainter>

#include "datagen.h"
#include "mapping/controls.h"
#include "mapping/map.h"
#include "support/testsupport.h"

namespace {

// The map's own cases reckon at 15 twips to the pixel, whatever the font.
struct FifteenTwips : ::testing::Environment { void SetUp() override { TwipsPerPixel = 15; } };
const auto* const kFifteenTwips = ::testing::AddGlobalTestEnvironment(new FifteenTwips);

using namespace datagen;

using testsupport::box;

ShapePtr shapeOf(const std::string& wkt) { return shapeFromGeom(geomFromWkt(wkt.c_str())); }

QRgb rgbOf(int c) { return qRgb(RedOf(c), GreenOf(c), BlueOf(c)); }

SymbolPtr solid(int color)
{
    auto s = std::make_shared<Symbol>();
    return s->Color = color, s->Outline = false, s;
}

void expectRect(const RectanglePtr& r, double left, double bottom, double right, double top)
{
    ASSERT_TRUE(r);
    EXPECT_EQ(std::vector<double>({r->Left, r->Bottom, r->Right, r->Top}), std::vector<double>({left, bottom, right, top}));
}

constexpr int Red = RGB(255, 0, 0), Blue = RGB(0, 0, 255), Green = RGB(0, 160, 0), Black = RGB(0, 0, 0), Grey = RGB(90, 90, 90);

// Records the draw events as short texts, with the painter each one brought.
struct EventLog {
    QStringList events;
    std::vector<QPainter*> painters;
    explicit EventLog(Map& m)
    {
        auto add = [this](const QString& e, QPainter* p) { events << e, painters.push_back(p); };
        QObject::connect(&m, &Map::BeforeLayerDraw, &m, [=](int i, QPainter* p) { add("before " + QString::number(i), p); });
        QObject::connect(&m, &Map::AfterLayerDraw, &m, [=](int i, QPainter* p) { add("after " + QString::number(i), p); });
        QObject::connect(&m, &Map::BeforeTrackingLayerDraw, &m, [=](QPainter* p) { add("before tracking", p); });
        QObject::connect(&m, &Map::AfterTrackingLayerDraw, &m, [=](QPainter* p) { add("after tracking", p); });
    }
    void clear() { events.clear(), painters.clear(); }
};

class MapTest : public ::testing::Test {
protected:
    void SetUp() override { map.resize(200, 200); }

    // A layer of the features, added on top of the map.
    MapLayerPtr layer(const std::string& name, GeomKind kind, const std::vector<FeatureSpec>& features,
                      const std::vector<FieldSpec>& fields = {{"VALUE", 'N'}})
    {
        const std::string path = dir + "/" + name + ".shp";
        datagen::writeShapefile(path, kind, fields, features, false);
        MapLayerPtr l = testsupport::layerOf(path);
        l->Name = QString::fromStdString(name);
        return map.Layers().Add(l), l;
    }

    // A layer of one rectangle filled with the colour.
    MapLayerPtr filled(const std::string& name, double x0, double y0, double x1, double y1, int color)
    {
        MapLayerPtr l = layer(name, GeomKind::Polygon, {{box(x0, y0, x1, y1), {1.0}}});
        return l->Symbol = solid(color), l;
    }

    // With the view at 0..100 on a 200 px square: two pixels to the unit.
    QRgb at(const QImage& img, double x, double y) { return img.pixel(int(x * 2), int((100 - y) * 2)); }
    QImage picture() { return map.grab().toImage().convertToFormat(QImage::Format_RGB32); }
    void view100() { map.setExtent(Rectangle(0, 0, 100, 100)); }

    std::string dir = testsupport::tempDir("map-" + std::string(::testing::UnitTest::GetInstance()->current_test_info()->name()));
    Map map;
};

TEST_F(MapTest, ShapesDrawnInFirstBeforeLayerDrawLieUnderEveryLayer)
{
    // Bottom: an edge-only square on the right; top: a filled square on the left.
    SymbolPtr edge = filled("edge", 60, 10, 90, 90, Green)->Symbol;
    edge->Style = 1, edge->Outline = true, edge->OutlineColor = Black;
    filled("fill", 0, 0, 50, 100, Red);
    view100();

    // A result symbol as a query makes it: only Color and Outline set.
    bool drawn = false;
    int firstIndex = -1;
    QObject::connect(&map, &Map::BeforeLayerDraw, &map, [&](int index, QPainter*) {
        if (drawn) return;
        firstIndex = index;
        map.DrawShape(shapeOf(box(0, 0, 100, 100)), solid(Blue));
        drawn = true;
    });
    QObject::connect(&map, &Map::AfterTrackingLayerDraw, &map, [&](QPainter*) { drawn = false; });
    map.Refresh();
    QImage img = picture();

    EXPECT_EQ(firstIndex, 1);
    // A filled layer covers the result; it shows solid through an edge-only layer, whose edge lies over it.
    EXPECT_EQ(QList<QRgb>({at(img, 25, 50), at(img, 75, 50), at(img, 55, 50), at(img, 60, 50)}),
              QList<QRgb>({rgbOf(Red), rgbOf(Blue), rgbOf(Blue), rgbOf(Black)}));

    // Outside a repaint it paints on the picture at once, without a redraw.
    EventLog log(map);
    map.DrawShape(shapeOf(box(20, 90, 30, 95)), solid(Green));
    EXPECT_TRUE(log.events.isEmpty());
    EXPECT_EQ(at(picture(), 25, 92), rgbOf(Green));
    EXPECT_THROW(map.DrawShape(nullptr, solid(Green)), MapError);
}

TEST_F(MapTest, ClassBreakValueOnABreakTakesTheLowerClassAndUnclassedFeaturesKeepTheLayerSymbol)
{
    // One square per value, left to right; the null one keeps the layer symbol.
    const std::vector<AttrValue> values = {199.9, 200.0, 200.1, 300.0, 300.5, 1e6, -5.0, std::monostate{}};
    std::vector<FeatureSpec> f;
    for (size_t i = 0; i < values.size(); ++i) f.push_back({box(i * 12.0 + 1, 40, i * 12.0 + 11, 60), {values[i]}});
    MapLayerPtr l = layer("wind", GeomKind::Polygon, f, {{"WINDPWRD", 'N', 19, 4}});
    l->Symbol = solid(Grey);
    auto r = std::make_shared<ClassBreaksRenderer>();
    r->Field = "WINDPWRD", r->setBreakCount(2), r->setBreak(0, 200), r->setBreak(1, 300);
    const int colors[3] = {RGB(255, 255, 255) - 1, RGB(222, 184, 135), RGB(0, 0, 255)};
    for (int i = 0; i < 3; ++i) r->Symbol(i)->Color = colors[i], r->Symbol(i)->Outline = false;
    l->Renderer = r;
    view100();
    QImage img = picture();

    const int expected[] = {colors[0], colors[0], colors[1], colors[1], colors[2], colors[2], colors[0], Grey};
    for (size_t i = 0; i < values.size(); ++i) EXPECT_EQ(at(img, i * 12.0 + 6, 50), rgbOf(expected[i])) << "square " << i;

    // Value maps match the stored text exactly, with case and leading blanks; a renderer on a field the layer lacks, or
    // on text that is no number, leaves the layer symbol.
    const std::vector<std::string> texts = {"FOREST", " FOREST", "forest", "WATER"};
    std::vector<FeatureSpec> g;
    for (size_t i = 0; i < texts.size(); ++i) g.push_back({box(i * 20.0 + 2, 60, i * 20.0 + 18, 80), {texts[i]}});
    MapLayerPtr landuse = layer("landuse", GeomKind::Polygon, g, {{"LAND_USE", 'C', 40}});
    landuse->Symbol = solid(Grey);
    auto valueMap = std::make_shared<ValueMapRenderer>();
    valueMap->Field = "LAND_USE", valueMap->setValueCount(2), valueMap->setValue(0, "FOREST"), valueMap->setValue(1, "WATER");
    valueMap->Symbol(0)->Color = RGB(26, 129, 78), valueMap->Symbol(1)->Color = RGB(102, 140, 190);
    landuse->Renderer = valueMap;

    auto breaks = std::make_shared<ClassBreaksRenderer>();
    breaks->Field = "WINDPWRD", breaks->setBreakCount(1), breaks->Symbol(0)->Color = breaks->Symbol(1)->Color = Red;
    MapLayerPtr noField = filled("nofield", 10, 10, 30, 30, Green);
    noField->Renderer = breaks;
    MapLayerPtr text = layer("text", GeomKind::Polygon, {{box(60, 10, 80, 30), {std::string("abc")}}}, {{"WINDPWRD", 'C', 10}});
    text->Symbol = solid(Blue), text->Renderer = breaks;
    img = picture();

    // FOREST, " FOREST", "forest", WATER; then the missing field and the text.
    EXPECT_EQ(QList<QRgb>({at(img, 10, 70), at(img, 30, 70), at(img, 50, 70), at(img, 70, 70), at(img, 20, 20), at(img, 70, 20)}),
              QList<QRgb>({rgbOf(RGB(26, 129, 78)), rgbOf(Grey), rgbOf(Grey), rgbOf(RGB(102, 140, 190)), rgbOf(Green), rgbOf(Blue)}));
}

TEST_F(MapTest, SetExtentKeepsTheAspectPointsFollowItAndRefreshRaisesEventsForVisibleLayersBottomToTop)
{
    map.resize(200, 100);
    // Too tall: widened; too wide: heightened; in proportion: as asked.
    for (const auto& [asked, got] : {std::pair{Rectangle(0, 0, 100, 100), Rectangle(-50, 0, 150, 100)},
                                     {Rectangle(0, 0, 400, 100), Rectangle(0, -50, 400, 150)},
                                     {Rectangle(10, 10, 50, 30), Rectangle(10, 10, 50, 30)}})
        map.setExtent(asked), expectRect(map.Extent(), got.Left, got.Bottom, got.Right, got.Top);

    // An empty rectangle leaves the extent and draws nothing.
    EventLog log(map);
    for (const Rectangle& r : {Rectangle(5, 5, 5, 20), Rectangle(5, 5, 20, 5), Rectangle(5, 5, 5, 5), Rectangle(20, 5, 5, 20)})
        map.setExtent(r);
    EXPECT_TRUE(log.events.isEmpty());
    // A resize keeps what was asked for in view.
    map.resize(100, 200);
    expectRect(map.Extent(), 10, -20, 50, 60);
    // Twips to map units; CenterAt redraws about the point.
    map.resize(200, 100);
    map.setExtent(Rectangle(0, 0, 200, 100));  // one unit to the pixel
    struct Case { float x, y; double mx, my; };
    for (const Case& c : {Case{0, 0, 0, 100}, Case{3000, 1500, 200, 0}, Case{1500, 750, 100, 50}, Case{150, 300, 10, 80}})
        EXPECT_EQ(QPointF(map.ToMapPoint(c.x, c.y)->X(), map.ToMapPoint(c.x, c.y)->Y()), QPointF(c.mx, c.my)) << c.x;
    log.clear();
    map.CenterAt(30, 40);
    EXPECT_EQ(log.events, QStringList({"before tracking", "after tracking"}));
    expectRect(map.Extent(), -70, -10, 130, 90);
    EXPECT_EQ(QPointF(map.ToMapPoint(1500, 750)->X(), map.ToMapPoint(1500, 750)->Y()), QPointF(30, 40));

    // A refresh raises the events of the visible layers bottom to top; only changes render again.
    map.resize(200, 200);
    EventLog draws(map);
    map.Refresh();
    EXPECT_EQ(draws.events, QStringList({"before tracking", "after tracking"})) << "an empty map too";

    filled("a", 10, 10, 20, 20, Red);
    filled("b", 30, 30, 40, 40, Red)->Visible = false;
    filled("c", 50, 50, 60, 60, Red);  // c is on top, index 0; a is index 2
    view100();
    draws.clear();
    map.Refresh();
    EXPECT_EQ(draws.events, QStringList({"before 2", "after 2", "before 0", "after 0", "before tracking", "after tracking"}));
    ASSERT_NE(draws.painters.front(), nullptr);
    EXPECT_EQ(draws.painters, std::vector<QPainter*>(6, draws.painters.front()));

    // A layer without data is still a visible layer of the repaint.
    map.Layers().Add(std::make_shared<MapLayer>());
    draws.clear();
    map.Refresh();
    EXPECT_EQ(draws.events, QStringList({"before 3", "after 3", "before 1", "after 1", "before 0", "after 0",
                                         "before tracking", "after tracking"}));

    // A repaint for a label only blits; moving the view redraws within the call;
    // a new size or a new layer makes the next repaint render afresh.
    draws.clear();
    EXPECT_EQ(at(picture(), 15, 15), rgbOf(Red));
    QList<int> counts{int(draws.events.size())};
    map.setExtent(Rectangle(0, 0, 50, 50));
    counts << int(draws.events.size());
    map.resize(240, 200);
    picture();
    counts << int(draws.events.size());
    filled("d", 60, 60, 70, 70, Blue);
    counts << int(draws.events.size());
    picture();
    counts << int(draws.events.size());
    EXPECT_EQ(counts, QList<int>({0, 8, 16, 16, 26}));
}

class MapMouseTest : public MapTest {
protected:
    void SetUp() override
    {
        MapTest::SetUp();
        map.resize(200, 100);
        map.setExtent(Rectangle(0, 0, 200, 100));
        auto record = [this](const char* what) {
            return [this, what](int b, int s, float x, float y) {
                log << QString("%1 %2 %3 %4 %5").arg(what).arg(b).arg(s).arg(x).arg(y);
                if (onDown && QString(what) == "down") onDown();
            };
        };
        QObject::connect(&map, &Map::MouseDown, &map, record("down"));
        QObject::connect(&map, &Map::MouseMove, &map, record("move"));
        QObject::connect(&map, &Map::MouseUp, &map, record("up"));
    }

    QMouseEvent* event(QEvent::Type t, QPointF pos, Qt::MouseButton b, Qt::MouseButtons held,
                       Qt::KeyboardModifiers mods = Qt::NoModifier)
    { return new QMouseEvent(t, pos, map.mapToGlobal(pos), b, held, mods); }
    void send(QMouseEvent* e) { QApplication::sendEvent(&map, e), delete e; }
    void queue(QEvent::Type t, QPointF pos, Qt::MouseButton b, Qt::MouseButtons held)
    { QCoreApplication::postEvent(&map, event(t, pos, b, held)); }
    void press(QPointF pos) { send(event(QEvent::MouseButtonPress, pos, Qt::LeftButton, Qt::LeftButton)); }

    QStringList log;
    std::function<void()> onDown;
};

// A hold runs while the rest of the gesture waits in the queue; MouseUp comes
// after it, and no MouseMove is raised while held.
TEST_F(MapMouseTest, HoldsTrackOrPanWithTheGestureAndButtonsAndKeysAreCodedInTwips)
{
    struct Step { QEvent::Type type; QPointF pos; };
    struct Case { bool pan; QPointF down; std::vector<Step> rest; double l, b, r, t; QStringList log; };
    const auto Move = QEvent::MouseMove, Up = QEvent::MouseButtonRelease;
    const Case cases[] = {
        {false, {50, 50}, {{Up, {50, 50}}}, 50, 50, 50, 50, {"down 1 0 750 750", "held", "up 1 0 750 750"}},
        {false, {20, 20}, {{Move, {40, 30}}, {Move, {60, 50}}, {Up, {60, 50}}}, 20, 50, 60, 80,
         {"down 1 0 300 300", "held", "up 1 0 900 750"}},
        {true, {100, 50}, {{Move, {120, 60}}, {Up, {150, 40}}}, -50, -10, 150, 90,
         {"down 1 0 1500 750", "held", "up 1 0 2250 600"}},
    };
    EventLog draws(map);
    for (const Case& c : cases) {
        SCOPED_TRACE(c.log.front().toStdString());
        map.setExtent(Rectangle(0, 0, 200, 100));
        log.clear(), draws.clear();
        RectanglePtr tracked;
        onDown = [&] {
            if (c.pan) map.Pan();
            else tracked = map.TrackRectangle();
            log << "held";
        };
        for (const Step& s : c.rest) queue(s.type, s.pos, s.type == Up ? Qt::LeftButton : Qt::NoButton, s.type == Up ? Qt::NoButton : Qt::LeftButton);
        press(c.down);
        EXPECT_EQ(log, c.log);
        expectRect(c.pan ? map.Extent() : tracked, c.l, c.b, c.r, c.t);
        if (c.pan) EXPECT_EQ(draws.events, QStringList({"before tracking", "after tracking"}));
        else expectRect(map.Extent(), 0, 0, 200, 100);
    }
    onDown = nullptr;
    map.setExtent(Rectangle(0, 0, 200, 100));

    // Without a button down, even after a completed click, they return at once.
    press({10, 10});
    send(event(Up, {10, 10}, Qt::LeftButton, Qt::NoButton));
    map.Pan();
    EXPECT_TRUE(map.Extent()->Left == 0 && map.TrackRectangle()->Width() == 0);

    // Buttons and keys are coded, and positions are in twips.
    log.clear();
    send(event(QEvent::MouseButtonPress, {10, 20}, Qt::RightButton, Qt::RightButton, Qt::ControlModifier));
    send(event(QEvent::MouseMove, {11, 21}, Qt::NoButton, Qt::MiddleButton, Qt::ShiftModifier | Qt::AltModifier));
    send(event(QEvent::MouseButtonRelease, {12, 22}, Qt::LeftButton, Qt::NoButton, Qt::ShiftModifier));
    EXPECT_EQ(log, QStringList({"down 2 2 150 300", "move 4 5 165 315", "up 1 1 180 330"}));
}

}  // namespace
