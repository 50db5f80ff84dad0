#pragma once
// "Change Layers": one check box per layer of Map1, top layer first.
#include <QDialog>
#include <array>

class QCheckBox;
class QLabel;
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
