// Query set-up: the list of queries, what each needs from the loaded dataset,
// how the parameter panel is arranged and filled, and how its values are judged.
#include <QApplication>
#include <QDir>
#include <gtest/gtest.h>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "mainwindow_fixture.h"
#include "mapping/map.h"
#include "queryset/catalogue.h"
#include "queryset/panel.h"
#include "queryset/validation.h"
#include "queryset/value_sources.h"

using namespace fixture;
using testsupport::recorder;

namespace {

const char* const kQueries[] = {
    "No Query (Base Map)",     "Wind by Power Density",    "Best wind - protected areas", "Best wind + land use",
    "Best wind + roads",       "Best wind + transmission", "Best wind (all)",             "Best Solar X kWh/m2/day",
};
const char* const kWindQueries[] = {"Wind by Power Density",    "Best wind - protected areas", "Best wind + land use",
                                    "Best wind + roads",        "Best wind + transmission",    "Best wind (all)"};

const std::set<std::string> kAllQueryFiles = {"20_wind.shp",  "02_landuse.shp",          "31_protectedarea.shp",
                                              "43_roads.shp", "44_transmissionline.shp", "11_solar_direct.shp"};

std::string square(int i)
{
    const std::string x0 = std::to_string(1000 * i), x1 = std::to_string(1000 * i + 800);
    return "POLYGON((" + x0 + " 0," + x0 + " 800," + x1 + " 800," + x1 + " 0," + x0 + " 0))";
}

struct Content {
    std::set<std::string> files = kAllQueryFiles;
    std::vector<double> wind = {150, 250, 450, 650, 950};
    std::string windField = "WINDPWRD";
    std::vector<std::string> landUse = {"FOREST", "  Lake", "FOREST", "URBAN"};
};

const char* solarField(const std::string& file)
{
    if (file.find("direct") != std::string::npos) return "ANNDIR";
    if (file.find("tilt") != std::string::npos) return "ANNTILT";
    return "ANNGLO";
}

// A directory of tiny hand-made files, loaded as the user would open it.
QString loadDataset(const std::string& name, const Content& content = {})
{
    using datagen::GeomKind;
    const std::string dir = testsupport::tempDir(name);
    for (const std::string& file : content.files) {
        const std::string path = dir + "/" + file;
        std::vector<datagen::FeatureSpec> features;
        if (file == "20_wind.shp") {
            for (size_t i = 0; i < content.wind.size(); ++i) features.push_back({square(int(i)), {content.wind[i]}});
            datagen::writeShapefile(path, GeomKind::Polygon, {{content.windField, 'N', 12, 3}}, features);
        } else if (file == "02_landuse.shp") {
            for (size_t i = 0; i < content.landUse.size(); ++i) features.push_back({square(int(i)), {content.landUse[i]}});
            datagen::writeShapefile(path, GeomKind::Polygon, {{"LAND_USE", 'C', 40}}, features);
        } else if (file.find("_solar_") != std::string::npos) {
            features = {{square(0), {3.2}}, {square(1), {5.6}}};
            datagen::writeShapefile(path, GeomKind::Polygon, {{solarField(file), 'N', 12, 4}}, features);
        } else if (file == "43_roads.shp" || file == "44_transmissionline.shp") {
            features = {{"LINESTRING(0 0,5000 100)", {1LL}}};
            datagen::writeShapefile(path, GeomKind::Line, {{"ID", 'I'}}, features);
        } else {
            features = {{square(0), {1LL}}};
            datagen::writeShapefile(path, GeomKind::Polygon, {{"ID", 'I'}}, features);
        }
    }
    const QString qdir = q(dir);
    loadDirectory(qdir);
    recorder().clear();
    return qdir;
}

int indexOfQuery(const QString& name)
{
    for (int i = 0; i < 8; ++i)
        if (name == kQueries[i]) return i;
    return -1;
}

// The user's pick in the query list.
void pick(FrmMain& f, const QString& query)
{
    const int i = indexOfQuery(query);
    ASSERT_GE(i, 0) << query.toStdString();
    f.cboSelectQuery->setListIndex(i);
}

QStringList items(const ComboBox* c)
{
    QStringList out;
    for (int i = 0; i < c->ListCount(); ++i) out << c->List(i);
    return out;
}

QStringList items(const ListBox* l)
{
    QStringList out;
    for (int i = 0; i < l->ListCount(); ++i) out << l->List(i);
    return out;
}

QRect px(int l, int t, int w, int h) { return QRect(TwipsToPx(l), TwipsToPx(t), TwipsToPx(w), TwipsToPx(h)); }

class QuerySet : public ::testing::Test {
protected:
    void SetUp() override { f = &freshMain(); }
    FrmMain* f = nullptr;
};

}  // namespace

// --- catalogue ----------------------------------------------------------------

TEST_F(QuerySet, ListHoldsTheEightNamesAndStartsOnTheBaseMap)
{
    QStringList expected;
    for (const char* n : kQueries) expected << n;
    EXPECT_EQ(items(f->cboSelectQuery), expected);
    EXPECT_FALSE(items(f->cboSelectQuery).contains("Best solar off-grid systems"));
    EXPECT_EQ(f->cboSelectQuery->ListIndex(), 0);
    // The start-up click of the base map changes nothing on the left side.
    EXPECT_TRUE(f->bFirstQuery);
    EXPECT_TRUE(Visible(f->fraStartUpImage));
    EXPECT_FALSE(Visible(f->fraEditLegend));
}

TEST_F(QuerySet, NoDatasetRefusesWindQueriesWithAnEmptyMessage)
{
    for (const char* query : kWindQueries) {
        SCOPED_TRACE(query);
        QString message;
        EXPECT_FALSE(isQueryPossible(query, message));
        EXPECT_EQ(message, "");
        recorder().clear();
        pick(*f, query);
        EXPECT_EQ(recorder().texts(), QStringList{""});
        EXPECT_TRUE(f->bFirstQuery);
    }
    QString message = "untouched";
    EXPECT_TRUE(isQueryPossible("No Query (Base Map)", message));
    EXPECT_TRUE(isQueryPossible("Best Solar X kWh/m2/day", message));
    EXPECT_TRUE(isQueryPossible("Something else", message));
    EXPECT_EQ(message, "untouched");
    // A solar resource needs its file.
    EXPECT_FALSE(isQueryPossible("40 km Solar PV Annual Average(KWH/M2/DAY)", message));
}

TEST_F(QuerySet, RequiredFilesAndTheirMessages)
{
    struct Case {
        std::set<std::string> omit;
        const char* query;
        bool possible;
        const char* message;  // what the caller's "before" has become
    };
    const Case cases[] = {
        {{"43_roads.shp"}, "Best wind + roads", false, "This query requires 43_roads.shp shapefile."},
        {{"43_roads.shp"}, "Best wind (all)", false, "This query requires 43_roads.shp shapefile."},
        {{"43_roads.shp"}, "Best wind + transmission", true, ""},
        {{"31_protectedarea.shp", "02_landuse.shp"}, "Best wind (all)", false,
         "This query requires 31_protectedarea.shp shapefile."},
        {{"02_landuse.shp"}, "Best wind (all)", false, "This query requires 02_landuse.shp shapefile."},
        {{"44_transmissionline.shp"}, "Best wind (all)", false, "This query requires 44_transmissionline.shp shapefile."},
        {{"02_landuse.shp"}, "Best wind + land use", false, "This query requires 02_landuse.shp shapefile."},
        {{"31_protectedarea.shp"}, "Best wind - protected areas", false,
         "This query requires 31_protectedarea.shp shapefile."},
        {{"20_wind.shp"}, "Best wind + roads", false, "This query requires 20_wind.shp shapefile."},
        {{"20_wind.shp"}, "Best Solar X kWh/m2/day", true, "before"},
        {{}, "Best wind (all)", true, ""},
        // Names are compared trimmed and without case.
        {{}, "  best WIND (all) ", true, ""},
        {{"11_solar_direct.shp"}, "40 km Solar Concentrators Annual Average(KWH/M2/DAY)", false,
         "This query requires 11_solar_direct.shp shapefile."},
        {{}, " 40 KM SOLAR CONCENTRATORS ANNUAL AVERAGE(KWH/M2/DAY)", true, ""},
        {{}, "10 km Solar Concentrators Annual Average(KWH/M2/DAY)", false,
         "This query requires 13_solar_direct.shp shapefile."},
        {{}, "40 km Solar Global Horizontal Annual Average(KWH/M2/DAY)", false,
         "This query requires 15_solar_glo.shp shapefile."},
        {{}, "Best solar off-grid systems", true, "before"},
    };
    int n = 0;
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.query) + " / case " + std::to_string(n));
        freshMain();
        Content content;
        for (const std::string& o : c.omit) content.files.erase(o);
        loadDataset("avail-" + std::to_string(n++), content);
        QString message = "before";
        EXPECT_EQ(isQueryPossible(c.query, message), c.possible);
        EXPECT_EQ(message, c.message);
        EXPECT_TRUE(recorder().boxes.empty()) << recorder().texts().join("|").toStdString();
    }
}

TEST_F(QuerySet, RefusedSelectionShowsTheMessageAndKeepsThePanel)
{
    Content content;
    content.files.erase("43_roads.shp");
    loadDataset("refused", content);
    pick(*f, "Wind by Power Density");
    ASSERT_EQ(f->fraEditQueryParameters->title(), "Wind by Power Density");
    f->lblWorking->setText("Working text");
    f->cmdShowData->setVisible(true);
    recorder().clear();

    pick(*f, "Best wind + roads");
    EXPECT_EQ(recorder().texts(), QStringList{"This query requires 43_roads.shp shapefile."});
    EXPECT_EQ(recorder().boxes[0].buttons, seam::Buttons::OK);
    EXPECT_EQ(recorder().boxes[0].icon, seam::Icon::None);
    EXPECT_EQ(f->cboSelectQuery->Text(), "Best wind + roads");
    EXPECT_EQ(f->fraEditQueryParameters->title(), "Wind by Power Density");
    EXPECT_FALSE(Visible(f->txtQuery1[2]));
    EXPECT_TRUE(Visible(f->lblQuery1[1]));
    EXPECT_EQ(f->lblWorking->text(), "Working text");
    EXPECT_FALSE(Visible(f->cmdShowData));  // hidden before the check
}

TEST_F(QuerySet, LayerTagsMatchWithoutCaseOrOuterBlanks)
{
    auto add = [&](const QString& tag) {
        auto layer = std::make_shared<MapLayer>();
        layer->Tag = tag;
        f->Map1->Layers().Add(layer);
    };
    QString message = "kept";
    EXPECT_FALSE(isLayerExist("20_wind.shp", message));
    EXPECT_EQ(message, "kept");  // made inside the walk over the layers
    add("20_WIND.SHP ");
    EXPECT_TRUE(isLayerExist("20_wind.shp", message));
    EXPECT_EQ(message, "");
    EXPECT_TRUE(isLayerExist(" 20_Wind.shp", message));
    EXPECT_FALSE(isLayerExist("21_wind.shp", message));
    EXPECT_EQ(message, "This query requires 21_wind.shp shapefile.");
    add("43_roads.shp");
    EXPECT_TRUE(isLayerExist("20_wind.shp", message));
    EXPECT_EQ(message, "");
}

TEST_F(QuerySet, FirstRealQuerySwitchesToTheEditPanelOnce)
{
    loadDataset("first-query");
    pick(*f, "No Query (Base Map)");
    EXPECT_TRUE(f->bFirstQuery);
    EXPECT_TRUE(Visible(f->fraStartUpImage));
    EXPECT_EQ(f->fraEditQueryParameters->title(), "");

    pick(*f, "Wind by Power Density");
    EXPECT_FALSE(f->bFirstQuery);
    EXPECT_FALSE(Visible(f->fraStartUpImage));
    EXPECT_TRUE(Visible(f->fraEditLegend));

    f->lblWorking->setText("old");
    pick(*f, "No Query (Base Map)");
    EXPECT_FALSE(Visible(f->fraStartUpImage));
    EXPECT_TRUE(Visible(f->fraEditLegend));
    EXPECT_EQ(f->fraEditQueryParameters->title(), "No Query (Base Map)");
    EXPECT_EQ(f->lblWorking->text(), "");
    EXPECT_TRUE(recorder().boxes.empty());
}

TEST_F(QuerySet, EachSelectionResetsLayerVisibility)
{
    loadDataset("visibility");
    pick(*f, "Wind by Power Density");
    const MapLayerPtr wind = f->Map1->Layers().Item(cLayerIndex->Item("20_wind.shp"));
    wind->Visible = true;
    pick(*f, "Wind by Power Density");  // the same query again
    EXPECT_FALSE(wind->Visible);
    wind->Visible = true;
    pick(*f, "No Query (Base Map)");
    EXPECT_FALSE(wind->Visible);
}

// --- panel ------------------------------------------------------------------------

namespace {

struct Shown {
    QWidget* w;
    const char* caption;  // label caption or text box text; null: not checked
    int l, t, wd, h;
};

std::vector<Shown> expectedPanel(FrmMain& f, const QString& query)
{
    auto& lbl = f.lblQuery1;
    auto& txt = f.txtQuery1;
    const std::vector<Shown> windRange = {
        {lbl[0], "Min Wind Power Density:", 90, 240, 2805, 255},
        {lbl[1], "Max Wind Power Density:", 90, 600, 2805, 255},
        {f.cboQueryDropDown, nullptr, 2000, 180, 900, 315},
        {f.cboQueryDropDown2, nullptr, 2000, 540, 900, 315},
    };
    const std::vector<Shown> landUse = {
        {f.lstQuery1, nullptr, 90, 1890, 2805, 840},
        {lbl[4], "Choose which land uses are suitable:", 90, 1680, 2805, 255},
    };
    auto join = [](std::vector<Shown> a, const std::vector<Shown>& b) {
        a.insert(a.end(), b.begin(), b.end());
        return a;
    };
    if (query == "Wind by Power Density" || query == "Best wind - protected areas") return windRange;
    if (query == "Best wind + land use") return join(windRange, landUse);
    if (query == "Best wind + roads")
        return join(windRange, {{txt[2], "2", 90, 900, 500, 285}, {lbl[2], " kM from roads", 570, 960, 2400, 255}});
    if (query == "Best wind + transmission")
        return join(windRange,
                    {{txt[2], nullptr, 90, 900, 500, 285}, {lbl[2], " kM from transmission lines", 570, 960, 2400, 255}});
    if (query == "Best wind (all)")
        return join(
            {
                {lbl[0], "Min Wind Power Density:", 90, 240, 2805, 255},
                {lbl[3], "Max Wind Power Density:", 90, 600, 2805, 255},
                {txt[1], nullptr, 90, 900, 500, 285},
                {lbl[1], " kM from transmission lines", 570, 960, 2400, 255},
                {txt[2], nullptr, 90, 1260, 500, 285},
                {lbl[2], " kM from roads", 570, 1320, 2400, 255},
                {f.cboQueryDropDown, nullptr, 2000, 180, 900, 315},
                {f.cboQueryDropDown2, nullptr, 2000, 540, 900, 315},
                {lbl[5], "remove protected areas ", 1770, 1260, 1170, 465},
                {f.chkProtectedAreas, nullptr, 2130, 1290, 225, 195},
            },
            landUse);
    if (query == "Best Solar X kWh/m2/day")
        return {
            {lbl[0], "Min Solar Resource", 90, 240, 2805, 255},
            {lbl[1], "Max Solar Resource", 90, 600, 2805, 255},
            {f.cboQueryDropDown, nullptr, 2300, 180, 650, 315},
            {f.cboQueryDropDown2, nullptr, 2300, 540, 650, 315},
            {f.cboQueryDropDown3, nullptr, 120, 1890, 2775, 315},
            {lbl[4], "Choose which solar resource:", 90, 1680, 2805, 255},
        };
    return {};
}

QString textOf(QWidget* w)
{
    if (auto* l = qobject_cast<QLabel*>(w)) return l->text();
    if (auto* t = qobject_cast<QLineEdit*>(w)) return t->text();
    return QString();
}

void checkPanel(FrmMain& f, const QString& query)
{
    std::vector<std::pair<QWidget*, std::string>> all = {
        {f.chkProtectedAreas, "chkProtectedAreas"}, {f.cboQueryDropDown, "cboQueryDropDown"},
        {f.cboQueryDropDown2, "cboQueryDropDown2"}, {f.cboQueryDropDown3, "cboQueryDropDown3"},
        {f.lstQuery1, "lstQuery1"}};
    for (int i = 0; i < 4; ++i) all.push_back({f.txtQuery1[size_t(i)], "txtQuery1(" + std::to_string(i) + ")"});
    for (int i = 0; i < 6; ++i) all.push_back({f.lblQuery1[size_t(i)], "lblQuery1(" + std::to_string(i) + ")"});

    const std::vector<Shown> shown = expectedPanel(f, query);
    for (const auto& [w, name] : all) {
        SCOPED_TRACE(name);
        const Shown* s = nullptr;
        for (const Shown& x : shown)
            if (x.w == w) s = &x;
        EXPECT_EQ(Visible(w), s != nullptr);
        if (s) {
            EXPECT_EQ(w->geometry(), px(s->l, s->t, s->wd, s->h));
            if (s->caption) EXPECT_EQ(textOf(w), s->caption);
        }
    }
    // What a query does not use lies where the neutral state put it.
    for (int i = 0; i < 6; ++i) {
        QLabel* l = f.lblQuery1[size_t(i)];
        if (Visible(l)) continue;
        EXPECT_EQ(l->x(), TwipsToPx(570)) << i;
        EXPECT_EQ(l->width(), TwipsToPx(2400)) << i;
    }
    if (!Visible(f.cboQueryDropDown)) EXPECT_EQ(f.cboQueryDropDown->geometry(), px(90, 540, 2835, 315));
    if (!Visible(f.txtQuery1[1])) EXPECT_EQ(f.txtQuery1[1]->y(), TwipsToPx(540));
    if (!Visible(f.lblQuery1[1])) EXPECT_EQ(f.lblQuery1[1]->y(), TwipsToPx(600));
    if (!Visible(f.lblQuery1[2])) EXPECT_EQ(f.lblQuery1[2]->y(), TwipsToPx(960));
}

}  // namespace

// Orders chosen so that every query follows one that moved or showed other controls.
TEST_F(QuerySet, PanelForEachQuery)
{
    loadDataset("panel");
    const char* order[] = {"Best wind (all)",
                           "Best wind + roads",
                           "Best Solar X kWh/m2/day",
                           "Best wind + land use",
                           "Best wind (all)",
                           "Best wind + transmission",
                           "Best Solar X kWh/m2/day",
                           "Wind by Power Density",
                           "Best wind (all)",
                           "Best wind - protected areas",
                           "Best wind (all)",
                           "No Query (Base Map)"};
    for (const char* query : order) {
        SCOPED_TRACE(query);
        pick(*f, query);
        EXPECT_EQ(f->fraEditQueryParameters->title(), query);
        checkPanel(*f, query);
        EXPECT_TRUE(recorder().boxes.empty()) << recorder().texts().join("|").toStdString();
    }
}

TEST_F(QuerySet, DistanceBoxesAcrossSelections)
{
    loadDataset("distances");
    auto& d = f->txtQuery1[2];
    pick(*f, "Best wind + transmission");
    EXPECT_EQ(d->text(), "5");  // the initial text survives the first selection
    d->setText("7");
    pick(*f, "Best wind + roads");
    EXPECT_EQ(d->text(), "2");  // reset on every roads selection
    d->setText("3.5");
    pick(*f, "Best wind + roads");
    EXPECT_EQ(d->text(), "2");
    d->setText("4");
    pick(*f, "Best wind + transmission");
    EXPECT_EQ(d->text(), "4");  // carried over from roads
    d->setText("");
    pick(*f, "Best wind + transmission");
    EXPECT_EQ(d->text(), "2");
    d->setText("abc");
    f->txtQuery1[1]->setText("9");
    f->chkProtectedAreas->setChecked(false);
    pick(*f, "Best wind (all)");
    EXPECT_EQ(d->text(), "2");
    EXPECT_EQ(f->txtQuery1[1]->text(), "9");
    EXPECT_FALSE(f->chkProtectedAreas->isChecked());  // the tick survives
}

TEST_F(QuerySet, WindListsComeFromTheWindRenderer)
{
    loadDataset("windlists");
    pick(*f, "Best wind + land use");
    const QStringList breaks = {"200", "300", "400", "500", "600", "800"};
    EXPECT_EQ(items(f->cboQueryDropDown), breaks);
    EXPECT_EQ(items(f->cboQueryDropDown2), breaks + QStringList{"Max"});
    EXPECT_EQ(f->cboQueryDropDown->Text(), "500");
    EXPECT_EQ(f->cboQueryDropDown2->Text(), "800");
    // Land uses once each, as stored, in one fixed order; nothing selected.
    EXPECT_EQ(items(f->lstQuery1), (QStringList{"  Lake", "FOREST", "URBAN"}));
    EXPECT_TRUE(f->lstQuery1->selectedItems().isEmpty());

    // A renderer changed under the panel is what the lists show next time.
    auto r = std::dynamic_pointer_cast<ClassBreaksRenderer>(
        f->Map1->Layers().Item(cLayerIndex->Item("20_wind.shp"))->Renderer);
    ASSERT_TRUE(r);
    r->setBreak(0, 123.25);
    f->lstQuery1->setSelected(0, true);
    f->cboQueryDropDown->setText("999");
    pick(*f, "Best wind + land use");
    EXPECT_EQ(f->cboQueryDropDown->List(0), "123.25");
    EXPECT_EQ(f->cboQueryDropDown->Text(), "500");
    EXPECT_TRUE(f->lstQuery1->selectedItems().isEmpty());
}

TEST_F(QuerySet, ValueSourceFailures)
{
    // No wind layer indexed: the fill fails and says where.
    FillWindDensityDropDowns();
    FillLandUseDropDown();
    EXPECT_EQ(recorder().texts(), (QStringList{" Error Source:md_functions.FillWindDensityDropDowns()",
                                               " Error Source:md_functions.FillLandUseDropDown()"}));
    recorder().clear();

    // A land-use layer with one value in every record lists it once.
    Content content;
    content.landUse = {"GRASSLAND", "GRASSLAND", "GRASSLAND"};
    loadDataset("one-landuse", content);
    FillLandUseDropDown();
    EXPECT_EQ(items(f->lstQuery1), QStringList{"GRASSLAND"});
    EXPECT_TRUE(recorder().boxes.empty());
}

TEST_F(QuerySet, SolarResourceLayerFoundByExactDisplayName)
{
    Content content;
    content.files = {"11_solar_direct.shp", "17_solar_direct.shp", "16_solar_tilt.shp"};
    loadDataset("solar-ids", content);
    const LayersCollection& layers = f->Map1->Layers();
    ASSERT_EQ(layers.Count(), 3);
    const QString conc = "40 km Solar Concentrators Annual Average(KWH/M2/DAY)";
    const int id = GetSolarResourceLayerID(conc);
    EXPECT_EQ(layers.Item(id)->Name, conc);
    // Two layers carry that name: the lower index wins.
    for (int i = 0; i < id; ++i) EXPECT_NE(layers.Item(i)->Name, conc);
    EXPECT_EQ(GetSolarResourceLayerID("10 km Solar PV Annual Average(KWH/M2/DAY)"), cLayerIndex->Item("16_solar_tilt.shp"));
    EXPECT_EQ(GetSolarResourceLayerID("10 KM Solar PV Annual Average(KWH/M2/DAY)"), 0);
    EXPECT_EQ(GetSolarResourceLayerID("nothing"), 0);
}

TEST_F(QuerySet, SolarPanelWithoutSolarFiles)
{
    Content content;
    content.files.erase("11_solar_direct.shp");
    loadDataset("no-solar", content);
    pick(*f, "Best Solar X kWh/m2/day");
    EXPECT_TRUE(recorder().boxes.empty()) << recorder().texts().join("|").toStdString();
    EXPECT_EQ(items(f->cboQueryDropDown3),
              (QStringList{"40 km Solar Concentrators Annual Average(KWH/M2/DAY)",
                           "40 km Solar PV Annual Average(KWH/M2/DAY)",
                           "10 KM Solar Concentrators Annual Average(KWH/M2/DAY)",
                           "10 km Solar Global Horizontal Annual Average(KWH/M2/DAY)"}));
    const QStringList scale = {"2", "2.5", "3", "3.5", "4", "4.5", "5", "5.5", "6", "6.5", "7", "7.5", "8", "8.5", "9"};
    EXPECT_EQ(items(f->cboQueryDropDown), scale);
    EXPECT_EQ(items(f->cboQueryDropDown2), scale);
    EXPECT_EQ(f->cboQueryDropDown->Text(), "3.5");
    EXPECT_EQ(f->cboQueryDropDown2->Text(), "9");
    EXPECT_EQ(f->cboQueryDropDown3->ListIndex(), 0);
    EXPECT_FALSE(bSkipDropDown3Click);  // consumed by the click it was set for
    EXPECT_FALSE(Visible(f->lblWorking));
}

TEST_F(QuerySet, SolarPanelWithOnlyTheTenKmPvFile)
{
    Content content;
    content.files = {"16_solar_tilt.shp"};
    loadDataset("only-16", content);
    // Breaks of the layer's own renderer decide, rounded to one decimal.
    auto r = std::dynamic_pointer_cast<ClassBreaksRenderer>(f->Map1->Layers().Item(0)->Renderer);
    ASSERT_TRUE(r);
    r->setBreak(0, 1.26);
    pick(*f, "Best Solar X kWh/m2/day");
    EXPECT_TRUE(recorder().boxes.empty()) << recorder().texts().join("|").toStdString();
    ASSERT_EQ(f->cboQueryDropDown3->ListCount(), 6);
    EXPECT_EQ(f->cboQueryDropDown3->List(4), "40 km Solar Global Horizontal Annual Average(KWH/M2/DAY)");
    EXPECT_EQ(f->cboQueryDropDown3->List(5), "10 km Solar PV Annual Average(KWH/M2/DAY)");
    // The first resource is shown although the breaks came from the sixth.
    EXPECT_EQ(f->cboQueryDropDown3->Text(), "40 km Solar Concentrators Annual Average(KWH/M2/DAY)");
    const QStringList scale = {"1.3", "2.5", "3", "3.5", "4", "4.5", "5", "5.5", "6", "6.5", "7", "7.5", "8", "8.5", "9"};
    EXPECT_EQ(items(f->cboQueryDropDown), scale);
    EXPECT_EQ(items(f->cboQueryDropDown2), scale);
    EXPECT_EQ(f->cboQueryDropDown->Text(), "3.5");
    EXPECT_EQ(f->cboQueryDropDown2->Text(), "9");

    // The user's pick of a resource without its file is refused in the label and a box.
    f->cmdShowData->setVisible(true);
    f->cboQueryDropDown->setText("4");
    f->cboQueryDropDown3->setListIndex(1);
    const QString msg = "This query requires 12_solar_tilt.shp shapefile.";
    EXPECT_EQ(recorder().texts(), QStringList{msg});
    EXPECT_EQ(f->lblWorking->text(), msg);
    EXPECT_TRUE(Visible(f->lblWorking));
    EXPECT_EQ(ForeColor(f->lblWorking), RGB(255, 0, 0));
    EXPECT_FALSE(Visible(f->cmdShowData));
    EXPECT_EQ(f->cboQueryDropDown3->ListIndex(), 1);
    EXPECT_EQ(f->cboQueryDropDown->Text(), "4");  // the range lists are not refilled
    recorder().clear();
    f->cboQueryDropDown3->setListIndex(5);
    EXPECT_TRUE(recorder().boxes.empty());
}

// --- wind maximum ------------------------------------------------------------

TEST_F(QuerySet, WindMaximumWarning)
{
    auto warning = [](const QString& m) {
        return "The query results will be shown in light gray. Maximum Wind Power Density (" + m +
               ") is less than 200. So you may not get proper rendering in the output map. You will have to type in a "
               "value less than " + m + " to perform any Wind Energy query.";
    };
    struct Case { std::vector<double> wind; QStringList boxes; };
    const Case cases[] = {
        {{150, 200.0}, {warning("200")}},
        {{150, 200.1}, {}},
        {{12.5, 150.25, -3}, {warning("150.25")}},
        {{-5, -1}, {}},  // nothing at or above 0: no statistics, no word
    };
    int n = 0;
    for (const Case& c : cases) {
        SCOPED_TRACE(n);
        freshMain();
        Content content;
        content.wind = c.wind;
        loadDataset("windmax-" + std::to_string(n++), content);
        pick(frmMain(), "Wind by Power Density");
        EXPECT_EQ(recorder().texts(), c.boxes);
        EXPECT_EQ(frmMain().fraEditQueryParameters->title(), "Wind by Power Density");  // never refused
        // The warning comes back with every selection of a wind query.
        recorder().clear();
        pick(frmMain(), "Best wind + roads");
        EXPECT_EQ(recorder().texts(), c.boxes);
        for (const auto& b : recorder().boxes) {
            EXPECT_EQ(b.buttons, seam::Buttons::OK);
            EXPECT_EQ(b.icon, seam::Icon::None);
        }
    }
}

TEST_F(QuerySet, WindLayerWithoutItsField)
{
    Content content;
    content.windField = "WINDPOWER";
    loadDataset("no-windpwrd", content);
    const QString text = "Cannot perform the Query. Please check the Wind Energy shapefile.This can happen if there is no "
                         "WINDPWRD field in the shape file.";
    QString message;
    EXPECT_TRUE(isQueryPossible("Wind by Power Density", message));
    EXPECT_EQ(recorder().texts(), QStringList{text});
    recorder().clear();
    EXPECT_TRUE(isQueryPossible("best wind + roads", message));
    EXPECT_EQ(recorder().texts(), QStringList{text});
    recorder().clear();
    // Not a wind query: no look at the wind layer.
    EXPECT_TRUE(isQueryPossible("Best Solar X kWh/m2/day", message));
    EXPECT_TRUE(recorder().boxes.empty());
}

// --- validation ----------------------------------------------------------------

namespace {

struct Inputs {
    const char* query;
    const char* min;
    const char* max;
    const char* transmission;  // txtQuery1(1)
    const char* distance;      // txtQuery1(2)
    bool landUse;
    const char* refusal;  // null: accepted
    int focus = -1;       // txtQuery1 index that takes the focus, -1 none
};

const Inputs kValidation[] = {
    {"No Query (Base Map)", "x", "y", "x", "x", false, nullptr},
    {"Wind by Power Density", "500", "800", "x", "x", false, nullptr},
    {"Wind by Power Density", "500", "500", "5", "5", false, "Max. Wind Power Density should be > Min. Wind Power Density"},
    {"Wind by Power Density", "9999", "10000", "5", "5", false, nullptr},
    {"Wind by Power Density", "9999", "10001", "5", "5", false, "Max. Wind Power Density should be >= 0 and 10000"},
    {"Wind by Power Density", "-1", "800", "5", "5", false, "Min. Wind Power Density should be >= 0 and 10000"},
    {"Wind by Power Density", "-5", "-1", "5", "5", false, "Min. Wind Power Density should be >= 0 and 10000"},
    {"Wind by Power Density", "800", "Max", "5", "5", false, nullptr},
    {"Wind by Power Density", "800", " Max ", "5", "5", false, nullptr},
    {"Wind by Power Density", "800", "max", "5", "5", false, "Please enter a numeric value for Max. Wind Power Density"},
    {"Wind by Power Density", "", "800", "5", "5", false, "Please enter a numeric value for Min. Wind Power Density"},
    {"Wind by Power Density", "abc", "zzz", "5", "5", false, "Please enter a numeric value for Min. Wind Power Density"},
    {"Wind by Power Density", "10001", "Max", "5", "5", false, "Max. Wind Power Density should be > Min. Wind Power Density"},
    {"Wind by Power Density", " 200 ", "1e3", "5", "5", false, nullptr},
    {"Best wind - protected areas", "500", "800", "", "", false, nullptr},
    {"Best wind + land use", "500", "800", "5", "5", false, "Please select a land use."},
    {"Best wind + land use", "500", "800", "5", "5", true, nullptr},
    {"Best wind + land use", "900", "800", "5", "5", false, "Max. Wind Power Density should be > Min. Wind Power Density"},
    {"Best wind + roads", "500", "800", "x", "0.001", false, nullptr},
    {"Best wind + roads", "500", "800", "x", "0.0009", false, "Proximity value must be >=0.001 and <= 25km."},
    {"Best wind + roads", "500", "800", "x", "25", false, nullptr},
    {"Best wind + roads", "500", "800", "x", "25.1", false, "Proximity value must be >=0.001 and <= 25km."},
    {"Best wind + roads", "500", "800", "x", "", false, "Please enter a number for proximity value."},
    {"Best wind + transmission", "500", "800", "x", "abc", false, "Please enter a number for proximity value."},
    {"Best wind + transmission", "500", "800", "x", "0", false, "Proximity value must be >=0.001 and <= 25km."},
    {"Best wind + transmission", "500", "Max", "x", "12", false, nullptr},
    {"Best wind (all)", "500", "800", "x", "x", false, "Please enter a number for proximity value.", 1},
    {"Best wind (all)", "500", "800", "30", "x", false, "Proximity to transmission must be >=0.001 and <= 25km.", 1},
    {"Best wind (all)", "500", "800", "0.001", "", false, "Please enter a number for proximity value.", 2},
    {"Best wind (all)", "500", "800", "25", "0.0009", false, "Proximity to roads must be >=0.001 and <= 25km.", 2},
    {"Best wind (all)", "500", "800", "2", "2", false, "Please select a land use."},
    {"Best wind (all)", "500", "800", "2", "2", true, nullptr},
    {"Best Solar X kWh/m2/day", "0", "10", "x", "x", false, nullptr},
    {"Best Solar X kWh/m2/day", "10", "10", "x", "x", false, "Max. Solar Resource should be > Min. Solar Resource"},
    {"Best Solar X kWh/m2/day", "3", "Max", "x", "x", false, "Please enter a numeric value for Max. Solar Resourcey"},
    {"Best Solar X kWh/m2/day", "x", "5", "x", "x", false, "Please enter a numeric value for Min. Solar Resource"},
    {"Best Solar X kWh/m2/day", "-1", "5", "x", "x", false, "Min. Solar Resource should be >= 0 and <= 10"},
    {"Best Solar X kWh/m2/day", "3", "10.5", "x", "x", false, "Max. Solar Resource should be >= 0 and <= 10"},
    {"Best Solar X kWh/m2/day", "3.5", "9", "x", "x", false, nullptr},
};

}  // namespace

TEST_F(QuerySet, ValidationTable)
{
    // The panel of "Best wind (all)" shows both distance boxes, so that they can take the focus.
    loadDataset("validation");
    pick(*f, "Best wind (all)");
    f->show();
    f->activateWindow();
    QApplication::processEvents();
    ASSERT_EQ(items(f->lstQuery1), (QStringList{"  Lake", "FOREST", "URBAN"}));
    for (const Inputs& in : kValidation) {
        SCOPED_TRACE(std::string(in.query) + " min=" + in.min + " max=" + in.max + " t1=" + in.transmission +
                     " t2=" + in.distance);
        f->cboSelectQuery->setCurrentIndex(indexOfQuery(in.query));  // no click: nothing rearranged
        f->cboQueryDropDown->setText(in.min);
        f->cboQueryDropDown2->setText(in.max);
        f->txtQuery1[1]->setText(in.transmission);
        f->txtQuery1[2]->setText(in.distance);
        f->lstQuery1->clearSelection();
        if (in.landUse) f->lstQuery1->setSelected(1, true);
        f->lblWorking->setText("");
        f->lblWorking->setVisible(false);
        f->cboSelectQuery->setFocus();
        recorder().clear();

        const bool ok = CheckInputs();
        EXPECT_EQ(ok, in.refusal == nullptr);
        EXPECT_TRUE(recorder().boxes.empty()) << recorder().texts().join("|").toStdString();
        if (in.refusal) {
            EXPECT_EQ(f->lblWorking->text(), in.refusal);
            EXPECT_TRUE(Visible(f->lblWorking));
            EXPECT_EQ(ForeColor(f->lblWorking), RGB(255, 0, 0));
        } else {
            EXPECT_EQ(f->lblWorking->text(), "");
            EXPECT_FALSE(Visible(f->lblWorking));
        }
        QWidget* focus = in.focus < 0 ? static_cast<QWidget*>(f->cboSelectQuery) : f->txtQuery1[size_t(in.focus)];
        EXPECT_EQ(f->focusWidget(), focus);
    }
}
