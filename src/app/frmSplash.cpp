#include "app/frmSplash.h"

#include <QCloseEvent>
#include <QFrame>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>
#include <QPointer>
#include <QScreen>
#include <functional>
#include <cmath>

#include "app/frmMain.h"
#include "app/messages.h"
#include "mapping/controls.h"
#include "mapping/symbol.h"
#include "workspace/frmShowLayersDialog.h"

namespace {

QPointer<FrmSplash> g_splash;
bool g_unloading = false;

constexpr int kMajor = 1, kMinor = 2, kRevision = 0;

void drawSplash(QPainter& p);
void drawStartUp(QPainter& p);

// One turbine: a mast from the ground point up, a hub and three blades.
void drawTurbine(QPainter& p, QPointF foot, double height, double angleDeg)
{
    const QPointF hub(foot.x(), foot.y() - height);
    p.setPen(QPen(QColor(245, 245, 245), std::max(1.5, height / 40)));
    p.drawLine(foot, hub);
    p.setPen(QPen(QColor(250, 250, 250), std::max(1.0, height / 60), Qt::SolidLine, Qt::RoundCap));
    const double blade = height * 0.45;
    for (int i = 0; i < 3; ++i) {
        const double a = (angleDeg + 120.0 * i) * M_PI / 180.0;
        p.drawLine(hub, hub + QPointF(std::cos(a) * blade, std::sin(a) * blade));
    }
    p.setBrush(Qt::white);
    p.drawEllipse(hub, height / 45 + 1, height / 45 + 1);
}

void drawLandscape(QPainter& p, const QSize& size, bool upright)
{
    const double w = size.width(), h = size.height();
    QLinearGradient sky(0, 0, 0, h);
    sky.setColorAt(0.0, QColor(24, 62, 122));
    sky.setColorAt(0.55, QColor(118, 168, 214));
    sky.setColorAt(1.0, QColor(236, 214, 160));
    p.fillRect(QRectF(0, 0, w, h), sky);

    // The sun, low over the hills.
    QRadialGradient sun(QPointF(w * 0.78, h * 0.30), h * 0.16);
    sun.setColorAt(0.0, QColor(255, 246, 200));
    sun.setColorAt(0.5, QColor(255, 214, 110));
    sun.setColorAt(1.0, QColor(255, 214, 110, 0));
    p.setPen(Qt::NoPen);
    p.setBrush(sun);
    p.drawEllipse(QPointF(w * 0.78, h * 0.30), h * 0.16, h * 0.16);

    const double horizon = upright ? h * 0.62 : h * 0.58;
    const QColor hillColours[3] = {QColor(88, 128, 84), QColor(66, 108, 62), QColor(48, 86, 46)};
    for (int layer = 0; layer < 3; ++layer) {
        QPainterPath hills;
        const double base = horizon + layer * h * 0.09;
        hills.moveTo(0, h);
        hills.lineTo(0, base);
        for (int x = 0; x <= int(w); x += 4) {
            const double y = base - std::sin(x / w * M_PI * (2 + layer) + layer) * h * 0.035
                             - std::sin(x / w * M_PI * 7 + layer * 2) * h * 0.01;
            hills.lineTo(x, y);
        }
        hills.lineTo(w, h);
        hills.closeSubpath();
        p.setBrush(hillColours[layer]);
        p.drawPath(hills);
    }

    // Rows of solar panels on the nearest slope.
    p.setBrush(QColor(30, 44, 92));
    p.setPen(QPen(QColor(180, 190, 210), 1));
    const double panelTop = horizon + h * 0.22;
    for (int row = 0; row < 3; ++row)
        for (int i = 0; i < 5; ++i) {
            const double pw = w * (upright ? 0.14 : 0.06);
            const double x = w * 0.08 + i * pw * 1.2 + row * pw * 0.3;
            const double y = panelTop + row * h * 0.04;
            QPolygonF panel({QPointF(x, y), QPointF(x + pw, y), QPointF(x + pw * 1.1, y + h * 0.025),
                             QPointF(x + pw * 0.1, y + h * 0.025)});
            p.drawPolygon(panel);
        }

    const int turbines = upright ? 3 : 6;
    for (int i = 0; i < turbines; ++i) {
        const double x = w * (0.15 + 0.8 * i / turbines);
        const double foot = horizon + (i % 2) * h * 0.03;
        // On the splash the blades stay below the title and its subtitle.
        drawTurbine(p, QPointF(x, foot), h * (upright ? 0.2 : 0.16) * (1.0 - 0.1 * (i % 3)), 20.0 + 37.0 * i);
    }
}

// A picture drawn in the design's pixels, made for a control of the given
// size on a screen of the given pixel ratio, so that it fills the control sharp.
QPixmap pictureFor(const QSize& design, const QSize& shown, qreal dpr, const std::function<void(QPainter&)>& draw)
{
    QPixmap pix((QSizeF(shown) * dpr).toSize().expandedTo(QSize(1, 1)));
    pix.setDevicePixelRatio(dpr);
    QPainter p(&pix);
    p.setRenderHint(QPainter::Antialiasing);
    p.scale(double(shown.width()) / design.width(), double(shown.height()) / design.height());
    draw(p);
    return pix;
}

}  // namespace

QPixmap SplashPicture(const QSize& shown, qreal dpr)
{
    return pictureFor({656, 440}, shown, dpr, [](QPainter& p) { drawSplash(p); });
}

QPixmap StartUpPicture(const QSize& shown, qreal dpr)
{
    return pictureFor({216, 417}, shown, dpr, [](QPainter& p) { drawStartUp(p); });
}

namespace {

void drawSplash(QPainter& p)
{
    drawLandscape(p, QSize(656, 440), false);
    QFont title(QStringLiteral("Serif"));
    title.setPixelSize(64);
    title.setBold(true);
    p.setFont(title);
    p.setPen(QColor(0, 0, 0, 90));
    p.drawText(QRectF(3, 43, 656, 90), Qt::AlignHCenter | Qt::AlignTop, QStringLiteral("Marlowan"));
    p.setPen(Qt::white);
    p.drawText(QRectF(0, 40, 656, 90), Qt::AlignHCenter | Qt::AlignTop, QStringLiteral("Marlowan"));
    QFont sub(QStringLiteral("Sans Serif"));
    sub.setPixelSize(18);
    p.setFont(sub);
    p.drawText(QRectF(0, 120, 656, 30), Qt::AlignHCenter, QStringLiteral("Sites for wind and solar power"));
}

void drawStartUp(QPainter& p)
{
    drawLandscape(p, QSize(216, 417), true);
    QFont title(QStringLiteral("Serif"));
    title.setPixelSize(28);
    title.setBold(true);
    p.setFont(title);
    p.setPen(Qt::white);
    p.drawText(QRectF(0, 24, 216, 40), Qt::AlignHCenter, QStringLiteral("Marlowan"));
}

}  // namespace

FrmSplash::FrmSplash()
    : QDialog(nullptr, Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::MSWindowsFixedSizeDialogHint)
{
    setFixedSize(TwipsToPx(10080), TwipsToPx(6930));
    fraSplash = new QFrame(this);
    fraSplash->setFrameShape(QFrame::Box);
    SetTwips(fraSplash, 0, 0, 10065, 6915);
    imgSplash = new QLabel(fraSplash);
    SetTwips(imgSplash, 120, 240, 9840, 6600);
    imgSplash->setPixmap(SplashPicture(imgSplash->size(), devicePixelRatioF()));
    lblVersion = new QLabel(fraSplash);
    SetTwips(lblVersion, 240, 6600, 9555, 255);
    lblVersion->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    SetForeColor(lblVersion, RGB(255, 255, 255));  // it lies on the picture's dark foot

    fraSplash->installEventFilter(this);
    imgSplash->installEventFilter(this);
    lblVersion->installEventFilter(this);
    setFocusPolicy(Qt::StrongFocus);

    if (const QScreen* screen = QGuiApplication::primaryScreen())
        move(screen->availableGeometry().center() - QPoint(width() / 2, height() / 2));
}

bool FrmSplash::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::MouseButtonPress) {
        // The version label takes its clicks and does nothing with them.
        if (watched == lblVersion)
            return true;
        if (watched == fraSplash) {
            fraSplash_Click();
            return true;
        }
        if (watched == imgSplash) {
            imgSplash_Click();
            return true;
        }
    }
    return QDialog::eventFilter(watched, event);
}

void FrmSplash::keyPressEvent(QKeyEvent* event)
{
    Form_KeyPress(event->key());
}

void FrmSplash::closeEvent(QCloseEvent* event)
{
    // Only a click or a key ends the splash.
    event->ignore();
}

void FrmSplash::Form_Load()
{
    try {
        lblVersion->setText(QStringLiteral("Version %1.%2.%3").arg(kMajor).arg(kMinor).arg(kRevision)
                            + QStringLiteral("   (Click anywhere to continue)"));
        frmMain();
        frmShowLayersDialog();
    } catch (...) {
        ErrorMessage(" Error while loading splash screen. Error Source:frmSplash.Form_Load()", 48);
    }
}

void FrmSplash::Form_Unload()
{
    frmMain().show();
}

void FrmSplash::fraSplash_Click() { unloadFrmSplash(); }
void FrmSplash::imgSplash_Click() { unloadFrmSplash(); }
void FrmSplash::Form_KeyPress(int) { unloadFrmSplash(); }

FrmSplash& frmSplash()
{
    if (!g_splash) {
        g_splash = new FrmSplash;
        g_splash->Form_Load();
    }
    return *g_splash;
}

bool frmSplashExists()
{
    return !g_splash.isNull();
}

namespace {
void endSplash(bool runUnload)
{
    if (!g_splash || g_unloading)
        return;
    FrmSplash* s = g_splash;
    g_unloading = true;
    // The main window appears before the splash goes, so that the program
    // never stands without a window.
    if (runUnload)
        s->Form_Unload();
    g_splash = nullptr;
    g_unloading = false;
    s->hide();
    // The call may come from inside one of the splash's own events.
    s->deleteLater();
}
}  // namespace

void unloadFrmSplash() { endSplash(true); }
void discardFrmSplash() { endSplash(false); }
