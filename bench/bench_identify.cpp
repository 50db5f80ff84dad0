// bench_identify DATASET_DIR [PRESSES]
//
// Loads every shapefile of a dataset directory into Map1, all visible, and
// times the identify at random places (fixed seed) at the full extent and at
// one eighth of it. Make the large dataset first with
//   marlowan-gendata --size large DIR
#include <QApplication>
#include <QDir>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <random>
#include <vector>

#include "app/frmMain.h"
#include "info/frmInfo.h"
#include "mapping/map.h"
#include "mapping/seam.h"

namespace {

// Nothing may wait for a person here.
class Silent : public seam::Handler {
public:
    seam::Answer message(const QString& text, seam::Buttons buttons, seam::Icon) override
    {
        std::fprintf(stderr, "box: %s\n", qPrintable(text));
        return buttons == seam::Buttons::YesNo ? seam::Answer::No : seam::Answer::OK;
    }
    seam::FileAnswer file(const seam::FileRequest&) override { return {}; }
};

using Clock = std::chrono::steady_clock;

struct Figures {
    double min = 0, median = 0, p95 = 0, max = 0, mean = 0;
    double meanChars = 0, found = 0;
};

Figures run(Map& map, int presses, unsigned seed)
{
    const RectanglePtr e = map.Extent();
    std::mt19937 rng(seed);
    std::uniform_real_distribution<double> ux(e->Left, e->Right), uy(e->Bottom, e->Top);
    std::vector<double> ms;
    double chars = 0, found = 0;
    for (int i = 0; i < presses; ++i) {
        const double x = ux(rng), y = uy(rng);
        const auto t0 = Clock::now();
        const QString text = IdentifyTextAt(x, y);
        ms.push_back(std::chrono::duration<double, std::milli>(Clock::now() - t0).count());
        chars += text.size();
        if (!text.isEmpty()) ++found;
    }
    std::sort(ms.begin(), ms.end());
    Figures f;
    f.min = ms.front();
    f.max = ms.back();
    f.median = ms[ms.size() / 2];
    f.p95 = ms[std::min(ms.size() - 1, size_t(double(ms.size()) * 0.95))];
    for (double v : ms) f.mean += v;
    f.mean /= double(ms.size());
    f.meanChars = chars / presses;
    f.found = found;
    return f;
}

void print(const char* label, const Map& map, const Figures& f, int presses)
{
    std::printf("%-14s extent width %.0f m: min %.3f  median %.3f  p95 %.3f  max %.3f  mean %.3f ms"
                "  (%d presses, %.0f found something, %.0f chars on average)\n",
                label, map.Extent()->Width(), f.min, f.median, f.p95, f.max, f.mean, presses, f.found, f.meanChars);
}

}  // namespace

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    if (argc < 2) {
        std::fprintf(stderr, "usage: bench_identify DATASET_DIR [PRESSES]\n");
        return 2;
    }
    Silent silent;
    seam::setHandler(&silent);
    const int presses = argc > 2 ? std::max(1, std::atoi(argv[2])) : 500;

    Map& map = *frmMain().Map1;
    QDir dir(QString::fromLocal8Bit(argv[1]));
    const QStringList files = dir.entryList({"*.shp"}, QDir::Files, QDir::Name);
    const auto l0 = Clock::now();
    long long records = 0;
    for (const QString& file : files) {
        GeoDatasetPtr ds = GeoDataset::open(dir.filePath(file));
        if (!ds) {
            std::fprintf(stderr, "cannot open %s\n", qPrintable(file));
            continue;
        }
        records += ds->count();
        auto layer = std::make_shared<MapLayer>();
        layer->setGeoDataset(ds);
        layer->Tag = file;
        layer->Visible = true;
        map.Layers().Add(layer);
    }
    const double loadMs = std::chrono::duration<double, std::milli>(Clock::now() - l0).count();
    std::printf("%d layers, %lld records, loaded in %.0f ms\n", map.Layers().Count(), records, loadMs);
    if (map.Layers().Count() == 0) return 1;

    map.setExtent(*map.FullExtent());
    IdentifyTextAt(map.Extent()->Left, map.Extent()->Top);  // the form is made once, outside the figures
    print("full extent", map, run(map, presses, 7), presses);

    RectanglePtr zoomed = map.FullExtent();
    zoomed->ScaleRectangle(0.125);
    map.setExtent(*zoomed);
    print("1/8 extent", map, run(map, presses, 11), presses);
    return 0;
}
