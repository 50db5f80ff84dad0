// Query set-up: the query list, what each query needs, the parameter panel and how its values are judged.
#include <QApplication>
#include <map>

#include "mainwindow_fixture.h"
#include "mapping/map.h"
#include "queryset/catalogue.h"
#include "queryset/panel.h"
#include "queryset/validation.h"
#include "queryset/value_sources.h"

using namespace fixture;
using testsupport::recorder;

namespace {

const QStringList kQueries = {
    "No Query (Base Map)",     "Wind by Power Density",    "Best wind - protected areas", "Best wind + land use",
    "Best wind + roads",       "Best wind + transmission", "Best wind (all)",             "Best Solar X kWh/m2/day",
};
const char* const kConc40 = "40 km Solar Concentrators Annual Average(KWH/M2/DAY)";

std::string square(int i)
{ return QString("POLYGON((%1 0,%1 800,%2 800,%2 0,%1 0))").arg(1000 * i).arg(1000 * i + 800).toStdString(); }

struct Content {
    std::set<std::string> files = {"20_wind.shp",  "02_landuse.shp",          "31_protectedarea.shp",
                                   "43_roads.shp", "44_transmissionline.shp", "11_solar_direct.shp"};
    std::set<std::string> omit;
    std::vector<double> wind = {150, 250, 450, 650, 950};
    std::string windField = "WINDPWRD";
    std::vector<std::string> landUse = {"FOREST", "  Lake", "FOREST", "URBAN"};
};

// A directory of tiny hand-made files, loaded as the user would open it.
void loadDataset(const std::string& name, const Content& content = {})
{
    using datagen::GeomKind;
    const std::string dir = testsupport::tempDir(name);
    for (const std::string& file : content.files) {
        if (content.omit.contains(file)) continue;
        const std::string path = dir + "/" + file;
        std::vector<datagen::FeatureSpec> features;
        if (file == "20_wind.shp") {
            for (size_t i = 0; i < content.wind.size(); ++i) features.push_back({square(int(i)), {content.wind[i]}});
            datagen::writeShapefile(path, GeomKind::Polygon, {{content.windField, 'N', 12, 3}}, features);
        } else if (file == "02_landuse.shp") {
            for (size_t i = 0; i < content.landUse.size(); ++i) features.push_back({square(int(i)), {content.landUse[i]}});
            datagen::writeShapefile(path, GeomKind::Polygon, {{"LAND_USE", 'C', 40}}, features);
        } else if (file.find("_solar_") != std::string::npos) {
            const char* field = file.find("direct") != std::string::npos ? "ANNDIR" : "ANNTILT";
            datagen::writeShapefile(path, GeomKind::Polygon, {{field, 'N', 12, 4}}, {{square(0), {3.2}}, {square(1), {5.6}}});
        } else {
            writeFeatures(path, 1, file.starts_with("4") ? GeomKind::Line : GeomKind::Polygon);
        }
    }
    loadDirectory(q(dir));
    recorder().clear();
}

// The user's pick in the query list.
void pick(FrmMain& f, const QString& query)
{
    ASSERT_TRUE(kQueries.contains(query)) << query.toStdString();
    f.cboSelectQuery->setListIndex(int(kQueries.indexOf(query)));
}

template <class List> QStringList items(const List* c)
{
    QStringList out;
    for (int i = 0; i < c->ListCount(); ++i) out << c->List(i);
    return out;
}

const QStringList kLandUses = {"  Lake", "FOREST", "URBAN"};  // once each, as stored, in one fixed order

class QuerySet : public ::testing::Test {
protected:
    void SetUp() override { f = &freshMain(); }
    FrmMain* f = nullptr;
};

}  // namespace

TEST_F(QuerySet, WithoutADatasetTheListHoldsEveryQueryRefusesWindQueriesSilentlyThenRequiredFilesAndTheirMessages)
{
    EXPECT_EQ(items(f->cboSelectQuery), kQueries);
    // No wind layer indexed: the fill fails and says where.
    FillWindDensityDropDowns();
    FillLandUseDropDown();
    EXPECT_EQ(recorder().texts(), (QStringList{" Error Source:md_functions.FillWindDensityDropDowns()",
                                               " Error Source:md_functions.FillLandUseDropDown()"}));
    for (int i = 1; i < 7; ++i) {
        SCOPED_TRACE(kQueries[i].toStdString());
        recorder().clear();
        pick(*f, kQueries[i]);
        EXPECT_EQ(recorder().texts(), QStringList{""});
        EXPECT_TRUE(f->bFirstQuery);
    }
    // Layer tags match without case or outer blanks; the message is made inside the walk over the layers.
    QString message = "kept";
    EXPECT_FALSE(isLayerExist("20_wind.shp", message) || message != "kept");
    auto layer = std::make_shared<MapLayer>();
    layer->Tag = "20_WIND.SHP ";
    f->Map1->Layers().Add(layer);
    EXPECT_TRUE(isLayerExist(" 20_Wind.shp", message) && message.isEmpty());
    EXPECT_FALSE(isLayerExist("21_wind.shp", message) || message != "This query requires 21_wind.shp shapefile.");

    // The files each query requires, and their messages.
    // message: what the caller's "before" has become; a file name stands for the request of it
    struct Case { std::set<std::string> omit; const char* query; bool possible; const char* message; };
    const Case cases[] = {
        {{"43_roads.shp"}, "Best wind + transmission", true, ""},
        {{"31_protectedarea.shp", "02_landuse.shp"}, "Best wind (all)", false, "31_protectedarea.shp"},
        {{"44_transmissionline.shp"}, "Best wind (all)", false, "44_transmissionline.shp"},
        {{"02_landuse.shp"}, "Best wind + land use", false, "02_landuse.shp"},
        {{"31_protectedarea.shp"}, "Best wind - protected areas", false, "31_protectedarea.shp"},
        {{"20_wind.shp"}, "Best wind + roads", false, "20_wind.shp"},
        {{"20_wind.shp"}, "Best Solar X kWh/m2/day", true, "before"},
        // Names are compared trimmed and without case.
        {{}, "  best WIND (all) ", true, ""}, {{"11_solar_direct.shp"}, kConc40, false, "11_solar_direct.shp"},
        {{}, " 40 KM SOLAR CONCENTRATORS ANNUAL AVERAGE(KWH/M2/DAY)", true, ""},
        {{}, "10 km Solar Concentrators Annual Average(KWH/M2/DAY)", false, "13_solar_direct.shp"},
        {{}, "Best solar off-grid systems", true, "before"},
    };
    int n = 0;
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.query) + " / case " + std::to_string(n));
        freshMain();
        loadDataset("avail-" + std::to_string(n++), Content{.omit = c.omit});
        QString message = "before";
        EXPECT_EQ(isQueryPossible(c.query, message), c.possible);
        const std::string m = c.message;
        EXPECT_EQ(message.toStdString(), m.ends_with(".shp") ? "This query requires " + m + " shapefile." : m);
        EXPECT_NO_BOXES();
    }
}

TEST_F(QuerySet, FirstRealQuerySwitchesToTheEditPanelOnceEverySelectionHidesTheLayersAndARefusalKeepsThePanel)
{
    loadDataset("first-query", Content{.omit = {"43_roads.shp"}});
    pick(*f, "No Query (Base Map)");
    EXPECT_TRUE(f->bFirstQuery && Visible(f->fraStartUpImage) && f->fraEditQueryParameters->title().isEmpty());

    pick(*f, "Wind by Power Density");
    EXPECT_FALSE(f->bFirstQuery);
    const MapLayerPtr wind = f->Map1->Layers().Item(cLayerIndex->Item("20_wind.shp"));
    wind->Visible = true;
    pick(*f, "Wind by Power Density");  // the same query again
    EXPECT_FALSE(wind->Visible);

    f->lblWorking->setText("Working text");
    f->cmdShowData->setVisible(true);
    recorder().clear();
    pick(*f, "Best wind + roads");
    EXPECT_EQ(recorder().texts(), QStringList{"This query requires 43_roads.shp shapefile."});
    ASSERT_EQ(recorder().boxes.size(), 1u);
    EXPECT_TRUE(recorder().boxes[0].buttons == seam::Buttons::OK && recorder().boxes[0].icon == seam::Icon::None);
    EXPECT_EQ(QStringList({f->cboSelectQuery->Text(), f->fraEditQueryParameters->title(), f->lblWorking->text()}),
              QStringList({"Best wind + roads", "Wind by Power Density", "Working text"}));
    EXPECT_FALSE(Visible(f->txtQuery1[2]) || Visible(f->cmdShowData));  // the button is hidden before the check

    wind->Visible = true;
    f->lblWorking->setText("old");
    recorder().clear();
    pick(*f, "No Query (Base Map)");
    EXPECT_FALSE(wind->Visible || Visible(f->fraStartUpImage) || !Visible(f->fraEditLegend));
    EXPECT_EQ(QStringList({f->fraEditQueryParameters->title(), f->lblWorking->text()}) << recorder().texts(),
              QStringList({"No Query (Base Map)", ""}));
}

namespace {

// The panel's controls by short name.
std::map<std::string, QWidget*> panelControls(FrmMain& f)
{
    std::map<std::string, QWidget*> m = {{"chk", f.chkProtectedAreas}, {"lst", f.lstQuery1}, {"dd1", f.cboQueryDropDown},
                                         {"dd2", f.cboQueryDropDown2}, {"dd3", f.cboQueryDropDown3}};
    for (size_t i = 0; i < 6; ++i) m["lbl" + std::to_string(i)] = f.lblQuery1[i];
    for (size_t i = 0; i < 4; ++i) m["txt" + std::to_string(i)] = f.txtQuery1[i];
    return m;
}

// caption: the label's caption or the text box's text; null: not checked
struct Shown { const char* ctl; const char* caption; int l, t, w, h; };
using Panel = std::vector<Shown>;

Panel operator+(Panel a, const Panel& b) { return a.insert(a.end(), b.begin(), b.end()), a; }

const Panel kWindDropDowns = {{"dd1", nullptr, 2000, 180, 900, 315}, {"dd2", nullptr, 2000, 540, 900, 315}};
const Panel kWindRange = Panel{{"lbl0", "Min Wind Power Density:", 90, 240, 2805, 255},
                               {"lbl1", "Max Wind Power Density:", 90, 600, 2805, 255}} + kWindDropDowns;

// One query per distinct arrangement: distance rule for roads and for lines, the swapped labels of
// all criteria, the solar panel, and the empty base map.
const std::map<QString, Panel> kPanels = {
    {"No Query (Base Map)", {}},
    {"Best wind + roads",
     kWindRange + Panel{{"txt2", "2", 90, 900, 500, 285}, {"lbl2", " kM from roads", 570, 960, 2400, 255}}},
    {"Best wind + transmission", kWindRange + Panel{{"txt2", nullptr, 90, 900, 500, 285},
                                                    {"lbl2", " kM from transmission lines", 570, 960, 2400, 255}}},
    {"Best wind (all)",
     Panel{{"lbl0", "Min Wind Power Density:", 90, 240, 2805, 255}, {"lbl3", "Max Wind Power Density:", 90, 600, 2805, 255},
           {"txt1", nullptr, 90, 900, 500, 285}, {"lbl1", " kM from transmission lines", 570, 960, 2400, 255},
           {"txt2", nullptr, 90, 1260, 500, 285}, {"lbl2", " kM from roads", 570, 1320, 2400, 255},
           {"lbl5", "remove protected areas ", 1770, 1260, 1170, 465}, {"chk", nullptr, 2130, 1290, 225, 195},
           {"lst", nullptr, 90, 1890, 2805, 840}, {"lbl4", "Choose which land uses are suitable:", 90, 1680, 2805, 255}}
         + kWindDropDowns},
    {"Best Solar X kWh/m2/day",
     {{"lbl0", "Min Solar Resource", 90, 240, 2805, 255}, {"lbl1", "Max Solar Resource", 90, 600, 2805, 255},
      {"dd1", nullptr, 2300, 180, 650, 315}, {"dd2", nullptr, 2300, 540, 650, 315}, {"dd3", nullptr, 120, 1890, 2775, 315},
      {"lbl4", "Choose which solar resource:", 90, 1680, 2805, 255}}},
};

void checkPanel(FrmMain& f, const QString& query)
{
    const Panel& shown = kPanels.at(query);
    for (const auto& [name, w] : panelControls(f)) {
        SCOPED_TRACE(name);
        auto s = std::find_if(shown.begin(), shown.end(), [&](const Shown& x) { return name == x.ctl; });
        EXPECT_EQ(Visible(w), s != shown.end());
        if (s == shown.end()) continue;
        EXPECT_EQ((std::array{Twips(w).Left, Twips(w).Top, Twips(w).Width, Twips(w).Height}), (std::array{s->l, s->t, s->w, s->h}));
        auto* label = qobject_cast<QLabel*>(w);
        if (s->caption) EXPECT_EQ(label ? label->text() : qobject_cast<QLineEdit*>(w)->text(), s->caption);
    }
}

}  // namespace

TEST_F(QuerySet, SolarPanelWithOnlyTheTenKmPvFileTheLayersOfEachResourceAndTheWindMaximumWarning)
{
    loadDataset("only-16", Content{.files = {"16_solar_tilt.shp"}});
    // Breaks of the layer's own renderer decide, rounded to one decimal.
    auto r = std::dynamic_pointer_cast<ClassBreaksRenderer>(f->Map1->Layers().Item(0)->Renderer);
    ASSERT_TRUE(r);
    r->setBreak(0, 1.26);
    pick(*f, "Best Solar X kWh/m2/day");
    EXPECT_EQ(items(f->cboQueryDropDown3) + recorder().texts(),
              (QStringList{kConc40, "40 km Solar PV Annual Average(KWH/M2/DAY)", "10 KM Solar Concentrators Annual Average(KWH/M2/DAY)",
                           "10 km Solar Global Horizontal Annual Average(KWH/M2/DAY)",
                           "40 km Solar Global Horizontal Annual Average(KWH/M2/DAY)", "10 km Solar PV Annual Average(KWH/M2/DAY)"}));
    // The first resource is shown although the breaks came from the sixth.
    EXPECT_EQ(f->cboQueryDropDown3->Text(), kConc40);
    QStringList scale = {"1.3"};
    for (int i = 5; i <= 18; ++i) scale << QString::number(i / 2.0);
    EXPECT_TRUE(items(f->cboQueryDropDown) == scale && items(f->cboQueryDropDown2) == scale);
    EXPECT_EQ(QStringList({f->cboQueryDropDown->Text(), f->cboQueryDropDown2->Text()}), QStringList({"3.5", "9"}));

    // The user's pick of a resource without its file is refused in the label and a box.
    f->cmdShowData->setVisible(true), f->cboQueryDropDown->setText("4"), f->cboQueryDropDown3->setListIndex(1);
    const QString msg = "This query requires 12_solar_tilt.shp shapefile.";
    EXPECT_EQ(recorder().texts(), QStringList{msg});
    EXPECT_TRUE(f->lblWorking->text() == msg && Visible(f->lblWorking) && ForeColor(f->lblWorking) == RGB(255, 0, 0));
    // The range lists are not refilled.
    EXPECT_TRUE(!Visible(f->cmdShowData) && f->cboQueryDropDown3->ListIndex() == 1 && f->cboQueryDropDown->Text() == "4");
    recorder().clear();
    f->cboQueryDropDown3->setListIndex(5);
    EXPECT_NO_BOXES();

    loadDataset("solar-ids", Content{.files = {"11_solar_direct.shp", "17_solar_direct.shp", "16_solar_tilt.shp"}});
    // Two layers carry that name: the lower index wins.
    EXPECT_EQ(GetSolarResourceLayerID(kConc40), std::min(cLayerIndex->Item("11_solar_direct.shp"),
                                                         cLayerIndex->Item("17_solar_direct.shp")));
    EXPECT_EQ(GetSolarResourceLayerID("10 km Solar PV Annual Average(KWH/M2/DAY)"), cLayerIndex->Item("16_solar_tilt.shp"));
    EXPECT_EQ(GetSolarResourceLayerID("10 KM Solar PV Annual Average(KWH/M2/DAY)") + GetSolarResourceLayerID("nothing"), 0);

    // The wind maximum warning, and a wind layer without its field.
    auto warning = [](const QString& m) {
        return "The query results will be shown in light gray. Maximum Wind Power Density (" + m +
               ") is less than 200. So you may not get proper rendering in the output map. You will have to type in a "
               "value less than " + m + " to perform any Wind Energy query.";
    };
    struct Case { std::vector<double> wind; QStringList boxes; };
    const Case cases[] = {
        {{150, 200.0}, {warning("200")}}, {{150, 200.1}, {}}, {{12.5, 150.25, -3}, {warning("150.25")}},
        {{-5, -1}, {}},  // nothing at or above 0: no statistics, no word
    };
    int n = 0;
    for (const Case& c : cases) {
        SCOPED_TRACE(n);
        freshMain();
        loadDataset("windmax-" + std::to_string(n++), Content{.wind = c.wind});
        pick(frmMain(), "Wind by Power Density");
        EXPECT_EQ(recorder().texts(), c.boxes);
        EXPECT_EQ(frmMain().fraEditQueryParameters->title(), "Wind by Power Density");  // never refused
        // The warning comes back with every selection of a wind query.
        recorder().clear();
        pick(frmMain(), "Best wind + roads");
        EXPECT_EQ(recorder().texts(), c.boxes);
    }

    // A wind layer without its field.
    freshMain();
    loadDataset("no-windpwrd", Content{.windField = "WINDPOWER"});
    const QString text = "Cannot perform the Query. Please check the Wind Energy shapefile.This can happen if there is no "
                         "WINDPWRD field in the shape file.";
    // The solar query is no wind query: no look at the wind layer.
    QString message;
    for (const char* query : {"Wind by Power Density", "best wind + roads", "Best Solar X kWh/m2/day"})
        EXPECT_TRUE(isQueryPossible(query, message));
    EXPECT_EQ(recorder().texts(), QStringList({text, text}));
}

namespace {

// transmission and distance go to txtQuery1(1) and (2); refusal null: accepted; focus: the txtQuery1 taking it.
struct Inputs { const char *query, *min, *max, *transmission, *distance; bool landUse; const char* refusal; int focus = -1; };

const char* const W = "Wind by Power Density";
const char* const R = "Best wind + roads";
const char* const T = "Best wind + transmission";
const char* const A = "Best wind (all)";
const char* const S = "Best Solar X kWh/m2/day";
const char* const kOrder = "Max. Wind Power Density should be > Min. Wind Power Density";
const char* const kProximity = "Proximity value must be >=0.001 and <= 25km.";
const char* const kNoNumber = "Please enter a number for proximity value.";

const Inputs kValidation[] = {
    {"No Query (Base Map)", "x", "y", "x", "x", false, nullptr}, {W, "500", "800", "x", "x", false, nullptr},
    {W, "500", "500", "5", "5", false, kOrder}, {W, "9999", "10000", "5", "5", false, nullptr},
    {W, "9999", "10001", "5", "5", false, "Max. Wind Power Density should be >= 0 and 10000"},
    {W, "-1", "800", "5", "5", false, "Min. Wind Power Density should be >= 0 and 10000"},
    {W, "800", " Max ", "5", "5", false, nullptr},
    {W, "800", "max", "5", "5", false, "Please enter a numeric value for Max. Wind Power Density"},
    {W, "", "800", "5", "5", false, "Please enter a numeric value for Min. Wind Power Density"},
    {W, "10001", "Max", "5", "5", false, kOrder}, {W, " 200 ", "1e3", "5", "5", false, nullptr},
    {"Best wind + land use", "500", "800", "5", "5", false, "Please select a land use."},
    {"Best wind + land use", "500", "800", "5", "5", true, nullptr}, {R, "500", "800", "x", "0.001", false, nullptr},
    {R, "500", "800", "x", "0.0009", false, kProximity}, {R, "500", "800", "x", "25", false, nullptr},
    {R, "500", "800", "x", "25.1", false, kProximity}, {R, "500", "800", "x", "", false, kNoNumber},
    {T, "500", "800", "x", "0", false, kProximity}, {A, "500", "800", "x", "x", false, kNoNumber, 1},
    {A, "500", "800", "30", "x", false, "Proximity to transmission must be >=0.001 and <= 25km.", 1},
    {A, "500", "800", "0.001", "", false, kNoNumber, 2},
    {A, "500", "800", "25", "0.0009", false, "Proximity to roads must be >=0.001 and <= 25km.", 2},
    {A, "500", "800", "2", "2", false, "Please select a land use."}, {A, "500", "800", "2", "2", true, nullptr},
    {S, "0", "10", "x", "x", false, nullptr},
    {S, "10", "10", "x", "x", false, "Max. Solar Resource should be > Min. Solar Resource"},
    {S, "3", "Max", "x", "x", false, "Please enter a numeric value for Max. Solar Resourcey"},
    {S, "x", "5", "x", "x", false, "Please enter a numeric value for Min. Solar Resource"},
    {S, "-1", "5", "x", "x", false, "Min. Solar Resource should be >= 0 and <= 10"},
    {S, "3", "10.5", "x", "x", false, "Max. Solar Resource should be >= 0 and <= 10"},
    {S, "3.5", "9", "x", "x", false, nullptr},
};

}  // namespace

TEST_F(QuerySet, DistanceBoxesPanelForEachArrangementWindListsFromTheWindRendererAndValidation)
{
    loadDataset("panel");
    f->txtQuery1[1]->setText("9");
    f->chkProtectedAreas->setChecked(false);
    // typed before the selection (null: none), and shown after it
    struct Step { const char *typed, *query, *shown; };
    const Step steps[] = {
        {nullptr, "Best wind + transmission", "5"},  // the initial text survives the first selection
        {"7", "Best wind + roads", "2"},             // reset on every roads selection
        {"4", "Best wind + transmission", "4"},      // carried over from roads
        {"", "Best wind + transmission", "2"}, {"abc", "Best wind (all)", "2"},
    };
    for (const Step& s : steps) {
        if (s.typed) f->txtQuery1[2]->setText(s.typed);
        pick(*f, s.query);
        EXPECT_EQ(f->txtQuery1[2]->text(), s.shown) << s.query << " after \"" << (s.typed ? s.typed : "") << '"';
    }
    EXPECT_TRUE(f->txtQuery1[1]->text() == "9" && !f->chkProtectedAreas->isChecked());  // both survive

    // Each query follows one that moved or showed other controls.
    for (const char* query : {"Best wind (all)", "Best wind + roads", "Best Solar X kWh/m2/day", "Best wind (all)",
                              "Best wind + transmission", "Best Solar X kWh/m2/day", "No Query (Base Map)"}) {
        SCOPED_TRACE(query);
        pick(*f, query);
        EXPECT_EQ(f->fraEditQueryParameters->title(), query);
        checkPanel(*f, query);
        EXPECT_NO_BOXES();
    }

    pick(*f, "Best wind + land use");
    const QStringList breaks = {"200", "300", "400", "500", "600", "800"};
    EXPECT_EQ(items(f->cboQueryDropDown), breaks);
    EXPECT_EQ(items(f->cboQueryDropDown2), breaks + QStringList{"Max"});
    EXPECT_EQ(QStringList({f->cboQueryDropDown->Text(), f->cboQueryDropDown2->Text()}), QStringList({"500", "800"}));
    EXPECT_TRUE(items(f->lstQuery1) == kLandUses && f->lstQuery1->selectedItems().isEmpty());

    // A renderer changed under the panel is what the lists show next time.
    auto r = std::dynamic_pointer_cast<ClassBreaksRenderer>(f->Map1->Layers().Item(cLayerIndex->Item("20_wind.shp"))->Renderer);
    ASSERT_TRUE(r);
    r->setBreak(0, 123.25);
    f->lstQuery1->setSelected(0, true);
    f->cboQueryDropDown->setText("999");
    pick(*f, "Best wind + land use");
    EXPECT_EQ(QStringList({f->cboQueryDropDown->List(0), f->cboQueryDropDown->Text()}), QStringList({"123.25", "500"}));
    EXPECT_TRUE(f->lstQuery1->selectedItems().isEmpty());

    // The panel of "Best wind (all)" shows both distance boxes, so that they can take the focus.
    pick(*f, "Best wind (all)");
    f->show(), f->activateWindow(), QApplication::processEvents();
    ASSERT_EQ(items(f->lstQuery1), kLandUses);
    for (const Inputs& in : kValidation) {
        SCOPED_TRACE(std::string(in.query) + " " + in.min + "/" + in.max + " " + in.transmission + "/" + in.distance);
        f->cboSelectQuery->setCurrentIndex(int(kQueries.indexOf(in.query)));  // no click: nothing rearranged
        f->cboQueryDropDown->setText(in.min), f->cboQueryDropDown2->setText(in.max);
        f->txtQuery1[1]->setText(in.transmission), f->txtQuery1[2]->setText(in.distance);
        f->lstQuery1->clearSelection(), f->lstQuery1->setSelected(1, in.landUse);
        f->lblWorking->setText(""), f->lblWorking->hide(), f->cboSelectQuery->setFocus(), recorder().clear();

        EXPECT_EQ(CheckInputs(), in.refusal == nullptr);
        EXPECT_NO_BOXES();
        EXPECT_EQ(f->lblWorking->text(), in.refusal ? in.refusal : "");
        EXPECT_EQ(Visible(f->lblWorking), in.refusal != nullptr);
        if (in.refusal) EXPECT_EQ(ForeColor(f->lblWorking), RGB(255, 0, 0));
        EXPECT_EQ(f->focusWidget(), in.focus < 0 ? static_cast<QWidget*>(f->cboSelectQuery) : f->txtQuery1[size_t(in.focus)]);
    }
}
