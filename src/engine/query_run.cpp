// Placeholder until this module is written.
#include "engine/query_run.h"
#include "app/frmMain.h"

void fill_cShapes_collection(const QString&) {}
bool QueryResults() { return false; }
void draw_query_results(Map*) {}
void HideContextLayers(const QStringList&, bool) {}
void ShowProgress(const QString&) {}
QString ProgressText(const QString& p, double) { return p; }
void YieldToEvents() {}
void AppendResult(const ShapePtr&, Recordset&, const QString&) {}
void FrmMain::cmdUpdateMap_Click() {}
