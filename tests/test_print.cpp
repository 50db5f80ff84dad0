// The print window: theme maps, legend bitmaps, scale bar, the page's
// geometry and failure by resolution, PDF naming, and what a printed PDF shows.
#include <QClipboard>
#include <QCoreApplication>
#include <QFileInfo>
#include <QGuiApplication>
#include <QPointer>
#include <QProcess>

#include "engine/query_run.h"
#include "mainwindow_fixture.h"
#include "mapping/legend.h"
#include "mapping/map.h"
#include "mapping/scalebar.h"
#include "presentation/renderers.h"
#include "print/frmPrint.h"
#include "query_fixture.h"

using namespace fixture;
using testsupport::recorder;

namespace {

const QString kSolarTitle = "ANNUAL AVERAGE SOLAR RESOURCES (KWH/M2/DAY)";
const QString kPrintFailed = " Error in cmdPrint_Click function. Error Source:frmPrint. cmdPrint_Click()";

// A generated dataset holding only the given standard files.
QString datasetOnly(const std::set<std::string>& keep)
{
    std::set<std::string> omit;
    for (const std::string& f : datagen::standardFiles())
        if (!keep.count(f)) omit.insert(f);
    return q(testsupport::dataset("small", 1, omit));
}

QStringList filesOf(const Map* map)
{
    QStringList out;
    for (const MapLayerPtr& l : map->Layers()) out << QFileInfo(l->GeoDataset()->path()).completeBaseName() + ".shp";
    return out;
}

QString programFile(const char* name) { return QDir(QCoreApplication::applicationDirPath()).filePath(name); }

int countColour(const QImage& im, const QRect& area, QColor c, int tolerance)
{
    int n = 0;
    const QRect r = area.intersected(im.rect());
    for (int y = r.top(); y <= r.bottom(); ++y)
        for (int x = r.left(); x <= r.right(); ++x) {
            const QColor p = im.pixelColor(x, y);
            n += std::max({std::abs(p.red() - c.red()), std::abs(p.green() - c.green()), std::abs(p.blue() - c.blue())}) <= tolerance;
        }
    return n;
}

class Print : public ::testing::Test {
protected:
    void SetUp() override { UnloadFrmPrint(), main = &freshMain(); }
    void TearDown() override { UnloadFrmPrint(), unloadFrmMain(); }

    // Loads the directory (into a fresh main window if asked), lets `before`
    // change the main map, and opens the print window.
    FrmPrint& openOn(const QString& dir, bool fresh = false, const std::function<void(Map*)>& before = {})
    {
        if (fresh) UnloadFrmPrint(), main = &freshMain();
        loadDirectory(dir);
        if (before) before(main->Map1);
        recorder().clear();
        frmMain().mnuPrint_Click();
        EXPECT_TRUE(frmPrintExists());
        return frmPrint();
    }

    // A lone cities layer with the given projection text ("" for no .prj file).
    FrmPrint& openOnCities(const std::string& name, const std::string& prj)
    {
        const std::string dir = testsupport::tempDir("unit-" + name);
        writeFeatures(dir + "/59_cities.shp", 3, datagen::GeomKind::Point, false);
        if (QFile file(q(dir + "/59_cities.prj")); !prj.empty() && file.open(QIODevice::WriteOnly)) file.write(QByteArray::fromStdString(prj));
        return openOn(q(dir), true);
    }

    bool printTo(FrmPrint& f, const QString& path, int dpi)
    {
        f.printTarget = [path, dpi] { return MakePdfTarget(path, dpi); };
        return f.cmdPrint_Click(), f.lastPrintSucceeded;
    }

    FrmMain* main = nullptr;
};

TEST_F(Print, WindowDesignScaleBarLookPageGeometryPdfWithoutAPrinterAndCancel)
{
    main->mnuPrint_Click();
    EXPECT_FALSE(frmPrintExists()) << "the menu needs layers";
    FrmPrint& f = openOn(datasetOnly({"43_roads.shp", "39_countryboundary.shp"}));
    EXPECT_TRUE(f.isVisible() && f.parentWidget() == nullptr && f.windowTitle() == "Print Map");
    EXPECT_EQ(f.lblHeading->text(), "Enter Heading: (Limited to 50   characters.)");
    EXPECT_EQ(f.Label1->text(), "Note: The legend list shown below may not show all the layer information. But the printed map will have legend for all layers.     ");
    EXPECT_EQ(f.cmdPrint->text() + "|" + f.Command2->text(), "Print|Cancel");
    for (QWidget* w : std::initializer_list<QWidget*>{f.pictHeadFromClipboard, f.pictScalebarFromClipboard, f.Map3, f.Map4, f.Map5, f.Map6})
        EXPECT_FALSE(Visible(w));
    // What the user sees over the picture boxes: the scale bar over its image
    // area, the legend pictures over the legend controls.
    auto seenAt = [&](QWidget* w) { return f.childAt(w->geometry().center()); };
    EXPECT_EQ(QList<QWidget*>({seenAt(f.pictEmbedScalebar), seenAt(f.legend1), seenAt(f.Picture1), seenAt(f.Picture3)}),
              QList<QWidget*>({f.sbMapView, f.Picture4, f.Picture1, f.Picture3}));
    // The heading starts empty and takes at most fifty characters, centred in bold.
    EXPECT_TRUE(f.txtHeading->text().isEmpty() && f.txtHeading->maxLength() == 50 && (f.txtHeading->alignment() & Qt::AlignHCenter) &&
                f.txtHeading->font().bold());

    // The scale bar takes the preview's extents and a fixed look.
    const ScaleBar& sb = *f.sbMapView;
    const RectanglePtr e = f.Map2->Extent();
    auto ltrb = [](const ScaleBar::Extent& x) { return std::array{x.Left, x.Top, x.Right, x.Bottom}; };
    EXPECT_EQ(ltrb(sb.MapExtent()), (std::array{e->Left, e->Top, e->Right, e->Bottom}));
    const double t = TwipsPerPixel;  // Map2's place in pixels of the screen
    EXPECT_EQ(ltrb(sb.ScreenExtent()), (std::array<double, 4>{1440 / t, 720 / t, (1440 + 4935) / t, (720 + 2895) / t}));
    EXPECT_EQ((std::vector<double>{double(sb.ShowOutline()), double(sb.BackColor()), double(sb.BarColor1()), double(sb.BarColor2()),
                                   double(sb.Divisions()), sb.BarFont().pointSizeF(), double(sb.MapUnits()),
                                   double(sb.BarWidthRatio()), double(sb.LabelMode()), double(sb.layout().valid)}),
              (std::vector<double>{1, 0xFFFFFF, 0x808080, 0xFFC0C0, 3, 8, ScaleBar::Meters, 0.6f, 3, 1}));

    // The page is laid out in 1/600 inch (an empty heading prints as well); x is divided by a factor that keeps its
    // fraction, y by a whole one (halves to even). At 1200 dpi and finer the y factor rounds to 0: the print fails
    // after the page was opened (and the pictures taken), no page is sent, and the window stays usable.
    const QStringList order = {"Print", "OutputMap", "Line", "Heading", "Scalebar", "Picture1", "Picture4", "Picture3", "EndDoc"};
    const double p = std::nearbyint(4335 / TwipsPerPixel);  // the legend picture's height on the screen (289 at 15)
    struct Case { int dpi; double scaleX; int scaleY; std::vector<std::array<double, 4>> map, line, heading, picture4; };
    const Case cases[] = {
        {600, 1.0, 1, {{300, 350, 4000, 3700}}, {{290, 600, 4000, 3150}}, {{550, 250, 3000, 150}}, {{1500, 4000, 1000, 1400 + p}}},
        // 2 twips to the dot: x stretched by 1.2, y as at 600 dpi.
        {720, 2.0 / 2.4, 1, {{360, 350, 4800, 3700}}, {{348, 600, 4800, 3150}}, {{660, 250, 3600, 150}}, {{1800, 4000, 1200, 1400 + p}}},
        // 3.6 twips to the dot: x factor 1.5, y factor 1.5 made 2.
        {400, 1.5, 2, {{200, 175, 2667, 1850}}, {{290 / 1.5, 300, 4000 / 1.5, 1575}}, {{550 / 1.5, 125, 2000, 75}},
         {{1000, 2000, 1000 / 1.5, (1400 + p) / 2}}},
        {1200, 0.5, 0, {}, {}, {}, {}},
        {1440, 600.0 / 1440, 0, {}, {}, {}, {}},
        {600, 1.0, 1, {{300, 350, 4000, 3700}}, {}, {}, {}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.dpi);
        const bool fails = c.scaleY == 0;
        const QString pdf = QDir(q(testsupport::tempDir("geometry"))).filePath(QString("page%1.pdf").arg(c.dpi));
        recorder().clear();
        ASSERT_EQ(printTo(f, pdf, c.dpi), !fails) << recorder().texts().join("\n").toStdString();
        EXPECT_EQ(recorder().texts(), fails ? QStringList({kPrintFailed}) : QStringList());
        if (!fails) EXPECT_DOUBLE_EQ(f.scaleX, c.scaleX);
        EXPECT_TRUE(f.scaleY == c.scaleY && !f.pictHeadFromClipboard->Picture().isNull());
        QStringList names;
        for (const auto& item : f.lastPage) names << item.name;
        EXPECT_EQ(names, fails ? order.mid(0, 1) : order);
        QFile file(pdf);
        EXPECT_EQ(file.open(QIODevice::ReadOnly) && file.read(5).startsWith("%PDF"), !fails);
        for (const auto& [name, want] : {std::pair{"OutputMap", c.map}, {"Line", c.line}, {"Heading", c.heading}, {"Picture4", c.picture4}}) {
            if (want.empty()) continue;
            const QRectF r = f.lastPage[order.indexOf(name)].rect;
            const auto& w = want[0];
            EXPECT_LT(std::abs(r.left() - w[0]) + std::abs(r.top() - w[1]) + std::abs(r.width() - w[2]) + std::abs(r.height() - w[3]), 1e-3)
                << name << ": " << r.left() << " " << r.top() << " " << r.width() << " " << r.height();
        }
    }

    // Without a printer the page goes to a PDF in the documents folder.
    const std::pair<QString, QString> names[] = {
        {"", "map.pdf"},           {"   ", "map.pdf"},          {"Wind sites", "Wind sites.pdf"},
        {"a/b:c?", "a_b_c_.pdf"},  {" Site 4...", "Site 4.pdf"}, {"<\"x|y\">*", "__x_y___.pdf"},
    };
    for (const auto& [heading, file] : names) EXPECT_EQ(PdfFileNameForHeading(heading), file) << heading.toStdString();

    const QString home = q(testsupport::tempDir("home"));
    const QByteArray oldHome = qgetenv("HOME"), oldConfig = qgetenv("XDG_CONFIG_HOME");
    qputenv("HOME", home.toUtf8()), qputenv("XDG_CONFIG_HOME", (home + "/config").toUtf8());
    f.txtHeading->setText("Sites: north");
    f.printTarget = [&f] { return MakeDefaultPrintTarget(f.txtHeading->text(), false); };
    // The same heading again takes the next free name: no page replaces another.
    QStringList expected;
    for (const char* file : {"Sites_ north.pdf", "Sites_ north (2).pdf", "Sites_ north (3).pdf"}) {
        EXPECT_TRUE((f.cmdPrint_Click(), f.lastPrintSucceeded));
        expected << "No printer is installed. The map was printed to the file " + QDir(home).filePath("Documents/") + file;
        EXPECT_TRUE(QFileInfo(expected.back().section("file ", 1)).isFile());
    }
    qputenv("HOME", oldHome);
    if (oldConfig.isNull()) qunsetenv("XDG_CONFIG_HOME"); else qputenv("XDG_CONFIG_HOME", oldConfig);
    EXPECT_EQ(recorder().texts(), expected);
    recorder().clear();

    QPointer<FrmPrint> form(&f);
    f.Command2->click();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(!frmPrintExists() && form.isNull());
    EXPECT_NO_BOXES();

    // Twips to pixels of the screen: halves to even, and a failure outside sixteen bits.
    const ScreenMetrics screen;
    struct Conv { double twips; int axis; int16_t pixels; };
    for (const Conv& c : {Conv{4335, 1, 289}, {4335, 0, 289}, {22.5, 0, 2}, {37.5, 1, 2}, {52.5, 0, 4}, {4335, 2, -1}, {4335, -1, -1}})
        EXPECT_EQ(ConvTwips2Pix(screen, c.twips, c.axis), c.pixels) << c.twips << "/" << c.axis;
    EXPECT_EQ(ConvTwips2Pix(screen, 1e6, 0) + ConvTwips2Pix(ScreenMetrics{15, 0}, 100, 1), 0);
    EXPECT_EQ(recorder().texts(), QStringList(2, " Error in ConvTwips2Pix function. Error Source:frmPrint.ConvTwips2Pix()"));
}

// The theme maps take the main map's layers by theme and follow its top layer's visibility; without wind, the first solar
// layer met from below goes to the legend, under one title. A standard layer with no theme, such as 21_wind.shp, is in the
// preview only.
TEST_F(Print, LegendBitmapsBesideTheProgramThenThemeMapsSplitTheMainMapsLayersAndFollowItsTopLayer)
{
    // The legend bitmaps are written beside the program and shown in the picture boxes.
    for (const char* f : {"LegendBmp1.bmp", "LegendBmp3.bmp", "LegendBmp4.bmp"}) QFile::remove(programFile(f));
    FrmPrint& f = openOn(q(testsupport::dataset()));
    EXPECT_NO_BOXES();
    for (const auto& [file, box] : {std::pair{"LegendBmp1.bmp", f.Picture1}, {"LegendBmp3.bmp", f.Picture3}, {"LegendBmp4.bmp", f.Picture4}}) {
        SCOPED_TRACE(file);
        QImage onDisk(programFile(file));
        ASSERT_FALSE(onDisk.isNull());
        EXPECT_EQ(box->Picture().convertToFormat(QImage::Format_RGB32), onDisk.convertToFormat(QImage::Format_RGB32));
        EXPECT_GT(countColour(onDisk, onDisk.rect(), Qt::black, 127), 50) << "a legend with entries is not blank";
    }

    // The next opening overwrites them.
    UnloadFrmPrint();
    if (QFile spoilt(programFile("LegendBmp3.bmp")); !spoilt.open(QIODevice::WriteOnly | QIODevice::Truncate) || spoilt.write("no bitmap") < 0) FAIL();
    frmMain().mnuPrint_Click();
    EXPECT_FALSE(QImage(programFile("LegendBmp3.bmp")).isNull() || frmPrint().Picture3->Picture().isNull());

    // One that cannot be written ends the load with its message; the window
    // opens all the same, without the pictures that are loaded after all three files.
    UnloadFrmPrint();
    recorder().clear();
    QFile::remove(programFile("LegendBmp3.bmp"));
    ASSERT_TRUE(QDir().mkpath(programFile("LegendBmp3.bmp")));  // a directory where the file should go
    frmMain().mnuPrint_Click();
    QDir(programFile("LegendBmp3.bmp")).removeRecursively();
    EXPECT_EQ(recorder().texts(), QStringList({" Error in Form_Load function. Error Source:frmPrint.Form_Load()"}));
    EXPECT_TRUE(frmPrint().Picture1->Picture().isNull() && frmPrint().isVisible());

    QStringList all3;  // every standard file from 30 up, the top first
    for (const std::string& file : datagen::standardFiles()) if (file >= "30") all3.prepend(q(file));
    struct Case { const char* what; QString dir; bool topVisible; QStringList map3, map5, map6; bool flag; };
    const QString full = q(testsupport::dataset());
    const QStringList fullMap5 = {"02_landuse.shp", "01_elevation.shp"}, fullMap6 = {"20_wind.shp", "11_solar_direct.shp"};
    const Case cases[] = {
        {"top layer shown", full, true, all3, fullMap5, fullMap6, true},
        {"top layer hidden", full, false, all3, fullMap5, fullMap6, true},
        {"two solar layers, no wind", datasetOnly({"43_roads.shp", "14_solar_glo.shp", "16_solar_tilt.shp"}), true,
         {"43_roads.shp"}, {}, {"14_solar_glo.shp"}, true},
        {"neither solar nor wind", datasetOnly({"43_roads.shp", "21_wind.shp", "01_elevation.shp"}), true,
         {"43_roads.shp"}, {"01_elevation.shp"}, {}, false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        FrmPrint& f = openOn(c.dir, true, [&](Map* m) {
            m->Layers().Item(0)->Visible = c.topVisible;
            m->Layers().Item(m->Layers().Count() - 1)->Visible = !c.topVisible;
        });
        EXPECT_NO_BOXES();
        Map* map1 = main->Map1;
        // The preview has the main map's layers in its order, built anew, each with its own visibility.
        ASSERT_EQ(tags(f.Map2), tags(map1));
        for (int i = 0; i < map1->Layers().Count(); ++i) {
            const MapLayerPtr a = f.Map2->Layers().Item(i), b = map1->Layers().Item(i);
            EXPECT_TRUE(a != b && a->Visible == b->Visible && a->Name == b->Name) << i;
        }
        EXPECT_EQ(QList({filesOf(f.Map3), filesOf(f.Map5), filesOf(f.Map6)}), QList({c.map3, c.map5, c.map6}));
        for (const MapLayerPtr& l : f.Map6->Layers())
            EXPECT_EQ(l->Name, filesOf(f.Map6).size() == 2 && l == f.Map6->Layers().Item(0) ? "Wind Power Density (W/m2)" : kSolarTitle);
        EXPECT_TRUE(f.Map4->Layers().Count() == 0 && f.bSolarOrWindInLegend == c.flag);
        for (Map* m : {f.Map3, f.Map5, f.Map6})
            for (const MapLayerPtr& l : m->Layers()) EXPECT_TRUE(l->Visible == c.topVisible && l->Tag.isEmpty());
    }
    const QImage empty(programFile("LegendBmp4.bmp"));  // of the last case, without solar or wind
    ASSERT_FALSE(empty.isNull());
    EXPECT_EQ(countColour(empty, empty.rect(), Qt::white, 0), empty.width() * empty.height());
}

// The unit code comes from the upper-cased unit name of the top layer; the scale bar's failures leave out what follows.
TEST_F(Print, ScaleBarUnitFromTheTopLayerAndWhatItsFailuresLeaveOut)
{
    const std::string geo = "GEOGCS[\"GCS_WGS_1984\",DATUM[\"D_WGS_1984\",SPHEROID[\"WGS_1984\",6378137.0,298.257223563]],PRIMEM[\"Greenwich\",0.0],";
    auto projected = [&](const std::string& unit) {
        return "PROJCS[\"Local_TM\"," + geo + "UNIT[\"Degree\",0.0174532925199433]],PROJECTION[\"Transverse_Mercator\"],"
               "PARAMETER[\"Central_Meridian\",12.0],PARAMETER[\"Scale_Factor\",0.9996],UNIT[\"" + unit + "\",0.3048]]";
    };
    struct Case { const char* what; std::string prj; int code; };
    for (const Case& c : {Case{"Degree", geo + "UNIT[\"Degree\",0.0174532925199433]]", ScaleBar::Degrees},
                          {"feet", projected("feet"), ScaleBar::Feet}, {"Foot_US", projected("Foot_US"), ScaleBar::Meters}})
        EXPECT_TRUE(openOnCities(c.what, c.prj).sbMapView->MapUnits() == c.code && recorder().boxes.empty()) << c.what;

    // The top layer without a projection file: the unit cannot be read, and
    // the last settings are left out; the legends are made all the same.
    FrmPrint& g = openOnCities("noprj", "");
    EXPECT_EQ(recorder().texts(), QStringList({" Error in setUpScalebar function. Error Source:frmPrint.setupScalebar()"}));
    const ScaleBar defaults;
    EXPECT_EQ(g.sbMapView->Divisions(), 3) << "set before the unit is looked at";
    EXPECT_EQ(std::pair(g.sbMapView->BarWidthRatio(), g.sbMapView->LabelMode()), std::pair(defaults.BarWidthRatio(), defaults.LabelMode()));
    EXPECT_FALSE(g.Picture1->Picture().isNull());

    // No font: a plain box, and nothing after the extents is set.
    g.createFont = [] { return std::optional<QFont>(); };
    g.sbMapView->setDivisions(7);
    g.sbMapView->setMapExtent(0, 0, 0, 0);
    recorder().clear();
    g.setupScalebar();
    EXPECT_EQ(recorder().texts(), QStringList({"stdole.StdFont  is not installed. Scale bar will not be printed"}));
    EXPECT_TRUE(g.sbMapView->Divisions() == 7 && g.sbMapView->MapExtent().Right != 0) << "the extents come before the font";
}

// The whole page as a person sees it: the result in its class colours on the preview and on the page's map (also when the
// main map's guard was left set), the heading, the scale bar and three legend columns.
TEST_F(Print, PrintedPdfShowsTheResultHeadingScaleBarAndLegends)
{
    FrmPrint& f = openOn(q(testsupport::dataset()), false, [](Map* map1) {
        // Filled layers lie over the results: keep only outlines and lines.
        for (const MapLayerPtr& l : map1->Layers()) l->Visible = l->Tag == "39_countryboundary.shp" || l->Tag == "43_roads.shp";
    });
    // The result: the middle of the full extent, its left half in a low wind class, its right half in a high one.
    const SymbolPtr symbols[] = {std::make_shared<Symbol>(), std::make_shared<Symbol>()};
    SetClassSymbolColor("WINDPWRD", 250, symbols[0]), SetClassSymbolColor("WINDPWRD", 900, symbols[1]);
    const int lowClass = symbols[0]->Color, highClass = symbols[1]->Color;
    ASSERT_NE(lowClass, highClass);
    cShapes = std::make_shared<Collection<ShapePtr>>();
    cSymbols = std::make_shared<Collection<SymbolPtr>>();
    const RectanglePtr e = frmMain().Map1->FullExtent();
    for (int i : {0, 1}) {
        const double l = e->Left + e->Width() * (1 + i) / 4, b = e->Bottom + e->Height() / 4;
        symbols[i]->Outline = false;
        cSymbols->Add(symbols[i], QString::number(i));
        cShapes->Add(shapeFromGeom(geomFromWkt(qf::rect(l, b, e->Width() / 4, e->Height() / 2).c_str())), QString::number(i));
    }
    auto colour = [](int c) { return QColor(RedOf(c), GreenOf(c), BlueOf(c)); };
    // The preview shows it at each of its repaints and leaves the main map's guard alone.
    for (bool drawn : {false, true}) {
        bQueryDrawn = drawn;
        f.Map2->Refresh();
        const QImage preview = f.Map2->grab().toImage();
        EXPECT_TRUE(countColour(preview, preview.rect(), colour(highClass), 0) > 20 && bQueryDrawn == drawn);
    }
    f.txtHeading->setText("Best wind sites");
    QGuiApplication::clipboard()->setText("held before");
    const QDir dir(q(testsupport::tempDir("picture")));
    ASSERT_TRUE(printTo(f, dir.filePath("page.pdf"), 600)) << recorder().texts().join("\n").toStdString();
    EXPECT_NO_BOXES();
    // Heading and scale bar go to the page as pictures of the screen through the clipboard, which keeps the heading.
    const QImage head = f.pictHeadFromClipboard->Picture();
    EXPECT_EQ(QGuiApplication::clipboard()->image().convertToFormat(QImage::Format_RGB32), head.convertToFormat(QImage::Format_RGB32));
    EXPECT_EQ(QList({head.size(), f.pictScalebarFromClipboard->Picture().size()}),
              QList({f.pictHeadingEmbed->contentsRect().size(), f.pictEmbedScalebar->contentsRect().size()}));
    ASSERT_EQ(QProcess::execute("pdftoppm", {"-r", "50", "-png", "-singlefile", dir.filePath("page.pdf"), dir.filePath("page")}), 0);
    const QImage page(dir.filePath("page.png"));
    ASSERT_FALSE(page.isNull());

    // 1/600 inch to pixels at 50 dpi: divide by 12.
    auto at50 = [](double l, double t, double w, double h) { return QRect(int(l / 12) + 1, int(t / 12) + 1, int(w / 12) - 2, int(h / 12) - 2); };
    for (int c : {lowClass, highClass}) EXPECT_GT(countColour(page, at50(300, 350, 4000, 3700), colour(c), 6), 200);
    EXPECT_EQ(countColour(page, at50(0, 4200, 300, 1000), colour(lowClass), 6), 0) << "nothing left of the map";
    auto inked = [&](QRect r) { return (r = r.intersected(page.rect())).width() * r.height() - countColour(page, r, Qt::white, 16); };
    EXPECT_GT(inked(at50(550, 250, 3000, 150)), 10) << "heading";
    // The legends cover the scale bar image's lowest third; the bar shows above them.
    for (QColor bar : {QColor(128, 128, 128), QColor(192, 192, 255)})
        EXPECT_GT(countColour(page, at50(300, 3800, 4000, 200), bar, 24), 10) << "scale bar";
    for (double left : {500.0, 1500.0, 2500.0}) EXPECT_GT(inked(at50(left, 4000, 1000, 1400)), 100) << left;
    EXPECT_EQ(inked(at50(4400, 6000, 600, 600)), 0) << "the page is blank below and beside the legends";
}

}  // namespace
