// The Results Table: a row per colour in order of first occurrence, sq km, class sentences, 14 rows at most.
#include <QCoreApplication>
#include <QEvent>
#include <tuple>

#include "mapping/controls.h"
#include "mapping/symbol.h"
#include "query_fixture.h"
#include "results/frmShowQueryData.h"

using namespace qf;

namespace {

void activate(FrmShowQueryData& form)
{
    QEvent e(QEvent::WindowActivate);
    QCoreApplication::sendEvent(&form, &e);
}

// A row as it shows: the colour, the area and the sentence.
std::tuple<int, QString, QString> row(const FrmShowQueryData& f, int i)
{ return {f.shpLayerColor[i]->FillColor(), f.lblArea[i]->text(), f.lblDescription[i]->text()}; }

}  // namespace

TEST(ResultsTable, WindRowsSumAreasPerColourInOrderOfFirstOccurrenceWithSentencesAndFailuresUntilTheWindowCloses)
{
    // Wind cells of different sizes, so that the sums per colour are told apart:
    // 1 km2 for 200, 2 km2 for 250, 4 km2 for 800, 1234.5 km2 for 1000 (a long strip).
    const std::string dir = testsupport::tempDir("table-wind");
    writePolygons(dir, "20_wind.shp", "WINDPWRD",
                  {{rect(0, 0, 1000, 1000), 200}, {rect(0, 5000, 2000, 1000), 250}, {rect(0, 10000, 2000, 2000), 800},
                   {rect(0, 20000, 1234500, 1000), 1000}, {rect(0, 30000, 1000, 1000), 150}});
    writeCity(dir);
    FrmMain& f = panel(dir, kWindQuery, "200", "Max");
    f.cmdUpdateMap->click();
    ASSERT_TRUE(Visible(f.cmdShowData));
    f.cmdShowData->click();
    QCoreApplication::processEvents();
    FrmShowQueryData& form = frmShowQueryData();
    EXPECT_TRUE(form.isVisible());

    // Shown and activated by the press. 200 and 250 share a colour; 800 and 1000 share the top class.
    EXPECT_EQ(row(form, 0), std::tuple(RGB(222, 184, 135), QString("3.00 sq km"), QString("Wind Power Density >= 200 and < 300")));
    EXPECT_EQ(row(form, 1), std::tuple(RGB(0, 0, 255), QString("1,238.50 sq km"), QString("Wind Power Density >= 800")));
    for (int i : {0, 1}) {
        EXPECT_TRUE(Visible(form.shpLayerColor[i]) && Visible(form.lblArea[i]) && Visible(form.lblDescription[i]));
        EXPECT_EQ(form.shpLayerColor[i]->BorderWidth(), 1);  // wind keeps the designed border
    }
    EXPECT_FALSE(Visible(form.shpLayerColor[2]));

    // Activated again with the same result, the areas do not add up.
    activate(form);
    EXPECT_EQ(form.lblArea[1]->text(), "1,238.50 sq km");
    EXPECT_EQ(boxes(), QStringList());

    // The same rows as data, with the area at full precision.
    const auto table = QueryDataTable();
    ASSERT_TRUE(table);
    ASSERT_EQ(table->size(), 2u);
    EXPECT_TRUE(std::abs((*table)[1].area - 1238.5) < 1e-9 && (*table)[1].description == "Wind Power Density >= 800");

    struct Row { int color; const char* sentence; };
    const Row rows[] = {
        {RGB(230, 230, 230), "Wind Power Density < 200"},  // the result gray is not the renderer's white
        {RGB(255, 255, 255), "Wind Power Density < 200"}, {RGB(222, 184, 135), "Wind Power Density >= 200 and < 300"},
        {RGB(254, 172, 0), "Wind Power Density >= 300 and < 400"}, {RGB(255, 0, 0), "Wind Power Density >= 600 and < 800"},
        {RGB(0, 0, 255), "Wind Power Density >= 800"}, {RGB(1, 2, 3), "Wind Power Density < 200"},
    };
    for (const Row& r : rows) EXPECT_EQ(CreateAreaDescription(r.color), r.sentence) << r.sentence;

    // No wind layer under its key: the sentence is empty, the row is still filled.
    auto index = cLayerIndex;
    cLayerIndex = std::make_shared<Collection<int>>();
    activate(form);
    EXPECT_EQ(boxes(), QStringList({" Error Source:md_query_functions2.CreateAreaDescription()",
                                    " Error Source:md_query_functions2.CreateAreaDescription()"}));
    EXPECT_TRUE(form.lblDescription[0]->text() == "" && Visible(form.lblArea[0]));
    cLayerIndex = index;

    // No result model at all.
    cShapes.reset();
    testsupport::recorder().clear();
    activate(form);
    EXPECT_EQ(boxes(), QStringList({" Error Source:md_query_functions2.UpdateQueryDataForm()"}));
    EXPECT_FALSE(QueryDataTable());

    // A later result of one colour rewrites row 0 only.
    setRange(f, "800", "Max");
    f.cmdUpdateMap->click();
    activate(form);
    EXPECT_EQ(row(form, 0), std::tuple(RGB(0, 0, 255), QString("1,238.50 sq km"), QString("Wind Power Density >= 800")));
    EXPECT_TRUE(Visible(form.lblArea[1]) && form.lblArea[1]->text() == "1,238.50 sq km");

    // An empty result changes no row and says nothing.
    setRange(f, "5000", "Max");
    f.cmdUpdateMap->click();
    testsupport::recorder().clear();
    activate(form);
    EXPECT_EQ(QStringList(form.lblArea[0]->text()) << boxes(), QStringList({"1,238.50 sq km"}));

    // Queries without a class sentence.
    f.cboSelectQuery->Clear();
    f.cboSelectQuery->AddItem("Best solar off-grid systems");
    f.cboSelectQuery->setCurrentIndex(0);
    QStringList empty{CreateAreaDescription(RGB(0, 0, 255))};
    f.cboSelectQuery->setItemText(0, "No Query (Base Map)");
    testsupport::recorder().clear();
    EXPECT_EQ(empty << CreateAreaDescription(RGB(0, 0, 255)) << boxes(), QStringList({"", ""}));

    // Closing hides every row; the next window starts clean, and goes with the main window.
    form.close();
    QCoreApplication::processEvents();
    EXPECT_FALSE(frmShowQueryDataExists());
    FrmShowQueryData& next = frmShowQueryData();
    for (int i = 0; i < kQueryDataRows; ++i)
        EXPECT_FALSE(Visible(next.shpLayerColor[i]) || Visible(next.lblArea[i]) || Visible(next.lblDescription[i])) << i;
    EXPECT_EQ(next.shpLayerColor[0]->FillColor(), 255);
    next.show();
    unloadFrmMain();
    EXPECT_TRUE(!frmShowQueryDataExists() && boxes().isEmpty());
}

TEST(ResultsTable, SolarRowsHaveOneDecimalNoAndAndAThickBorderAndOnlyFourteenShowWithAWarningAtEachActivation)
{
    // All sixteen solar classes, the top one first; 5.2 adds to the row of 5.4.
    const std::vector<double> values = {9.5, 1.0, 5.4, 2.2, 2.7, 3.2, 3.7, 4.2, 4.7, 5.2, 5.7, 6.2, 6.7, 7.2, 7.7, 8.2, 8.7};
    panel(solarDir("table-solar", "14_solar_glo.shp", "ANNGLO", values), kSolarQuery, "0", "10", kGlobal10).cmdUpdateMap->click();
    ASSERT_EQ(cShapes->Count(), int(values.size()));
    testsupport::recorder().clear();
    FrmShowQueryData& form = frmShowQueryData();
    activate(form);
    EXPECT_EQ(boxes(), QStringList({"Form will not be able to show all values"}));
    EXPECT_EQ(QStringList({form.lblDescription[0]->text(), form.lblDescription[1]->text(), form.lblDescription[2]->text(),
                           form.lblArea[2]->text()}),
              QStringList({"Solar Resource >= 9.0", "Solar Resource < 2.0", "Solar Resource >= 5.0 < 5.5", "2.00 sq km"}));
    // 7.7 is the fourteenth.
    EXPECT_TRUE(form.shpLayerColor[0]->FillColor() == RGB(71, 0, 0) && form.shpLayerColor[13]->FillColor() == RGB(207, 0, 0)
                && Visible(form.lblDescription[13]));
    for (int i = 0; i < 14; ++i) EXPECT_EQ(form.shpLayerColor[i]->BorderWidth(), 2);
    activate(form);
    EXPECT_EQ(testsupport::recorder().boxes.size(), 2u);
    const auto table = QueryDataTable();
    ASSERT_TRUE(table);
    EXPECT_EQ(table->size(), 14u);
    // A colour the renderer does not know stays blank for solar.
    testsupport::recorder().clear();
    EXPECT_EQ(QStringList(CreateAreaDescription(RGB(1, 2, 3))) << boxes(), QStringList({""}));
}
