// Times a full repaint of the map control: every shapefile of a directory
// loaded as a layer, all visible, at full extent, into an offscreen control of
// the main window's map size.
//
//   bench_draw [--styled] [--default-visibility] [--runs N] [--zoom F] [--save PNG] DATASET_DIR
//
// Without --styled the layers keep the plain symbol of a new layer; with it
// each standard file gets its look (renderers, hatches, labels). Without
// --default-visibility every layer is drawn, the worst case; with it only
// those a freshly loaded dataset shows.
#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <sys/resource.h>
#include <algorithm>
#include <cstdio>
#include <vector>

#include "mapping/dataconnection.h"
#include "mapping/map.h"
#include "mapping/seam.h"
#include "presentation/layer_properties.h"
#include "workspace/visibility.h"

namespace {

// The machine may be shared: the process's own time (user + sys) is steadier.
double cpuMs()
{
    rusage ru{};
    getrusage(RUSAGE_SELF, &ru);
    return double(ru.ru_utime.tv_sec + ru.ru_stime.tv_sec) * 1e3 + double(ru.ru_utime.tv_usec + ru.ru_stime.tv_usec) / 1e3;
}

// No box may wait for a click in a benchmark: print it instead.
class PrintingHandler : public seam::Handler {
public:
    seam::Answer message(const QString& text, seam::Buttons, seam::Icon) override
    {
        std::fprintf(stderr, "message: %s\n", qPrintable(text));
        return seam::Answer::Yes;
    }
    seam::FileAnswer file(const seam::FileRequest&) override { return {}; }
};

struct Figures {
    double min, median, max;
};

Figures summary(std::vector<double> ms)
{
    std::sort(ms.begin(), ms.end());
    return {ms.front(), ms[ms.size() / 2], ms.back()};
}

}  // namespace

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    PrintingHandler handler;
    seam::setHandler(&handler);

    bool styled = false, defaultVisibility = false;
    int runs = 20;
    QString dir, picture;
    double zoom = 1;
    const QStringList args = app.arguments().mid(1);
    for (int i = 0; i < args.size(); ++i) {
        if (args[i] == "--styled")
            styled = true;
        else if (args[i] == "--default-visibility")
            defaultVisibility = true;
        else if (args[i] == "--zoom" && i + 1 < args.size())
            zoom = std::max(1.0, args[++i].toDouble());
        else if (args[i] == "--save" && i + 1 < args.size())
            picture = args[++i];
        else if (args[i] == "--runs" && i + 1 < args.size())
            runs = std::max(1, args[++i].toInt());
        else
            dir = args[i];
    }
    if (dir.isEmpty()) {
        std::fprintf(stderr, "usage: bench_draw [--styled] [--default-visibility] [--runs N] [--zoom F] [--save PNG] DATASET_DIR\n");
        return 2;
    }

    auto connection = std::make_shared<DataConnection>();
    connection->Database = QDir(dir).absolutePath() + QDir::separator();
    if (!connection->Connect()) {
        std::fprintf(stderr, "cannot connect to %s (error %d)\n", qPrintable(dir), connection->ConnectError);
        return 1;
    }

    Map map;
    map.resize(571, 447);  // Map1 of the main window, 8565 x 6705 twips
    QElapsedTimer clock;
    clock.start();
    long long features = 0;
    const QStringList files = QDir(dir).entryList({"*.shp"}, QDir::Files, QDir::Name);
    // Listing order puts 01_ first; added on top one after the other it ends at the bottom.
    for (const QString& file : files) {
        GeoDatasetPtr ds = connection->FindGeoDataset(file);
        if (!ds) {
            std::fprintf(stderr, "skipped %s\n", qPrintable(file));
            continue;
        }
        auto layer = std::make_shared<MapLayer>();
        layer->setGeoDataset(ds);
        layer->Tag = file;
        if (styled) SetLayerProperties(layer, file, QString());
        if (defaultVisibility)
            SetDefaultVisibility(layer);
        else
            layer->Visible = true;
        map.Layers().Add(layer);
        features += ds->count();
    }
    const double loadMs = clock.nsecsElapsed() / 1e6;
    RectanglePtr view = map.FullExtent();
    view->ScaleRectangle(1 / zoom);
    map.setExtent(*view);

    std::vector<double> refresh, refreshCpu, blit;
    for (int i = 0; i < runs + 1; ++i) {
        const double cpu0 = cpuMs();
        clock.restart();
        map.Refresh();
        const double ms = clock.nsecsElapsed() / 1e6;
        if (i > 0) refresh.push_back(ms);  // the first one warms the caches
        if (i > 0) refreshCpu.push_back(cpuMs() - cpu0);
        clock.restart();
        map.grab();
        blit.push_back(clock.nsecsElapsed() / 1e6);
    }
    // Where the time goes: one more repaint, timed layer by layer.
    std::vector<std::pair<int, double>> perLayer;
    QElapsedTimer layerClock;
    QObject::connect(&map, &Map::BeforeLayerDraw, &map, [&](int, QPainter*) { layerClock.restart(); });
    QObject::connect(&map, &Map::AfterLayerDraw, &map,
                     [&](int i, QPainter*) { perLayer.emplace_back(i, layerClock.nsecsElapsed() / 1e6); });
    map.Refresh();

    const Figures r = summary(refresh), b = summary(blit), c = summary(refreshCpu);
    std::printf("dataset %s: %d layers, %lld features, loaded in %.0f ms\n", qPrintable(dir), map.Layers().Count(),
                features, loadMs);
    int visible = 0;
    for (const MapLayerPtr& layer : map.Layers()) visible += layer->Visible;
    std::printf("repaint at %s, %s, %d layers visible, 571x447 px, %d runs: min %.1f ms, median %.1f ms, "
                "max %.1f ms (cpu: median %.1f ms)\n",
                zoom == 1 ? "full extent" : qPrintable(QString("1/%1 of the full extent").arg(zoom)),
                styled ? "standard look" : "plain symbols", visible, runs, r.min, r.median, r.max, c.median);
    std::printf("repaint of an unchanged map (blit only): median %.2f ms\n", b.median);
    for (const auto& [i, ms] : perLayer) {
        MapLayerPtr layer = map.Layers().Item(i);
        std::printf("  %-28s %7d features %7.1f ms\n", qPrintable(layer->Tag), layer->GeoDataset()->count(), ms);
    }
    if (!picture.isEmpty() && !map.grab().save(picture)) std::fprintf(stderr, "cannot write %s\n", qPrintable(picture));
    return 0;
}
