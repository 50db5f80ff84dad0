#include "print/frmPrint.h"

#include <QClipboard>
#include <QCloseEvent>
#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QFontDatabase>
#include <QGuiApplication>
#include <QLocale>
#include <QPageLayout>
#include <QPageSize>
#include <QPainter>
#include <QPdfWriter>
#include <QPrinter>
#include <QPrinterInfo>
#include <QStandardPaths>
#include <cmath>

#include "app/frmMain.h"
#include "app/messages.h"
#include "engine/query_run.h"
#include "mapping/legend.h"
#include "mapping/map.h"
#include "mapping/platform.h"
#include "mapping/scalebar.h"
#include "mapping/seam.h"
#include "presentation/layer_properties.h"
#include "workspace/state.h"

namespace {

const QString kSolarTitle = "ANNUAL AVERAGE SOLAR RESOURCES (KWH/M2/DAY)";

FrmPrint* g_frmPrint = nullptr;

bool isOneOf(const QString& tag, std::initializer_list<const char*> names)
{
    for (const char* n : names)
        if (tag == QLatin1String(n)) return true;
    return false;
}

// --- where a page goes ---

class PdfTarget : public PrintTarget {
public:
    PdfTarget(QString path, int dpi, bool announce) : path_(std::move(path)), dpi_(dpi), announce_(announce) {}

    QPaintDevice* device() override
    {
        if (!writer_) {
            writer_ = std::make_unique<QPdfWriter>(path_);
            writer_->setResolution(dpi_);
            const bool imperial = QLocale::system().measurementSystem() != QLocale::MetricSystem;
            writer_->setPageLayout(QPageLayout(QPageSize(imperial ? QPageSize::Letter : QPageSize::A4),
                                               QPageLayout::Portrait, QMarginsF(0, 0, 0, 0)));
            writer_->setCreator(QCoreApplication::applicationName());
        }
        return writer_.get();
    }
    int resolution() const override { return dpi_; }

    void finished() override
    {
        if (announce_)
            seam::MsgBox("No printer is installed. The map was printed to the file " + QDir::toNativeSeparators(path_),
                         seam::Buttons::OK, seam::Icon::Information);
    }
    void abandon(QPainter& painter) override
    {
        if (painter.isActive()) painter.end();
        writer_.reset();
        QFile::remove(path_);
    }

private:
    QString path_;
    int dpi_;
    bool announce_;
    std::unique_ptr<QPdfWriter> writer_;
};

class PrinterTarget : public PrintTarget {
public:
    PrinterTarget() : printer_(QPrinter::HighResolution) {}
    QPaintDevice* device() override { return &printer_; }
    int resolution() const override { return printer_.resolution(); }
    void abandon(QPainter& painter) override
    {
        if (painter.isActive()) {
            printer_.abort();
            painter.end();
        }
    }

private:
    QPrinter printer_;
};

std::optional<QFont> defaultFont()
{
    if (QFontDatabase::families().isEmpty()) return std::nullopt;
    return QFont();
}

}  // namespace

// ---------------------------------------------------------------------------

PictureBox::PictureBox(QWidget* parent) : QFrame(parent)
{
    setFrameStyle(QFrame::Panel | QFrame::Sunken);
    setLineWidth(2);
    setAutoFillBackground(true);
}

void PictureBox::setPicture(const QImage& image)
{
    picture_ = image;
    update();
}

void PictureBox::Cls()
{
    picture_ = QImage();
    update();
}

void PictureBox::placeChild(QWidget* child, int left, int top, int width, int height)
{
    SetTwips(child, left, top, width, height);
    child->move(child->pos() + contentsRect().topLeft());
}

void PictureBox::paintEvent(QPaintEvent* e)
{
    QFrame::paintEvent(e);
    if (picture_.isNull()) return;
    QPainter p(this);
    p.setClipRect(contentsRect());
    p.drawImage(contentsRect().topLeft(), picture_);
}

ScreenMetrics Screen() { return {double(TwipsPerPixel), double(TwipsPerPixel)}; }

QString PdfFileNameForHeading(const QString& heading)
{
    QString name;
    for (QChar c : heading) name += (c.unicode() < 32 || QStringLiteral("\\/:*?\"<>|").contains(c)) ? QChar('_') : c;
    name = name.trimmed();
    while (name.endsWith('.')) name.chop(1);
    if (name.trimmed().isEmpty()) name = "map";
    return name + ".pdf";
}

QString FreePdfPath(const QString& dir, const QString& fileName)
{
    // An earlier page is never replaced: "map.pdf", then "map (2).pdf", ...
    const QString base = fileName.chopped(4);
    QString path = QDir(dir).filePath(fileName);
    for (int n = 2; QFileInfo::exists(path); ++n) path = QDir(dir).filePath(QString("%1 (%2).pdf").arg(base).arg(n));
    return path;
}

std::unique_ptr<PrintTarget> MakePdfTarget(const QString& path, int dpi)
{
    return std::make_unique<PdfTarget>(path, dpi, false);
}

std::unique_ptr<PrintTarget> MakeDefaultPrintTarget(const QString& heading, bool printerInstalled)
{
    if (printerInstalled) return std::make_unique<PrinterTarget>();
    QString dir = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    if (dir.isEmpty()) dir = QDir::homePath();
    QDir().mkpath(dir);
    return std::make_unique<PdfTarget>(FreePdfPath(dir, PdfFileNameForHeading(heading)), 600, true);
}

// ---------------------------------------------------------------------------

FrmPrint::FrmPrint() : QWidget(nullptr)
{
    setWindowTitle("Print Map");
    setFixedSize(TwipsToPx(9060), TwipsToPx(8655));
    createFont = defaultFont;

    lblHeading = new QLabel("Enter Heading: (Limited to 50   characters.)", this);
    SetTwips(lblHeading, 120, 120, 1095, 735);
    lblHeading->setWordWrap(true);
    lblHeading->setAlignment(Qt::AlignLeft | Qt::AlignTop);

    pictHeadingEmbed = new PictureBox(this);
    SetTwips(pictHeadingEmbed, 1320, 120, 6375, 375);
    txtHeading = new TextBox(pictHeadingEmbed);
    pictHeadingEmbed->placeChild(txtHeading, -240, 0, 6600, 315);
    txtHeading->setMaxLength(50);
    txtHeading->setAlignment(Qt::AlignCenter);
    QFont headingFont("MS Sans Serif");
    headingFont.setPointSizeF(8.25);
    headingFont.setBold(true);
    txtHeading->setFont(headingFont);

    Map2 = new Map(this);
    SetTwips(Map2, 1440, 720, 4935, 2895);

    Label1 = new QLabel(
        "Note: The legend list shown below may not show all the layer information. But the printed map will have "
        "legend for all layers.     ",
        this);
    SetTwips(Label1, 6600, 720, 2295, 975);
    Label1->setWordWrap(true);
    Label1->setAlignment(Qt::AlignLeft | Qt::AlignTop);

    cmdPrint = new QPushButton("Print", this);
    SetTwips(cmdPrint, 6480, 1800, 1095, 495);
    Command2 = new QPushButton("Cancel", this);
    SetTwips(Command2, 7710, 1800, 1095, 495);

    pictHeadFromClipboard = new PictureBox(this);
    SetTwips(pictHeadFromClipboard, 120, 2160, 615, 375);
    pictHeadFromClipboard->setVisible(false);
    pictScalebarFromClipboard = new PictureBox(this);
    SetTwips(pictScalebarFromClipboard, 120, 2520, 735, 255);
    pictScalebarFromClipboard->setVisible(false);

    for (Map** m : {&Map3, &Map4, &Map5, &Map6}) {
        *m = new Map(this);
        SetTwips(*m, 7320, 2520, 1455, 1335);
        (*m)->setVisible(false);
    }

    // The picture box only marks the area; the bar drawn over it is what the
    // user sees there, and so what the page gets.
    pictEmbedScalebar = new PictureBox(this);
    SetTwips(pictEmbedScalebar, 1440, 3720, 4935, 375);
    sbMapView = new ScaleBar(this);
    SetTwips(sbMapView, 1440, 3360, 4935, 735);
    sbMapView->raise();

    for (Legend** l : {&legend1, &legend3, &legend4}) {
        *l = new Legend(this);
        SetTwips(*l, 240, 4200, 6015, 4335);
    }
    Picture1 = new PictureBox(this);
    SetTwips(Picture1, 240, 4200, 2415, 4335);
    Picture4 = new PictureBox(this);
    SetTwips(Picture4, 2640, 4200, 2535, 4335);
    Picture3 = new PictureBox(this);
    SetTwips(Picture3, 5160, 4200, 2655, 4335);

    connect(Map2, &Map::BeforeLayerDraw, this, [this](int index, QPainter* hDC) { Map2_BeforeLayerDraw(index, hDC); });
    connect(Map2, &Map::AfterTrackingLayerDraw, this, [this](QPainter*) { bPreviewResultDrawn = false; });
    connect(cmdPrint, &QPushButton::clicked, this, [this] { cmdPrint_Click(); });
    connect(Command2, &QPushButton::clicked, this, [this] { Command2_Click(); });
}

FrmPrint::~FrmPrint()
{
    if (g_frmPrint == this) g_frmPrint = nullptr;
}

void FrmPrint::closeEvent(QCloseEvent* e)
{
    e->accept();
    if (g_frmPrint == this) {
        g_frmPrint = nullptr;
        deleteLater();
    }
}

FrmPrint& frmPrint()
{
    if (!g_frmPrint) {
        g_frmPrint = new FrmPrint();
        g_frmPrint->Form_Load();
    }
    return *g_frmPrint;
}

bool frmPrintExists() { return g_frmPrint != nullptr; }

void UnloadFrmPrint()
{
    FrmPrint* f = g_frmPrint;
    g_frmPrint = nullptr;
    delete f;
}

void FrmMain::mnuPrint_Click()
{
    if (Map1->Layers().Count() < 1) return;
    WaitCursor busy;
    FrmPrint& f = frmPrint();
    // Chosen again while open: the window comes to the front as it stands.
    if (f.isVisible()) f.raise();
    f.show();
    f.activateWindow();
}

void FrmPrint::Command2_Click()
{
    // Called from the button's own signal: the form goes once control is back
    // in the event loop, but is unloaded from now on.
    if (g_frmPrint == this) g_frmPrint = nullptr;
    hide();
    deleteLater();
}

// ---------------------------------------------------------------------------

void FrmPrint::Form_Load()
{
    try {
        Map* map1 = frmMain().Map1;
        for (int i = map1->Layers().Count() - 1; i >= 0; --i) {
            auto layer = std::make_shared<MapLayer>();
            const QString t = map1->Layers().Item(i)->Tag;
            layer->Tag = t;
            if (!oDataConnection) throw MapError("no data connection");
            layer->setGeoDataset(oDataConnection->FindGeoDataset(t));
            SetLayerProperties(layer, t, QString());
            if (RectanglePtr e = map1->Extent()) Map2->setExtent(*e);
            Map2->Layers().Add(layer);
            layer->Visible = map1->Layers().Item(i)->Visible;
            layer.reset();
            addLayersToOtherMaps(t);
        }

        setupScalebar();

        const std::pair<Legend*, Map*> bindings[] = {{legend1, Map3}, {legend3, Map5}, {legend4, Map6}};
        for (const auto& [legendControl, map] : bindings) {
            legendControl->BindLegendToMap(map);
            legendControl->FillLegend(true);
            legendControl->setVisible(true);
        }

        const QDir programDir(QCoreApplication::applicationDirPath());
        const std::pair<Legend*, const char*> saves[] = {
            {legend1, "LegendBmp1.bmp"}, {legend3, "LegendBmp3.bmp"}, {legend4, "LegendBmp4.bmp"}};
        for (const auto& [legendControl, file] : saves)
            if (!legendControl->SaveLegendBitmap(programDir.filePath(file))) throw MapError("legend bitmap not written");

        const std::pair<PictureBox*, const char*> loads[] = {
            {Picture1, "LegendBmp1.bmp"}, {Picture3, "LegendBmp3.bmp"}, {Picture4, "LegendBmp4.bmp"}};
        for (const auto& [box, file] : loads) {
            box->Cls();
            QImage image;
            if (!image.load(programDir.filePath(file))) throw MapError("legend bitmap not read");
            box->setPicture(image);
            box->repaint();
        }
    } catch (...) {
        ErrorMessage(" Error in Form_Load function. Error Source:frmPrint.Form_Load()", 48);
    }
}

void FrmPrint::addLayersToOtherMaps(const QString& tag)
{
    try {
        auto layer = std::make_shared<MapLayer>();
        if (!oDataConnection) throw MapError("no data connection");
        layer->setGeoDataset(oDataConnection->FindGeoDataset(tag));
        SetLayerProperties(layer, tag, kSolarTitle);

        Map* target = nullptr;
        if (isOneOf(tag, {"01_elevation.shp", "02_landuse.shp"})) {
            target = Map5;
        } else if (isOneOf(tag, {"11_solar_direct.shp", "15_solar_direct.shp", "17_solar_direct.shp",
                                 "13_solar_direct.shp", "12_solar_tilt.shp", "16_solar_tilt.shp", "18_solar_tilt.shp",
                                 "14_solar_glo.shp", "15_solar_glo.shp"})) {
            if (!bSolarOrWindInLegend) target = Map6;
            bSolarOrWindInLegend = true;
        } else if (tag == "20_wind.shp") {
            target = Map6;
            bSolarOrWindInLegend = true;
        } else if (isOneOf(tag, {"30_lakes.shp", "31_protectedarea.shp", "36_subcountrybnd3.shp",
                                 "37_subcountrybnd2.shp", "38_subcountrybnd1.shp", "39_countryboundary.shp",
                                 "40_rivers.shp", "42_railroad.shp", "43_roads.shp", "44_transmissionline.shp",
                                 "50_protectedarea.shp", "51_powerplant.shp", "52_facilities.shp",
                                 "53_airports.shp", "59_cities.shp"})) {
            target = Map3;
        }
        if (!target) return;
        target->Layers().Add(layer);
        // Every theme layer follows the topmost layer of the main map.
        layer->Visible = frmMain().Map1->Layers().Item(0)->Visible;
    } catch (...) {
        ErrorMessage(" Error in addLayersToOtherMaps function. Error Source:frmPrint.addLayersToOtherMaps()", 48);
    }
}

void FrmPrint::setupScalebar()
{
    try {
        RectanglePtr extent = Map2->Extent();
        if (!extent) extent = std::make_shared<Rectangle>();
        sbMapView->setMapExtent(extent->Left, extent->Top, extent->Right, extent->Bottom);
        const ScreenMetrics screen = Screen();
        sbMapView->setScreenExtent(Map2->Left() / screen.TwipsPerPixelX, Map2->Top() / screen.TwipsPerPixelY,
                                   (Map2->Width() + Map2->Left()) / screen.TwipsPerPixelX,
                                   (Map2->Height() + Map2->Top()) / screen.TwipsPerPixelY);

        std::optional<QFont> font = createFont ? createFont() : std::nullopt;
        if (!font) {
            seam::MsgBox("stdole.StdFont  is not installed. Scale bar will not be printed");
            return;
        }
        font->setFamily("Arial Narrow");
        font->setPointSizeF(8);

        sbMapView->setShowOutline(true);
        sbMapView->setBackColor(0xFFFFFF);
        sbMapView->setBarColor1(0x808080);
        sbMapView->setBarColor2(0xFFC0C0);
        sbMapView->setDivisions(3);
        sbMapView->setBarFont(*font);

        int units = ScaleBar::Meters;
        Map* map1 = frmMain().Map1;
        if (map1->Layers().Count() >= 1) {
            CoordinateSystemPtr cs = map1->Layers().Item(0)->CoordinateSystem();
            if (!cs) throw MapError("top layer has no coordinate system");
            const QString unit = conv::Upper(cs->Unit.Name);
            if (unit == "DEGREE")
                units = ScaleBar::Degrees;
            else if (unit == "FEET")
                units = ScaleBar::Feet;
        }
        sbMapView->setMapUnits(units);
        sbMapView->setBarWidthRatio(0.6f);
        sbMapView->setLabelMode(3);
        sbMapView->Refresh();
    } catch (...) {
        ErrorMessage(" Error in setUpScalebar function. Error Source:frmPrint.setupScalebar()", 48);
    }
}

void FrmPrint::Map2_BeforeLayerDraw(int, QPainter*)
{
    try {
        // The preview shows the result at every repaint, once, at the first
        // layer, with a flag of its own: sharing the main map's flag, which
        // only the main map clears, would leave it out of most repaints.
        if (!bPreviewResultDrawn) {
            draw_query_results(Map2);
            bPreviewResultDrawn = true;
        }
    } catch (...) {
        ErrorMessage(" Error in Map2_BeforeLayerDraw function. Error Source:frmPrint.Map2_BeforeLayerDraw()", 48);
    }
}

// ---------------------------------------------------------------------------

void CopyControlImageToClipboard(QWidget* control)
{
    if (!control) return;
    QWidget* top = control->window();
    const QRect client = control->contentsRect();
    if (client.width() <= 0 || client.height() <= 0) return;
    // What the screen shows over the client area, siblings on top included.
    const QPoint origin = control == top ? client.topLeft() : control->mapTo(top, client.topLeft());
    const QPixmap picture = top->grab(QRect(origin, client.size()));
    if (picture.isNull()) return;
    QGuiApplication::clipboard()->setImage(picture.toImage());
}

int16_t ConvTwips2Pix(const ScreenMetrics& screen, double twips, int axis)
{
    int16_t result = 0;
    try {
        if (axis == 0) {
            if (screen.TwipsPerPixelX == 0) throw MapError("division by zero");
            result = conv::ToInt16(twips / screen.TwipsPerPixelX);
        } else if (axis == 1) {
            if (screen.TwipsPerPixelY == 0) throw MapError("division by zero");
            result = conv::ToInt16(twips / screen.TwipsPerPixelY);
        } else {
            result = -1;
        }
    } catch (...) {
        ErrorMessage(" Error in ConvTwips2Pix function. Error Source:frmPrint.ConvTwips2Pix()", 48);
    }
    return result;
}

std::unique_ptr<PrintTarget> FrmPrint::currentPrinter()
{
    if (printTarget) return printTarget();
    return MakeDefaultPrintTarget(txtHeading->text(), !QPrinterInfo::defaultPrinter().isNull());
}

int16_t FrmPrint::ConvPrinterPix2FrameInch(double value, int axis)
{
    int16_t result = 0;
    try {
        if (axis == 0)
            result = conv::ToInt16(currentPrinter()->TwipsPerPixelX() * value / 1440);
        else if (axis == 1)
            result = conv::ToInt16(currentPrinter()->TwipsPerPixelY() * value / 1440);
        else
            result = -1;
    } catch (...) {
        ErrorMessage(" Error in ConvPrinterPix2FrameInch function. Error Source:frmPrint.ConvPrinterPix2FrameInch()",
                     48);
    }
    return result;
}

int16_t FrmPrint::ConvFrameInch2PrinterPix(double value, int axis)
{
    int16_t result = 0;
    try {
        if (axis == 0)
            result = conv::ToInt16(value * 1440 / currentPrinter()->TwipsPerPixelX());
        else if (axis == 1)
            result = conv::ToInt16(value * 1440 / currentPrinter()->TwipsPerPixelY());
        else
            result = -1;
    } catch (...) {
        ErrorMessage(" Error in ConvFrameInch2PrinterPix function. Error Source:frmPrint.ConvFrameInch2PrinterPix()",
                     48);
    }
    return result;
}

void FrmPrint::cmdPrint_Click()
{
    lastPage.clear();
    lastPrintSucceeded = false;
    std::unique_ptr<PrintTarget> printer;
    QPainter painter;  // ends before the device it paints on
    try {
        QClipboard* clipboard = QGuiApplication::clipboard();
        clipboard->clear();
        CopyControlImageToClipboard(pictEmbedScalebar);
        pictScalebarFromClipboard->setPicture(clipboard->image());
        clipboard->clear();
        CopyControlImageToClipboard(pictHeadingEmbed);
        pictHeadFromClipboard->setPicture(clipboard->image());

        printer = currentPrinter();
        // The page is laid out for 600 dpi (2.4 twips to the dot). The y
        // factor is made whole, halves to even: at 1200 dpi and finer it is 0.
        scaleX = printer->TwipsPerPixelX() / 2.4;
        scaleY = conv::ToInt16(printer->TwipsPerPixelY() / 2.4);
        auto x = [&](double c) { return c / scaleX; };
        auto y = [&](double c) {
            if (scaleY == 0) throw MapError("division by zero");
            return c / scaleY;
        };
        auto paintPicture = [&](const char* name, const QImage& picture, const QRectF& box) {
            if (picture.isNull()) throw MapError("invalid picture");
            painter.drawImage(box, picture);
            lastPage.push_back({name, box});
        };

        if (!painter.begin(printer->device())) throw MapError("the printer cannot be opened");
        lastPage.push_back({"Print", {}});

        const QRect mapBox(conv::ToInt32(x(300)), conv::ToInt32(y(350)), conv::ToInt32(x(4000)), conv::ToInt32(y(3700)));
        // Arm the main map's guard, so that its draw events put the result on
        // the page whatever the last repaint left in the flag.
        bQueryDrawn = false;
        painter.save();
        frmMain().Map1->OutputMap(&painter, mapBox.x(), mapBox.y(), mapBox.width(), mapBox.height(), 1);
        painter.restore();
        lastPage.push_back({"OutputMap", mapBox});

        const QRectF frame(x(290), y(600), x(4000), y(3700) - y(550));
        painter.setPen(QPen(QColor(0x40, 0x40, 0x40), 1));
        painter.setBrush(Qt::NoBrush);
        painter.drawRect(frame);
        lastPage.push_back({"Line", frame});

        paintPicture("Heading", pictHeadFromClipboard->Picture(), QRectF(x(550), y(250), x(3000), y(150)));
        paintPicture("Scalebar", pictScalebarFromClipboard->Picture(), QRectF(x(300), y(3800), x(4000), y(300)));

        const int16_t p = ConvTwips2Pix(Screen(), Twips(Picture1).Height, 1);
        const float legendHeight = float(y(p) + y(900));
        const int16_t legendTop = conv::ToInt16(y(4000));
        const double height = y(500) + legendHeight;
        paintPicture("Picture1", Picture1->Picture(), QRectF(x(500), legendTop, x(1000), height));
        paintPicture("Picture4", Picture4->Picture(), QRectF(x(1000) + x(500), legendTop, x(1000), height));
        paintPicture("Picture3", Picture3->Picture(), QRectF(x(2000) + x(500), legendTop, x(1000), height));

        if (!painter.end()) throw MapError("the page was not sent");
        lastPage.push_back({"EndDoc", {}});
        lastPrintSucceeded = true;
        printer->finished();
        repaint();
    } catch (...) {
        try {
            if (printer) printer->abandon(painter);
        } catch (...) {
        }
        ErrorMessage(" Error in cmdPrint_Click function. Error Source:frmPrint. cmdPrint_Click()", 48);
    }
}

bool PrintPageToPdf(const QString& pdfPath, const QString& heading)
{
    FrmPrint& f = frmPrint();
    f.txtHeading->setText(heading);
    f.printTarget = [pdfPath] { return MakePdfTarget(pdfPath, 600); };
    f.cmdPrint_Click();
    const bool ok = f.lastPrintSucceeded;
    UnloadFrmPrint();
    return ok;
}
