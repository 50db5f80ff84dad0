#pragma once
// "Change Layers": one check box per layer of Map1, top layer first.
#include <QCheckBox>
#include <QDialog>
#include <array>

class QLabel;

// A check box whose caption wraps onto a second line where one is too short,
// as the longer layer names need in the box the design gives them.
class LayerCheckBox : public QCheckBox {
    Q_OBJECT
public:
    using QCheckBox::QCheckBox;
    static constexpr int kCaptionFlags = Qt::AlignLeft | Qt::AlignVCenter | Qt::TextWordWrap;
    // The area right of the box where the caption is drawn with those flags.
    QRect textArea() const;

protected:
    void paintEvent(QPaintEvent*) override;
};
class QPushButton;

class FrmShowLayersDialog : public QDialog {
    Q_OBJECT
public:
    static constexpr int BoxCount = 27;

    explicit FrmShowLayersDialog(QWidget* owner);

    QLabel* Label1 = nullptr;
    std::array<QCheckBox*, BoxCount> chkShowLayers{};
    QPushButton* OKButton = nullptr;
    QPushButton* CancelButton = nullptr;

    void Form_Activate();
    void Form_Deactivate();
    void OKButton_Click();
    void CancelButton_Click();

protected:
    bool event(QEvent* e) override;
};

// The one dialog, owned by frmMain; made at first use and kept (shown and
// hidden, not unloaded) until the main form closes.
FrmShowLayersDialog& frmShowLayersDialog();
bool frmShowLayersDialogExists();
void unloadFrmShowLayersDialog();
