// marlowan-screenshots DATASET_DIR OUTDIR: the pictures of the README, made by
// the program itself without a screen. It opens the dataset in the main
// window, runs a query as a user would, and writes the main window with the
// result, the Results Table, the Print Map window and the printed page (PDF).
#include <QApplication>
#include <QDir>
#include <QFileInfo>
#include <QImage>
#include <QTimer>
#include <cstdio>

#include "app/application.h"
#include "app/frmMain.h"
#include "mapping/seam.h"
#include "print/frmPrint.h"
#include "results/frmShowQueryData.h"
#include "workspace/loading.h"

namespace {

// Every box goes to standard error; a question is answered yes.
class Answers : public seam::Handler {
public:
    seam::Answer message(const QString& text, seam::Buttons buttons, seam::Icon) override
    {
        std::fprintf(stderr, "%s\n", qPrintable(text));
        return buttons == seam::Buttons::YesNo ? seam::Answer::Yes : seam::Answer::OK;
    }
    seam::FileAnswer file(const seam::FileRequest&) override { return {}; }
};

void settle()
{
    for (int i = 0; i < 5; ++i) QCoreApplication::processEvents();
}

bool save(QWidget* window, const QString& path)
{
    settle();
    if (window->grab().toImage().save(path, "PNG")) return true;
    std::fprintf(stderr, "marlowan-screenshots: cannot write %s\n", qPrintable(path));
    return false;
}

}  // namespace

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    InitApplication();
    if (argc != 3) {
        std::fprintf(stderr, "usage: marlowan-screenshots DATASET_DIR OUTDIR\n");
        return 2;
    }
    const QDir data(QString::fromLocal8Bit(argv[1])), out(QString::fromLocal8Bit(argv[2]));
    if (!data.exists() || !QDir().mkpath(out.path())) {
        std::fprintf(stderr, "marlowan-screenshots: no directory %s\n", argv[1]);
        return 2;
    }
    Answers answers;
    seam::setHandler(&answers);

    FrmMain& f = frmMain();
    f.show();
    f.setFormSize(12630, 8835);  // the design's size, whatever the screen
    LoadProject("20_wind.shp", data.filePath("20_wind.shp"), f.Map1, f.legend);
    const QString query = "Best wind - protected areas";
    f.cboSelectQuery->setListIndex(f.cboSelectQuery->findText(query));
    f.cmdUpdateMap_Click();
    settle();
    bool ok = save(&f, out.filePath("main-window.png"));

    f.cmdShowData_Click();
    FrmShowQueryData& table = frmShowQueryData();
    table.Form_Activate();
    ok = save(&table, out.filePath("results-table.png")) && ok;
    table.close();

    f.mnuPrint_Click();
    FrmPrint& print = frmPrint();
    print.txtHeading->setText("Wind sites outside protected areas");
    ok = save(&print, out.filePath("print-window.png")) && ok;
    print.cmdPrint->setFocus();  // a click on Print takes the focus, and the caret with it
    const QString pdf = out.filePath("printed-page.pdf");
    print.printTarget = [pdf] { return MakePdfTarget(pdf, 600); };
    print.cmdPrint_Click();
    ok = print.lastPrintSucceeded && ok;
    UnloadFrmPrint();
    unloadFrmMain();
    return ok ? 0 : 1;
}
