// Opening a dataset: every standard shapefile of the picked file's directory
// becomes a styled layer of the map, in the order of the directory listing.
#include "workspace/loading.h"

#include <QDir>

#include "app/frmMain.h"
#include "app/messages.h"
#include "mapping/controls.h"
#include "mapping/legend.h"
#include "mapping/map.h"
#include "mapping/seam.h"
#include "presentation/layer_properties.h"
#include "workspace/state.h"
#include "workspace/visibility.h"

namespace {

// The part of the full name in front of the first occurrence of the bare name.
QString directoryOf(const QString& fileTitle, const QString& fileName)
{
    const int at = fileName.indexOf(fileTitle);
    if (at < 0)
        throw MapError("file title not in file name");
    return fileName.left(at);
}

// The listing as the file system hands it out: normal files only, by name.
QStringList listShapefiles(const QString& directory)
{
    QDir dir(directory);
    return dir.entryList({QStringLiteral("*.shp")}, QDir::Files, QDir::Name | QDir::IgnoreCase);
}

}  // namespace

void FrmMain::mnuOpen_Click()
{
    seam::FileRequest request;
    request.title = QStringLiteral("Open Dataset");
    request.filter = QStringLiteral("ESRI Shapefiles (*.shp)|*.shp");
    request.defaultExt = QStringLiteral(".shp");
    request.initialDir = sDataDirectory;
    const seam::FileAnswer answer = seam::ShowFileDialog(request);
    if (answer.cancelled || answer.fileName.isEmpty())
        return;
    WaitCursor busy;
    LoadProject(answer.fileTitle, answer.fileName, Map1, legend);
}

void LoadProject(const QString& fileTitle, const QString& fileName, Map* map, Legend* legendControl)
{
    try {
        map->Layers().Clear();
        cLayerIndex = std::make_shared<Collection<int>>();
        if (fileName.isEmpty())
            return;

        sDataDirectory = directoryOf(fileTitle, fileName);

        auto connection = std::make_shared<DataConnection>();
        connection->Database = sDataDirectory;
        oDataConnection = connection;

        if (!connection->Connect()) {
            seam::FailureBox(QStringLiteral("No data found... Data Connection error #") + QString::number(connection->ConnectError),
                             seam::Icon::Exclamation);
        } else {
            map->Layers().Clear();
            const QStringList entries = listShapefiles(sDataDirectory);
            if (!entries.isEmpty()) {
                for (qsizetype i = 0;;) {
                    const QString name = entries.at(i);
                    // Both are asked for every entry, so a file that is not
                    // standard is still opened, then dropped.
                    GeoDatasetPtr ds = connection->FindGeoDataset(name);
                    const bool standard = StandardFile(name);
                    if (ds && standard) {
                        auto layer = std::make_shared<MapLayer>();
                        layer->setGeoDataset(ds);
                        layer->Tag = name;
                        SetLayerProperties(layer, name, QString());
                        map->Layers().Add(layer);
                    }
                    if (++i >= entries.size())
                        break;
                    // The limit is looked at only when a further entry waits.
                    if (map->Layers().Count() > MAX_LAYERS) {
                        seam::MsgBox(QStringLiteral("Sorry, this program was not meant to handle more than ")
                                     + QString::number(MAX_LAYERS)
                                     + QStringLiteral(" layers.  Please reduce the number of shape (.shp) files in the data directory."));
                        break;
                    }
                }

                const LayersCollection& layers = frmMain().Map1->Layers();
                for (int i = 0; i < layers.Count(); ++i) {
                    const MapLayerPtr layer = layers.Item(i);
                    cLayerIndex->Add(i, layer->Tag);
                    SetDefaultVisibility(layer);
                }
                legendControl->ClearLegend();
                legendControl->FillLegend(true);
            }
        }
        map->Refresh();
    } catch (...) {
        ErrorMessage(" Error while loading the project. Error Source:md_functions.LoadProject()", 48);
    }
}

bool StandardFile(const QString& fileName)
{
    bool result = false;
    try {
        const QString wanted = fileName.toLower();
        for (const QString& slot : sStandardFiles) {
            if (slot.toLower() == wanted) {
                result = true;
                break;
            }
        }
    } catch (...) {
        ErrorMessage("Error Source:md_functions.StandardFile()", 48);
    }
    return result;
}

// Add Layer: one file, unstyled, with its directory as the tag. No menu leads
// here.
void FrmMain::mnuAdd_Click()
{
    try {
        seam::FileRequest request;
        request.title = QStringLiteral("Add Layer");
        request.filter = QStringLiteral("*.shp");
        request.defaultExt = QStringLiteral("shp");
        request.initialDir = sDataDirectory;
        const seam::FileAnswer answer = seam::ShowFileDialog(request);
        if (answer.cancelled || answer.fileName.isEmpty())
            return;

        sDataDirectory = directoryOf(answer.fileTitle, answer.fileName);
        auto connection = std::make_shared<DataConnection>();
        connection->Database = sDataDirectory;
        if (connection->Connect()) {
            GeoDatasetPtr ds = connection->FindGeoDataset(answer.fileTitle);
            if (!ds) {
                seam::FailureBox(QStringLiteral("Error opening shapefile ") + answer.fileTitle);
                return;
            }
            auto layer = std::make_shared<MapLayer>();
            layer->setGeoDataset(ds);
            layer->Name = answer.fileTitle;
            layer->Tag = sDataDirectory;
            Map1->Layers().Add(layer);
        } else {
            seam::FailureBox(QStringLiteral("Data Connection error #") + QString::number(connection->ConnectError),
                             seam::Icon::Exclamation);
        }
        UpdateInterface();
    } catch (...) {
        ErrorMessage(" Error while trying to add a new shape file. Error Source:frmMain.mnuAdd_Click()", 48);
    }
}
