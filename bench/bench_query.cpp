// Times the range queries on a dataset, in the window's code, offscreen:
//   bench_query DATASET_DIR wind|solar [REPEATS] [MIN MAX]
// For each repeat: the run alone (fill_cShapes_collection, the repaints of its
// progress texts included) and the share of those repaints; then one whole
// press of Update Map (with the legend and the map refresh).
#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <algorithm>
#include <cstdio>
#include <vector>

#include "app/frmMain.h"
#include "engine/query_run.h"
#include "mapping/seam.h"
#include "workspace/loading.h"
#include "workspace/state.h"

namespace {

class Silent : public seam::Handler {
public:
    seam::Answer message(const QString& text, seam::Buttons b, seam::Icon) override
    {
        std::fprintf(stderr, "box: %s\n", qPrintable(text));
        return b == seam::Buttons::YesNo ? seam::Answer::Yes : seam::Answer::OK;
    }
    seam::FileAnswer file(const seam::FileRequest&) override { return {}; }
};

void select(ComboBox* combo, const QString& text)
{
    for (int i = 0; i < combo->ListCount(); ++i)
        if (combo->List(i) == text) return combo->setListIndex(i);
    std::fprintf(stderr, "no entry %s\n", qPrintable(text));
    std::exit(2);
}

}  // namespace

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
    QApplication app(argc, argv);
    if (argc < 3) {
        std::fprintf(stderr, "usage: bench_query DATASET_DIR wind|solar [REPEATS] [MIN MAX]\n");
        return 2;
    }
    const QString dir = QDir(argv[1]).absolutePath();
    const bool solar = QString(argv[2]) == "solar";
    const int repeats = argc > 3 ? std::max(1, atoi(argv[3])) : 5;
    Silent silent;
    seam::setHandler(&silent);

    FrmMain& f = frmMain();
    f.show();
    QElapsedTimer t;
    t.start();
    LoadProject("20_wind.shp", dir + "/20_wind.shp", f.Map1, f.legend);
    std::printf("load %.3f s, %d layers\n", t.nsecsElapsed() / 1e9, f.Map1->Layers().Count());

    const QString query = solar ? "Best Solar X kWh/m2/day" : "Wind by Power Density";
    select(f.cboSelectQuery, query);
    if (solar) select(f.cboQueryDropDown3, "10 km Solar Global Horizontal Annual Average(KWH/M2/DAY)");
    if (argc > 5) {
        f.cboQueryDropDown->setText(argv[4]);
        f.cboQueryDropDown2->setText(argv[5]);
    }
    std::printf("%s, range %s to %s\n", qPrintable(query), qPrintable(f.cboQueryDropDown->Text()),
                qPrintable(f.cboQueryDropDown2->Text()));

    std::vector<double> runs, repaints, bare;
    for (int i = 0; i < repeats; ++i) {
        f.lblWorking->setText(QString());
        f.ControlEnable(false);  // as in a press: the progress label shows
        ResetProgressRepaintSeconds();
        t.restart();
        fill_cShapes_collection(query);
        runs.push_back(t.nsecsElapsed() / 1e9);
        f.ControlEnable(true);
        repaints.push_back(ProgressRepaintSeconds());
        bare.push_back(runs.back() - repaints.back());
        std::printf("run %d: %.3f s (progress repaints %.3f s), %d shapes\n", i + 1, runs.back(), repaints.back(),
                    cShapes->Count());
    }
    std::sort(runs.begin(), runs.end());
    std::sort(bare.begin(), bare.end());
    std::printf("median run %.3f s, less its progress repaints %.3f s\n", runs[runs.size() / 2], bare[bare.size() / 2]);

    // What one progress repaint costs: the whole of RepaintNow against the
    // label alone, each after a change of its text.
    f.lblWorking->setVisible(true);
    const int probes = 200;
    t.restart();
    for (int i = 0; i < probes; ++i) {
        f.lblWorking->setText(QString::number(i));
        f.RepaintNow();
    }
    const double whole = t.nsecsElapsed() / 1e6 / probes;
    t.restart();
    for (int i = 0; i < probes; ++i) {
        f.lblWorking->setText(QString::number(i));
        f.lblWorking->repaint();
    }
    std::printf("one RepaintNow %.3f ms, one label repaint %.3f ms\n", whole, t.nsecsElapsed() / 1e6 / probes);
    f.lblWorking->setVisible(false);

    t.restart();
    f.cmdUpdateMap_Click();
    std::printf("whole press %.3f s\n", t.nsecsElapsed() / 1e9);
    return 0;
}
