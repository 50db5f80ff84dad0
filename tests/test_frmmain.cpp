// The main window: design, start-up, shut-down, resizing and enabled states.
#include <QDesktopServices>
#include <QKeyEvent>
#include <QMenuBar>
#include <QMouseEvent>
#include <QScreen>
#include <QStyleOptionButton>

#include "app/frmSplash.h"
#include "info/frmInfo.h"
#include "mainwindow_fixture.h"
#include "mapping/legend.h"
#include "mapping/map.h"
#include "workspace/frmShowLayersDialog.h"

using namespace fixture;
using testsupport::recorder;

namespace {

using MainWindow = MainTest;

QString captionOf(QWidget* w)
{
    if (auto* l = qobject_cast<QLabel*>(w)) return l->text();
    if (auto* b = qobject_cast<QAbstractButton*>(w)) return b->text();
    if (auto* c = qobject_cast<QComboBox*>(w)) return c->currentText();
    return qobject_cast<QLineEdit*>(w)->text();
}

QRect rectOf(const TwipsRect& r) { return QRect(r.Left, r.Top, r.Width, r.Height); }

class UrlCatcher : public QObject {
    Q_OBJECT
public:
    QList<QUrl> urls;
public slots:
    void open(const QUrl& url) { urls << url; }
};

// A sample of the design, some controls of each container.
TEST_F(MainWindow, ControlsStandWhereDesignedEditOrLegendWaitsForTheFirstQueryAndHelpOpensTheHelpFileOrTheGuide)
{
    struct Placed { const char* name; QWidget *widget, *container; QRect at; QString caption; };
    const Placed table[] = {
        {"cboSelectQuery", f.cboSelectQuery, f.centralWidget(), {120, 720, 3615, 315}, "No Query (Base Map)"},
        {"cboScale", f.cboScale, f.fraMapHolder, {5640, 210, 2565, 315}, "- No Map - "},
        {"optPanZoom(1)", f.optPanZoom[1], f.fraMapHolder, {3120, 300, 750, 225}, "Zoom"},
        {"optEditLegend(1)", f.optEditLegend[1], f.fraEditLegend, {1620, 210, 1680, 345}, "Show Map legend"},
        {"cmdUpdateMap", f.cmdUpdateMap, f.fraEdit, {2100, 3120, 1035, 375}, "Update Map"},
        {"lblLayersCurrentlyDisplayed", f.lblLayersCurrentlyDisplayed, f.fraEdit, {150, 4290, 3000, 1155},
         "- No layers found -"},
        {"txtQuery1(0)", f.txtQuery1[0], f.fraEditQueryParameters, {90, 180, 500, 285}, "5"},
    };
    for (const Placed& p : table) {
        SCOPED_TRACE(p.name);
        EXPECT_TRUE(p.widget->parentWidget() == p.container && captionOf(p.widget) == p.caption);
        EXPECT_EQ(rectOf(Twips(p.widget)), p.at);
        // Edges are rounded to pixels, so controls that meet in the design meet on the screen.
        const QRect g = p.widget->geometry();
        EXPECT_EQ((std::array{g.left(), g.top(), g.right() + 1, g.bottom() + 1}),
                  (std::array{TwipsToPx(p.at.x()), TwipsToPx(p.at.y()), TwipsToPx(p.at.x() + p.at.width()), TwipsToPx(p.at.y() + p.at.height())}));
    }
    // The state the load leaves.
    EXPECT_TRUE(f.bFormLoaded && f.bFirstQuery && bShowMarkedShape && f.iToolMode == 1 && f.iZoomFactor == 2);
    EXPECT_TRUE(f.optPanZoom[1]->isChecked() && f.optEditLegend[0]->isChecked());
    EXPECT_EQ(sDataDirectory, QCoreApplication::applicationDirPath());
    EXPECT_EQ(f.windowTitle(), "Marlowan");
    EXPECT_TRUE(f.lblMapNote->text().startsWith("Marlowan from Kelvora, a Tessimar Project.  For data source information, goto "));
    EXPECT_EQ(f.lblWorking->text(), "");  // emptied by the base-map selection at start
    EXPECT_EQ(ForeColor(f.lblWorking), RGB(0, 0, 255));
    // File holds four entries; Help stands beside it.
    QStringList menus;
    for (QAction* a : f.mnuFile->actions() + f.menuBar()->actions()) menus << a->text();
    EXPECT_EQ(menus, (QStringList{"Open Dataset...", "Save Result", "Print", "Exit", "File", "Help"}));
    // The Edit/Legend choice waits for the first query.
    QStringList shown;
    auto look = [&] { shown << QString(Visible(f.fraEdit) ? "edit" : "") + (Visible(f.fraLegend) ? "legend" : ""); };
    f.optEditLegend[1]->setChecked(true), look();  // no effect while the start-up picture shows
    f.bFirstQuery = false;
    f.optEditLegend[0]->setChecked(true);
    f.optEditLegend[1]->setChecked(true);
    look();
    f.optEditLegend_Click(0);
    look();
    f.EditOrLegend(2), look();  // any other index shows neither panel
    EXPECT_EQ(shown, (QStringList{"edit", "legend", "edit", ""}));

    // The help file the menu names opens where it lies; without it, the user guide beside the program opens in the
    // browser, or a box says where it is.
    const QString named = QDir::current().absoluteFilePath("Dovrik_ONLINE_DOC.chm");
    const QString guide = QDir(QCoreApplication::applicationDirPath()).filePath("marlowan-guide.html");
    ASSERT_TRUE(QFileInfo(guide).isFile()) << "the build puts the guide beside the program";
    struct Case { bool helpFile, browser; QString opened, box; };
    const Case cases[] = {
        {true, true, named, ""},
        {false, true, guide, ""},
        {false, false, "", "No web browser could be started. The user guide is the file " + guide + "; open it in any web browser."},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.opened.toStdString());
        QFile help(named);
        if (c.helpFile) ASSERT_TRUE(help.open(QIODevice::WriteOnly));
        UrlCatcher catcher;
        if (c.browser) QDesktopServices::setUrlHandler("file", &catcher, "open");
        recorder().clear();
        main->mnuHelp_Click();
        QDesktopServices::unsetUrlHandler("file");
        help.remove();
        EXPECT_EQ(catcher.urls, c.opened.isEmpty() ? QList<QUrl>() : QList<QUrl>{QUrl::fromLocalFile(c.opened)});
        EXPECT_EQ(recorder().texts(), c.box.isEmpty() ? QStringList() : QStringList{c.box});
    }
}

// Each option button and check box shows a dark mark in its light box when
// chosen, the tools on the black map holder too.
TEST_F(MainWindow, ChosenOptionsShowTheirMarkAndTheShownWindowKeepsItsControlsInViewAndFitsTheScreen)
{
    f.fraEditLegend->setVisible(true), f.chkProtectedAreas->setVisible(true);
    for (QAbstractButton* b : std::initializer_list<QAbstractButton*>{f.optPanZoom[0], f.optPanZoom[1], f.optPanZoom[2],
                                                                     f.optEditLegend[0], f.optEditLegend[1], f.chkProtectedAreas}) {
        SCOPED_TRACE(b->text().toStdString());
        QStyleOptionButton option;
        option.initFrom(b);
        const bool radio = qobject_cast<QRadioButton*>(b);
        const QRect box = b->style()->subElementRect(radio ? QStyle::SE_RadioButtonIndicator : QStyle::SE_CheckBoxIndicator, &option, b);
        const QRect middle = box.adjusted(box.width() * 3 / 10, box.height() * 3 / 10, -box.width() * 3 / 10, -box.height() * 3 / 10);
        auto lightness = [&](bool on) {  // of the darkest pixel in the middle of the box
            b->setEnabled(true), b->setAutoExclusive(false), b->setChecked(on);
            const QImage image = b->grab().toImage();
            int darkest = 255;
            for (int y = middle.top(); y <= middle.bottom(); ++y)
                for (int x = middle.left(); x <= middle.right(); ++x) darkest = std::min(darkest, image.pixelColor(x, y).lightness());
            return darkest;
        };
        EXPECT_TRUE(lightness(false) > 160 && lightness(true) < 100);
    }

    // Shown, the window holds the query panel and the map's buttons in view at its smallest, and opens no larger than
    // the screen.
    f.show();
    const QRect screen = f.screen()->availableGeometry();
    EXPECT_TRUE(f.width() <= std::max(screen.width(), f.minimumWidth()) && f.height() <= std::max(screen.height(), f.minimumHeight()));
    f.resize(10, 10);
    ASSERT_EQ(f.size(), f.minimumSize());
    for (QWidget* w : std::initializer_list<QWidget*>{f.cmdZoomOut, f.cboScale, f.cmdUpdateMap, f.cmdChangeLayers})
        EXPECT_TRUE(f.rect().contains(QRect(w->mapTo(&f, QPoint(0, 0)), w->size()))) << captionOf(w).toStdString();
}

TEST_F(MainWindow, OnlyTheMapGroupFollowsTheFormSizeByTheMarginsMeasuredAtLoad)
{
    EXPECT_EQ((std::array<int, 4>{f.FormHeight(), f.FormWidth(), f.iFrameWidthMargin, f.iMapHeightMargin}),
              (std::array{8835, 12630, 12630 - 8790, 8835 - 6705}));
    const TwipsRect left = Twips(f.fraStartUpImage), scale = Twips(f.cboScale);
    // The height set during the load did not move the map group; before the load has finished a resize changes
    // nothing; after it the group follows the form until a difference reaches zero, and then keeps its last size.
    struct Step { bool loaded; int width, height; QRect frame, map; };
    const Step steps[] = {
        {true, 12630, 8835, {3825, 270, 8790, 7710}, {90, 630, 8565, 6705}},
        {false, 15000, 10000, {3825, 270, 8790, 7710}, {90, 630, 8565, 6705}},
        {true, 12630 + 1500, 8835 + 750, {3825, 270, 8790 + 1500, 7710 + 750}, {90, 630, 8565 + 1500, 6705 + 750}},
        {true, 4500, 3000, {3825, 270, 4500 - 3840, 3000 - 1125}, {90, 630, 4500 - 4065, 3000 - 2130}},
        {true, 12630 - 8790, 3000, {3825, 270, 4500 - 3840, 3000 - 1125}, {90, 630, 4500 - 4065, 3000 - 2130}},
        {true, 6000, 8835 - 6705 - 15, {3825, 270, 4500 - 3840, 3000 - 1125}, {90, 630, 4500 - 4065, 3000 - 2130}},
    };
    for (const Step& step : steps) {
        f.bFormLoaded = step.loaded;
        if (&step != steps) f.setFormSize(step.width, step.height);
        f.bFormLoaded = true;
        EXPECT_EQ(QList({rectOf(Twips(f.fraMapHolder)), rectOf(Twips(f.Map1))}), QList({step.frame, step.map})) << step.width << "x" << step.height;
        EXPECT_EQ(Twips(f.lblMapNote).Top, step.map.bottom() + 1 + 45);
    }
    EXPECT_TRUE(rectOf(Twips(f.fraStartUpImage)) == rectOf(left) && Twips(f.cboScale).Left == scale.Left);  // nothing else moves
    EXPECT_NO_BOXES();
}

// The enabled state after each way into it: start, a load with layers, a load without, and a query run.
TEST_F(MainWindow, EnabledStateFollowsTheStateTableAndDrawEventsAreTheBeatOfTheInterface)
{
    auto navigation = [&] {
        return QList<bool>{f.cmdZoomIn->isEnabled(), f.cmdZoomOut->isEnabled(), f.cboScale->isEnabled(),
                           f.optPanZoom[0]->isEnabled(), f.optPanZoom[1]->isEnabled(), f.optPanZoom[2]->isEnabled(),
                           f.cboSelectQuery->isEnabled()};
    };
    const QList<bool> off(7, false), on(7, true);

    // No dataset.
    EXPECT_EQ(navigation(), off);
    EXPECT_FALSE(Visible(f.cmdOriginalMap) || Visible(f.lblWorking) || Visible(f.fraEditLegend) || Visible(f.cmdShowData));
    EXPECT_TRUE(f.cmdChangeLayers->isEnabled());

    // Dataset, no query yet: a new dataset shows in full, so there is no way back to offer.
    loadDirectory(q(testsupport::dataset()));
    EXPECT_EQ(navigation(), on);
    EXPECT_TRUE(!Visible(f.cmdOriginalMap) && Visible(f.fraStartUpImage));

    // Running a query: the button becomes Cancel and stays live.
    f.ControlEnable(false);
    EXPECT_EQ(f.cmdUpdateMap->text(), "Cancel");
    EXPECT_TRUE(f.cmdUpdateMap->isEnabled() && Visible(f.lblWorking) && f.cmdZoomIn->isEnabled());
    EXPECT_FALSE(f.cboSelectQuery->isEnabled() || f.cmdChangeLayers->isEnabled());
    EXPECT_EQ(f.Map1->MousePointer(), 11);
    // A repaint during the run brings the query list back, not Change Layers.
    f.Map1->Refresh();
    EXPECT_TRUE(f.cboSelectQuery->isEnabled() && !f.cmdChangeLayers->isEnabled());

    f.ControlEnable(true);
    EXPECT_EQ(f.cmdUpdateMap->text(), "Update Map");
    EXPECT_TRUE(!Visible(f.lblWorking) && f.cmdChangeLayers->isEnabled() && f.Map1->MousePointer() == 0);

    // A load without layers goes back to the first row.
    const QString none = q(testsupport::tempDir("state-none"));
    writeFeaturesIn(none, "parcels.shp", 1);
    loadDirectory(none);
    EXPECT_EQ(navigation(), off);
    EXPECT_TRUE(!Visible(f.cmdOriginalMap) && f.cmdChangeLayers->isEnabled());

    // One repaint: results are drawn at the first layer only, the interface is brought up to date before the tracking
    // layer, and the end re-arms the next.
    loadDirectory(q(testsupport::dataset()));
    struct Seen { QString event; bool drawn; QString label; };
    std::vector<Seen> seen;
    auto note = [&](const char* e) { seen.push_back({e, bQueryDrawn, f.lblLayersCurrentlyDisplayed->text()}); };
    QObject guard;
    QObject::connect(f.Map1, &Map::BeforeLayerDraw, &guard, [&](int, QPainter*) { note("before"); });
    QObject::connect(f.Map1, &Map::BeforeTrackingLayerDraw, &guard, [&](QPainter*) { note("beforeTracking"); });
    QObject::connect(f.Map1, &Map::AfterTrackingLayerDraw, &guard, [&](QPainter*) { note("afterTracking"); });

    f.lblLayersCurrentlyDisplayed->setText("stale");
    f.Map1->Refresh();
    ASSERT_GE(seen.size(), 4u);
    EXPECT_EQ(seen.front().event, "before");
    for (size_t i = 0; i + 2 < seen.size(); ++i) {
        EXPECT_TRUE(seen[i].drawn) << i;           // set at the first layer, kept through the layers
        EXPECT_EQ(seen[i].label, "stale") << i;    // the interface waits for the tracking layer
    }
    EXPECT_TRUE(seen[seen.size() - 2].event == "beforeTracking" && seen[seen.size() - 2].label != "stale");
    EXPECT_TRUE(seen.back().event == "afterTracking" && !seen.back().drawn && !bQueryDrawn);
    EXPECT_NO_BOXES();

    // The marked-shape hook: a shape that cannot be drawn gives its message.
    oMarkedShape = std::make_shared<Rectangle>(0, 0, 1, 1);
    oMarkedSymbol.reset();
    f.Map1_AfterTrackingLayerDraw(nullptr);
    EXPECT_EQ(recorder().texts(), QStringList{" Error while trying to draw tracking layer. Error Source:frmMain.Map1_AfterTrackingLayerDraw()"});
    oMarkedShape.reset();
}


TEST_F(MainWindow, ExitUnloadsEveryFormTheNextUseStartsAfreshAndTheSplashShowsTheMainFormWhenDismissed)
{
    frmShowLayersDialog();
    loadDirectory(q(testsupport::dataset()));
    ShowFrmInfo();
    ASSERT_TRUE(frmShowLayersDialogExists() && frmInfoExists());

    main->mnuExit_Click();
    EXPECT_FALSE(frmMainExists() || frmShowLayersDialogExists() || frmInfoExists());
    // A new form is made and loaded at the next use, with an empty map.
    EXPECT_TRUE(frmMain().bFormLoaded && frmMain().Map1->Layers().Count() == 0);

    // At start the splash loads the main form and shows it when dismissed.
    unloadFrmMain();
    ResetProgramState();
    FrmSplash& s = frmSplash();
    EXPECT_EQ(s.lblVersion->text(), "Version 1.2.0   (Click anywhere to continue)");
    EXPECT_EQ(s.imgSplash->pixmap().deviceIndependentSize().toSize(), s.imgSplash->size());  // the picture fills its control
    ASSERT_TRUE(frmMainExists() && frmShowLayersDialogExists());
    EXPECT_TRUE(frmMain().bFormLoaded && !frmMain().isVisible() && !frmShowLayersDialog().isVisible());

    // A click on the version label does nothing; one on the picture ends the
    // splash and shows the main form; so does a key.
    QMouseEvent press(QEvent::MouseButtonPress, QPointF(5, 5), QPointF(5, 5), Qt::LeftButton, Qt::LeftButton, Qt::NoModifier);
    QKeyEvent key(QEvent::KeyPress, Qt::Key_Space, Qt::NoModifier, " ");
    QCoreApplication::sendEvent(s.lblVersion, &press);
    EXPECT_TRUE(frmSplashExists() && !frmMain().isVisible());
    QCoreApplication::sendEvent(s.imgSplash, &press);
    EXPECT_TRUE(!frmSplashExists() && frmMain().isVisible());
    QCoreApplication::sendEvent((unloadFrmMain(), &frmSplash()), &key);
    EXPECT_TRUE(!frmSplashExists() && frmMain().isVisible());
    EXPECT_NO_BOXES();
}

}  // namespace

#include "test_frmmain.moc"
