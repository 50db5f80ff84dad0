// marlowan-batch: runs one query on a dataset the way the window does, with no
// one at the screen, and writes the results table (and, if asked, the map
// picture, the saved result, the printed page or an identify text).
#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QPainter>
#include <QTextStream>
#include <cstdio>
#include <deque>

#include "app/application.h"
#include "app/frmMain.h"
#include "engine/query_run.h"
#include "info/frmInfo.h"
#include "mapping/controls.h"
#include "mapping/seam.h"
#include "mapping/symbol.h"
#include "print/frmPrint.h"
#include "results/frmShowQueryData.h"
#include "workspace/loading.h"
#include "workspace/state.h"

namespace {

const char* const kUsageText =
    "usage: marlowan-batch DATASET_DIR --query NAME [--min V] [--max V|Max]\n"
    "                      [--road-km KM] [--transmission-km KM] [--land-use NAME]...\n"
    "                      [--protected-areas remove|keep] [--solar-resource NAME]\n"
    "                      [--answer yes|no] [--table FILE.csv] [--map FILE.png]\n"
    "                      [--save FILE.shp] [--print FILE.pdf [--heading TEXT]]\n"
    "                      [--identify X,Y] [--quiet] [--timing]\n";

enum Exit { kOk = 0, kFailure = 1, kRefused = 2 };

void err(const QString& text)
{
    std::fputs(text.toLocal8Bit().constData(), stderr);
    std::fputc('\n', stderr);
    std::fflush(stderr);
}

int usage(const QString& problem)
{
    err("marlowan-batch: " + problem);
    std::fputs(kUsageText, stderr);
    return kRefused;
}

struct Options {
    QString dataset;
    QString query;
    bool hasQuery = false;
    QString min, max, roadKm, transmissionKm, solarResource;
    bool hasMin = false, hasMax = false, hasRoad = false, hasTransmission = false, hasSolar = false;
    QStringList landUses;
    QString protectedAreas;  // "remove" or "keep"; empty leaves the box as the panel sets it
    bool answerYes = true;
    QString table, map, save, print, heading;
    bool hasTable = false, hasIdentify = false;
    double identifyX = 0, identifyY = 0;
    bool quiet = false, timing = false;
};

// Returns an empty text on success, else the problem.
QString parse(const QStringList& args, Options& o)
{
    for (int i = 1; i < args.size(); ++i) {
        const QString a = args[i];
        auto value = [&](QString& into) -> bool {
            if (i + 1 >= args.size()) return false;
            into = args[++i];
            return true;
        };
        bool ok = true;
        if (a == "--query") ok = value(o.query), o.hasQuery = true;
        else if (a == "--min") ok = value(o.min), o.hasMin = true;
        else if (a == "--max") ok = value(o.max), o.hasMax = true;
        else if (a == "--road-km") ok = value(o.roadKm), o.hasRoad = true;
        else if (a == "--transmission-km") ok = value(o.transmissionKm), o.hasTransmission = true;
        else if (a == "--solar-resource") ok = value(o.solarResource), o.hasSolar = true;
        else if (a == "--land-use") {
            QString v;
            ok = value(v);
            o.landUses << v;
        } else if (a == "--protected-areas") {
            ok = value(o.protectedAreas);
            if (ok && o.protectedAreas != "remove" && o.protectedAreas != "keep")
                return "--protected-areas takes remove or keep";
        } else if (a == "--answer") {
            QString v;
            ok = value(v);
            if (ok && v != "yes" && v != "no") return "--answer takes yes or no";
            o.answerYes = v != "no";
        } else if (a == "--table") ok = value(o.table), o.hasTable = true;
        else if (a == "--map") ok = value(o.map);
        else if (a == "--save") ok = value(o.save);
        else if (a == "--print") ok = value(o.print);
        else if (a == "--heading") ok = value(o.heading);
        else if (a == "--identify") {
            QString v;
            ok = value(v);
            const QStringList xy = v.split(',');
            bool okX = false, okY = false;
            if (xy.size() == 2) {
                o.identifyX = xy[0].trimmed().toDouble(&okX);
                o.identifyY = xy[1].trimmed().toDouble(&okY);
            }
            if (ok && !(okX && okY)) return "--identify takes X,Y in map units";
            o.hasIdentify = true;
        } else if (a == "--quiet") o.quiet = true;
        else if (a == "--timing") o.timing = true;
        else if (a.startsWith("--")) return "unknown option " + a;
        else if (o.dataset.isEmpty()) o.dataset = a;
        else return "unexpected argument " + a;
        if (!ok) return "option " + a + " needs a value";
    }
    if (o.dataset.isEmpty()) return "no dataset directory given";
    if (!o.heading.isEmpty() && o.print.isEmpty()) return "--heading goes with --print";
    if (!o.hasQuery && !o.hasIdentify && o.save.isEmpty() && o.print.isEmpty() && o.map.isEmpty())
        return "nothing to do: give --query (or --identify, --map, --save, --print)";

    // Each panel option belongs to the queries whose panel has its control.
    const QString& q = o.query;
    const bool wind = q.startsWith("Wind ") || q.startsWith("Best wind");
    const bool solar = q == "Best Solar X kWh/m2/day";
    if (o.hasSolar && !solar) return "--solar-resource does not apply to " + q;
    if ((o.hasMin || o.hasMax) && !wind && !solar) return "--min/--max do not apply to " + q;
    if (o.hasRoad && q != "Best wind + roads" && q != "Best wind (all)") return "--road-km does not apply to " + q;
    if (o.hasTransmission && q != "Best wind + transmission" && q != "Best wind (all)")
        return "--transmission-km does not apply to " + q;
    if (!o.landUses.isEmpty() && q != "Best wind + land use" && q != "Best wind (all)")
        return "--land-use does not apply to " + q;
    if (!o.protectedAreas.isEmpty() && q != "Best wind (all)") return "--protected-areas applies to Best wind (all) only";
    return {};
}

// Boxes go to stderr; questions take the answer of --answer; file dialogs the
// queued answers. A failure box marks the run as failed; the run goes on, as
// the window does once the box is closed.
class BatchHandler : public seam::Handler {
public:
    bool answerYes = true;
    bool failed = false;
    std::deque<seam::FileAnswer> files;

    seam::Answer message(const QString& text, seam::Buttons buttons, seam::Icon) override
    {
        err(text);
        if (buttons == seam::Buttons::YesNo) return answerYes ? seam::Answer::Yes : seam::Answer::No;
        return seam::Answer::OK;
    }
    seam::Answer failure(const QString& text, seam::Icon icon) override
    {
        failed = true;
        return message(text, seam::Buttons::OK, icon);
    }
    seam::FileAnswer file(const seam::FileRequest&) override
    {
        if (files.empty()) return {};
        seam::FileAnswer a = files.front();
        files.pop_front();
        return a;
    }
};

QString csvField(const QString& s)
{
    if (!s.contains(',') && !s.contains('"') && !s.contains('\n')) return s;
    QString q = s;
    q.replace("\"", "\"\"");
    return "\"" + q + "\"";
}

// Qt's own chatter (platform plugin notes) is no part of the tool's output.
void quietQtMessages(QtMsgType type, const QMessageLogContext&, const QString& text)
{
    if (type == QtCriticalMsg || type == QtFatalMsg) err(text);
}

QString secondsText(qint64 ns) { return QString::number(double(ns) / 1e9, 'f', 3); }

int comboIndexOf(const ComboBox* combo, const QString& text)
{
    for (int i = 0; i < combo->ListCount(); ++i)
        if (combo->List(i) == text) return i;
    return -1;
}

// Puts the options into the panel's controls as the chosen query reads them.
// A name the data's lists do not hold is a usage error.
QString fillPanel(const Options& o)
{
    FrmMain& f = frmMain();
    const QString& q = o.query;
    if (o.hasSolar) {
        const int i = comboIndexOf(f.cboQueryDropDown3, o.solarResource);
        if (i < 0) return "no solar resource \"" + o.solarResource + "\" in the list";
        f.cboQueryDropDown3->setListIndex(i);
    }
    if (o.hasMin) f.cboQueryDropDown->setText(o.min);
    if (o.hasMax) f.cboQueryDropDown2->setText(o.max);
    if (o.hasRoad) f.txtQuery1[2]->setText(o.roadKm);
    if (o.hasTransmission) f.txtQuery1[q == "Best wind (all)" ? 1 : 2]->setText(o.transmissionKm);
    for (const QString& name : o.landUses) {
        int found = -1;
        for (int i = 0; i < f.lstQuery1->ListCount() && found < 0; ++i)
            if (f.lstQuery1->List(i) == name) found = i;
        if (found < 0) {
            QStringList names;
            for (int i = 0; i < f.lstQuery1->ListCount(); ++i) names << "\"" + f.lstQuery1->List(i) + "\"";
            return "no land use \"" + name + "\" in the list (" + names.join(", ") + ")";
        }
        f.lstQuery1->setSelected(found, true);
    }
    // The box ticked removes the protected areas from the result.
    if (!o.protectedAreas.isEmpty()) f.chkProtectedAreas->setChecked(o.protectedAreas == "remove");
    return {};
}

bool writeTable(const Options& o, const std::vector<QueryDataRow>& rows)
{
    QString text;
    for (const QueryDataRow& r : rows) {
        text += QString("%1,%2,%3,%4,%5\n")
                    .arg(RedOf(r.color))
                    .arg(GreenOf(r.color))
                    .arg(BlueOf(r.color))
                    .arg(QString::number(r.area, 'g', 17))
                    .arg(csvField(r.description));
    }
    if (!o.hasTable || o.table == "-") {
        std::fputs(text.toUtf8().constData(), stdout);
        std::fflush(stdout);
        return true;
    }
    QFile file(o.table);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate | QIODevice::Text)) {
        err("marlowan-batch: cannot write " + o.table);
        return false;
    }
    file.write(text.toUtf8());
    return true;
}

bool writeMapPicture(const QString& path)
{
    Map* map = frmMain().Map1;
    bQueryDrawn = false;
    map->Refresh();
    const QImage image = map->grab().toImage();
    if (!image.save(path, "PNG")) {
        err("marlowan-batch: cannot write " + path);
        return false;
    }
    return true;
}

QString pickedFile(const QDir& dir)
{
    const QStringList shp = dir.entryList({"*.shp"}, QDir::Files, QDir::Name);
    return shp.isEmpty() ? QStringLiteral("20_wind.shp") : shp.first();
}

}  // namespace

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    qInstallMessageHandler(quietQtMessages);
    QApplication app(argc, argv);
    InitApplication();

    Options o;
    const QString problem = parse(QCoreApplication::arguments(), o);
    if (!problem.isEmpty()) return usage(problem);
    const QFileInfo dirInfo(o.dataset);
    if (!dirInfo.isDir()) return usage("no such dataset directory: " + o.dataset);

    BatchHandler handler;
    handler.answerYes = o.answerYes;
    seam::setHandler(&handler);
    if (!o.quiet) SetProgressHook([](const QString& text) { err(text); });

    FrmMain& f = frmMain();
    const int queryIndex = o.hasQuery ? comboIndexOf(f.cboSelectQuery, o.query) : -1;
    if (o.hasQuery && queryIndex < 0) {
        QStringList names;
        for (int i = 0; i < f.cboSelectQuery->ListCount(); ++i) names << "\"" + f.cboSelectQuery->List(i) + "\"";
        return usage("unknown query \"" + o.query + "\"; the queries are " + names.join(", "));
    }
    f.show();
    // A failure box shown at any point decides the status, whatever follows.
    bool outputFailed = false;
    auto status = [&](int otherwise) { return handler.failed || outputFailed ? int(kFailure) : otherwise; };

    // Load, as if the user had picked a shapefile of the directory.
    QElapsedTimer timer;
    timer.start();
    const QDir dir(dirInfo.absoluteFilePath());
    const QString title = pickedFile(dir);
    LoadProject(title, dir.absolutePath() + "/" + title, f.Map1, f.legend);
    QCoreApplication::processEvents();
    if (o.timing) err("load " + secondsText(timer.nsecsElapsed()));

    if (o.hasQuery) {
        f.cboSelectQuery->setListIndex(queryIndex);
        // A refused query leaves the panel as it was: its caption is not the query's.
        if (queryIndex > 0 && f.fraEditQueryParameters->title() != o.query) return status(kRefused);

        const QString panelProblem = fillPanel(o);
        if (!panelProblem.isEmpty()) return status(usage(panelProblem));

        ResetProgressRepaintSeconds();
        timer.restart();
        f.cmdUpdateMap_Click();
        const qint64 queryNs = timer.nsecsElapsed();
        if (o.timing) {
            err("query " + secondsText(queryNs));
            err("repaint " + QString::number(ProgressRepaintSeconds(), 'f', 3));
        }
        // A refusal (of the solar resource or of CheckInputs) leaves its red text.
        if (Visible(f.lblWorking) && ForeColor(f.lblWorking) == RGB(255, 0, 0)) {
            err(f.lblWorking->text());
            return status(kRefused);
        }
        if (const auto rows = QueryDataTable(true); rows && !writeTable(o, *rows)) outputFailed = true;
    }

    if (!o.map.isEmpty() && !writeMapPicture(o.map)) outputFailed = true;

    if (!o.save.isEmpty()) {
        handler.files.push_back({false, QFileInfo(o.save).absoluteFilePath(), QFileInfo(o.save).fileName()});
        f.mnuSave_Click();
    }

    if (!o.print.isEmpty() && !PrintPageToPdf(QFileInfo(o.print).absoluteFilePath(), o.heading)) outputFailed = true;

    if (o.hasIdentify) {
        const QString text = IdentifyTextAt(o.identifyX, o.identifyY);
        std::fputs(text.toUtf8().constData(), stdout);
        std::fputc('\n', stdout);
        std::fflush(stdout);
    }
    return status(kOk);
}
