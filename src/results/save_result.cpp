#include "results/save_result.h"

#include "app/frmMain.h"
#include "app/messages.h"
#include "mapping/dataconnection.h"
#include "mapping/maplayer.h"
#include "mapping/seam.h"
#include "workspace/state.h"

namespace {

// The dialog as the save sets it up: ask before overwriting, keep the working
// directory; it starts where the last open left it.
seam::FileRequest saveLayerRequest()
{
    seam::FileRequest request;
    request.save = true;
    request.flags = 10;
    request.fileName = QString();
    request.title = "Save Layer";
    request.filter = "ESRI Shapefiles (*.shp)|*.shp";
    request.defaultExt = ".shp";
    request.initialDir = sDataDirectory;
    return request;
}

// The projection of the layer the result came from, so that other programs
// place the saved polygons where the map shows them. None when that layer is
// not loaded or has no projection file.
CoordinateSystemPtr resultCoordinateSystem()
{
    const QString file = sFieldName == "WINDPWRD" ? QStringLiteral("20_wind.shp") : sSolarLayerFile;
    if (file.isEmpty() || !cLayerIndex || !cLayerIndex->contains(file) || !frmMainExists()) return nullptr;
    const LayersCollection& layers = frmMain().Map1->Layers();
    const int index = cLayerIndex->Item(file);
    if (index < 0 || index >= layers.Count()) return nullptr;
    const MapLayerPtr layer = layers.Item(index);
    if (!layer->GeoDataset()) return nullptr;
    return layer->CoordinateSystem();
}

}  // namespace

void SaveTrackingLayer()
{
    try {
        if (!cShapes || cShapes->Count() == 0) return;

        const int count = cShapes->Count();
        if (count > 50) {
            const seam::Answer answer =
                seam::MsgBox("It may take few minutes to save " + QString::number(count)
                                 + " features. Do you want to continue? ",
                             seam::Buttons::YesNo);
            if (answer == seam::Answer::No) return;
        }

        const seam::FileAnswer chosen = seam::ShowFileDialog(saveLayerRequest());
        if (chosen.cancelled) return;
        if (chosen.fileName.isEmpty()) return;

        // Cut at the first occurrence of the title, even where the same text
        // also stands earlier in the path; a title not in the path is a misuse.
        const QString fileTitle = chosen.fileTitle;
        const int at = chosen.fileName.indexOf(fileTitle, 0, Qt::CaseSensitive);
        if (at < 0) throw MapError("file title not in file name");
        const QString directory = chosen.fileName.left(at);

        auto connection = std::make_shared<DataConnection>();
        connection->Database = directory;
        if (!connection->Connect()) return;

        if (fileTitle.size() < 4) throw MapError("file title too short");
        const QString baseName = fileTitle.left(fileTitle.size() - 4);

        auto desc = std::make_shared<TableDesc>();
        desc->setFieldCount(1);
        if (sFieldName.isEmpty()) return;
        desc->setFieldName(0, sFieldName);
        desc->setFieldType(0, moDouble);
        desc->setFieldPrecision(0, 15);
        desc->setFieldScale(0, 1);

        const GeoDatasetPtr dataset = connection->AddGeoDataset(baseName, moPolygon, desc, resultCoordinateSystem());
        // An existing set is replaced, so no dataset means the directory
        // could not take the new one: that is a failure the user must hear of.
        if (!dataset) throw MapError("shapefile could not be made");

        auto layer = std::make_shared<MapLayer>();
        layer->setGeoDataset(dataset);

        for (int i = 0; i < count; ++i) {
            const QString key = QString::number(i);
            const RecordsetPtr records = layer->Records();
            records->AddNew();
            records->Fields().Item("Shape").setShape(cShapes->Item(key));
            if (!cFieldValues) throw MapError("no field values");
            records->Fields().Item(sFieldName).setValue(cFieldValues->Item(key));
            records->Update();
        }
        layer->Records()->StopEditing();
    } catch (...) {
        ErrorMessage(" Error Source:md_query_functions2.SaveTrackingLayer()", 48);
    }
}

void FrmMain::mnuSave_Click()
{
    try {
        SaveTrackingLayer();
    } catch (...) {
        ErrorMessage(" Error while trying to save data. Error Source:frmMain.mnuSave_Click()", 48);
    }
}

// Reachable from nothing: no menu entry or other code calls it.
void FrmMain::mnuSaveAs_Click()
{
    try {
        seam::ShowFileDialog(saveLayerRequest());
    } catch (...) {
        ErrorMessage(" Error while trying to save the output using saveAs(). Error Source:frmMain.mnuSaveAs_Click()", 48);
    }
}
