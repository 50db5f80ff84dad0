// Loads every standard layer of a dataset into memory and runs a range
// selection on the wind layer: the figures of the README.
//   bench_load DATASET_DIR
#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <sys/resource.h>
#include <cstdio>
#include <fstream>
#include <string>

#include "mapping/dataconnection.h"
#include "mapping/maplayer.h"

static double cpuSeconds()
{
    rusage ru{};
    getrusage(RUSAGE_SELF, &ru);
    return double(ru.ru_utime.tv_sec + ru.ru_stime.tv_sec) + double(ru.ru_utime.tv_usec + ru.ru_stime.tv_usec) / 1e6;
}

static long residentKb()
{
    std::ifstream f("/proc/self/status");
    std::string line;
    while (std::getline(f, line))
        if (line.rfind("VmRSS:", 0) == 0) return std::stol(line.substr(6));
    return 0;
}

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    if (argc < 2) {
        std::fprintf(stderr, "usage: bench_load DATASET_DIR\n");
        return 2;
    }
    const long before = residentKb();
    QElapsedTimer t;
    const double cpu0 = cpuSeconds();
    t.start();
    DataConnection conn;
    conn.Database = QDir(argv[1]).absolutePath() + "/";
    if (!conn.Connect()) return 1;
    std::vector<MapLayerPtr> layers;
    MapLayerPtr wind;
    size_t records = 0;
    for (const QString& f : QDir(argv[1]).entryList({"*.shp"}, QDir::Files, QDir::Name)) {
        auto ds = conn.FindGeoDataset(f);
        if (!ds) continue;
        auto layer = std::make_shared<MapLayer>();
        layer->setGeoDataset(ds);
        layer->Tag = f;
        records += size_t(ds->count());
        if (f == "20_wind.shp") wind = layer;
        layers.push_back(layer);
    }
    const double loadS = t.nsecsElapsed() / 1e9;
    std::printf("load: %zu layers, %zu records in %.3f s (cpu %.3f s on its threads), %.0f MB resident\n", layers.size(),
                records, loadS, cpuSeconds() - cpu0, (residentKb() - before) / 1024.0);
    if (!wind) return 0;
    for (const char* expr : {"WINDPWRD >= 500 AND WINDPWRD <= 800", "WINDPWRD >= 300 AND WINDPWRD <= 10000"}) {
        t.restart();
        RecordsetPtr rs = wind->SearchExpression(expr);  // the first call also builds the attribute table
        const double first = t.nsecsElapsed() / 1e6;
        t.restart();
        rs = wind->SearchExpression(expr);
        const double again = t.nsecsElapsed() / 1e6;
        std::printf("select \"%s\": %d records, first %.1f ms, again %.1f ms\n", expr, rs ? rs->Count() : 0, first, again);
    }
    return 0;
}
