#pragma once
// The main window. Every module reaches it and its controls directly through
// frmMain(); its event routines are defined beside the logic they belong to.
#include <QCheckBox>
#include <QGroupBox>
#include <QLabel>
#include <QMainWindow>
#include <QPushButton>
#include <QRadioButton>
#include <array>
#include <cstdint>

#include "mapping/controls.h"
#include "mapping/legend.h"
#include "mapping/map.h"

class QAction;
class QMenu;
class QPainter;

class FrmMain : public QMainWindow {
    Q_OBJECT
public:
    FrmMain();
    ~FrmMain() override;

    // --- controls, positions in twips as designed ---
    QWidget* Toolbar1 = nullptr;
    QLabel* lblSelectQuery = nullptr;
    ComboBox* cboSelectQuery = nullptr;
    QFrame* fraMapHolder = nullptr;
    QPushButton* cmdOriginalMap = nullptr;
    QPushButton* cmdZoomIn = nullptr;
    ComboBox* cboScale = nullptr;
    QPushButton* cmdZoomOut = nullptr;
    std::array<QRadioButton*, 3> optPanZoom{};
    Map* Map1 = nullptr;
    QLabel* lblMapNote = nullptr;
    QFrame* fraStartUpImage = nullptr;
    QLabel* Image1 = nullptr;
    QFrame* fraEditLegend = nullptr;
    std::array<QRadioButton*, 2> optEditLegend{};
    QFrame* Line1 = nullptr;
    QFrame* fraEdit = nullptr;
    QLabel* Label4 = nullptr;
    QGroupBox* fraEditQueryParameters = nullptr;
    QPushButton* cmdShowData = nullptr;
    QPushButton* cmdUpdateMap = nullptr;
    QLabel* lblWorking = nullptr;
    QLabel* Label2 = nullptr;
    QLabel* lblLayersCurrentlyDisplayed = nullptr;
    QPushButton* cmdChangeLayers = nullptr;
    QFrame* fraLegend = nullptr;
    Legend* legend = nullptr;
    QLabel* Label5 = nullptr;
    // the query panel, inside fraEditQueryParameters
    QCheckBox* chkProtectedAreas = nullptr;
    ComboBox* cboQueryDropDown = nullptr;   // minimum, typing allowed
    ComboBox* cboQueryDropDown2 = nullptr;  // maximum, typing allowed
    ComboBox* cboQueryDropDown3 = nullptr;  // solar resource, no typing
    ListBox* lstQuery1 = nullptr;
    std::array<TextBox*, 4> txtQuery1{};
    std::array<QLabel*, 6> lblQuery1{};
    // menus
    QMenu* mnuFile = nullptr;
    QAction* mnuOpen = nullptr;
    QAction* mnuSave = nullptr;
    QAction* mnuPrint = nullptr;
    QAction* mnuExit = nullptr;
    QAction* mnuHelp = nullptr;

    // --- members ---
    int16_t iDownX = 0, iDownY = 0;
    int16_t iToolMode = 1;
    int16_t iZoomFactor = 2;
    bool bFirstQuery = true;
    bool bFormLoaded = false;
    int16_t iFrameWidthMargin = 0, iFrameHeightMargin = 0;
    int16_t iMapWidthMargin = 0, iMapHeightMargin = 0;

    // Outer size of the form in twips, and setting it (the form's Width/Height).
    int FormWidth() const;
    int FormHeight() const;
    void setFormSize(int widthTwips, int heightTwips);
    // "Repaint at once": the changed controls show before the next statement.
    void RepaintNow();

    // --- lifecycle and interface state ---
    void Form_Load();
    void Form_Resize();
    void Form_Unload();
    void ControlEnable(bool bEnable);
    void UpdateInterface();
    void EnablePanZoomControls(bool bEnable);
    void EditOrLegend(int index);
    void optEditLegend_Click(int index);
    void mnuExit_Click();
    void mnuHelp_Click();

    // --- dataset loading ---
    void mnuOpen_Click();
    void mnuAdd_Click();

    // --- layer visibility ---
    void cmdChangeLayers_Click();
    void Fill_lblLayersCurrentlyDisplayed();
    void legend_AfterSetLayerVisible(int index, bool isVisible);

    // --- navigation and the repaint beat ---
    void cmdZoomIn_Click();
    void cmdZoomOut_Click();
    void cmdOriginalMap_Click();
    void optPanZoom_Click(int index);
    void FillScaleComboBox();
    void Map1_MouseDown(int button, int shift, float x, float y);
    void Map1_MouseMove(int button, int shift, float x, float y);
    void Map1_MouseUp(int button, int shift, float x, float y);
    void Map1_BeforeLayerDraw(int index, QPainter* hDC);
    void Map1_AfterLayerDraw(int index, QPainter* hDC);
    void Map1_BeforeTrackingLayerDraw(QPainter* hDC);
    void Map1_AfterTrackingLayerDraw(QPainter* hDC);

    // --- query selection ---
    void cboSelectQuery_Click();
    void cboQueryDropDown3_Click();

    // --- query run ---
    void cmdUpdateMap_Click();

    // --- results ---
    void cmdShowData_Click();
    void mnuSave_Click();
    void mnuSaveAs_Click();

    // --- print ---
    void mnuPrint_Click();

protected:
    void showEvent(QShowEvent*) override;
    void resizeEvent(QResizeEvent*) override;
    void closeEvent(QCloseEvent*) override;

private:
    void buildControls();
    // The smallest window that keeps the query panel and the map's buttons in view.
    QSize minimumWindowSize() const;
    bool placedOnScreen_ = false;
};

// The layer of Map1 that cLayerIndex names for a standard file; a file that is
// not loaded fails, as the key is missing.
MapLayerPtr LayerByFile(const QString& file);

// The one shared instance, made (and loaded) at first use.
FrmMain& frmMain();
bool frmMainExists();
// Ends the form; the next frmMain() makes a new one.
void unloadFrmMain();
