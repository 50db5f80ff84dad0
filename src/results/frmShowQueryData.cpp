// Placeholder until this module is written.
#include "results/frmShowQueryData.h"
#include "app/frmMain.h"

void UpdateQueryDataForm() {}
QString CreateAreaDescription(int) { return {}; }
void UnloadFrmShowQueryData() {}
void FrmMain::cmdShowData_Click() {}
