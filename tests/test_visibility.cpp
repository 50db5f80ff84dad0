// Which layers show after a load, a reset, the Change Layers dialog and the legend, and the label of them.
#include <QCheckBox>
#include <QPushButton>
#include <QTimer>

#include "mainwindow_fixture.h"
#include "mapping/legend.h"
#include "mapping/map.h"
#include "workspace/frmShowLayersDialog.h"
#include "workspace/visibility.h"

using namespace fixture;
using testsupport::recorder;

namespace {

const QStringList kHidden = {
    "01_elevation.shp",      "02_landuse.shp",   "11_solar_direct.shp",  "12_solar_tilt.shp",
    "20_wind.shp",           "30_lakes.shp",     "31_protectedarea.shp", "36_subcountrybnd3.shp",
    "37_subcountrybnd2.shp", "40_rivers.shp",    "42_railroad.shp",      "44_transmissionline.shp",
    "50_protectedarea.shp",  "52_facilities.shp", "53_airports.shp",
};
const QStringList kShown = {"38_subcountrybnd1.shp", "51_powerplant.shp"};
const QStringList kLeftAlone = {"13_solar_direct.shp", "14_solar_glo.shp", "15_solar_glo.shp", "16_solar_tilt.shp",
                                "17_solar_direct.shp", "18_solar_tilt.shp", "21_wind.shp",     "22_wind.shp",
                                "39_countryboundary.shp"};

class Visibility : public MainTest {
protected:
    MapLayerPtr layer(const QString& tag) { return map()->Layers().Item(cLayerIndex->Item(tag)); }
    void setAll(bool on) { for (const MapLayerPtr& l : map()->Layers()) l->Visible = on; }
    QString label() { return main->lblLayersCurrentlyDisplayed->text(); }
    QString refilled() { return main->Fill_lblLayersCurrentlyDisplayed(), label(); }
};

// After a load (the small dataset has fewer than 50 roads and cities) and
// again on a reset, which leaves the files it does not name as they are.
TEST_F(Visibility, DefaultsAfterALoadOrAResetTheirFailuresTheLabelOfVisibleLayersAndTheFiftyFeatureRule)
{
    EXPECT_EQ(refilled(), "- No layers found -");
    loadDirectory(q(testsupport::dataset()));
    for (const QString& tag : kHidden + kShown) EXPECT_EQ(layer(tag)->Visible, kShown.contains(tag)) << tag.toStdString();
    for (const QString& tag : kLeftAlone) EXPECT_EQ(layer(tag)->Visible, !tag.contains("solar")) << tag.toStdString();
    EXPECT_TRUE(layer("43_roads.shp")->Visible && layer("59_cities.shp")->Visible);
    for (bool start : {true, false}) {
        SCOPED_TRACE(start);
        setAll(start);
        for (const MapLayerPtr& l : map()->Layers()) SetDefaultVisibility(l);
        for (const QString& tag : kHidden + kShown) EXPECT_EQ(layer(tag)->Visible, kShown.contains(tag)) << tag.toStdString();
        for (const QString& tag : kLeftAlone) EXPECT_EQ(layer(tag)->Visible, start) << tag.toStdString();
        EXPECT_TRUE(layer("43_roads.shp")->Visible);
    }
    // The comparison is exact: another case is left alone.
    auto odd = std::make_shared<MapLayer>();
    odd->Tag = "20_Wind.shp";
    SetDefaultVisibility(odd);
    EXPECT_TRUE(odd->Visible) << boxTexts();

    // Failures show their own texts; a roads layer that is bound to no file cannot be counted: hidden.
    auto unbound = std::make_shared<MapLayer>();
    unbound->Tag = "43_roads.shp";
    SetDefaultVisibility(unbound);
    EXPECT_FALSE(unbound->Visible);
    EXPECT_EQ(recorder().texts(),
              QStringList{"Error in isSetLayerVisible() function. Error while trying to count the number of features "
                          "in a layer layer and set its visibility. "});
    recorder().clear();
    SetDefaultVisibility(nullptr);
    EXPECT_EQ(recorder().texts(),
              QStringList{"Erro while setting default visibility Error Source:md_functions.SetDefaultVisibility()"});

    // The label lists the visible layers top first, each with its separator.
    recorder().clear();

    const QString dir = q(testsupport::tempDir("label"));
    for (const char* file : {"21_wind.shp", "30_lakes.shp", "39_countryboundary.shp"}) writeFeaturesIn(dir, file, 1);
    loadDirectory(dir);
    QStringList texts{label()};
    setAll(true);
    texts << refilled();
    setAll(false);
    texts << refilled();
    EXPECT_EQ(texts, QStringList({"Country Boundary; 21_wind; ", "Country Boundary; Lakes; 21_wind; ", ""}));

    // Two files of one display name show twice.
    loadDirectory(q(testsupport::dataset()));
    setAll(true);
    const QString all = refilled();
    EXPECT_EQ(all.count("40 km Solar Concentrators Annual Average(KWH/M2/DAY); "), 2);
    EXPECT_TRUE(all.startsWith("Cities; Airports; ") && all.endsWith("; Land Use; Elevation (meters); ")) << all.toStdString();

    // Roads and cities show below fifty features.
    struct Case { const char* file; datagen::GeomKind kind; int count; bool visible; };
    const Case cases[] = {
        {"43_roads.shp", datagen::GeomKind::Line, 49, true},  {"43_roads.shp", datagen::GeomKind::Line, 50, false},
        {"59_cities.shp", datagen::GeomKind::Point, 49, true}, {"59_cities.shp", datagen::GeomKind::Point, 50, false},
        {"59_cities.shp", datagen::GeomKind::Point, 0, true},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.file) + " " + std::to_string(c.count));
        const QString dir = q(testsupport::tempDir("count"));
        writeFeaturesIn(dir, c.file, c.count, c.kind);
        loadDirectory(dir);
        ASSERT_EQ(map()->Layers().Count(), 1);
        EXPECT_EQ(QList<bool>({map()->Layers().Item(0)->Visible, isSetLayerVisible(map()->Layers().Item(0))}),
                  QList<bool>({c.visible, c.visible}));
    }
    EXPECT_NO_BOXES();
}

// The dialog, then the Change Layers button and the legend's check box: each repaints and the label follows.
TEST_F(Visibility, DialogOffersTwentySevenLayersLeavesTheTwentyEighthAloneAndTheLabelFollowsEveryChange)
{
    // No layers: no box shows, and OK says nothing.
    FrmShowLayersDialog& d = frmShowLayersDialog();
    d.Form_Activate();
    for (QCheckBox* box : d.chkShowLayers) EXPECT_FALSE(Visible(box));
    d.OKButton_Click();
    // 27 layers: every box shows, box i is layer i.
    loadDirectory(q(testsupport::dataset("small", 1, {"22_wind.shp"})));
    ASSERT_EQ(map()->Layers().Count(), 27);
    d.Form_Activate();
    for (int i = 0; i < 27; ++i) {
        const MapLayerPtr l = map()->Layers().Item(i);
        QCheckBox* box = d.chkShowLayers[size_t(i)];
        EXPECT_TRUE(Visible(box) && box->text() == l->Name && box->isChecked() == l->Visible) << i;
    }

    // 28 layers: Cancel changes nothing, and the next activation shows the truth.
    loadDirectory(q(testsupport::dataset()));
    ASSERT_EQ(map()->Layers().Count(), 28);
    QList<bool> before, after;
    for (const MapLayerPtr& l : map()->Layers()) before << l->Visible;
    d.Form_Activate();
    for (QCheckBox* box : d.chkShowLayers) box->setChecked(!box->isChecked());
    d.CancelButton_Click();
    for (const MapLayerPtr& l : map()->Layers()) after << l->Visible;
    EXPECT_TRUE(after == before && !d.isVisible());
    d.Form_Activate();
    for (int i = 0; i < 27; ++i) EXPECT_EQ(d.chkShowLayers[size_t(i)]->isChecked(), before[i]) << i;

    // OK: the bottom layer has no box and keeps its state.
    for (QCheckBox* box : d.chkShowLayers) box->setChecked(true);
    map()->Layers().Item(27)->Visible = false;
    bQueryDrawn = true;
    d.OKButton_Click();
    for (int i = 0; i < 27; ++i) EXPECT_TRUE(map()->Layers().Item(i)->Visible) << i;
    EXPECT_TRUE(!map()->Layers().Item(27)->Visible && map()->Layers().Item(27)->Tag == "01_elevation.shp" && !bQueryDrawn);
    // The repaint after OK brought the label up to date.
    EXPECT_TRUE(!label().contains("Elevation") && label().startsWith("Cities; ")) << label().toStdString();

    // The real path: the button opens the dialog modally; a pending event ticks
    // the first box off and presses OK inside the dialog's own loop.
    bool ran = false;
    QTimer::singleShot(0, main, [&] {
        FrmShowLayersDialog& d = frmShowLayersDialog();
        ran = d.isVisible();
        d.Form_Activate(), d.chkShowLayers[0]->setChecked(false), d.OKButton->click();
    });
    main->cmdChangeLayers->click();
    EXPECT_TRUE(ran && !frmShowLayersDialog().isVisible() && !layer("59_cities.shp")->Visible && !label().contains("Cities"));
    // Losing the focus brings the interface up to date whichever button closed it.
    main->lblLayersCurrentlyDisplayed->setText("stale");
    frmShowLayersDialog().Form_Deactivate();
    EXPECT_NE(label(), "stale");

    // The legend's check box repaints the map, and the label follows it too.
    bQueryDrawn = true;
    main->legend->clickCheckBox(0);
    EXPECT_TRUE(layer("59_cities.shp")->Visible && !bQueryDrawn && label().startsWith("Cities; "));
    main->legend->clickCheckBox(0);
    EXPECT_FALSE(layer("59_cities.shp")->Visible || label().contains("Cities"));
    EXPECT_NO_BOXES();
}

}  // namespace
