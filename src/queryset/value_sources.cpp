#include "queryset/value_sources.h"

#include "app/frmMain.h"
#include "app/messages.h"
#include "mapping/platform.h"
#include "mapping/recordset.h"
#include "mapping/seam.h"
#include "queryset/list_index.h"
#include "workspace/state.h"

namespace {

const QString WindShapefileMessage =
    "Cannot perform the Query. Please check the Wind Energy shapefile.This can happen if there is no WINDPWRD "
    "field in the shape file.";

}  // namespace

// The offered wind values are the breaks of the wind layer's own renderer.
void FillWindDensityDropDowns()
{
    try {
        FrmMain& f = frmMain();
        f.cboQueryDropDown->Clear();
        f.cboQueryDropDown2->Clear();
        auto renderer = std::dynamic_pointer_cast<ClassBreaksRenderer>(LayerByFile("20_wind.shp")->Renderer);
        if (!renderer) throw MapError("wind layer without class breaks");
        for (int i = 0; i < renderer->BreakCount(); ++i) {
            const QString text = conv::NumText(renderer->Break(i));
            f.cboQueryDropDown->AddItem(text);
            f.cboQueryDropDown2->AddItem(text);
        }
        SetListIndex(f.cboQueryDropDown, 3);
        f.cboQueryDropDown2->AddItem("Max");
        // The last break, not "Max".
        SetListIndex(f.cboQueryDropDown2, f.cboQueryDropDown2->ListCount() - 2);
    } catch (...) {
        ErrorMessage(" Error Source:md_functions.FillWindDensityDropDowns()", 48);
    }
}

void FillLandUseDropDown()
{
    try {
        FrmMain& f = frmMain();
        f.lstQuery1->Clear();
        RecordsetPtr records = LayerByFile("02_landuse.shp")->SearchExpression("FeatureID > -1");
        if (!records) throw MapError("no land-use records");
        Strings names;
        while (!records->Eof()) {
            names.Add(records->Fields().Item("LAND_USE").toText());
            records->MoveNext();
        }
        records.reset();
        for (int i = 0; i < names.Count(); ++i) f.lstQuery1->AddItem(names.Item(i));
    } catch (...) {
        ErrorMessage(" Error Source:md_functions.FillLandUseDropDown()", 48);
    }
}

int GetSolarResourceLayerID(const QString& layerName)
{
    int result = 0;
    try {
        const LayersCollection& layers = frmMain().Map1->Layers();
        for (int i = 0; i < layers.Count(); ++i) {
            if (layers.Item(i)->Name == layerName) {
                result = i;
                break;
            }
        }
    } catch (...) {
        ErrorMessage(" Error Source:md_functions.GetSolarResourceLayerID()", 48);
    }
    return result;
}

// Warns when the wind data cannot reach the first drawn class; never refuses.
void getMaxWindDensity()
{
    RecordsetPtr records;
    bool searchFailed = false;
    try {
        records = LayerByFile("20_wind.shp")->SearchExpression("WINDPWRD >= 0");
    } catch (...) {
        searchFailed = true;
    }
    try {
        if (searchFailed) {
            seam::FailureBox(WindShapefileMessage);
            return;
        }
        if (!records) return;
        StatisticsPtr stats = records->CalculateStatistics("WINDPWRD");
        if (!stats) {
            seam::FailureBox(WindShapefileMessage);
            return;
        }
        const double maxDensity = stats->Max;
        if (maxDensity > 200) return;
        const QString m = conv::NumText(maxDensity);
        seam::MsgBox("The query results will be shown in light gray. Maximum Wind Power Density (" + m +
                     ") is less than 200. So you may not get proper rendering in the output map. You will have to "
                     "type in a value less than " +
                     m + " to perform any Wind Energy query.");
    } catch (...) {
        seam::FailureBox("Error in getMaxWindDensity() function. Error while trying calculate the max wind energy. ");
    }
}
