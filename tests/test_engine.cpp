// The query run from the press of Update Map to the painted map: the result
// model, the progress texts, Cancel served inside a yield, refusals and
// failures, the range expressions and the solar queries.
#include <QImage>
#include <QMetaObject>
#include <QPointer>
#include <set>

#include "engine/expressions.h"
#include "engine/queries.h"
#include "mapping/controls.h"
#include "mapping/symbol.h"
#include "query_fixture.h"
#include "results/frmShowQueryData.h"

using namespace qf;

namespace {

const QString kWindQuery = QStringLiteral("Wind by Power Density");
const QString kSolarQuery = QStringLiteral("Best Solar X kWh/m2/day");
const QString kGlobal10 = QStringLiteral("10 km Solar Global Horizontal Annual Average(KWH/M2/DAY)");
const QString kPv10 = QStringLiteral("10 km Solar PV Annual Average(KWH/M2/DAY)");

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

int countPixels(const QImage& image, int rgb)
{
    const QRgb want = qRgb(RedOf(rgb), GreenOf(rgb), BlueOf(rgb));
    int n = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            if ((image.pixel(x, y) & 0xFFFFFF) == (want & 0xFFFFFF)) ++n;
    return n;
}

MapLayerPtr layerOf(FrmMain& f, const QString& file) { return f.Map1->Layers().Item(cLayerIndex->Item(file)); }

}  // namespace

// ---------------------------------------------------------------- the full run

TEST(QueryRun, WindRunFromTheButtonToThePaintedMap)
{
    FrmMain& f = freshMain();
    load(f, windDataset("wind-run"));
    selectQuery(f, kWindQuery);
    setRange(f, "200", "Max");
    layerOf(f, "20_wind.shp")->Visible = false;  // a filled layer would cover the results
    layerOf(f, "43_roads.shp")->Visible = true;
    layerOf(f, "59_cities.shp")->Visible = true;

    ProgressLog log;
    f.cmdUpdateMap->click();

    // Every record from 200 up, in the order of the records, keys from "0".
    ASSERT_TRUE(cShapes);
    ASSERT_EQ(cShapes->Count(), 6);
    EXPECT_EQ(cSymbols->Count(), 6);
    EXPECT_EQ(cFieldValues->Count(), 6);
    EXPECT_EQ(sFieldName, "WINDPWRD");
    EXPECT_TRUE(cShapes->contains("0"));
    EXPECT_TRUE(cShapes->contains("5"));
    EXPECT_FALSE(cShapes->contains("6"));
    const std::vector<int> expected = {RGB(222, 184, 135), RGB(222, 184, 135), RGB(154, 50, 205),
                                       RGB(255, 0, 0),     RGB(0, 0, 255),     RGB(0, 0, 255)};
    for (int i = 0; i < 6; ++i) {
        const QString key = QString::number(i);
        EXPECT_EQ(colorAt(key), expected[size_t(i)]) << "shape " << i;
        EXPECT_FALSE(cSymbols->Item(key)->Outline);
        EXPECT_DOUBLE_EQ(cFieldValues->Item(key).toDouble(), kDensities[size_t(i) + 1]);
    }

    // Progress: the first text, one per record with i / total, then the last.
    EXPECT_EQ(log.texts, QStringList({"Calculating...", "Calculating... 0.0% finished", "Calculating... 16.7% finished",
                                      "Calculating... 33.3% finished", "Calculating... 50.0% finished",
                                      "Calculating... 66.7% finished", "Calculating... 83.3% finished",
                                      "Calculating... finished"}));

    // The window is idle again, with the results button and the roads hidden.
    EXPECT_EQ(f.cmdUpdateMap->text(), "Update Map");
    EXPECT_TRUE(Visible(f.cmdShowData));
    EXPECT_FALSE(Visible(f.lblWorking));
    EXPECT_EQ(ForeColor(f.lblWorking), RGB(0, 0, 255));
    EXPECT_FALSE(layerOf(f, "43_roads.shp")->Visible);
    EXPECT_FALSE(bQueryRunning);
    EXPECT_FALSE(bCancelQuery);
    EXPECT_TRUE(testsupport::recorder().boxes.empty()) << testsupport::recorder().texts().join("|").toStdString();

    // The map shows the results in their class colours.
    bQueryDrawn = false;
    f.Map1->Refresh();
    const QImage shot = f.Map1->grab().toImage();
    EXPECT_GT(countPixels(shot, RGB(222, 184, 135)), 0);
    EXPECT_GT(countPixels(shot, RGB(0, 0, 255)), 0);
    EXPECT_EQ(countPixels(shot, RGB(230, 230, 230)), 0);  // 150 was not asked for
}

TEST(QueryRun, RangeSelectingNothingEndsFinishedAndEmptyWithoutAWord)
{
    FrmMain& f = freshMain();
    load(f, windDataset("wind-nothing"));
    selectQuery(f, kWindQuery);
    setRange(f, "5000", "Max");
    ProgressLog log;
    f.cmdUpdateMap->click();

    ASSERT_TRUE(cShapes);
    EXPECT_EQ(cShapes->Count(), 0);
    EXPECT_EQ(log.texts, QStringList({"Calculating...", "Calculating... finished"}));
    EXPECT_FALSE(Visible(f.cmdShowData));
    EXPECT_TRUE(testsupport::recorder().boxes.empty()) << testsupport::recorder().texts().join("|").toStdString();
}

// ------------------------------------------------------------------- Cancel

TEST(QueryRun, CancelServedInsideAYieldKeepsThePartialResult)
{
    FrmMain& f = freshMain();
    load(f, windDataset("wind-cancel", std::vector<double>(120, 500)));
    selectQuery(f, kWindQuery);
    setRange(f, "200", "Max");

    // The press of Cancel arrives while record 10 is shown, and is served at
    // the next yield, at record 50.
    QString captionAtCancel;
    bool posted = false;
    ProgressLog log;
    log.also = [&](const QString& t) {
        if (posted || t != "Calculating... 8.3% finished") return;
        posted = true;
        QMetaObject::invokeMethod(
            &f,
            [&f, &captionAtCancel] {
                captionAtCancel = f.cmdUpdateMap->text();
                f.cmdUpdateMap->click();
            },
            Qt::QueuedConnection);
    };
    f.cmdUpdateMap->click();

    EXPECT_EQ(captionAtCancel, "Cancel");
    EXPECT_TRUE(bCancelQuery);
    ASSERT_EQ(cShapes->Count(), 50);
    EXPECT_EQ(cSymbols->Count(), 50);
    EXPECT_EQ(cFieldValues->Count(), 50);
    EXPECT_EQ(log.texts.last(), "Calculating... 40.8% finished");  // record 49 of 120
    EXPECT_FALSE(log.texts.contains("Calculating... finished"));
    EXPECT_FALSE(Visible(f.cmdShowData));
    EXPECT_FALSE(QueryResults());
    EXPECT_EQ(f.cmdUpdateMap->text(), "Update Map");
    EXPECT_FALSE(Visible(f.lblWorking));

    // The partial shapes are drawn; bCancelQuery plays no part in drawing.
    bQueryDrawn = false;
    f.Map1->Refresh();
    EXPECT_TRUE(testsupport::recorder().boxes.empty());

    // The next press clears the flag before anything else, even when its
    // input is refused.
    auto partial = cShapes;
    f.cboQueryDropDown->setText("abc");
    f.cmdUpdateMap->click();
    EXPECT_FALSE(bCancelQuery);
    EXPECT_EQ(cShapes, partial);
    EXPECT_EQ(f.lblWorking->text(), "Please enter a numeric value for Min. Wind Power Density");
}

TEST(QueryRun, CancelPressedBeforeTheFirstYieldLeavesNothing)
{
    FrmMain& f = freshMain();
    load(f, windDataset("wind-cancel-early"));
    selectQuery(f, kWindQuery);
    setRange(f, "200", "Max");
    QMetaObject::invokeMethod(&f, [&f] { f.cmdUpdateMap->click(); }, Qt::QueuedConnection);
    ProgressLog log;
    f.cmdUpdateMap->click();
    EXPECT_TRUE(bCancelQuery);
    EXPECT_EQ(cShapes->Count(), 0);
    EXPECT_EQ(log.texts, QStringList({"Calculating..."}));
}

// ------------------------------------------------------- refusals, failures

TEST(QueryRun, RefusedInputKeepsThePreviousResultAndHidesTheButton)
{
    FrmMain& f = freshMain();
    load(f, windDataset("wind-refused"));
    selectQuery(f, kWindQuery);
    setRange(f, "200", "Max");
    f.cmdUpdateMap->click();
    ASSERT_TRUE(Visible(f.cmdShowData));
    auto shapes = cShapes;
    auto values = cFieldValues;

    setRange(f, "500", "500");
    f.cmdUpdateMap->click();
    EXPECT_EQ(cShapes, shapes);
    EXPECT_EQ(cFieldValues, values);
    EXPECT_EQ(cShapes->Count(), 6);
    EXPECT_FALSE(Visible(f.cmdShowData));
    EXPECT_EQ(f.lblWorking->text(), "Max. Wind Power Density should be > Min. Wind Power Density");
    EXPECT_EQ(ForeColor(f.lblWorking), RGB(255, 0, 0));
    EXPECT_EQ(f.cmdUpdateMap->text(), "Update Map");
    EXPECT_TRUE(testsupport::recorder().boxes.empty());
}

TEST(QueryRun, FailureInAWorkerLeavesTheWindowUsable)
{
    FrmMain& f = freshMain();
    const std::string dir = windDataset("wind-failure");
    load(f, dir);
    selectQuery(f, kWindQuery);
    setRange(f, "200", "Max");
    cLayerIndex = std::make_shared<Collection<int>>();  // the wind layer can no longer be found

    f.cmdUpdateMap->click();
    EXPECT_EQ(testsupport::recorder().texts(), QStringList({" Error Source:md_query_functions2.wind_class_x_or_better()"}));
    EXPECT_EQ(cShapes->Count(), 0);
    EXPECT_FALSE(bQueryRunning);
    EXPECT_EQ(f.cmdUpdateMap->text(), "Update Map");
    EXPECT_FALSE(Visible(f.lblWorking));
    EXPECT_FALSE(Visible(f.cmdShowData));
    EXPECT_TRUE(f.cmdChangeLayers->isEnabled());

    // The next run, on a dataset loaded again, works.
    testsupport::recorder().clear();
    load(f, dir);
    f.cmdUpdateMap->click();
    EXPECT_EQ(cShapes->Count(), 6);
    EXPECT_TRUE(Visible(f.cmdShowData));
    EXPECT_TRUE(testsupport::recorder().boxes.empty());
}

TEST(QueryRun, TenKmPvRunsOnTheFortyKmFileAndFailsWithoutIt)
{
    // The availability check passes on "16_solar_tilt.shp", the run looks for "12_solar_tilt.shp".
    FrmMain& f = freshMain();
    const std::string dir = testsupport::tempDir("solar-pv10");
    writePolygons(dir, "16_solar_tilt.shp", "ANNTILT", windRow({5.5, 6.2}));
    writeCity(dir);
    load(f, dir);
    selectQuery(f, kSolarQuery);
    selectResource(f, kPv10);
    setRange(f, "5", "7");
    testsupport::recorder().clear();
    f.cmdUpdateMap->click();
    EXPECT_EQ(sSolarLayerFile, "12_solar_tilt.shp");
    EXPECT_EQ(testsupport::recorder().texts(), QStringList({" Error Source:md_query_functions2.solar_x_kwhm2_or_better() "}));
    EXPECT_EQ(cShapes->Count(), 0);
    EXPECT_EQ(f.cmdUpdateMap->text(), "Update Map");
}

TEST(QueryRun, SolarPressWithAMissingResourceIsRefusedBeforeAnythingElse)
{
    FrmMain& f = freshMain();
    const std::string dir = testsupport::tempDir("solar-missing");
    writePolygons(dir, "14_solar_glo.shp", "ANNGLO", windRow({5.5}));
    writeCity(dir);
    load(f, dir);
    selectQuery(f, kSolarQuery);
    // The first resource of the list has no file here.
    f.cboQueryDropDown3->setCurrentIndex(0);
    f.cmdShowData->setVisible(true);
    auto before = cShapes;
    testsupport::recorder().clear();
    f.cmdUpdateMap->click();
    EXPECT_EQ(f.lblWorking->text(), "This query requires 11_solar_direct.shp shapefile.");
    EXPECT_EQ(ForeColor(f.lblWorking), RGB(255, 0, 0));
    EXPECT_TRUE(Visible(f.cmdShowData));  // not even hidden
    EXPECT_EQ(cShapes, before);
}

// ---------------------------------------------------- the solar range query

TEST(SolarQueries, RangeQueryColoursByClassAndNamesTheField)
{
    FrmMain& f = freshMain();
    const std::string dir = testsupport::tempDir("solar-range");
    writePolygons(dir, "14_solar_glo.shp", "ANNGLO", windRow({1.5, 2.5, 3.0, 6.5, 6.6, 9.5}));
    writeCity(dir);
    load(f, dir);
    selectQuery(f, kSolarQuery);
    selectResource(f, kGlobal10);
    setRange(f, "2.5", "6.5");
    ProgressLog log;
    f.cmdUpdateMap->click();

    EXPECT_EQ(sSolarField, "ANNGLO");
    EXPECT_EQ(sFieldName, "ANNGLO");
    ASSERT_EQ(cShapes->Count(), 3);  // both limits inclusive
    EXPECT_EQ(colorAt("0"), RGB(224, 178, 92));  // 2.5 belongs to the class from 2.5
    EXPECT_EQ(colorAt("1"), RGB(252, 218, 154));
    EXPECT_EQ(colorAt("2"), RGB(255, 94, 25));
    EXPECT_EQ(log.texts.first(), "Calculating...");
    EXPECT_EQ(log.texts.last(), "Calculating... finished");
    EXPECT_TRUE(Visible(f.cmdShowData));
}

// ------------------------------------------------ the off-grid grading

struct OffGridCase {
    const char* name;
    std::vector<double> distances;  // of each polygon's centroid from the one line
    std::vector<int> colors;
};

class OffGrid : public ::testing::TestWithParam<OffGridCase> {};

TEST_P(OffGrid, BandsAreRelativeToTheLayersOwnRange)
{
    const OffGridCase& c = GetParam();
    FrmMain& f = freshMain();
    const std::string dir = testsupport::tempDir(std::string("offgrid-") + c.name);
    // A line along y = 0; squares of 200 m centred at (3000 i, d).
    std::vector<Poly> polys;
    for (size_t i = 0; i < c.distances.size(); ++i)
        polys.push_back({rect(3000.0 * double(i) - 100, c.distances[i] - 100, 200, 200), 4.0});
    writePolygons(dir, "14_solar_glo.shp", "ANNGLO", polys);
    writeLines(dir, "44_transmissionline.shp", {"LINESTRING(-10000 0, 100000 0)"});
    writeCity(dir);
    load(f, dir);
    selectQuery(f, kSolarQuery);
    selectResource(f, kGlobal10);

    // The previous run's values stay: this query never touches them.
    sFieldName = "WINDPWRD";
    cFieldValues = std::make_shared<Collection<QVariant>>();
    cFieldValues->Add(QVariant(500.0), "0");
    auto values = cFieldValues;
    ProgressLog log;
    testsupport::recorder().clear();

    fill_cShapes_collection("Best solar off-grid systems");

    EXPECT_TRUE(testsupport::recorder().boxes.empty()) << testsupport::recorder().texts().join("|").toStdString();
    EXPECT_TRUE(log.texts.isEmpty());
    EXPECT_EQ(sFieldName, "WINDPWRD");
    EXPECT_EQ(cFieldValues, values);
    ASSERT_EQ(cShapes->Count(), int(c.colors.size()));
    ASSERT_EQ(cGridDistances->Count(), int(c.colors.size()));
    for (size_t i = 0; i < c.colors.size(); ++i) {
        const QString key = QString::number(i);
        EXPECT_EQ(colorAt(key), c.colors[i]) << "polygon " << i;
        EXPECT_TRUE(cSymbols->Item(key)->Outline);  // left at the default
        EXPECT_FLOAT_EQ(cGridDistances->Item(key), float(c.distances[i]));
    }
}

const int kBand1 = RGB(255, 255, 128), kBand2 = RGB(255, 200, 100), kBand3 = RGB(255, 128, 85), kBand4 = RGB(255, 0, 0);

INSTANTIATE_TEST_SUITE_P(
    Cases, OffGrid,
    ::testing::Values(
        // All at one distance: the span is 0 and everything takes the first band.
        OffGridCase{"equal", {1500, 1500, 1500}, {kBand1, kBand1, kBand1}},
        // Limits at 2000, 3000 and 4000; a distance on a limit takes the band below.
        OffGridCase{"limits", {1000, 2000, 3000, 4000, 5000}, {kBand1, kBand1, kBand2, kBand3, kBand4}},
        // The first polygon sets the smallest although it lies above 0.
        OffGridCase{"first-sets-smallest", {4000, 5000, 2000}, {kBand3, kBand4, kBand1}}),
    [](const auto& info) {
        std::string n = info.param.name;
        for (char& ch : n)
            if (ch == '-') ch = '_';
        return n;
    });

TEST(SolarQueries, OffGridWithoutTransmissionLinesFailsWithItsOwnText)
{
    FrmMain& f = freshMain();
    const std::string dir = testsupport::tempDir("offgrid-nolines");
    writePolygons(dir, "14_solar_glo.shp", "ANNGLO", windRow({4.0}));
    writeCity(dir);
    load(f, dir);
    selectQuery(f, kSolarQuery);
    selectResource(f, kGlobal10);
    testsupport::recorder().clear();
    fill_cShapes_collection("Best solar off-grid systems");
    EXPECT_EQ(testsupport::recorder().texts(), QStringList({" Error Source:md_query_functions2.best_solar_off_grid_systems()"}));
    EXPECT_EQ(cShapes->Count(), 0);
    EXPECT_FALSE(bQueryRunning);
}

// ------------------------------------------------------ the result model

TEST(ResultModel, DispatchRenewsTheCollectionsAndAnUnknownNameRunsNothing)
{
    FrmMain& f = freshMain();
    load(f, windDataset("dispatch"));
    cShapes = std::make_shared<Collection<ShapePtr>>();
    auto oldShapes = cShapes;
    sngRoadDistance = 3;
    f.txtQuery1[2]->setText("7");
    fill_cShapes_collection("No Query (Base Map)");
    EXPECT_NE(cShapes, oldShapes);
    EXPECT_EQ(cShapes->Count(), 0);
    EXPECT_EQ(cSymbols->Count(), 0);
    EXPECT_EQ(cGridDistances->Count(), 0);
    EXPECT_FALSE(cFieldValues);  // not made here
    EXPECT_FALSE(bQueryRunning);
    EXPECT_FLOAT_EQ(sngRoadDistance, 3);
    // The names are compared with case.
    fill_cShapes_collection("wind by power density");
    EXPECT_EQ(cShapes->Count(), 0);
    EXPECT_FALSE(cFieldValues);
}

TEST(ResultModel, QueryResultsAndDrawingFollowTheFlags)
{
    FrmMain& f = freshMain();
    EXPECT_FALSE(QueryResults());  // never run
    cShapes = std::make_shared<Collection<ShapePtr>>();
    EXPECT_FALSE(QueryResults());  // empty
    cShapes->Add(std::make_shared<Polygon>(geomFromWkt(rect(0, 0, 10, 10).c_str())), "0");
    EXPECT_TRUE(QueryResults());
    bCancelQuery = true;
    EXPECT_FALSE(QueryResults());
    bCancelQuery = false;

    // A shape without its symbol: nothing is drawn while the run is under
    // way; afterwards the draw fails with its own text.
    cSymbols = std::make_shared<Collection<SymbolPtr>>();
    bQueryRunning = true;
    draw_query_results(f.Map1);
    EXPECT_TRUE(testsupport::recorder().boxes.empty());
    bQueryRunning = false;
    draw_query_results(f.Map1);
    EXPECT_EQ(testsupport::recorder().texts(), QStringList({" Error Source:md_query_functions2.draw_query_results()"}));
}

TEST(ResultModel, AppendResultKeysShapeSymbolAndValueAlike)
{
    FrmMain& f = freshMain();
    load(f, windDataset("append"));
    cShapes = std::make_shared<Collection<ShapePtr>>();
    cSymbols = std::make_shared<Collection<SymbolPtr>>();
    cFieldValues = std::make_shared<Collection<QVariant>>();
    RecordsetPtr records = layerOf(f, "20_wind.shp")->SearchExpression("WINDPWRD >= 200 AND WINDPWRD <= 200");
    ASSERT_TRUE(records);
    ShapePtr shape = records->Fields()("Shape").shapeValue();
    AppendResult(shape, *records, "WINDPWRD");
    AppendResult(shape, *records, "WINDPWRD");
    ASSERT_EQ(cShapes->Count(), 2);
    EXPECT_EQ(cShapes->Item("1"), shape);
    EXPECT_EQ(colorAt("1"), RGB(222, 184, 135));
    EXPECT_FALSE(cSymbols->Item("0")->Outline);
    EXPECT_NE(cSymbols->Item("0"), cSymbols->Item("1"));  // each shape its own symbol
    EXPECT_DOUBLE_EQ(cFieldValues->Item("1").toDouble(), 200);
}

// ------------------------------------------------------------ expressions

struct RangeCase {
    const char* min;
    const char* max;
    const char* expression;  // empty: refused with the routine's text
};

TEST(Expressions, WindRangeInDoublePrecisionWithMax)
{
    FrmMain& f = freshMain();
    const RangeCase cases[] = {
        {"400", "Max", "WINDPWRD >= 400 AND WINDPWRD <= 10000"},
        {"400.0", "800", "WINDPWRD >= 400 AND WINDPWRD <= 800"},
        {"5.55555555", "600.5", "WINDPWRD >= 5.55555555 AND WINDPWRD <= 600.5"},
        {" 200 ", "1E3", "WINDPWRD >= 200 AND WINDPWRD <= 1000"},
        {"500", "max", ""},   // "Max" is matched with case
        {"500", " Max", ""},  // and untrimmed
        {"", "800", ""},
    };
    for (const RangeCase& c : cases) {
        testsupport::recorder().clear();
        setRange(f, c.min, c.max);
        EXPECT_EQ(CreateWindSelectExpression(), c.expression) << c.min << " / " << c.max;
        const QStringList expectedBoxes =
            *c.expression ? QStringList() : QStringList({" Error Source:md_query_functions2.CreateWindSelectExpression()"});
        EXPECT_EQ(testsupport::recorder().texts(), expectedBoxes) << c.min << " / " << c.max;
    }
}

TEST(Expressions, SolarRangeInSinglePrecisionWithoutMax)
{
    FrmMain& f = freshMain();
    sSolarField = "ANNGLO";
    const RangeCase cases[] = {
        {"5.5", "6.5", "ANNGLO >= 5.5 AND ANNGLO <= 6.5"},
        {"2", "9", "ANNGLO >= 2 AND ANNGLO <= 9"},
        {"5.55555555", "0.1", "ANNGLO >= 5.555555 AND ANNGLO <= 0.1"},
        {"3", "Max", ""},
    };
    for (const RangeCase& c : cases) {
        testsupport::recorder().clear();
        setRange(f, c.min, c.max);
        EXPECT_EQ(CreateSolarSelectExpression(), c.expression) << c.min << " / " << c.max;
        const QStringList expectedBoxes =
            *c.expression ? QStringList() : QStringList({" Error Source:md_query_functions2.CreateSolarSelectExpression()"});
        EXPECT_EQ(testsupport::recorder().texts(), expectedBoxes);
    }
}

TEST(Expressions, SolarResourceChoiceByExactName)
{
    FrmMain& f = freshMain();
    struct Choice { const char* resource; const char* file; const char* field; };
    const Choice table[] = {
        {"40 km Solar Concentrators Annual Average(KWH/M2/DAY)", "11_solar_direct.shp", "ANNDIR"},
        {"40 km Solar PV Annual Average(KWH/M2/DAY)", "12_solar_tilt.shp", "ANNTILT"},
        {"10 KM Solar Concentrators Annual Average(KWH/M2/DAY)", "13_solar_direct.shp", "ANNDIR"},
        {"10 km Solar Global Horizontal Annual Average(KWH/M2/DAY)", "14_solar_glo.shp", "ANNGLO"},
        {"40 km Solar Global Horizontal Annual Average(KWH/M2/DAY)", "15_solar_glo.shp", "ANNGLO"},
        {"10 km Solar PV Annual Average(KWH/M2/DAY)", "12_solar_tilt.shp", "ANNTILT"},
    };
    auto choose = [&f](const QString& text) {
        f.cboQueryDropDown3->Clear();
        f.cboQueryDropDown3->AddItem(text);
        f.cboQueryDropDown3->setCurrentIndex(0);
        GetSolarLayerChosen();
    };
    for (const Choice& c : table) {
        choose(c.resource);
        EXPECT_EQ(sSolarLayerFile, c.file) << c.resource;
        EXPECT_EQ(sSolarField, c.field) << c.resource;
    }
    // Any other text, also one differing only in case, leaves both as they were.
    choose("10 km Solar Concentrators Annual Average(KWH/M2/DAY)");
    EXPECT_EQ(sSolarLayerFile, "12_solar_tilt.shp");
    EXPECT_EQ(sSolarField, "ANNTILT");
    EXPECT_TRUE(testsupport::recorder().boxes.empty());
}
