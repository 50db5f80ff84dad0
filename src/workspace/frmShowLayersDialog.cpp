#include "workspace/frmShowLayersDialog.h"

#include <QCheckBox>
#include <QEvent>
#include <QLabel>
#include <QPointer>
#include <QPushButton>
#include <QStyleOptionButton>
#include <QStylePainter>

#include "app/frmMain.h"
#include "app/messages.h"
#include "mapping/controls.h"
#include "mapping/map.h"
#include "workspace/state.h"

namespace {
QPointer<FrmShowLayersDialog> g_dialog;
}

QRect LayerCheckBox::textArea() const
{
    QStyleOptionButton option;
    initStyleOption(&option);
    const QRect indicator = style()->subElementRect(QStyle::SE_CheckBoxIndicator, &option, this);
    const int spacing = style()->pixelMetric(QStyle::PM_CheckBoxLabelSpacing, &option, this);
    return rect().adjusted(indicator.right() + 1 + spacing, 0, 0, 0);
}

void LayerCheckBox::paintEvent(QPaintEvent*)
{
    QStylePainter p(this);
    QStyleOptionButton option;
    initStyleOption(&option);
    option.rect = style()->subElementRect(QStyle::SE_CheckBoxIndicator, &option, this);
    p.drawPrimitive(QStyle::PE_IndicatorCheckBox, option);
    p.setPen(palette().color(isEnabled() ? QPalette::Active : QPalette::Disabled, QPalette::WindowText));
    p.drawText(textArea(), kCaptionFlags, text());
    if (hasFocus()) {
        QStyleOptionFocusRect focus;
        focus.initFrom(this);
        focus.rect = fontMetrics().boundingRect(textArea(), kCaptionFlags, text()).adjusted(-1, 0, 1, 0);
        p.drawPrimitive(QStyle::PE_FrameFocusRect, focus);
    }
}

FrmShowLayersDialog::FrmShowLayersDialog(QWidget* owner)
    : QDialog(owner, Qt::Dialog | Qt::MSWindowsFixedSizeDialogHint)
{
    setWindowTitle(QStringLiteral("Change Layers"));
    setModal(true);
    setFixedSize(TwipsToPx(8145), TwipsToPx(6120));

    Label1 = new QLabel(QStringLiteral("Click each layer you wish to display on the map, then click Update Map."), this);
    SetTwips(Label1, 120, 120, 7335, 255);
    for (int i = 0; i < BoxCount; ++i) {
        auto* box = new LayerCheckBox(QStringLiteral("Check1"), this);
        if (i < 14)
            SetTwips(box, 240, 360 + 360 * i, 3495, 375);
        else
            SetTwips(box, 4200, 360 + 360 * (i - 14), 3495, 375);
        chkShowLayers[size_t(i)] = box;
    }
    OKButton = new QPushButton(QStringLiteral("Update Map"), this);
    SetTwips(OKButton, 3360, 5640, 1215, 375);
    OKButton->setDefault(true);
    CancelButton = new QPushButton(QStringLiteral("Cancel"), this);
    SetTwips(CancelButton, 4920, 5640, 1215, 375);

    connect(OKButton, &QPushButton::clicked, this, [this] { OKButton_Click(); });
    connect(CancelButton, &QPushButton::clicked, this, [this] { CancelButton_Click(); });
}

bool FrmShowLayersDialog::event(QEvent* e)
{
    if (e->type() == QEvent::WindowActivate)
        Form_Activate();
    else if (e->type() == QEvent::WindowDeactivate)
        Form_Deactivate();
    return QDialog::event(e);
}

void FrmShowLayersDialog::Form_Activate()
{
    try {
        const LayersCollection& layers = frmMain().Map1->Layers();
        for (int i = 0; i < BoxCount; ++i) {
            QCheckBox* box = chkShowLayers[size_t(i)];
            box->setVisible(i < layers.Count());
            if (Visible(box)) {
                const MapLayerPtr layer = layers.Item(i);
                box->setText(layer->Name);
                box->setChecked(layer->Visible);
            }
        }
    } catch (...) {
        ErrorMessage(" Error while activating layer list form. Error Source:frmShowLayersDialog.Form_Activate()", 48);
    }
}

void FrmShowLayersDialog::Form_Deactivate()
{
    try {
        frmMain().UpdateInterface();
    } catch (...) {
        ErrorMessage(" Error while deactivating layer list form. Error Source:frmShowLayersDialog.Form_Deactivate()", 48);
    }
}

void FrmShowLayersDialog::OKButton_Click()
{
    try {
        bQueryDrawn = false;
        Map* map = frmMain().Map1;
        for (int i = 0; i < BoxCount; ++i) {
            QCheckBox* box = chkShowLayers[size_t(i)];
            if (Visible(box))
                map->Layers().Item(i)->Visible = box->isChecked();
        }
        map->Refresh();
        hide();
    } catch (...) {
        ErrorMessage(" Error while accepting new set of layer list. Error Source:frmShowLayersDialog.OKButton_Click()", 48);
    }
}

void FrmShowLayersDialog::CancelButton_Click()
{
    try {
        hide();
    } catch (...) {
        ErrorMessage(" Error while cancelling the layer list form. Error Source:frmShowLayersDialog.CancelButton_Click()", 48);
    }
}

FrmShowLayersDialog& frmShowLayersDialog()
{
    if (!g_dialog)
        g_dialog = new FrmShowLayersDialog(&frmMain());
    return *g_dialog;
}

bool frmShowLayersDialogExists()
{
    return !g_dialog.isNull();
}

void unloadFrmShowLayersDialog()
{
    if (g_dialog) {
        FrmShowLayersDialog* d = g_dialog;
        g_dialog = nullptr;
        d->hide();
        d->deleteLater();
    }
}
