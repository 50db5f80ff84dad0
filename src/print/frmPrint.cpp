// Placeholder until this module is written.
#include "print/frmPrint.h"
#include "app/frmMain.h"

void UnloadFrmPrint() {}
bool PrintPageToPdf(const QString&, const QString&) { return false; }
void FrmMain::mnuPrint_Click() {}
