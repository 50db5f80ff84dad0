// Placeholder until this module is written.
#include "queryset/catalogue.h"
#include "app/frmMain.h"

void FillcboSelectQuery(ComboBox*) {}
bool isQueryPossible(const QString&, QString&) { return true; }
bool isLayerExist(const QString&, QString&) { return false; }
void HandleQuerySelect() {}
void FrmMain::cboSelectQuery_Click() {}
void FrmMain::cboQueryDropDown3_Click() {}
