#pragma once
// "Print Map": the page set-up window and the printed page.
#include <QFrame>
#include <QImage>
#include <QLabel>
#include <QPushButton>
#include <QRectF>
#include <QString>
#include <QWidget>
#include <cstdint>
#include <QFont>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "mapping/controls.h"

class Map;
class Legend;
class ScaleBar;
class QPainter;
class QPaintDevice;

// A picture box: a sunken panel showing its Picture at its natural size from
// the top left of its client area, which is also where its children sit.
class PictureBox : public QFrame {
    Q_OBJECT
public:
    explicit PictureBox(QWidget* parent = nullptr);
    QImage Picture() const { return picture_; }
    void setPicture(const QImage& image);
    // Clears the picture.
    void Cls();
    // Places a child by twips inside the client area.
    void placeChild(QWidget* child, int left, int top, int width, int height);

protected:
    void paintEvent(QPaintEvent*) override;

private:
    QImage picture_;
};

// The screen object's measures.
struct ScreenMetrics {
    double TwipsPerPixelX = 15;
    double TwipsPerPixelY = 15;
};
ScreenMetrics Screen();

// Where a page goes: a device to paint on, opened by the first drawing and
// sent by EndDoc. A failed print is abandoned and nothing is sent.
class PrintTarget {
public:
    virtual ~PrintTarget() = default;
    virtual QPaintDevice* device() = 0;
    virtual int resolution() const = 0;  // dots per inch
    double TwipsPerPixelX() const { return 1440.0 / resolution(); }
    double TwipsPerPixelY() const { return 1440.0 / resolution(); }
    // After the painter has ended: the page has gone out.
    virtual void finished() {}
    // A failed print: ends the painter and sends nothing.
    virtual void abandon(QPainter& painter) = 0;
};

// A PDF file at the given resolution. A print that fails leaves no file.
std::unique_ptr<PrintTarget> MakePdfTarget(const QString& path, int dpi);
// The default printer; where the machine has none, a PDF at 600 dpi in the
// user's documents folder, named after the heading (never over an earlier
// one), announced with its name when written.
std::unique_ptr<PrintTarget> MakeDefaultPrintTarget(const QString& heading, bool printerInstalled);
// "heading.pdf" with the characters a file name cannot hold replaced, or "map.pdf".
QString PdfFileNameForHeading(const QString& heading);
// The file name in the directory, or the first of "name (2).pdf", "name (3).pdf"... that is free.
QString FreePdfPath(const QString& dir, const QString& fileName);

class FrmPrint : public QWidget {
    Q_OBJECT
public:
    FrmPrint();
    ~FrmPrint() override;

    QLabel* lblHeading = nullptr;
    PictureBox* pictHeadingEmbed = nullptr;
    TextBox* txtHeading = nullptr;
    Map* Map2 = nullptr;
    QLabel* Label1 = nullptr;
    QPushButton* cmdPrint = nullptr;
    QPushButton* Command2 = nullptr;
    PictureBox* pictHeadFromClipboard = nullptr;
    PictureBox* pictScalebarFromClipboard = nullptr;
    Map* Map3 = nullptr;
    Map* Map4 = nullptr;
    Map* Map5 = nullptr;
    Map* Map6 = nullptr;
    ScaleBar* sbMapView = nullptr;
    PictureBox* pictEmbedScalebar = nullptr;
    Legend* legend1 = nullptr;
    Legend* legend3 = nullptr;
    Legend* legend4 = nullptr;
    PictureBox* Picture1 = nullptr;
    PictureBox* Picture4 = nullptr;
    PictureBox* Picture3 = nullptr;

    bool bSolarOrWindInLegend = false;
    // The result is on the preview's repaint under way.
    bool bPreviewResultDrawn = false;

    void Form_Load();
    void addLayersToOtherMaps(const QString& tag);
    void setupScalebar();
    void Map2_BeforeLayerDraw(int index, QPainter* hDC);
    void Command2_Click();
    void cmdPrint_Click();
    int16_t ConvPrinterPix2FrameInch(double value, int axis);
    int16_t ConvFrameInch2PrinterPix(double value, int axis);

    // Where the next page goes; the default printer unless replaced.
    std::function<std::unique_ptr<PrintTarget>()> printTarget;
    // The scale bar's font; empty when none can be had.
    std::function<std::optional<QFont>()> createFont;

    // What the last print drew, in order, in printer pixels: "Print" (the page
    // opened), "OutputMap", "Line", "Heading", "Scalebar", "Picture1",
    // "Picture4", "Picture3", "EndDoc".
    struct PageItem {
        QString name;
        QRectF rect;
    };
    std::vector<PageItem> lastPage;
    double scaleX = 0;
    int scaleY = 0;
    bool lastPrintSucceeded = false;

protected:
    void closeEvent(QCloseEvent*) override;

private:
    std::unique_ptr<PrintTarget> currentPrinter();
};

// The one instance, made and loaded at first use.
FrmPrint& frmPrint();
bool frmPrintExists();
void UnloadFrmPrint();

// Puts a picture of what is on the screen over the control's client area on the clipboard.
void CopyControlImageToClipboard(QWidget* control);
// Twips to screen pixels on an axis (0 x, 1 y); -1 for any other axis.
int16_t ConvTwips2Pix(const ScreenMetrics& screen, double twips, int axis);

// For the batch tool: loads frmPrint, types the heading and prints the page to
// a PDF file at 600 dpi. False when the print failed (its message was shown).
bool PrintPageToPdf(const QString& pdfPath, const QString& heading);
