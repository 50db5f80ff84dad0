#include "queryset/panel.h"

#include <cmath>

#include "app/frmMain.h"
#include "app/messages.h"
#include "mapping/platform.h"
#include "queryset/catalogue.h"
#include "queryset/list_index.h"
#include "queryset/value_sources.h"
#include "workspace/state.h"

namespace {

void place(QWidget* w, int left, int top, int width, int height)
{
    SetTwips(w, left, top, width, height);
    w->setVisible(true);
}

void caption(QLabel* label, const QString& text, int left, int top, int width, int height)
{
    label->setText(text);
    place(label, left, top, width, height);
}

// The wind range: minimum and maximum, each with its label. "Best wind (all)"
// labels the maximum with lblQuery1(3), as lblQuery1(1) is its transmission label.
void windRangeLabels(FrmMain& f, int maxLabel)
{
    caption(f.lblQuery1[0], "Min Wind Power Density:", 90, 240, 2805, 255);
    caption(f.lblQuery1[size_t(maxLabel)], "Max Wind Power Density:", 90, 600, 2805, 255);
}

void windRangeCombos(FrmMain& f)
{
    place(f.cboQueryDropDown, 2000, 180, 900, 315);
    place(f.cboQueryDropDown2, 2000, 540, 900, 315);
}

void landUseList(FrmMain& f)
{
    place(f.lstQuery1, 90, 1890, 2805, 840);
    caption(f.lblQuery1[4], "Choose which land uses are suitable:", 90, 1680, 2805, 255);
}

void defaultDistanceIfNotNumeric(TextBox* box)
{
    if (!conv::IsNumeric(box->Text())) box->setText("2");
}

// One decimal, halves to the even digit, as the platform rounded.
double roundToOneDecimal(double v)
{
    return std::nearbyint(v * 10.0) / 10.0;
}

void fillSolarLists(FrmMain& f)
{
    ComboBox* resources = f.cboQueryDropDown3;
    resources->Clear();
    resources->AddItem("40 km Solar Concentrators Annual Average(KWH/M2/DAY)");
    resources->AddItem("40 km Solar PV Annual Average(KWH/M2/DAY)");
    resources->AddItem("10 KM Solar Concentrators Annual Average(KWH/M2/DAY)");
    resources->AddItem("10 km Solar Global Horizontal Annual Average(KWH/M2/DAY)");
    QString message;
    const bool has16 = isLayerExist("16_solar_tilt.shp", message);
    const bool has15 = isLayerExist("15_solar_glo.shp", message);
    if (has16 || has15) {
        resources->AddItem("40 km Solar Global Horizontal Annual Average(KWH/M2/DAY)");
        resources->AddItem("10 km Solar PV Annual Average(KWH/M2/DAY)");
    }

    f.cboQueryDropDown->Clear();
    f.cboQueryDropDown2->Clear();

    int found = -1;
    for (int i = 0; i < resources->ListCount(); ++i) {
        if (isQueryPossible(resources->List(i), message)) {
            found = i;
            break;
        }
    }

    if (found >= 0) {
        const int id = GetSolarResourceLayerID(resources->List(found));
        auto renderer = std::dynamic_pointer_cast<ClassBreaksRenderer>(f.Map1->Layers().Item(id)->Renderer);
        if (!renderer) throw MapError("solar layer without class breaks");
        for (int j = 0; j < renderer->BreakCount(); ++j) {
            const QString text = conv::NumText(roundToOneDecimal(renderer->Break(j)));
            f.cboQueryDropDown->AddItem(text);
            f.cboQueryDropDown2->AddItem(text);
        }
        SetListIndex(f.cboQueryDropDown, 3);
        SetListIndex(f.cboQueryDropDown2, f.cboQueryDropDown2->ListCount() - 1);
    }

    // The shown resource is always the first, also when the breaks came from a later one.
    bSkipDropDown3Click = true;
    SetListIndex(resources, 0);

    if (found < 0) {
        for (int k = 0; k <= 14; ++k) {
            const QString text = conv::NumText(2.0 + 0.5 * k);
            f.cboQueryDropDown->AddItem(text);
            f.cboQueryDropDown2->AddItem(text);
        }
        SetListIndex(f.cboQueryDropDown, 3);
        SetListIndex(f.cboQueryDropDown2, f.cboQueryDropDown2->ListCount() - 1);
    }
}

}  // namespace

void SetQueryInputControls()
{
    try {
        FrmMain& f = frmMain();

        for (TextBox* t : f.txtQuery1) t->setVisible(false);
        for (QLabel* l : f.lblQuery1) {
            l->setVisible(false);
            SetLeft(l, 570);
            SetWidth(l, 2400);
        }
        f.lstQuery1->setVisible(false);
        f.chkProtectedAreas->setVisible(false);
        SetTop(f.txtQuery1[1], 540);
        SetTop(f.txtQuery1[2], 900);
        SetTop(f.lblQuery1[1], 600);
        SetTop(f.lblQuery1[2], 960);
        SetLeft(f.cboQueryDropDown, 90);
        SetTop(f.cboQueryDropDown, 540);
        SetWidth(f.cboQueryDropDown, 2835);
        f.cboQueryDropDown->setVisible(false);
        f.cboQueryDropDown2->setVisible(false);
        f.cboQueryDropDown3->setVisible(false);

        const QString query = f.cboSelectQuery->Text();
        if (query == "Wind by Power Density" || query == "Best wind - protected areas") {
            windRangeLabels(f, 1);
            SetQueryListbox();
            windRangeCombos(f);
        } else if (query == "Best wind + land use") {
            windRangeLabels(f, 1);
            SetQueryListbox();
            windRangeCombos(f);
            landUseList(f);
        } else if (query == "Best wind + roads") {
            windRangeLabels(f, 1);
            SetQueryListbox();
            windRangeCombos(f);
            // The road distance starts again at 2 on every selection.
            f.txtQuery1[2]->setText("2");
            place(f.txtQuery1[2], 90, 900, 500, 285);
            caption(f.lblQuery1[2], " kM from roads", 570, 960, 2400, 255);
        } else if (query == "Best wind + transmission") {
            windRangeLabels(f, 1);
            SetQueryListbox();
            windRangeCombos(f);
            defaultDistanceIfNotNumeric(f.txtQuery1[2]);
            place(f.txtQuery1[2], 90, 900, 500, 285);
            caption(f.lblQuery1[2], " kM from transmission lines", 570, 960, 2400, 255);
        } else if (query == "Best wind (all)") {
            windRangeLabels(f, 3);
            defaultDistanceIfNotNumeric(f.txtQuery1[1]);
            place(f.txtQuery1[1], 90, 900, 500, 285);
            caption(f.lblQuery1[1], " kM from transmission lines", 570, 960, 2400, 255);
            defaultDistanceIfNotNumeric(f.txtQuery1[2]);
            place(f.txtQuery1[2], 90, 1260, 500, 285);
            caption(f.lblQuery1[2], " kM from roads", 570, 1320, 2400, 255);
            SetQueryListbox();
            windRangeCombos(f);
            landUseList(f);
            caption(f.lblQuery1[5], "remove protected areas ", 1770, 1260, 1170, 465);
            place(f.chkProtectedAreas, 2130, 1290, 225, 195);
        } else if (query == "Best Solar X kWh/m2/day") {
            caption(f.lblQuery1[0], "Min Solar Resource", 90, 240, 2805, 255);
            caption(f.lblQuery1[1], "Max Solar Resource", 90, 600, 2805, 255);
            SetQueryListbox();
            place(f.cboQueryDropDown, 2300, 180, 650, 315);
            place(f.cboQueryDropDown2, 2300, 540, 650, 315);
            place(f.cboQueryDropDown3, 120, 1890, 2775, 315);
            caption(f.lblQuery1[4], "Choose which solar resource:", 90, 1680, 2805, 255);
        }

        f.UpdateInterface();
    } catch (...) {
        ErrorMessage(" Error Source:md_functions.SetQueryInputControls()", 48);
    }
}

void SetQueryListbox()
{
    try {
        FrmMain& f = frmMain();
        const QString query = f.cboSelectQuery->Text();
        if (query == "Wind by Power Density" || query == "Best wind - protected areas" ||
            query == "Best wind + roads" || query == "Best wind + transmission") {
            FillWindDensityDropDowns();
        } else if (query == "Best wind + land use" || query == "Best wind (all)") {
            FillWindDensityDropDowns();
            FillLandUseDropDown();
        } else if (query == "Best Solar X kWh/m2/day" || query == "Best solar off-grid systems") {
            fillSolarLists(f);
        }
    } catch (...) {
        ErrorMessage(" Error Source:md_functions.SetQueryListbox()", 48);
    }
}
