#pragma once
// The start-up window: loads the main form and the layers dialog while it is
// up, and shows the main form when the user dismisses it.
#include <QDialog>

class QFrame;
class QLabel;

class FrmSplash : public QDialog {
    Q_OBJECT
public:
    FrmSplash();

    QFrame* fraSplash = nullptr;
    QLabel* imgSplash = nullptr;
    QLabel* lblVersion = nullptr;

    void Form_Load();
    void Form_Unload();
    void fraSplash_Click();
    void imgSplash_Click();
    void Form_KeyPress(int keyAscii);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
};

// The one splash form, made and loaded at first use.
FrmSplash& frmSplash();
bool frmSplashExists();
// Ends the splash; its Form_Unload shows frmMain.
void unloadFrmSplash();
// Ends the splash without its Form_Unload (the main form is closing).
void discardFrmSplash();

// The picture of imgSplash (656 x 440 pixels of the design), drawn by the
// program to fill a control of the given size on a screen of the given ratio.
QPixmap SplashPicture(const QSize& shown, qreal dpr);
// The picture of frmMain's Image1 (216 x 417 pixels of the design), likewise.
QPixmap StartUpPicture(const QSize& shown, qreal dpr);
