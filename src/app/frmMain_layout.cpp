// The main window's form: its controls as designed, placed by twips, its size
// and the smallest size that keeps its controls in view.
#include "app/frmMain.h"

#include <QAction>
#include <QApplication>
#include <QMenu>
#include <QMenuBar>
#include <QScreen>
#include <cmath>

#include "app/frmSplash.h"

namespace {

const QString kDataSourceSite = QStringLiteral("www.kelvora.example");

QLabel* makeLabel(QWidget* parent, const QString& text, int l, int t, int w, int h, bool bold = false)
{
    auto* lbl = new Label(text, parent);
    SetTwips(lbl, l, t, w, h);
    lbl->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    if (bold) {
        QFont f = lbl->font();
        f.setBold(true);
        lbl->setFont(f);
    }
    return lbl;
}

QPushButton* makeButton(QWidget* parent, const QString& text, int l, int t, int w, int h)
{
    auto* b = new QPushButton(text, parent);
    SetTwips(b, l, t, w, h);
    return b;
}

QFrame* makeFrame(QWidget* parent, int l, int t, int w, int h)
{
    auto* f = new QFrame(parent);
    f->setFrameShape(QFrame::NoFrame);
    SetTwips(f, l, t, w, h);
    return f;
}

void paintBackground(QWidget* w, const QColor& bg)
{
    QPalette p = w->palette();
    p.setColor(QPalette::Window, bg);
    w->setPalette(p);
    w->setAutoFillBackground(true);
}

// Option buttons on the black map holder: white text on black. The round
// box keeps its own colours, a white field with a dark dot, so the chosen
// tool shows.
QRadioButton* makeDarkOption(QWidget* parent, const QString& text, int l, int t, int w, int h)
{
    auto* o = new QRadioButton(text, parent);
    SetTwips(o, l, t, w, h);
    QPalette p = o->palette();
    p.setColor(QPalette::Window, Qt::black);
    p.setColor(QPalette::Button, Qt::black);
    p.setColor(QPalette::WindowText, Qt::white);
    p.setColor(QPalette::Disabled, QPalette::WindowText, QColor(150, 150, 150));
    o->setPalette(p);
    o->setAutoFillBackground(true);
    return o;
}

}  // namespace

FrmMain::FrmMain()
{
    buildControls();
}

void FrmMain::buildControls()
{
    setWindowTitle(QStringLiteral("Marlowan"));

    auto* client = new QWidget(this);
    paintBackground(client, Qt::white);
    setCentralWidget(client);

    // --- menus ---
    mnuFile = menuBar()->addMenu(QStringLiteral("File"));
    mnuOpen = mnuFile->addAction(QStringLiteral("Open Dataset..."));
    mnuSave = mnuFile->addAction(QStringLiteral("Save Result"));
    mnuPrint = mnuFile->addAction(QStringLiteral("Print"));
    mnuExit = mnuFile->addAction(QStringLiteral("Exit"));
    mnuHelp = menuBar()->addAction(QStringLiteral("Help"));

    // --- the strip at the top and the query choice ---
    Toolbar1 = new QWidget(client);
    SetTwips(Toolbar1, 0, 0, 12630, 420);
    lblSelectQuery = makeLabel(client, QStringLiteral("Select Query:"), 120, 480, 1335, 255, true);
    cboSelectQuery = new ComboBox(client, false);
    SetTwips(cboSelectQuery, 120, 720, 3615, 315);

    // --- the map group on black ---
    fraMapHolder = new QFrame(client);
    fraMapHolder->setFrameShape(QFrame::NoFrame);
    paintBackground(fraMapHolder, Qt::black);
    SetTwips(fraMapHolder, 3825, 270, 8790, 7710);

    cmdOriginalMap = makeButton(fraMapHolder, QStringLiteral("Back to Original Map"), 210, 210, 1740, 300);
    cmdOriginalMap->setVisible(false);
    QFont courier(QStringLiteral("Courier New"));
    courier.setStyleHint(QFont::Monospace);
    courier.setPointSizeF(QApplication::font().pointSizeF());
    cmdZoomIn = makeButton(fraMapHolder, QStringLiteral("+"), 5280, 210, 330, 330);
    cmdZoomIn->setFont(courier);
    cboScale = new ComboBox(fraMapHolder, true);
    SetTwips(cboScale, 5640, 210, 2565, 315);
    cboScale->setText(QStringLiteral("Scale Drop-down"));
    cmdZoomOut = makeButton(fraMapHolder, QStringLiteral("-"), 8280, 210, 330, 330);
    cmdZoomOut->setFont(courier);
    optPanZoom[0] = makeDarkOption(fraMapHolder, QStringLiteral("Pan"), 2100, 300, 645, 225);
    optPanZoom[1] = makeDarkOption(fraMapHolder, QStringLiteral("Zoom"), 3120, 300, 750, 225);
    optPanZoom[2] = makeDarkOption(fraMapHolder, QStringLiteral("Info"), 4320, 300, 630, 225);
    {
        const QSignalBlocker block(optPanZoom[1]);
        optPanZoom[1]->setChecked(true);
    }
    Map1 = new Map(fraMapHolder);
    SetTwips(Map1, 90, 630, 8565, 6705);
    lblMapNote = makeLabel(fraMapHolder,
                           QStringLiteral("Marlowan from Kelvora, a Tessimar Project.  For data source information, goto ")
                               + kDataSourceSite + QStringLiteral("."),
                           120, 7380, 7815, 285);
    SetForeColor(lblMapNote, RGB(255, 255, 255));
    {
        QFont f = lblMapNote->font();
        f.setPointSizeF(DesignPointSize(7.5));
        lblMapNote->setFont(f);
    }

    // --- the left side: the start-up picture, later the edit/legend panels ---
    fraStartUpImage = makeFrame(client, 120, 1080, 3495, 6495);
    Image1 = new QLabel(fraStartUpImage);
    SetTwips(Image1, 120, 120, 3240, 6255);
    Image1->setPixmap(StartUpPicture(Image1->size(), devicePixelRatioF()));

    fraEditLegend = makeFrame(client, 120, 1080, 3495, 6495);
    fraEditLegend->setVisible(false);
    optEditLegend[0] = new QRadioButton(QStringLiteral("Edit Map"), fraEditLegend);
    SetTwips(optEditLegend[0], 120, 210, 1065, 345);
    optEditLegend[1] = new QRadioButton(QStringLiteral("Show Map legend"), fraEditLegend);
    SetTwips(optEditLegend[1], 1620, 210, 1680, 345);
    {
        const QSignalBlocker block(optEditLegend[0]);
        optEditLegend[0]->setChecked(true);
    }
    Line1 = new QFrame(fraEditLegend);
    Line1->setFrameShape(QFrame::HLine);
    Line1->setFrameShadow(QFrame::Plain);
    SetTwips(Line1, 120, 120, 3360, 15);

    fraEdit = makeFrame(fraEditLegend, 120, 570, 3255, 5925);
    Label4 = makeLabel(fraEdit, QStringLiteral("Query Parameters"), 150, 0, 1995, 255, true);
    fraEditQueryParameters = new QGroupBox(QString(), fraEdit);
    SetTwips(fraEditQueryParameters, 150, 240, 3015, 2835);
    cmdShowData = makeButton(fraEdit, QStringLiteral("Results Table"), 720, 3120, 1215, 375);
    cmdShowData->setVisible(false);
    cmdUpdateMap = makeButton(fraEdit, QStringLiteral("Update Map"), 2100, 3120, 1035, 375);
    lblWorking = makeLabel(fraEdit, QStringLiteral("Creating Map..."), 60, 3510, 3135, 555);
    {
        QFont f = lblWorking->font();
        f.setPointSizeF(DesignPointSize(9.75));
        lblWorking->setFont(f);
        lblWorking->setWordWrap(true);
        SetForeColor(lblWorking, RGB(0, 0, 255));
        // Opaque, so that a new progress text repaints the label alone and
        // not the panels behind it: a query run changes it a thousand times.
        lblWorking->setAutoFillBackground(true);
        lblWorking->setVisible(false);
    }
    Label2 = makeLabel(fraEdit, QStringLiteral("Layers currently displayed"), 150, 4020, 2895, 255, true);
    lblLayersCurrentlyDisplayed = makeLabel(fraEdit, QString(), 150, 4290, 3000, 1155);
    lblLayersCurrentlyDisplayed->setWordWrap(true);
    cmdChangeLayers = makeButton(fraEdit, QStringLiteral("Change Layers..."), 1200, 5520, 2055, 375);

    fraLegend = makeFrame(fraEditLegend, 120, 600, 3375, 5895);
    fraLegend->setVisible(false);
    // The label lies under the legend and is never seen once that is drawn.
    Label5 = makeLabel(fraLegend, QStringLiteral("show legend stuff here..."), 120, 360, 2775, 615);
    legend = new Legend(fraLegend);
    SetTwips(legend, 0, 120, 3255, 5775);
    legend->raise();

    // --- the query panel, every control of every query ---
    QWidget* panel = fraEditQueryParameters;
    const int lblTops[6][4] = {{600, 240, 2250, 255},  {570, 600, 2400, 255},  {570, 960, 2400, 255},
                               {570, 1320, 2400, 255}, {120, 1680, 2400, 255}, {1770, 1260, 1170, 465}};
    for (int i = 0; i < 6; ++i) {
        lblQuery1[size_t(i)] = makeLabel(panel, i == 5 ? QStringLiteral("remove protected areas ") : QStringLiteral("lblQuery1"),
                                         lblTops[i][0], lblTops[i][1], lblTops[i][2], lblTops[i][3]);
        lblQuery1[size_t(i)]->setWordWrap(i == 5);
        // Its check box stands at the left of the first line: the caption
        // keeps to the right of it, and its two lines to the middle of the
        // label, clear of the box's lower edge and of the caption below.
        if (i == 5) lblQuery1[5]->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
        lblQuery1[size_t(i)]->setVisible(i == 0);
    }
    for (int i = 0; i < 4; ++i) {
        auto* t = new TextBox(panel);
        SetTwips(t, 90, 180 + 360 * i, 500, 285);
        t->setText(QStringLiteral("5"));
        t->setVisible(i == 0);
        txtQuery1[size_t(i)] = t;
    }
    cboQueryDropDown = new ComboBox(panel, true);
    SetTwips(cboQueryDropDown, 90, 540, 1365, 315);
    cboQueryDropDown->setText(QStringLiteral("cboQueryDropDown"));
    cboQueryDropDown->setVisible(false);
    cboQueryDropDown2 = new ComboBox(panel, true);
    SetTwips(cboQueryDropDown2, 1620, 540, 1275, 315);
    cboQueryDropDown2->setText(QStringLiteral("cboQueryDropDown2"));
    cboQueryDropDown2->setVisible(false);
    cboQueryDropDown3 = new ComboBox(panel, false);
    SetTwips(cboQueryDropDown3, 120, 1890, 2775, 315);
    cboQueryDropDown3->setVisible(false);
    lstQuery1 = new ListBox(panel);
    SetTwips(lstQuery1, 90, 1890, 2805, 840);
    lstQuery1->setSelectionMode(QAbstractItemView::MultiSelection);
    // Rows for the names, not a scroll bar: a long name ends in "...".
    lstQuery1->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    lstQuery1->setVisible(false);
    chkProtectedAreas = new QCheckBox(QString(), panel);
    SetTwips(chkProtectedAreas, 2130, 1290, 225, 195);
    chkProtectedAreas->setChecked(true);
    chkProtectedAreas->setVisible(false);

    // Client area as designed; the menu bar lies above it.
    SetSizeTwips(this, 12630, 8025 + int(std::lround(PxToTwips(menuBar()->sizeHint().height()))));

    // --- events ---
    connect(mnuOpen, &QAction::triggered, this, [this] { mnuOpen_Click(); });
    connect(mnuSave, &QAction::triggered, this, [this] { mnuSave_Click(); });
    connect(mnuPrint, &QAction::triggered, this, [this] { mnuPrint_Click(); });
    connect(mnuExit, &QAction::triggered, this, [this] { mnuExit_Click(); });
    connect(mnuHelp, &QAction::triggered, this, [this] { mnuHelp_Click(); });

    cboSelectQuery->Click = [this] { cboSelectQuery_Click(); };
    cboQueryDropDown3->Click = [this] { cboQueryDropDown3_Click(); };

    connect(cmdOriginalMap, &QPushButton::clicked, this, [this] { cmdOriginalMap_Click(); });
    connect(cmdZoomIn, &QPushButton::clicked, this, [this] { cmdZoomIn_Click(); });
    connect(cmdZoomOut, &QPushButton::clicked, this, [this] { cmdZoomOut_Click(); });
    connect(cmdShowData, &QPushButton::clicked, this, [this] { cmdShowData_Click(); });
    connect(cmdUpdateMap, &QPushButton::clicked, this, [this] { cmdUpdateMap_Click(); });
    connect(cmdChangeLayers, &QPushButton::clicked, this, [this] { cmdChangeLayers_Click(); });
    for (int i = 0; i < 3; ++i)
        connect(optPanZoom[size_t(i)], &QRadioButton::toggled, this, [this, i](bool on) {
            if (on)
                optPanZoom_Click(i);
        });
    for (int i = 0; i < 2; ++i)
        connect(optEditLegend[size_t(i)], &QRadioButton::toggled, this, [this, i](bool on) {
            if (on)
                optEditLegend_Click(i);
        });

    connect(Map1, &Map::MouseDown, this, &FrmMain::Map1_MouseDown, Qt::DirectConnection);
    connect(Map1, &Map::MouseMove, this, &FrmMain::Map1_MouseMove, Qt::DirectConnection);
    connect(Map1, &Map::MouseUp, this, &FrmMain::Map1_MouseUp, Qt::DirectConnection);
    connect(Map1, &Map::BeforeLayerDraw, this, &FrmMain::Map1_BeforeLayerDraw, Qt::DirectConnection);
    connect(Map1, &Map::AfterLayerDraw, this, &FrmMain::Map1_AfterLayerDraw, Qt::DirectConnection);
    connect(Map1, &Map::BeforeTrackingLayerDraw, this, &FrmMain::Map1_BeforeTrackingLayerDraw, Qt::DirectConnection);
    connect(Map1, &Map::AfterTrackingLayerDraw, this, &FrmMain::Map1_AfterTrackingLayerDraw, Qt::DirectConnection);
    connect(legend, &Legend::AfterSetLayerVisible, this, &FrmMain::legend_AfterSetLayerVisible, Qt::DirectConnection);
}

// The window manager's frame is not ours to measure: the outer size is the
// window with its menu bar.
int FrmMain::FormWidth() const { return SizeTwips(this).width(); }
int FrmMain::FormHeight() const { return SizeTwips(this).height(); }

void FrmMain::setFormSize(int widthTwips, int heightTwips)
{
    SetSizeTwips(this, widthTwips, heightTwips);
    // A hidden window gets its resize event only when shown; the form's own
    // resize routine runs at each change all the same.
    if (!isVisible())
        Form_Resize();
}

void FrmMain::RepaintNow()
{
    // Paint at once what has changed since the last paint and nothing else:
    // a control marks itself dirty when its caption or state changes, and the
    // map only blits its cached picture. A query run calls this at every
    // record, so it has to cost next to nothing: the request is sent
    // directly rather than fished out of the queue of posted events.
    QEvent request(QEvent::UpdateRequest);
    QCoreApplication::sendEvent(this, &request);
}

QSize FrmMain::minimumWindowSize() const
{
    QRect needed;
    for (QWidget* w : std::initializer_list<QWidget*>{cmdZoomOut, cmdChangeLayers, cmdUpdateMap, lblLayersCurrentlyDisplayed})
        needed |= QRect(w->mapTo(centralWidget(), QPoint(0, 0)), w->size());
    const int margin = TwipsToPx(120);
    return QSize(needed.right() + 1 + margin, needed.bottom() + 1 + margin + menuBar()->sizeHint().height());
}

void FrmMain::showEvent(QShowEvent* e)
{
    QMainWindow::showEvent(e);
    if (placedOnScreen_) return;
    placedOnScreen_ = true;
    // Only the user's resizing is held at the minimum; the form's own resize
    // rule still runs for any size it is given.
    setMinimumSize(minimumWindowSize());
    // The design's size, in our larger pixels, may not fit a small screen:
    // the map group gives way, down to the minimum.
    if (const QScreen* screen = this->screen()) {
        const QRect available = screen->availableGeometry();
        const QSize frame = frameGeometry().size() - size();
        const QSize fits = size().boundedTo(available.size() - frame).expandedTo(minimumSize());
        if (fits != size()) resize(fits);
        if (!available.contains(frameGeometry())) move(available.topLeft());
    }
}

void FrmMain::resizeEvent(QResizeEvent* e)
{
    QMainWindow::resizeEvent(e);
    Form_Resize();
}
