// Placeholder until this module is written.
#include "results/save_result.h"
#include "app/frmMain.h"

void SaveTrackingLayer() {}
void FrmMain::mnuSave_Click() {}
void FrmMain::mnuSaveAs_Click() {}
