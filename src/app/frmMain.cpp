// The main window: start and shut-down, its menu commands, the enabled state
// of the interface, the zoom and pan tools and the map's draw events. Its
// controls and their layout are built in frmMain_layout.cpp.
#include "app/frmMain.h"

#include <QCloseEvent>
#include <QCoreApplication>
#include <QDesktopServices>
#include <QDir>
#include <QFileInfo>
#include <QThread>
#include <QUrl>
#include <cmath>

#include "app/frmSplash.h"
#include "app/messages.h"
#include "app/scale.h"
#include "engine/query_run.h"
#include "info/frmInfo.h"
#include "mapping/platform.h"
#include "mapping/seam.h"
#include "print/frmPrint.h"
#include "queryset/catalogue.h"
#include "results/frmShowQueryData.h"
#include "workspace/frmShowLayersDialog.h"
#include "workspace/state.h"

namespace {

FrmMain* g_frmMain = nullptr;
bool g_unloading = false;

// The application's help file, set at load; the help command passes the bare
// name instead, so the viewer looks in the current directory.
QString g_appHelpFile;
const QString kHelpFileName = QStringLiteral("Dovrik_ONLINE_DOC.chm");
const QString kUserGuide = QStringLiteral("marlowan-guide.html");

}  // namespace

FrmMain::~FrmMain()
{
    if (g_frmMain == this)
        g_frmMain = nullptr;
}

void FrmMain::closeEvent(QCloseEvent* e)
{
    e->accept();
    if (g_frmMain == this && !g_unloading) {
        g_unloading = true;
        Form_Unload();
        g_frmMain = nullptr;
        g_unloading = false;
        deleteLater();
    }
}

// ---------------------------------------------------------------------------
// Lifecycle

void FrmMain::Form_Load()
{
    try {
        const QString programDir = QCoreApplication::applicationDirPath();
        g_appHelpFile = programDir + QDir::separator() + kHelpFileName;

        bShowMarkedShape = true;
        sDataDirectory = programDir;

        bFirstQuery = true;
        iToolMode = 1;
        iZoomFactor = 2;

        FillcboSelectQuery(cboSelectQuery);

        if (optPanZoom[size_t(iToolMode)]->isChecked())
            optPanZoom_Click(iToolMode);  // already chosen at design: the click comes all the same
        else
            optPanZoom[size_t(iToolMode)]->setChecked(true);

        UpdateInterface();

        legend->BindLegendToMap(Map1);
        legend->FillLegend(true);

        setFormSize(FormWidth(), 8835);
        SetHeight(Toolbar1, 420);

        iFrameWidthMargin = conv::ToInt16(FormWidth() - Twips(fraMapHolder).Width);
        iFrameHeightMargin = conv::ToInt16(FormHeight() - Twips(fraMapHolder).Height);
        iMapWidthMargin = conv::ToInt16(FormWidth() - Twips(Map1).Width);
        iMapHeightMargin = conv::ToInt16(FormHeight() - Twips(Map1).Height);

        sStandardFiles = {
            "01_elevation.shp",       "02_landuse.shp",        "11_solar_direct.shp",    "12_solar_tilt.shp",
            "13_solar_direct.shp",    "14_solar_glo.shp",      "15_solar_glo.shp",       "16_solar_tilt.shp",
            "17_solar_direct.shp",    "18_solar_tilt.shp",     "20_wind.shp",            "21_wind.shp",
            "22_wind.shp",            "30_lakes.shp",          "31_protectedarea.shp",   "36_subcountrybnd3.shp",
            "37_subcountrybnd2.shp",  "38_subcountrybnd1.shp", "39_countryboundary.shp", "40_rivers.shp",
            "42_railroad.shp",        "43_roads.shp",          "44_transmissionline.shp", "50_protectedarea.shp",
            "51_powerplant.shp",      "52_facilities.shp",     "53_airports.shp",        "59_cities.shp",
        };

        sFieldName = QString();
        bFormLoaded = true;
    } catch (...) {
        ErrorMessage(" Error while loading the main form. Error Source:frmMain.Form_Load()", 48);
    }
}

void FrmMain::Form_Resize()
{
    try {
        const int W = FormWidth();
        const int H = FormHeight();
        if (W - iFrameWidthMargin <= 0 || H - iFrameHeightMargin <= 0 || W - iMapWidthMargin <= 0
            || H - iMapHeightMargin <= 0 || !bFormLoaded)
            return;
        SetWidth(fraMapHolder, W - iFrameWidthMargin);
        SetHeight(fraMapHolder, H - iFrameHeightMargin);
        SetWidth(Map1, W - iMapWidthMargin);
        SetHeight(Map1, H - iMapHeightMargin);
        const TwipsRect m = Twips(Map1);
        SetTop(lblMapNote, m.Height + m.Top + 45);
    } catch (...) {
        ErrorMessage(" Error while resizing main form. Error Source:frmMain.Form_Resize()", 48);
    }
}

void FrmMain::Form_Unload()
{
    try {
        // The open forms, last to first.
        UnloadFrmInfo();
        UnloadFrmShowQueryData();
        UnloadFrmPrint();
        unloadFrmShowLayersDialog();
        discardFrmSplash();
    } catch (...) {
        ErrorMessage(" Error while unloading Main Form. Error Source:frmInfo.Form_Unload()", 48);
    }
}

void FrmMain::mnuExit_Click()
{
    unloadFrmMain();
}

void FrmMain::mnuHelp_Click()
{
    try {
        const QString named = QDir::current().absoluteFilePath(kHelpFileName);
        if (QFileInfo::exists(named)) {
            QDesktopServices::openUrl(QUrl::fromLocalFile(named));
            return;
        }
        // No such help file here: the guide beside the program, in the browser.
        const QString guide = QDir(QCoreApplication::applicationDirPath()).filePath(kUserGuide);
        if (!QFileInfo::exists(guide))
            seam::MsgBox("The user guide " + QDir::toNativeSeparators(guide) + " is missing.");
        else if (!QDesktopServices::openUrl(QUrl::fromLocalFile(guide)))
            seam::MsgBox("No web browser could be started. The user guide is the file " + QDir::toNativeSeparators(guide)
                         + "; open it in any web browser.");
    } catch (...) {
        ErrorMessage(" Error while trying to open Help. Error Source:frmMain.mnuHelp_Click()", 48);
    }
}

FrmMain& frmMain()
{
    if (!g_frmMain) {
        g_frmMain = new FrmMain;
        g_frmMain->Form_Load();
    }
    return *g_frmMain;
}

bool frmMainExists()
{
    return g_frmMain != nullptr;
}

void unloadFrmMain()
{
    if (!g_frmMain || g_unloading)
        return;
    FrmMain* f = g_frmMain;
    g_unloading = true;
    f->Form_Unload();
    g_frmMain = nullptr;
    g_unloading = false;
    // Inside the running program the call comes from one of the form's own
    // events, so the form goes once that event is over; closing the last
    // window also ends the program.
    if (QThread::currentThread()->loopLevel() > 0) {
        f->close();
        f->deleteLater();
    } else {
        f->hide();
        delete f;
    }
}

// ---------------------------------------------------------------------------
// Interface state

void FrmMain::ControlEnable(bool bEnable)
{
    try {
        Map1->setMousePointer(bEnable ? 0 : 11);
        cmdUpdateMap->setText(bEnable ? QStringLiteral("Update Map") : QStringLiteral("Cancel"));
        lblWorking->setVisible(!bEnable);
        cboSelectQuery->setEnabled(bEnable);
        cmdChangeLayers->setEnabled(bEnable);
        RepaintNow();
    } catch (...) {
        ErrorMessage(" Error while trying to control the enable/disbale status of controls. Error Source:frmMain.ControlEnable()", 48);
    }
}

void FrmMain::UpdateInterface()
{
    try {
        FillScaleComboBox();
        Fill_lblLayersCurrentlyDisplayed();
        EnablePanZoomControls(Map1->Layers().Count() > 0);
    } catch (...) {
        ErrorMessage(" Error while updating interface. Error Source:frmMain.UpdateInterface()", 48);
    }
}

void FrmMain::EnablePanZoomControls(bool bEnable)
{
    try {
        cmdZoomIn->setEnabled(bEnable);
        cmdZoomOut->setEnabled(bEnable);
        cboScale->setEnabled(bEnable);

        bool zoomedIn = false;
        if (bEnable) {
            const RectanglePtr full = Map1->FullExtent();
            const RectanglePtr extent = Map1->Extent();
            if (!full || !extent)
                throw MapError("map without extent");
            zoomedIn = full->Height() > extent->Height() || full->Width() > extent->Width();
        }
        cmdOriginalMap->setVisible(zoomedIn && bEnable);

        for (QRadioButton* o : optPanZoom)
            o->setEnabled(bEnable);
        cboSelectQuery->setEnabled(bEnable);
    } catch (...) {
        ErrorMessage(" Error while trying to enable pan/zoom controls. Error Source:frmMain.EnablePanZoomControls()", 48);
    }
}

void FrmMain::optEditLegend_Click(int index)
{
    try {
        if (!bFirstQuery)
            EditOrLegend(index);
    } catch (...) {
        ErrorMessage(" Error while selecting edit map/legend option. Error Source:frmMain.optEditLegend_Click()", 48);
    }
}

void FrmMain::EditOrLegend(int index)
{
    try {
        fraEdit->setVisible(index == 0);
        fraLegend->setVisible(index == 1);
    } catch (...) {
        ErrorMessage(" Error while selecting edit map/legend option. Error Source:frMain.EditOrLegend()", 48);
    }
}

// ---------------------------------------------------------------------------
// Navigation

void FrmMain::cmdZoomIn_Click()
{
    try {
        bQueryDrawn = false;
        RectanglePtr r = Map1->Extent();
        r->ScaleRectangle(1.0 / iZoomFactor);
        Map1->setExtent(*r);
    } catch (...) {
        ErrorMessage(" Error while Zoom In. Error Source:frmMain.cmdZoomIn_Click()", 48);
    }
}

void FrmMain::cmdZoomOut_Click()
{
    try {
        bQueryDrawn = false;
        RectanglePtr r = Map1->Extent();
        r->ScaleRectangle(iZoomFactor);
        Map1->setExtent(*r);
    } catch (...) {
        ErrorMessage(" Error while Zoom Out. Error Source:frmMain.cmdZoomOut_Click()", 48);
    }
}

void FrmMain::cmdOriginalMap_Click()
{
    try {
        bQueryDrawn = false;
        RectanglePtr full = Map1->FullExtent();
        if (!full)
            throw MapError("map without extent");
        Map1->setExtent(*full);
    } catch (...) {
        ErrorMessage(" Error while trying to display orginal map. Error Source:frmMain.cmdOriginalMap_Click()", 48);
    }
}

void FrmMain::optPanZoom_Click(int index)
{
    try {
        bQueryDrawn = false;
        iToolMode = int16_t(index);
    } catch (...) {
        ErrorMessage(" Error while selecting Pan/Zoom option. Error Source:frmMain.optPanZoom_Click()", 48);
    }
}

void FrmMain::FillScaleComboBox()
{
    try {
        cboScale->Clear();
        cboScale->AddItem(CalculateScale(Map1));
        cboScale->setCurrentIndex(0);  // the list has no handler to raise
    } catch (...) {
        ErrorMessage(" Error while setting the current scale. Error Source:frmMain.FillScaleComboBox()", 48);
    }
}

void FrmMain::Map1_MouseDown(int button, int shift, float x, float y)
{
    try {
        iDownX = conv::ToInt16(x);
        iDownY = conv::ToInt16(y);
        if (!cmdZoomIn->isEnabled())
            return;
        switch (iToolMode) {
        case 0:
            Map1->Pan();
            break;
        case 1: {
            // A click without a drag gives no rectangle to zoom to; MouseUp
            // gives that click its meaning.
            RectanglePtr r = Map1->TrackRectangle();
            if (r && r->Width() > 0 && r->Height() > 0)
                Map1->setExtent(*r);
            break;
        }
        case 2:
            ShowFrmInfo();
            break;
        default:
            break;
        }
    } catch (...) {
        ErrorMessage(" Error in Map1_MouseDown() event. Error Source:frmMain.Map1_MouseDown()", 48);
    }
}

void FrmMain::Map1_MouseMove(int button, int shift, float x, float y)
{
    try {
        switch (iToolMode) {
        case 0: Map1->setMousePointer(53); break;
        case 1: Map1->setMousePointer(50); break;
        case 2: Map1->setMousePointer(14); break;
        case 3: Map1->setMousePointer(1); break;
        default: break;
        }
    } catch (...) {
        ErrorMessage(" Error in Map1_MouseMove() event. Error Source:frmMain.Map1_MouseMove()", 48);
    }
}

void FrmMain::Map1_MouseUp(int button, int shift, float x, float y)
{
    try {
        const float dx = std::fabs(x - float(iDownX));
        const float dy = std::fabs(y - float(iDownY));
        if (!(iToolMode == 1 && dx < 5 && dy < 5 && cmdZoomIn->isEnabled()))
            return;
        RectanglePtr r = Map1->Extent();
        if (button == 1)
            r->ScaleRectangle(1.0 / iZoomFactor);
        else
            r->ScaleRectangle(iZoomFactor);
        Map1->setExtent(*r);
        // The point is read in the new extent, so the view is centred there,
        // not on what lay under the mouse before the zoom.
        PointPtr p = Map1->ToMapPoint(x, y);
        Map1->CenterAt(p->X(), p->Y());
    } catch (...) {
        ErrorMessage(" Error in Map1_MouseUp event. Error Source:frmMain.Map1_MouseUp()", 48);
    }
}

void FrmMain::Map1_BeforeLayerDraw(int index, QPainter* hDC)
{
    try {
        if (!bQueryDrawn) {
            draw_query_results(Map1);
            bQueryDrawn = true;
        }
    } catch (...) {
        ErrorMessage(" Error in BeforeMapLayerDraw function. Error Source:frmMain.Map1_BeforeLayerDraw()", 48);
    }
}

void FrmMain::Map1_AfterLayerDraw(int index, QPainter* hDC) {}

void FrmMain::Map1_BeforeTrackingLayerDraw(QPainter* hDC)
{
    try {
        UpdateInterface();
    } catch (...) {
        ErrorMessage(" Error in BeforeTrackingLayerDraw function. Error Source:frmMain.Map1_BeforeTrackingLayerDraw()", 48);
    }
}

void FrmMain::Map1_AfterTrackingLayerDraw(QPainter* hDC)
{
    try {
        if (oMarkedShape && bShowMarkedShape)
            Map1->DrawShape(oMarkedShape, oMarkedSymbol);
        bQueryDrawn = false;
    } catch (...) {
        ErrorMessage(" Error while trying to draw tracking layer. Error Source:frmMain.Map1_AfterTrackingLayerDraw()", 48);
    }
}

MapLayerPtr LayerByFile(const QString& file)
{
    return frmMain().Map1->Layers().Item(cLayerIndex->Item(file));
}
