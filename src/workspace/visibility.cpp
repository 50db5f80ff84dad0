// Which layers show: the default after a load or a query selection, the label
// that lists them, and the switches of the legend and the Change Layers dialog.
#include "workspace/visibility.h"

#include <QSet>

#include "app/frmMain.h"
#include "app/messages.h"
#include "mapping/map.h"
#include "mapping/seam.h"
#include "workspace/frmShowLayersDialog.h"
#include "workspace/state.h"

namespace {

// Compared exactly, with case: a name that differs in case keeps its state.
const QSet<QString> kHiddenByDefault = {
    "01_elevation.shp",     "02_landuse.shp",        "11_solar_direct.shp",     "12_solar_tilt.shp",
    "20_wind.shp",          "30_lakes.shp",          "31_protectedarea.shp",    "36_subcountrybnd3.shp",
    "37_subcountrybnd2.shp", "40_rivers.shp",        "42_railroad.shp",         "44_transmissionline.shp",
    "50_protectedarea.shp", "52_facilities.shp",     "53_airports.shp",
};
const QSet<QString> kShownByDefault = {"38_subcountrybnd1.shp", "51_powerplant.shp"};
const QSet<QString> kShownWhenSmall = {"43_roads.shp", "59_cities.shp"};

}  // namespace

void SetDefaultVisibility(const MapLayerPtr& layer)
{
    try {
        if (!layer)
            throw MapError("no layer");
        const QString tag = layer->Tag;
        if (kHiddenByDefault.contains(tag))
            layer->Visible = false;
        else if (kShownByDefault.contains(tag))
            layer->Visible = true;
        else if (kShownWhenSmall.contains(tag))
            layer->Visible = isSetLayerVisible(layer);
    } catch (...) {
        ErrorMessage("Erro while setting default visibility Error Source:md_functions.SetDefaultVisibility()", 48);
    }
}

bool isSetLayerVisible(const MapLayerPtr& layer)
{
    try {
        if (!layer)
            throw MapError("no layer");
        const RecordsetPtr records = layer->Records();
        if (!records)
            throw MapError("layer without records");
        return records->Count() < 50;
    } catch (...) {
        seam::FailureBox("Error in isSetLayerVisible() function. Error while trying to count the number of features in a layer layer and set its visibility. ");
        return false;
    }
}

void FrmMain::cmdChangeLayers_Click()
{
    try {
        frmShowLayersDialog().exec();
    } catch (...) {
        ErrorMessage(" Error while trying to load change layers form. Error Source:frmMain.cmdChangeLayers_Click()", 48);
    }
}

void FrmMain::Fill_lblLayersCurrentlyDisplayed()
{
    try {
        const LayersCollection& layers = Map1->Layers();
        if (layers.Count() == 0) {
            lblLayersCurrentlyDisplayed->setText(QStringLiteral("- No layers found -"));
            return;
        }
        QString text;
        for (int i = 0; i < layers.Count(); ++i) {
            const MapLayerPtr layer = layers.Item(i);
            if (layer->Visible)
                text += layer->Name + QStringLiteral("; ");
        }
        lblLayersCurrentlyDisplayed->setText(text);
    } catch (...) {
        ErrorMessage(" Error while filling Layer list label. Error Source:frmMain.Fill_lblLayersCurrentlyDisplayed()", 48);
    }
}

void FrmMain::legend_AfterSetLayerVisible(int index, bool isVisible)
{
    try {
        bQueryDrawn = false;
        Map1->Refresh();
    } catch (...) {
        ErrorMessage(" Error while changing the layer visibility from legend panel. Error Source:frmMain.legend_AfterSetLayerVisible()", 48);
    }
}
