#include "queryset/catalogue.h"

#include <array>
#include <vector>

#include "app/frmMain.h"
#include "app/messages.h"
#include "mapping/platform.h"
#include "mapping/seam.h"
#include "queryset/panel.h"
#include "queryset/value_sources.h"
#include "workspace/state.h"
#include "workspace/visibility.h"

namespace {

// The names are the one identifier of a query: every module branches on them.
const std::array<const char*, 8> QueryList = {
    "No Query (Base Map)",
    "Wind by Power Density",
    "Best wind - protected areas",
    "Best wind + land use",
    "Best wind + roads",
    "Best wind + transmission",
    "Best wind (all)",
    "Best Solar X kWh/m2/day",
};
// "Best solar off-grid systems" is known to the panel fill and the query run
// but is deliberately left out of the list.

struct Requirement {
    const char* name;
    std::vector<const char*> files;  // checked in this order
};

// The wind queries, in the order the name stage compares them.
const std::vector<Requirement> WindQueries = {
    {"Wind by Power Density", {"20_wind.shp"}},
    {"Best wind - protected areas", {"20_wind.shp", "31_protectedarea.shp"}},
    {"Best wind + land use", {"20_wind.shp", "02_landuse.shp"}},
    {"Best wind + roads", {"20_wind.shp", "43_roads.shp"}},
    {"Best wind + transmission", {"20_wind.shp", "44_transmissionline.shp"}},
    {"Best wind (all)",
     {"20_wind.shp", "31_protectedarea.shp", "02_landuse.shp", "43_roads.shp", "44_transmissionline.shp"}},
};

// A solar resource is named by its layer's display name.
const std::vector<Requirement> SolarResources = {
    {"40 km Solar Concentrators Annual Average(KWH/M2/DAY)", {"11_solar_direct.shp"}},
    {"40 km Solar PV Annual Average(KWH/M2/DAY)", {"12_solar_tilt.shp"}},
    {"10 KM Solar Concentrators Annual Average(KWH/M2/DAY)", {"13_solar_direct.shp"}},
    {"10 km Solar Global Horizontal Annual Average(KWH/M2/DAY)", {"14_solar_glo.shp"}},
    {"40 km Solar Global Horizontal Annual Average(KWH/M2/DAY)", {"15_solar_glo.shp"}},
    {"10 km Solar PV Annual Average(KWH/M2/DAY)", {"16_solar_tilt.shp"}},
};

QString comparable(const QString& s)
{
    return conv::Upper(conv::Trim(s));
}

}  // namespace

void FillcboSelectQuery(ComboBox* combo)
{
    try {
        combo->Clear();
        for (const char* name : QueryList) combo->AddItem(QString::fromLatin1(name));
        combo->setListIndex(0);
    } catch (...) {
        ErrorMessage(" Error while filling select query. Error Source:md_functions.FillcboSelectQuery()", 48);
    }
}

bool isQueryPossible(const QString& queryName, QString& message)
{
    bool result = true;
    try {
        const QString key = comparable(queryName);
        const Requirement* wind = nullptr;
        for (const Requirement& q : WindQueries)
            if (key == comparable(q.name)) { wind = &q; break; }

        if (wind) {
            result = isLayerExist("20_wind.shp", message);
            if (!result) return false;
            // Warns on every selection of a wind query; never refuses.
            getMaxWindDensity();

            for (const char* file : wind->files) {
                result = isLayerExist(QString::fromLatin1(file), message);
                if (!result) return false;
            }
            return result;
        }
        for (const Requirement& r : SolarResources) {
            if (key == comparable(r.name)) {
                result = isLayerExist(QString::fromLatin1(r.files.front()), message);
                return result;
            }
        }
    } catch (...) {
        seam::FailureBox("Error in isQueryPossible() function. Error while trying to check whether the query can be "
                         "performed. ");
    }
    return result;
}

bool isLayerExist(const QString& fileName, QString& message)
{
    bool result = false;
    try {
        const LayersCollection& layers = frmMain().Map1->Layers();
        for (int i = 0; i < layers.Count(); ++i) {
            result = false;
            // Made inside the walk: with no layers the caller's text stays as it was.
            message = "This query requires " + fileName + " shapefile.";
            if (comparable(layers.Item(i)->Tag) == comparable(fileName)) {
                result = true;
                message = "";
                break;
            }
        }
    } catch (...) {
        seam::FailureBox("Error in isLayerExist() function. Error while trying to check the existence of a layer. ");
        result = false;
    }
    return result;
}

void HandleQuerySelect()
{
    try {
        SetQueryInputControls();
        const LayersCollection& layers = frmMain().Map1->Layers();
        for (int i = 0; i < layers.Count(); ++i) SetDefaultVisibility(layers.Item(i));
    } catch (...) {
        ErrorMessage("Error Source:md_functions.HandleQuerySelect()", 48);
    }
}

void FrmMain::cboSelectQuery_Click()
{
    try {
        cmdShowData->setVisible(false);
        QString message;
        if (!isQueryPossible(cboSelectQuery->Text(), message)) {
            seam::MsgBox(message);
            return;
        }
        if (cboSelectQuery->ListIndex() >= 1 && bFirstQuery) {
            bFirstQuery = false;
            fraStartUpImage->setVisible(false);
            fraEditLegend->setVisible(true);
        }
        if (!bFirstQuery) {
            fraEditQueryParameters->setTitle(cboSelectQuery->Text());
            HandleQuerySelect();
        }
        lblWorking->setText("");
    } catch (...) {
        ErrorMessage(" Error while trying to select a query. Error Source:frmMain.cboSelectQuery_Click()", 48);
    }
}

void FrmMain::cboQueryDropDown3_Click()
{
    try {
        cmdShowData->setVisible(false);
        if (!bSkipDropDown3Click) {
            QString message;
            if (!isQueryPossible(cboQueryDropDown3->Text(), message)) {
                DisplayError(message);
                seam::MsgBox(message);
                return;
            }
        } else {
            bSkipDropDown3Click = false;
        }
    } catch (...) {
        ErrorMessage(" Error while trying to select Solar queries. Error Source:frmMain.cboQueryDropDown3_Click()", 48);
    }
}
