// The query run from Update Map to the painted map: result model, progress, Cancel, refusals, failures, expressions.
#include <QElapsedTimer>
#include <QImage>
#include <QMetaObject>
#include <tuple>

#include "engine/expressions.h"
#include "engine/queries.h"
#include "mapping/controls.h"
#include "mapping/symbol.h"
#include "query_fixture.h"
#include "results/frmShowQueryData.h"

using namespace qf;

namespace {

// Densities on and around the class limits; 150 lies below the range asked for.
const std::vector<double> kDensities = {150, 200, 299.99, 500, 799.99, 800, 1200};

std::string windDataset(const std::string& name, const std::vector<double>& densities = kDensities)
{
    const std::string dir = testsupport::tempDir(name);
    writePolygons(dir, "20_wind.shp", "WINDPWRD", windRow(densities));
    writeLines(dir, "43_roads.shp", {"LINESTRING(0 -5000, 20000 -5000)"});
    writeCity(dir);
    return dir;
}

bool shows(const QImage& image, int rgb)
{
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            if ((image.pixel(x, y) & 0xFFFFFF) == (qRgb(RedOf(rgb), GreenOf(rgb), BlueOf(rgb)) & 0xFFFFFF)) return true;
    return false;
}

MapLayerPtr layerOf(FrmMain& f, const QString& file) { return f.Map1->Layers().Item(cLayerIndex->Item(file)); }

// The window is ready for the next press.
void expectIdle(FrmMain& f)
{ EXPECT_TRUE(f.cmdUpdateMap->text() == "Update Map" && !Visible(f.lblWorking) && !bQueryRunning); }

}  // namespace

TEST(QueryRun, WindRunFromTheButtonToThePaintedMapThenRefusedEmptyFailedAndCancelledRunsAndSolarRefusalsFirst)
{
    const std::string dir = windDataset("wind-run");
    FrmMain& f = panel(dir, kWindQuery, "200", "Max");
    layerOf(f, "20_wind.shp")->Visible = false;  // a filled layer would cover the results
    layerOf(f, "43_roads.shp")->Visible = layerOf(f, "59_cities.shp")->Visible = true;
    ProgressLog log;
    f.cmdUpdateMap->click();
    // Progress: the first text, one per record with i / total, then the last.
    EXPECT_EQ(log.texts, QStringList({"Calculating...", "Calculating... 0.0% finished",
                                      "Calculating... 16.7% finished", "Calculating... 33.3% finished",
                                      "Calculating... 50.0% finished", "Calculating... 66.7% finished",
                                      "Calculating... 83.3% finished", "Calculating... finished"}));
    // Every record from 200 up, in the order of the records, keys from "0".
    ASSERT_TRUE(cShapes);
    ASSERT_EQ(QList<int>({cShapes->Count(), cSymbols->Count(), cFieldValues->Count()}), QList<int>({6, 6, 6}));
    EXPECT_EQ(sFieldName, "WINDPWRD");
    for (int i = 0; i < 6; ++i) EXPECT_DOUBLE_EQ(cFieldValues->Item(QString::number(i)).toDouble(), kDensities[size_t(i) + 1]);
    // Idle again, with the results button shown and the roads hidden.
    expectIdle(f);
    EXPECT_TRUE(Visible(f.cmdShowData) && ForeColor(f.lblWorking) == RGB(0, 0, 255) && !layerOf(f, "43_roads.shp")->Visible);

    // The map shows the results in their class colours.
    bQueryDrawn = false;
    f.Map1->Refresh();
    const QImage shot = f.Map1->grab().toImage();
    // 150 was not asked for: no light gray.
    EXPECT_EQ(QList<bool>({shows(shot, RGB(222, 184, 135)), shows(shot, RGB(0, 0, 255)), shows(shot, RGB(230, 230, 230))}),
              QList<bool>({true, true, false}));

    // Refused input keeps the previous result and hides the button.
    auto shapes = cShapes;
    setRange(f, "500", "500");
    f.cmdUpdateMap->click();
    EXPECT_TRUE(cShapes == shapes && !Visible(f.cmdShowData) && f.cmdUpdateMap->text() == "Update Map");

    // A range selecting nothing ends finished and empty without a word.
    f.cmdShowData->setVisible(true);
    setRange(f, "5000", "Max");
    log.texts.clear();
    f.cmdUpdateMap->click();
    EXPECT_TRUE(cShapes->Count() == 0 && !Visible(f.cmdShowData));
    EXPECT_EQ(log.texts, QStringList({"Calculating...", "Calculating... finished"}));
    EXPECT_EQ(boxes(), QStringList());  // not a word from any of the runs

    // A failure in the worker leaves the window usable; the next run, on the dataset loaded again, works.
    setRange(f, "200", "Max");
    cLayerIndex = std::make_shared<Collection<int>>();  // the wind layer can no longer be found
    f.cmdUpdateMap->click();
    EXPECT_EQ(boxes(), QStringList({" Error Source:md_query_functions2.wind_class_x_or_better()"}));
    EXPECT_TRUE(cShapes->Count() == 0 && !Visible(f.cmdShowData));
    expectIdle(f);
    load(f, dir);
    f.cmdUpdateMap->click();
    EXPECT_EQ(cShapes->Count(), 6);

    // A missing resource is refused before anything else: the first of the list has no file here.
    FrmMain& g = panel(solarDir("solar-missing", "14_solar_glo.shp", "ANNGLO", {5.5}), kSolarQuery);
    g.cboQueryDropDown3->setCurrentIndex(0);
    g.cmdShowData->setVisible(true);
    auto before = cShapes;
    g.cmdUpdateMap->click();
    EXPECT_EQ(g.lblWorking->text(), "This query requires 11_solar_direct.shp shapefile.");
    EXPECT_TRUE(ForeColor(g.lblWorking) == RGB(255, 0, 0) && Visible(g.cmdShowData) && cShapes == before);  // not even hidden

    // Off-grid without transmission lines fails with its own text.
    panel(solarDir("offgrid-nolines", "14_solar_glo.shp", "ANNGLO", {4.0}), kSolarQuery, {}, {}, kGlobal10);
    fill_cShapes_collection("Best solar off-grid systems");
    EXPECT_EQ(boxes(), QStringList({" Error Source:md_query_functions2.best_solar_off_grid_systems()"}));
    EXPECT_TRUE(cShapes->Count() == 0 && !bQueryRunning);

    // On a longer run, the press of Cancel arrives while record 10 is shown, and is served at the next yield, at record 50.
    FrmMain& h = panel(windDataset("wind-cancel", std::vector<double>(120, 500)), kWindQuery, "200", "Max");
    QString captionAtCancel;
    log.texts.clear();
    log.also = [&](const QString& t) {
        if (!captionAtCancel.isNull() || t != "Calculating... 8.3% finished") return;
        captionAtCancel = "";
        QMetaObject::invokeMethod(
            &h, [&] { captionAtCancel = h.cmdUpdateMap->text(); h.cmdUpdateMap->click(); }, Qt::QueuedConnection);
    };
    h.cmdUpdateMap->click();
    EXPECT_TRUE(captionAtCancel == "Cancel" && bCancelQuery);
    EXPECT_EQ(QList<int>({cShapes->Count(), cSymbols->Count(), cFieldValues->Count()}), QList<int>({50, 50, 50}));
    ASSERT_FALSE(log.texts.isEmpty());
    EXPECT_EQ(log.texts.last(), "Calculating... 40.8% finished");  // record 49 of 120
    EXPECT_FALSE(Visible(h.cmdShowData));
    expectIdle(h);

    // The next press clears the flag before anything else, even when its input is refused.
    auto partial = cShapes;
    h.cboQueryDropDown->setText("abc");
    h.cmdUpdateMap->click();
    EXPECT_TRUE(!bCancelQuery && cShapes == partial);
    EXPECT_EQ(h.lblWorking->text(), "Please enter a numeric value for Min. Wind Power Density");

    // Cancel pressed before the first yield leaves nothing.
    h.cboQueryDropDown->setText("200");
    log.also = {};
    log.texts.clear();
    QMetaObject::invokeMethod(&h, [&h] { h.cmdUpdateMap->click(); }, Qt::QueuedConnection);
    h.cmdUpdateMap->click();
    EXPECT_TRUE(bCancelQuery && cShapes->Count() == 0);
    EXPECT_EQ(log.texts, QStringList({"Calculating..."}));
}

TEST(SolarQueries, OffGridBandsAreRelativeToTheLayersOwnRange)
{
    const int kBand1 = RGB(255, 255, 128), kBand2 = RGB(255, 200, 100), kBand3 = RGB(255, 128, 85), kBand4 = RGB(255, 0, 0);
    // Distances of each polygon's centroid from the one line, and the colours they take.
    struct Case { const char* name; std::vector<double> distances; std::vector<int> colors; };
    const Case cases[] = {
        // All at one distance: the span is 0 and everything takes the first band.
        {"equal", {1500, 1500, 1500}, {kBand1, kBand1, kBand1}},
        // Limits at 2000, 3000 and 4000; a distance on a limit takes the band below.
        {"limits", {1000, 2000, 3000, 4000, 5000}, {kBand1, kBand1, kBand2, kBand3, kBand4}},
        // The first polygon sets the smallest although it lies above 0.
        {"first-sets-smallest", {4000, 5000, 2000}, {kBand3, kBand4, kBand1}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const std::string dir = testsupport::tempDir(std::string("offgrid-") + c.name);
        // A line along y = 0; squares of 200 m centred at (3000 i, d).
        std::vector<Poly> polys;
        for (size_t i = 0; i < c.distances.size(); ++i)
            polys.push_back({rect(3000.0 * double(i) - 100, c.distances[i] - 100, 200, 200), 4.0});
        writePolygons(dir, "14_solar_glo.shp", "ANNGLO", polys);
        writeLines(dir, "44_transmissionline.shp", {"LINESTRING(-10000 0, 100000 0)"});
        writeCity(dir);
        panel(dir, kSolarQuery, {}, {}, kGlobal10);

        // The previous run's values stay: this query never touches them.
        sFieldName = "WINDPWRD";
        cFieldValues = std::make_shared<Collection<QVariant>>();
        auto values = cFieldValues;
        ProgressLog log;
        fill_cShapes_collection("Best solar off-grid systems");

        EXPECT_EQ(boxes(), QStringList());
        EXPECT_TRUE(log.texts.isEmpty() && sFieldName == "WINDPWRD" && cFieldValues == values);
        ASSERT_EQ(cShapes->Count(), int(c.colors.size()));
        ASSERT_EQ(cGridDistances->Count(), int(c.colors.size()));
        for (size_t i = 0; i < c.colors.size(); ++i) {  // the outline is left at the default
            const QString key = QString::number(i);
            EXPECT_EQ((std::tuple{colorAt(key), cSymbols->Item(key)->Outline, cGridDistances->Item(key)}),
                      (std::tuple{c.colors[i], true, float(c.distances[i])})) << i;
        }
    }
}

TEST(ResultModel, ResultsDrawingDispatchAndAppendFollowTheFlagsAndKeysAndExpressionsFollowThePanel)
{
    FrmMain& f = freshMain();
    QList<bool> results{QueryResults()};  // never run
    cShapes = std::make_shared<Collection<ShapePtr>>();
    results << QueryResults();  // empty
    cShapes->Add(std::make_shared<Polygon>(geomFromWkt(rect(0, 0, 10, 10).c_str())), "0");
    results << QueryResults();
    bCancelQuery = true;
    results << QueryResults();
    EXPECT_EQ(results, QList<bool>({false, false, true, false}));
    bCancelQuery = false;

    // A shape without its symbol: nothing is drawn while the run is under way; afterwards the draw fails with its own text.
    cSymbols = std::make_shared<Collection<SymbolPtr>>();
    bQueryRunning = true;
    draw_query_results(f.Map1);
    EXPECT_EQ(boxes(), QStringList());
    bQueryRunning = false;
    draw_query_results(f.Map1);
    EXPECT_EQ(boxes(), QStringList({" Error Source:md_query_functions2.draw_query_results()"}));

    // The dispatch renews the collections and leaves the distances alone.
    load(f, windDataset("dispatch"));
    auto oldShapes = cShapes;
    sngRoadDistance = 3;
    f.txtQuery1[2]->setText("7");
    fill_cShapes_collection("No Query (Base Map)");
    EXPECT_NE(cShapes, oldShapes);
    EXPECT_EQ(cShapes->Count() + cSymbols->Count() + cGridDistances->Count(), 0);
    EXPECT_TRUE(!cFieldValues && !bQueryRunning && sngRoadDistance == 3);  // the values are not made here
    // The names are compared with case.
    fill_cShapes_collection("wind by power density");
    EXPECT_TRUE(cShapes->Count() == 0 && !cFieldValues);

    // AppendResult keys shape, symbol and value alike, each shape its own symbol without outline.
    cFieldValues = std::make_shared<Collection<QVariant>>();
    RecordsetPtr records = layerOf(f, "20_wind.shp")->SearchExpression("WINDPWRD >= 200 AND WINDPWRD <= 200");
    ASSERT_TRUE(records);
    ShapePtr shape = records->Fields()("Shape").shapeValue();
    AppendResult(shape, *records, "WINDPWRD");
    AppendResult(shape, *records, "WINDPWRD");
    ASSERT_EQ(cShapes->Count(), 2);
    EXPECT_TRUE(cShapes->Item("1") == shape && cSymbols->Item("0") != cSymbols->Item("1") && !cSymbols->Item("0")->Outline);
    EXPECT_TRUE(colorAt("1") == RGB(222, 184, 135) && cFieldValues->Item("1").toDouble() == 200);

    // The solar resource is chosen by its exact name; ranges are written for wind in double precision with Max, for solar
    // in single without.
    testsupport::recorder().clear();
    struct Choice { const char* resource; const char* file; const char* field; };
    const Choice table[] = {
        {"40 km Solar Concentrators Annual Average(KWH/M2/DAY)", "11_solar_direct.shp", "ANNDIR"},
        {"40 km Solar PV Annual Average(KWH/M2/DAY)", "12_solar_tilt.shp", "ANNTILT"},
        {"10 KM Solar Concentrators Annual Average(KWH/M2/DAY)", "13_solar_direct.shp", "ANNDIR"},
        {"10 km Solar Global Horizontal Annual Average(KWH/M2/DAY)", "14_solar_glo.shp", "ANNGLO"},
        {"40 km Solar Global Horizontal Annual Average(KWH/M2/DAY)", "15_solar_glo.shp", "ANNGLO"},
        {"10 km Solar PV Annual Average(KWH/M2/DAY)", "12_solar_tilt.shp", "ANNTILT"},
        // Any other text, also one differing only in case, leaves both as they were.
        {"10 km Solar Concentrators Annual Average(KWH/M2/DAY)", "12_solar_tilt.shp", "ANNTILT"},
    };
    for (const Choice& c : table) {
        SCOPED_TRACE(c.resource);
        f.cboQueryDropDown3->Clear();
        f.cboQueryDropDown3->AddItem(c.resource);
        f.cboQueryDropDown3->setCurrentIndex(0);
        GetSolarLayerChosen();
        EXPECT_EQ(QStringList({sSolarLayerFile, sSolarField}), QStringList({c.file, c.field}));
    }
    EXPECT_EQ(boxes(), QStringList());

    sSolarField = "ANNGLO";
    struct Case { bool solar; const char* min; const char* max; const char* expression; };  // empty: refused
    const Case cases[] = {
        {false, "400", "Max", "WINDPWRD >= 400 AND WINDPWRD <= 10000"},
        {false, "400.0", "800", "WINDPWRD >= 400 AND WINDPWRD <= 800"},
        {false, "5.55555555", "600.5", "WINDPWRD >= 5.55555555 AND WINDPWRD <= 600.5"},
        {false, " 200 ", "1E3", "WINDPWRD >= 200 AND WINDPWRD <= 1000"},
        {false, "500", "max", ""},   // "Max" is matched with case
        {false, "500", " Max", ""},  // and untrimmed
        {false, "", "800", ""}, {true, "5.5", "6.5", "ANNGLO >= 5.5 AND ANNGLO <= 6.5"},
        {true, "2", "9", "ANNGLO >= 2 AND ANNGLO <= 9"},
        {true, "5.55555555", "0.1", "ANNGLO >= 5.555555 AND ANNGLO <= 0.1"}, {true, "3", "Max", ""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.min) + " / " + c.max);
        testsupport::recorder().clear();
        setRange(f, c.min, c.max);
        EXPECT_EQ(c.solar ? CreateSolarSelectExpression() : CreateWindSelectExpression(), c.expression);
        const QString failure = QString(" Error Source:md_query_functions2.Create%1SelectExpression()")
                                    .arg(c.solar ? "Solar" : "Wind");
        EXPECT_EQ(boxes(), *c.expression ? QStringList() : QStringList({failure}));
    }
}

// A step's text is the caption at once; the label repaints at most once a frame, and the last text is painted all the same.
TEST(QueryRun, StepTextsRepaintAtTheScreensPaceAndTheLastOneShows)
{
    FrmMain& f = panel(windDataset("wind-pace"), kWindQuery, "200", "Max");
    f.lblWorking->setVisible(true);
    struct Painted : QObject {
        QStringList texts;
        bool eventFilter(QObject* o, QEvent* e) override
        { return e->type() == QEvent::Paint ? texts << static_cast<QLabel*>(o)->text(), false : false; }
    } painted;
    f.lblWorking->installEventFilter(&painted);
    QElapsedTimer clock;
    clock.start();
    for (int i = 0; i < 3000; ++i) {
        ShowStepProgress(QString::number(i));
        ASSERT_EQ(f.lblWorking->text(), QString::number(i));
        YieldToEvents();
    }
    FlushProgress();
    EXPECT_LE(painted.texts.size(), clock.elapsed() / 16 + 2);
    EXPECT_EQ(painted.texts.last(), "2999");
    StepText steps("Overlaying... ");  // the same texts, ties included
    for (int n = 0; n <= 4000; ++n) ASSERT_EQ(steps.at(n / 4000.0), ProgressText("Overlaying... ", n / 4000.0)) << n;
}
