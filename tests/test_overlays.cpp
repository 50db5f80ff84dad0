// The overlay queries on hand-made data of known areas: results, order, colours, progress, questions, failures.
#include <QMetaObject>
#include <cmath>

#include "engine/queries.h"
#include "mapping/controls.h"
#include "mapping/symbol.h"
#include "query_fixture.h"

using namespace qf;

namespace {

const QString kProtected = QStringLiteral("Best wind - protected areas");
const QString kLandUse = QStringLiteral("Best wind + land use");
const QString kRoads = QStringLiteral("Best wind + roads");
const QString kAll = QStringLiteral("Best wind (all)");
const QString kQuestion = QStringLiteral("This query may take few minutes to complete. Do you want to proceed?");

const int kClass400 = RGB(255, 110, 180), kClass500 = RGB(154, 50, 205), kClass600 = RGB(255, 0, 0), kClass800 = RGB(0, 0, 255);

// A self-crossing ring: any real overlay with it fails.
std::string bowtie(double x, double y, double s)
{ return QString("POLYGON((%1 %2,%3 %4,%3 %2,%1 %4,%1 %2))").arg(x).arg(y).arg(x + s).arg(y + s).toStdString(); }

using Named = std::vector<std::pair<std::string, std::string>>;

// A hand-made dataset with a far city; empty parts are left out.
struct Data { std::vector<Poly> wind; std::vector<std::string> roads, transmission; Named landUse, protectedAreas; };

std::string dataset(const std::string& name, const Data& d)
{
    const std::string dir = testsupport::tempDir(name);
    auto writeNamed = [&dir](const std::string& file, const std::string& field, const Named& polys) {
        std::vector<datagen::FeatureSpec> features;
        for (const auto& [wkt, text] : polys) features.push_back({wkt, {text}});
        datagen::writeShapefile(dir + "/" + file, datagen::GeomKind::Polygon, {{field, 'C', 30}}, features);
    };
    if (!d.wind.empty()) writePolygons(dir, "20_wind.shp", "WINDPWRD", d.wind);
    if (!d.roads.empty()) writeLines(dir, "43_roads.shp", d.roads);
    if (!d.transmission.empty()) writeLines(dir, "44_transmissionline.shp", d.transmission);
    if (!d.landUse.empty()) writeNamed("02_landuse.shp", "LAND_USE", d.landUse);
    if (!d.protectedAreas.empty()) writeNamed("31_protectedarea.shp", "NAME", d.protectedAreas);
    writeCity(dir);
    return dir;
}

const std::vector<Poly> kOneWind = {{rect(0, 0, 1000, 1000), 500}};

// Area of a 1 m buffer of a 10 m segment: the rectangle and a circle of 32 sides, as the buffer rounds its ends.
const double kSegmentBuffer = 20.0 + 16.0 * std::sin(2 * M_PI / 32);

double areaAt(const QString& key) { return std::dynamic_pointer_cast<GeoShape>(cShapes->Item(key))->Area(); }

// The results in order as (area, colour), after these boxes only.
void expectResults(const std::vector<std::pair<double, int>>& want, const QStringList& said = {})
{
    EXPECT_EQ(boxes(), said);
    ASSERT_EQ(cShapes->Count(), int(want.size()));
    for (size_t i = 0; i < want.size(); ++i)
        EXPECT_TRUE(std::abs(areaAt(QString::number(i)) - want[i].first) < 1e-6 && colorAt(QString::number(i)) == want[i].second)
            << i << ": " << areaAt(QString::number(i));
}

bool covers(const PolygonPtr& p, double x, double y)
{ return GEOSPreparedContains_r(geosContext(), p->prepared(), Point(x, y).geom().get()) == 1; }

struct Panel {
    QString min = "400", max = "Max";
    QStringList landUses, chosen;
    QString distance1 = "1", distance2 = "1";
    bool protectedTicked = true;
};

// The progress texts since the last load.
ProgressLog& progress()
{
    static ProgressLog log;
    return log;
}

FrmMain& loaded(const std::string& dir, const Panel& p = {})
{
    progress().also = {};
    FrmMain& f = freshMain();
    load(f, dir);
    setRange(f, p.min, p.max);
    f.lstQuery1->Clear();
    for (int i = 0; i < p.landUses.size(); ++i) {
        f.lstQuery1->AddItem(p.landUses[i]);
        f.lstQuery1->setSelected(i, p.chosen.contains(p.landUses[i]));
    }
    f.txtQuery1[1]->setText(p.distance1), f.txtQuery1[2]->setText(p.distance2), f.chkProtectedAreas->setChecked(p.protectedTicked);
    testsupport::recorder().clear();
    progress().texts.clear();
    return f;
}

QStringList overlaying(const QString& word, std::initializer_list<const char*> percents, bool finished = true)
{
    QStringList out = {word};
    for (const char* p : percents) out << word + " " + p + "% finished";
    if (finished) out << word + " finished";
    return out;
}

// Roads along y = 500 and transmission along y = 0, 1 km each: the proximity strip runs from y = -500 to 1000. Two chosen
// land-use polygons cut it into two pieces; the protected area takes the right half of the second wind polygon.
Data allData(bool withProtected = true)
{
    Data d{.wind = {{rect(4000, 0, 1000, 1000), 800}, {rect(0, 0, 1000, 1000), 500}, {rect(2000, 0, 1000, 1000), 450},
                    {rect(0, 3000, 1000, 1000), 600}},  // the last outside the strip
           .roads = {"LINESTRING(-20000 500, 20000 500)"},
           .transmission = {"LINESTRING(-20000 0, 20000 0)"},
           .landUse = {{rect(-100, -2000, 3200, 8000), "FOREST"}, {rect(3900, -2000, 1200, 8000), "FOREST"},
                       {rect(-5000, -2000, 4000, 8000), "WATER"}}};
    if (withProtected) d.protectedAreas = {{rect(2500, -5000, 1000, 10000), "Reserve"}};
    return d;
}

Panel allPanel(bool ticked) { return {.landUses = {"FOREST", "WATER"}, .chosen = {"FOREST"}, .protectedTicked = ticked}; }

}  // namespace

// ------------------------------------------------------ protected areas

TEST(ProtectedAreas, EachWindPolygonLosesTheDissolvedAreasInRecordOrderAFailingCutGivesNothingAndANullRecordRepeatsItsBox)
{
    loaded(dataset("protected", {.wind = {{rect(0, 0, 1000, 1000), 500},         // right half protected, and a notch
                                          {rect(3000, 0, 1000, 1000), 800},      // untouched: comes back whole
                                          {rect(5500, 500, 1000, 1000), 450},    // wholly protected: nothing
                                          {rect(9000, 0, 1000, 1000), 150}},     // below the range
                                 .protectedAreas = {{rect(500, -500, 1000, 2000), "East"},
                                                    {rect(5000, 0, 2000, 2000), "Inner"},
                                                    {rect(300, 200, 400, 100), "Notch"}}}));  // overlaps East: dissolved first
    fill_cShapes_collection(kProtected);

    expectResults({{500.0 * 1000 - 200.0 * 100, kClass500}, {1e6, kClass800}});
    EXPECT_TRUE(!cSymbols->Item("0")->Outline && sFieldName == "WINDPWRD");
    EXPECT_EQ(QList<double>({cFieldValues->Item("0").toDouble(), cFieldValues->Item("1").toDouble()}), QList<double>({500, 800}));
    // The counter starts at 1, so the last record shows 100.0%.
    EXPECT_EQ(progress().texts, overlaying("Overlaying...", {"33.3", "66.7", "100.0"}));

    // The self-crossing wind polygon cannot be cut and gives nothing; the
    // next one is cut by the only protected record, with no word.
    loaded(dataset("protected-edges", {.wind = {{bowtie(0, 0, 1000), 600}, {rect(3000, 0, 1000, 1000), 400}},
                                       .protectedAreas = {{rect(500, -500, 3000, 2000), "Only"}}}));
    fill_cShapes_collection(kProtected);
    expectResults({{5e5, kClass400}});

    // A record without a polygon brings its box back again: the box never ends by design; the test's handler ends it by
    // throwing after the third, and the entry routine reports that.
    loaded(dataset("protected-null", {.wind = kOneWind, .protectedAreas = {{rect(500, 0, 1000, 1000), "Park"}, {"", "Lost Park"}}}));
    struct Stop {};
    auto& rec = testsupport::recorder();
    rec.onBox = [&rec](const testsupport::Recorder::Box&) { if (rec.boxes.size() == 3) throw Stop{}; };
    wind_minus_protected_areas();
    rec.onBox = nullptr;
    const QString lost = "Lost Park is not a polygon type";
    EXPECT_EQ(boxes(), QStringList({lost, lost, lost, " Error Source:md_query_functions2.wind_minus_protected_areas()"}));
}

// ------------------------------------------------------------ land use

TEST(LandUse, PiecesComeLandMajorAndAreNotMergedThenNoChoiceAndNoMatchingRecord)
{
    const std::string dir = dataset("landuse", {.wind = windRow({500, 800, 450, 600, 150}),  // at x = 0, 2000, ... 8000
                                                .landUse = {{rect(4500, -100, 1000, 1200), "FOREST"},   // half of the third
                                                            {rect(-100, -100, 3200, 1200), "FOREST"},   // the first two whole
                                                            {rect(-100, -100, 10000, 1200), "WATER"},   // not chosen
                                                            {rect(6000, 0, 400, 1000), "CROPLAND"},     // two adjoining pieces
                                                            {rect(6400, 0, 600, 1000), "CROPLAND"}}});  // of the fourth
    loaded(dir, {.landUses = {"CROPLAND", "FOREST", "WATER"}, .chosen = {"CROPLAND", "FOREST"}});
    fill_cShapes_collection(kLandUse);

    expectResults({{5e5, kClass400}, {1e6, kClass500}, {1e6, kClass800}, {4e5, kClass600}, {6e5, kClass600}});
    EXPECT_EQ(cFieldValues->Item("3").toDouble(), 600);
    // 4 land records of 4 wind records each: one text per land record.
    EXPECT_EQ(progress().texts, overlaying("Overlaying...", {"25.0", "50.0", "75.0", "100.0"}));

    // Nothing chosen: the expression cannot be cut short; the list index stands in the message, as the counter shares
    // its variable.
    loaded(dir, {.landUses = {"CROPLAND", "FOREST", "WATER"}});
    fill_cShapes_collection(kLandUse);
    EXPECT_EQ(boxes(), QStringList({" Error Source:md_query_functions2.Wind_Landuse_Overlay()3--0"}));

    // A choice that matches no record: no pair, no "finished".
    loaded(dir, {.landUses = {"BARREN"}, .chosen = {"BARREN"}});
    fill_cShapes_collection(kLandUse);
    EXPECT_TRUE(boxes().isEmpty() && cShapes->Count() == 0);
    EXPECT_EQ(progress().texts, QStringList({"Overlaying..."}));
}

// A failing cut leaves the previous pair's piece, which is kept again under
// the current wind record; a pair in between that met nothing clears it.
TEST(LandUse, AFailingCutRepeatsThePreviousPiece)
{
    for (bool gap : {false, true}) {
        SCOPED_TRACE(gap ? "after a miss" : "adjacent");
        std::vector<Poly> winds = {{rect(0, 0, 1000, 1000), 500}};
        if (gap) winds.push_back({rect(0, 50000, 1000, 1000), 450});
        winds.push_back({bowtie(2500, 0, 1000), 800});
        loaded(dataset(gap ? "landuse-fail-gap" : "landuse-fail", {.wind = winds, .landUse = {{rect(500, -100, 2500, 1200), "FOREST"}}}),
               {.landUses = {"FOREST"}, .chosen = {"FOREST"}});
        fill_cShapes_collection(kLandUse);
        if (gap) expectResults({{5e5, kClass500}});
        else expectResults({{5e5, kClass500}, {5e5, kClass800}});
        if (!gap) EXPECT_TRUE(cShapes->Item("1") == cShapes->Item("0") && cFieldValues->Item("1").toDouble() == 800);
    }
}

// ------------------------------------------------------------ line buffers

// Below 400 records every buffer counts without a question; from 400 the batches of a first tier leave a record out each,
// and a second tier leaves every eleventh batch out. With 1300 records: twelve full batches of the first tier; the open one
// (records 1214 to 1300) starts the first group, batch 11 (records 1012 to 1111) closes it unused, and batch 12 starts the
// second.
TEST(LineBuffers, TheTiersLeaveRecordsOut)
{
    QStringList tiers1300;
    for (int i = 1; i <= 10; ++i) tiers1300 << QString("Creating buffer polygon %1 out of 12").arg(i);
    tiers1300 << "Creating buffer polygon 12 out of 12" << "Creating buffer polygon 1 out of 1";
    struct Case { int records; std::function<bool(int)> left; QStringList tiers; };
    const Case cases[] = {
        {399, [](int) { return false; }, {}},
        {400, [](int r) { return r == 102 || r == 203 || r == 304; },
         {"Creating buffer polygon 1 out of 3", "Creating buffer polygon 2 out of 3", "Creating buffer polygon 3 out of 3"}},
        {1300, [](int r) { return (r >= 1012 && r <= 1111) || (r >= 102 && (r - 102) % 101 == 0); }, tiers1300},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.records);
        loaded(dataset("roads-" + std::to_string(c.records), {.roads = shortSegments(c.records)}));
        PolygonPtr buffer = create_line_buffers("43_roads.shp", 0.001f);
        ASSERT_TRUE(buffer);
        ASSERT_EQ(boxes(), c.records < 400 ? QStringList() : QStringList({kQuestion}));
        if (c.records >= 400) EXPECT_EQ(testsupport::recorder().boxes.front().buttons, seam::Buttons::YesNo);
        int kept = 0;
        for (int record = 1; record <= c.records; ++record) {
            kept += !c.left(record);
            EXPECT_EQ(covers(buffer, 10.0 * (record - 1), 5), !c.left(record)) << "record " << record;
        }
        EXPECT_NEAR(buffer->Area(), kept * kSegmentBuffer, 1e-3);
        ASSERT_EQ(progress().texts.size(), c.records - 1 + c.tiers.size());
        EXPECT_EQ(progress().texts.first(), QString("Creating Roads Buffers: 2 of %1").arg(c.records));
        EXPECT_EQ(progress().texts[c.records - 2], QString("Creating Roads Buffers: %1 of %1").arg(c.records));
        EXPECT_EQ(progress().texts.mid(c.records - 1), c.tiers);
    }
}

TEST(LineBuffers, AStraightRoadsBufferCutsTheWindPolygonsTheAnswerNoAndCancelLeaveNoResultAndASecondNoStopsAfterTheRoads)
{
    loaded(dataset("roads", {.wind = {{rect(1000, 0, 1000, 1000), 500},       // inside the buffer: whole
                                      {rect(3000, 1000, 1000, 1000), 800},    // half inside
                                      {bowtie(5000, 500, 1000), 600},         // fails: the previous piece again
                                      {rect(7000, 5000, 1000, 1000), 450}},   // out of reach
                             .roads = {"LINESTRING(0 0, 10000 0)"}}),
           {.distance2 = "1.5"});
    fill_cShapes_collection(kRoads);

    expectResults({{1e6, kClass500}, {5e5, kClass800}, {5e5, kClass600}});
    EXPECT_EQ(cShapes->Item("2"), cShapes->Item("1"));
    // A layer of one record: the buffer comes without a record text.
    EXPECT_EQ(progress().texts, overlaying("Overlaying...", {"0.0", "25.0", "50.0", "75.0"}));

    FrmMain& f = loaded(dataset("roads-no", {.wind = kOneWind, .roads = shortSegments(400)}));
    // The previous run's values stay, as the worker never starts.
    cFieldValues = std::make_shared<Collection<QVariant>>();
    sFieldName = "ANNGLO";
    cFieldValues->Add(QVariant(123.0), "0");
    testsupport::recorder().answers = {seam::Answer::No};
    fill_cShapes_collection(kRoads);
    EXPECT_EQ(boxes(), QStringList({kQuestion}));
    EXPECT_TRUE(progress().texts.isEmpty() && sFieldName == "ANNGLO");
    EXPECT_EQ(QList<int>({cShapes->Count(), cFieldValues->Count()}), QList<int>({0, 1}));

    // Cancel pressed while record 150 is shown is served at the next yield.
    testsupport::recorder().clear();
    bool posted = false;
    progress().also = [&](const QString& t) {
        if (posted || t != "Creating Roads Buffers: 150 of 400") return;
        posted = true;
        QMetaObject::invokeMethod(&f, [] { bCancelQuery = true; }, Qt::QueuedConnection);
    };
    fill_cShapes_collection(kRoads);
    EXPECT_TRUE(bCancelQuery);
    ASSERT_FALSE(progress().texts.isEmpty());
    EXPECT_EQ(progress().texts.last(), "Creating Roads Buffers: 150 of 400") << "and no Overlaying...";
    EXPECT_TRUE(cShapes->Count() == 0 && boxes() == QStringList({kQuestion}));

    // With all criteria, the second question answered No stops after the roads.
    Data d = allData();
    d.roads = shortSegments(400, 500);
    d.transmission = shortSegments(400, 0);
    loaded(dataset("all-no", d), allPanel(true));
    testsupport::recorder().answers = {seam::Answer::Yes, seam::Answer::No};
    fill_cShapes_collection(kAll);
    EXPECT_EQ(boxes(), QStringList({kQuestion, kQuestion}));
    ASSERT_FALSE(progress().texts.isEmpty());
    EXPECT_EQ(progress().texts.last(), "Creating buffer polygon 3 out of 3");
    EXPECT_TRUE(!progress().texts.contains("Intersecting...") && cShapes->Count() == 0);
}

// ------------------------------------------------------------ all criteria

// Piece by piece, and within a piece in the order of the wind records; the protected areas last, and not needed when
// unticked. No place near both lines gives nothing and no word.
TEST(AllCriteria, PiecesThenWindThenProtectedAreas)
{
    Data apart = allData();
    apart.transmission = {"LINESTRING(-20000 50000, 20000 50000)"};
    const QStringList intersecting = overlaying("Intersecting...", {"0.0", "50.0"}, false);
    struct Case { const char* name; Data data; bool ticked; std::vector<std::pair<double, int>> results; QStringList log; };
    const Case cases[] = {
        {"all", allData(), true, {{1e6, kClass500}, {5e5, kClass400}, {1e6, kClass800}},
         intersecting + overlaying("Overlaying...", {"0.0", "50.0"}).mid(1)},
        {"all-unticked", allData(), false, {{1e6, kClass500}, {1e6, kClass400}, {1e6, kClass800}}, {}},
        {"all-unticked-nofile", allData(false), false, {{1e6, kClass500}, {1e6, kClass400}, {1e6, kClass800}}, {}},
        {"all-apart", apart, true, {}, intersecting},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        loaded(dataset(c.name, c.data), allPanel(c.ticked));
        fill_cShapes_collection(kAll);
        expectResults(c.results);
        if (!c.log.isEmpty()) EXPECT_EQ(progress().texts, c.log);
        if (!c.results.empty()) EXPECT_EQ(cFieldValues->Item("2").toDouble(), 800);
    }
}

// The common area of roads and transmission is made per land-use polygon
// from the buffers there; the record the tiers leave out stays out.
TEST(AllCriteria, TheCommonAreaKeepsTheGapsOfTheTiers)
{
    Data d{.wind = {{rect(995, -20, 30, 40), 600}, {rect(1007, -20, 6, 40), 800}, {rect(3000, -20, 30, 40), 500}},
           .roads = shortSegments(420),
           .transmission = {"LINESTRING(-100 5, 2000 5)"},
           .landUse = {{rect(990, -50, 40, 100), "FOREST"}, {rect(2990, -50, 40, 100), "FOREST"}}};
    Panel p = allPanel(false);
    p.distance1 = "0.004", p.distance2 = "0.006";
    loaded(dataset("all-gaps", d), p);
    fill_cShapes_collection(kAll);
    // The second land-use polygon lies beyond the transmission line: one piece.
    EXPECT_EQ(progress().texts.mid(progress().texts.indexOf("Intersecting...")),
              overlaying("Intersecting...", {"0.0", "50.0"}, false) + overlaying("Overlaying...", {"0.0"}).mid(1));
    // 995 to 1006 and 1014 to 1025, between y = 1 and 9.
    expectResults({{22.0 * 8, kClass600}}, {kQuestion});
}

// A missing layer (protected areas, roads, land use) or more roads than
// sixteen bits count ends the query with its message, before any question.
TEST(AllCriteria, MissingLayersAndFailuresOfTheBufferEndTheQueryWithTheirMessage)
{
    Data all = allData(false);
    all.landUse.clear();
    struct Case { const char* name; Data data; QString query; QString text; };
    const Case cases[] = {
        {"protected-missing", {.wind = kOneWind}, kProtected, "Error generated in while performing the query"},
        {"roads-missing", {.wind = kOneWind}, kRoads, " Error Source:md_query_functions2.create_line_buffers()"},
        {"roads-sixteen-bit", {.wind = kOneWind, .roads = shortSegments(32768)}, kRoads,
         " Error Source:md_query_functions2.create_line_buffers()"},
        {"all-nolanduse", all, kAll, " Error Source:md_query_functions2.Wind_All_Overlay()"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        loaded(dataset(c.name, c.data), allPanel(true));
        fill_cShapes_collection(c.query);
        EXPECT_EQ(boxes(), QStringList({c.text}));
        if (c.query == kRoads) EXPECT_TRUE(progress().texts.isEmpty());
        EXPECT_EQ(cShapes->Count(), 0);
    }
}
