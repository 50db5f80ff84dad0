#pragma once
// The run of a query and the result model it fills.
#include <QString>
#include <QStringList>
#include <functional>

#include "mapping/recordset.h"
#include "mapping/symbol.h"

class Map;

void fill_cShapes_collection(const QString& sQueryName);
bool QueryResults();
void draw_query_results(Map* oMap);

// --- shared by the query routines ---

// Hides each named context layer that is loaded; then, if asked, refreshes
// Map1 and repaints frmMain.
void HideContextLayers(const QStringList& files, bool refresh);
// Puts a progress text into lblWorking and repaints frmMain at once: the
// first and last texts of a loop, and any text that work without a yield
// follows.
void ShowProgress(const QString& text);
// A text that changes at every step of a loop. The caption changes at once;
// the label repaints at the screen's pace, at once only when its last repaint
// is a frame old. A text still waiting is painted by the next ShowProgress,
// by FlushProgress and at the end of the run, so the last one always shows.
void ShowStepProgress(const QString& text);
void FlushProgress();
// "<prefix><p> finished" with p the fraction as a percentage with one decimal.
QString ProgressText(const QString& prefix, double fraction);
// The same text for the steps of one loop, formatted anew only when the
// percentage it shows changes.
class StepText {
public:
    explicit StepText(QString prefix) : prefix_(std::move(prefix)) {}
    const QString& at(double fraction);

private:
    QString prefix_, text_;
    long long tenths_ = -1;
};
// Lets pending user events run (a press of Cancel is served here), those of
// the window system at the screen's pace.
void YieldToEvents();
// Appends shape with a new symbol coloured by field's value in record, and the
// value itself, under the next key of the result model.
void AppendResult(const ShapePtr& shape, Recordset& record, const QString& field);

// For the batch tool and tests: called with each progress text as it is shown
// (an empty function removes the hook).
void SetProgressHook(std::function<void(const QString&)> hook);
// Time spent repainting frmMain for progress texts since the last reset, in seconds.
double ProgressRepaintSeconds();
void ResetProgressRepaintSeconds();
