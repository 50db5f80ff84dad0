#include "mapping/dataconnection.h"

#include <QDir>
#include <QFileInfo>

bool DataConnection::Connect()
{
    connected_ = false;
    QFileInfo fi(Database);
    if (Database.isEmpty() || !fi.exists() || !fi.isDir()) {
        ConnectError = 1;
        return false;
    }
    if (!fi.isReadable() || !QDir(Database).isReadable()) {
        ConnectError = 2;
        return false;
    }
    ConnectError = 0;
    connected_ = true;
    return true;
}

GeoDatasetPtr DataConnection::FindGeoDataset(const QString& fileName)
{
    if (!connected_) return nullptr;
    QString name = fileName;
    if (!name.endsWith(".shp", Qt::CaseInsensitive)) name += ".shp";
    return GeoDataset::open(QDir(Database).filePath(name));
}

GeoDatasetPtr DataConnection::AddGeoDataset(const QString& name, int shapeType, const TableDescPtr& desc,
                                            const CoordinateSystemPtr& srs)
{
    if (!connected_ || !desc) return nullptr;
    QString file = name;
    if (!file.endsWith(".shp", Qt::CaseInsensitive)) file += ".shp";
    try {
        return GeoDataset::create(QDir(Database).filePath(file), shapeType, *desc, srs);
    } catch (const MapError&) {
        return nullptr;
    }
}
