#include "queryset/validation.h"

#include "app/frmMain.h"
#include "app/messages.h"
#include "mapping/platform.h"

namespace {

constexpr double HighestWindDensity = 10000;  // also what "Max" stands for

// The proximity range is judged in 32-bit floats, so that a typed 0.001 meets
// the lower limit exactly.
bool inProximityRange(const QString& text)
{
    const float km = conv::ToSingle(text);
    return !(km < 0.001f || km > 25.0f);
}

bool anyLandUseSelected(const ListBox* list)
{
    for (int i = 0; i < list->ListCount(); ++i)
        if (list->Selected(i)) return true;
    return false;
}

bool refuse(const QString& text)
{
    DisplayError(text);
    return false;
}

bool refuseWithFocus(const QString& text, QWidget* box)
{
    DisplayError(text);
    box->setFocus();
    return false;
}

bool windRangeAccepted(FrmMain& f)
{
    // "Max" is recognised with case; blanks around it do not matter.
    const QString maxText = f.cboQueryDropDown2->Text();
    const bool maxIsMax = conv::Trim(maxText) == "Max";

    const QString minText = f.cboQueryDropDown->Text();
    if (!conv::IsNumeric(minText)) return refuse("Please enter a numeric value for Min. Wind Power Density");
    if (!maxIsMax && !conv::IsNumeric(maxText))
        return refuse("Please enter a numeric value for Max. Wind Power Density");

    const double minimum = conv::ToDouble(minText);
    const double maximum = maxIsMax ? HighestWindDensity : conv::ToDouble(maxText);
    if (maximum <= minimum) return refuse("Max. Wind Power Density should be > Min. Wind Power Density");
    if (minimum < 0 || minimum > HighestWindDensity)
        return refuse("Min. Wind Power Density should be >= 0 and " + conv::NumText(HighestWindDensity));
    if (maximum < 0 || maximum > HighestWindDensity)
        return refuse("Max. Wind Power Density should be >= 0 and " + conv::NumText(HighestWindDensity));
    return true;
}

bool solarRangeAccepted(FrmMain& f)
{
    const QString minText = f.cboQueryDropDown->Text();
    const QString maxText = f.cboQueryDropDown2->Text();
    if (!conv::IsNumeric(minText)) return refuse("Please enter a numeric value for Min. Solar Resource");
    if (!conv::IsNumeric(maxText)) return refuse("Please enter a numeric value for Max. Solar Resourcey");
    const double minimum = conv::ToDouble(minText);
    const double maximum = conv::ToDouble(maxText);
    if (maximum <= minimum) return refuse("Max. Solar Resource should be > Min. Solar Resource");
    if (minimum > 10 || minimum < 0) return refuse("Min. Solar Resource should be >= 0 and <= 10");
    if (maximum > 10 || maximum < 0) return refuse("Max. Solar Resource should be >= 0 and <= 10");
    return true;
}

}  // namespace

bool CheckInputs()
{
    bool result = false;
    try {
        FrmMain& f = frmMain();
        const QString query = f.cboSelectQuery->Text();
        if (conv::Upper(conv::Trim(query)) == conv::Upper(conv::Trim("No Query (Base Map)"))) return true;

        const bool solar = conv::Upper(conv::Trim(query)) == conv::Upper(conv::Trim("Best Solar X kWh/m2/day"));
        if (!(solar ? solarRangeAccepted(f) : windRangeAccepted(f))) return false;

        if (query == "Best wind + land use") {
            if (!anyLandUseSelected(f.lstQuery1)) return refuse("Please select a land use.");
        } else if (query == "Best wind + roads" || query == "Best wind + transmission") {
            const QString distance = f.txtQuery1[2]->Text();
            if (!conv::IsNumeric(distance)) return refuse("Please enter a number for proximity value.");
            if (!inProximityRange(distance)) return refuse("Proximity value must be >=0.001 and <= 25km.");
        } else if (query == "Best wind (all)") {
            // Only this query moves the focus to the box at fault.
            TextBox* transmission = f.txtQuery1[1];
            TextBox* roads = f.txtQuery1[2];
            if (!conv::IsNumeric(transmission->Text()))
                return refuseWithFocus("Please enter a number for proximity value.", transmission);
            if (!inProximityRange(transmission->Text()))
                return refuseWithFocus("Proximity to transmission must be >=0.001 and <= 25km.", transmission);
            if (!conv::IsNumeric(roads->Text()))
                return refuseWithFocus("Please enter a number for proximity value.", roads);
            if (!inProximityRange(roads->Text()))
                return refuseWithFocus("Proximity to roads must be >=0.001 and <= 25km.", roads);
            if (!anyLandUseSelected(f.lstQuery1)) return refuse("Please select a land use.");
        }
        result = true;
    } catch (...) {
        ErrorMessage(" Error while validating input parameters. Error Source:md_functions.CheckInputs()", 48);
        result = false;
    }
    return result;
}
