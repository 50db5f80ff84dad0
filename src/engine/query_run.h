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
// Puts a progress text into lblWorking and repaints frmMain at once.
void ShowProgress(const QString& text);
// "<prefix><p> finished" with p the fraction as a percentage with one decimal.
QString ProgressText(const QString& prefix, double fraction);
// Lets pending user events run (a press of Cancel is served here).
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
