#pragma once
#include <QDateTime>
#include <QString>
#include <atomic>
#include <future>
#include <map>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#include "mapping/geodataset.h"
#include "mapping/recordset.h"

// A directory of shapefiles.
class DataConnection {
public:
    DataConnection() = default;
    ~DataConnection();
    DataConnection(const DataConnection&) = delete;
    DataConnection& operator=(const DataConnection&) = delete;

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
    // A connected directory's shapefiles are read ahead on worker threads, in
    // name order, so that the layers asked for one after another are mostly
    // in memory already. A file changed since it was read is read again.
    struct Loaded {
        std::shared_future<GeoDatasetPtr> data;
        QDateTime modified;
        qint64 size = 0;
    };
    void startReadingAhead();
    void stopReadingAhead();

    bool connected_ = false;
    bool readingAhead_ = false;
    std::mutex mutex_;
    std::map<QString, Loaded> loaded_;  // by file name
    std::vector<std::thread> workers_;
    std::atomic<bool> stop_{false};
};
using DataConnectionPtr = std::shared_ptr<DataConnection>;
