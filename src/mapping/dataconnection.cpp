#include "mapping/dataconnection.h"

#include <QDir>
#include <QFileInfo>
#include <algorithm>

namespace {

bool sameFile(const QFileInfo& fi, const QDateTime& modified, qint64 size)
{
    return fi.lastModified() == modified && fi.size() == size;
}

}  // namespace

DataConnection::~DataConnection() { stopReadingAhead(); }

bool DataConnection::Connect()
{
    stopReadingAhead();
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

void DataConnection::startReadingAhead()
{
    QDir dir(Database);
    const QStringList files = dir.entryList({"*.shp"}, QDir::Files, QDir::Name);
    if (files.isEmpty()) return;
    struct Job { QString path; std::promise<GeoDatasetPtr> promise; };
    auto jobs = std::make_shared<std::vector<Job>>();
    jobs->reserve(size_t(files.size()));
    {
        std::lock_guard<std::mutex> lock(mutex_);
        loaded_.clear();
        for (const QString& f : files) {
            const QString path = dir.filePath(f);
            QFileInfo info(path);
            Job job{path, {}};
            loaded_[f] = Loaded{job.promise.get_future().share(), info.lastModified(), info.size()};
            jobs->push_back(std::move(job));
        }
    }
    auto next = std::make_shared<std::atomic<size_t>>(0);
    const unsigned n = std::max(1u, std::min(2u, std::thread::hardware_concurrency()));
    stop_ = false;
    for (unsigned t = 0; t < n; ++t) {
        workers_.emplace_back([this, jobs, next] {
            for (size_t i = (*next)++; i < jobs->size(); i = (*next)++) {
                Job& job = (*jobs)[i];
                if (stop_) {
                    job.promise.set_value(nullptr);
                    continue;
                }
                try {
                    job.promise.set_value(GeoDataset::open(job.path));
                } catch (...) {
                    job.promise.set_value(nullptr);
                }
            }
        });
    }
}

void DataConnection::stopReadingAhead()
{
    readingAhead_ = false;
    stop_ = true;
    for (auto& w : workers_)
        if (w.joinable()) w.join();
    workers_.clear();
    std::lock_guard<std::mutex> lock(mutex_);
    loaded_.clear();
}

GeoDatasetPtr DataConnection::FindGeoDataset(const QString& fileName)
{
    if (!connected_) return nullptr;
    QString name = fileName;
    if (!name.endsWith(".shp", Qt::CaseInsensitive)) name += ".shp";
    const QString path = QDir(Database).filePath(name);
    if (!readingAhead_) {
        readingAhead_ = true;  // only a connection that reads layers reads ahead; a save does not
        startReadingAhead();
    }
    std::shared_future<GeoDatasetPtr> ahead;
    {
        std::lock_guard<std::mutex> lock(mutex_);
        auto it = loaded_.find(name);
        if (it != loaded_.end() && sameFile(QFileInfo(path), it->second.modified, it->second.size))
            ahead = it->second.data;
    }
    if (ahead.valid()) return ahead.get();
    return GeoDataset::open(path);
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
