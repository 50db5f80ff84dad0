// The press of Update Map (which is also Cancel), the dispatch by query name,
// the result model and the helpers every query routine shares.
#include "engine/query_run.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QPointer>
#include <cmath>

#include "app/frmMain.h"
#include "app/messages.h"
#include "engine/expressions.h"
#include "engine/queries.h"
#include "mapping/platform.h"
#include "presentation/renderers.h"
#include "queryset/catalogue.h"
#include "queryset/validation.h"
#include "workspace/state.h"

namespace {

const QString kUpdateMap = QStringLiteral("Update Map");

QString keyOf(int count) { return QString::number(count); }

std::function<void(const QString&)> gProgressHook;
qint64 gRepaintNanoseconds = 0;

// One frame of the screen: a label repainted more often shows nothing more.
constexpr qint64 kFrameNanoseconds = 16'000'000;
QElapsedTimer gSinceRepaint;
// The label whose text waits for the next frame. Its updates are held back
// meanwhile, or the yield of the next record would paint it all the same.
QPointer<QLabel> gWaiting;

void repaintProgress(FrmMain& f)
{
    if (gWaiting) gWaiting->setUpdatesEnabled(true);
    gWaiting = nullptr;
    QElapsedTimer timer;
    timer.start();
    f.RepaintNow();
    gRepaintNanoseconds += timer.nsecsElapsed();
    gSinceRepaint.start();
}

}  // namespace

void FrmMain::cmdUpdateMap_Click()
{
    try {
        bQueryDrawn = false;

        if (cboSelectQuery->Text() == QLatin1String("Best Solar X kWh/m2/day")) {
            QString message;
            if (!isQueryPossible(cboQueryDropDown3->Text(), message)) {
                DisplayError(message);
                return;
            }
        }

        cmdShowData->setVisible(false);

        // A press while the caption reads "Cancel": the running query lies below
        // this call on the stack and sees the flag at its next poll.
        if (cmdUpdateMap->text() != kUpdateMap) {
            bCancelQuery = true;
            return;
        }
        bCancelQuery = false;

        if (!CheckInputs()) return;

        SetForeColor(lblWorking, RGB(0, 0, 255));
        ControlEnable(false);
        RepaintNow();

        fill_cShapes_collection(cboSelectQuery->Text());

        cmdShowData->setVisible(QueryResults());
        legend->ClearLegend();
        legend->FillLegend(true);
        ControlEnable(true);

        bQueryDrawn = false;
        Map1->Refresh();
        RepaintNow();
        bQueryDrawn = false;
    } catch (...) {
        ErrorMessage(" Error while trying to run the query and updata map. Error Source:frmMain.cmdUpdateMap_Click()", 48);
    }
}

void fill_cShapes_collection(const QString& sQueryName)
{
    try {
        cShapes = std::make_shared<Collection<ShapePtr>>();
        cSymbols = std::make_shared<Collection<SymbolPtr>>();
        cGridDistances = std::make_shared<Collection<float>>();
        bQueryRunning = true;

        FrmMain& f = frmMain();
        if (sQueryName == QLatin1String("Wind by Power Density")) {
            wind_class_x_or_better();
        } else if (sQueryName == QLatin1String("Best wind - protected areas")) {
            wind_minus_protected_areas();
        } else if (sQueryName == QLatin1String("Best wind + land use")) {
            wind_with_land_use();
        } else if (sQueryName == QLatin1String("Best wind + roads")) {
            sngRoadDistance = conv::ToSingle(f.txtQuery1[2]->Text());
            wind_with_roads();
        } else if (sQueryName == QLatin1String("Best wind + transmission")) {
            sngTransmissionDistance = conv::ToSingle(f.txtQuery1[2]->Text());
            wind_with_transmission();
        } else if (sQueryName == QLatin1String("Best wind (all)")) {
            sngTransmissionDistance = conv::ToSingle(f.txtQuery1[1]->Text());
            sngRoadDistance = conv::ToSingle(f.txtQuery1[2]->Text());
            wind_all();
        } else if (sQueryName == QLatin1String("Best Solar X kWh/m2/day")) {
            GetSolarLayerChosen();
            sngSolarMinimum = conv::ToSingle(f.txtQuery1[2]->Text());
            solar_x_kwhm2_or_better();
        } else if (sQueryName == QLatin1String("Best solar off-grid systems")) {
            GetSolarLayerChosen();
            best_solar_off_grid_systems();
        }

        bQueryRunning = false;
    } catch (...) {
        // bQueryRunning stays set: nothing is drawn until a later run ends normally.
        ErrorMessage(" Error Source:md_query_functions2.fill_cShapes_collection()", 48);
    }
    FlushProgress();  // however the run ended, its last text shows
}

bool QueryResults()
{
    try {
        if (!cShapes) return false;
        if (bCancelQuery) return false;
        return cShapes->Count() >= 1;
    } catch (...) {
        ErrorMessage(" Error Source:md_query_functions2.QueryResults()", 48);
        return false;
    }
}

void draw_query_results(Map* oMap)
{
    try {
        if (!cShapes) return;
        if (cShapes->Count() == 0 || bQueryRunning) return;
        if (!cSymbols) throw MapError("no symbols");
        const int n = cShapes->Count();
        for (int i = 0; i < n; ++i) {
            const QString key = keyOf(i);
            oMap->DrawShape(cShapes->Item(key), cSymbols->Item(key));
        }
    } catch (...) {
        ErrorMessage(" Error Source:md_query_functions2.draw_query_results()", 48);
    }
}

void HideContextLayers(const QStringList& files, bool refresh)
{
    FrmMain& f = frmMain();
    for (const QString& file : files) {
        QString message;
        if (isLayerExist(file, message)) LayerByFile(file)->Visible = false;
    }
    if (refresh) {
        f.Map1->Refresh();
        f.RepaintNow();
    }
}

void ShowProgress(const QString& text)
{
    FrmMain& f = frmMain();
    if (gProgressHook) gProgressHook(text);
    // A repaint of a caption that reads the same would show nothing new.
    if (f.lblWorking->text() == text && !gWaiting) return;
    f.lblWorking->setText(text);
    repaintProgress(f);
}

void ShowStepProgress(const QString& text)
{
    FrmMain& f = frmMain();
    if (gProgressHook) gProgressHook(text);
    if (f.lblWorking->text() == text) return;
    const bool due = !gSinceRepaint.isValid() || gSinceRepaint.nsecsElapsed() >= kFrameNanoseconds;
    if (!due && !gWaiting) {
        f.lblWorking->setUpdatesEnabled(false);
        gWaiting = f.lblWorking;
    }
    f.lblWorking->setText(text);
    if (due) repaintProgress(f);
}

void FlushProgress()
{
    if (gWaiting) repaintProgress(frmMain());
}

void SetProgressHook(std::function<void(const QString&)> hook) { gProgressHook = std::move(hook); }
double ProgressRepaintSeconds() { return double(gRepaintNanoseconds) / 1e9; }
void ResetProgressRepaintSeconds() { gRepaintNanoseconds = 0; }

QString ProgressText(const QString& prefix, double fraction)
{
    return prefix + conv::FormatPercent(fraction) + QStringLiteral(" finished");
}

// Away from a tie the percentage rounds to llround(tenths), so the text of the
// last step serves again; at a tie only the formatting itself can tell.
const QString& StepText::at(double fraction)
{
    const double tenths = fraction * 1000.0;
    const double half = tenths - std::floor(tenths) - 0.5;
    const long long rounded = std::isfinite(tenths) && std::fabs(half) > 1e-6 ? std::llround(tenths) : -1;
    if (rounded < 0 || rounded != tenths_) {
        text_ = ProgressText(prefix_, fraction);
        tenths_ = rounded;
    }
    return text_;
}

// What the program posts to itself is served at every yield; the window
// system is asked for new input (a press of Cancel, the mouse) once a frame,
// which takes a tenth of a query's time when done at every record.
void YieldToEvents()
{
    static QElapsedTimer sinceInput;
    if (!sinceInput.isValid() || sinceInput.nsecsElapsed() >= kFrameNanoseconds) {
        QCoreApplication::processEvents();
        sinceInput.start();
    } else {
        QCoreApplication::sendPostedEvents();
    }
}

void AppendResult(const ShapePtr& shape, Recordset& record, const QString& field)
{
    if (!cShapes || !cSymbols || !cFieldValues) throw MapError("result model not made");
    auto symbol = std::make_shared<Symbol>();
    symbol->Outline = false;
    cShapes->Add(shape, keyOf(cShapes->Count()));
    const Field value = record.Fields()(field);  // looked up once, read twice
    SetClassSymbolColor(field, value.toDouble(), symbol);
    cSymbols->Add(symbol, keyOf(cSymbols->Count()));
    cFieldValues->Add(value.Value(), keyOf(cFieldValues->Count()));
}
