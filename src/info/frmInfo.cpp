// Placeholder until this module is written.
#include "info/frmInfo.h"

void ShowFrmInfo() {}
void UnloadFrmInfo() {}
QString IdentifyTextAt(double, double) { return {}; }
