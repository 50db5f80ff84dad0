#pragma once
#include <QString>
#include <memory>

#include "mapping/geodataset.h"
#include "mapping/recordset.h"

// A directory of shapefiles.
class DataConnection {
public:
    QString Database;  // the directory, ending with a separator
    // False when the directory does not exist or cannot be read; ConnectError says why.
    bool Connect();
    int ConnectError = 0;  // 0 none, 1 no such directory, 2 not readable

    // None, never a failure, for a file that cannot be opened.
    GeoDatasetPtr FindGeoDataset(const QString& fileName);
    // A new, empty, writable shapefile; none when it cannot be made. The
    // optional coordinate system is written as the set's projection file.
    GeoDatasetPtr AddGeoDataset(const QString& name, int shapeType, const TableDescPtr& desc,
                                const CoordinateSystemPtr& srs = nullptr);

private:
    bool connected_ = false;
};
using DataConnectionPtr = std::shared_ptr<DataConnection>;
