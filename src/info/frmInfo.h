#pragma once
// "Map Information": the attributes found at the point of the last press on Map1.
class QWidget;

// Shows the one frmInfo without blocking, owned by frmMain (made at first use).
void ShowFrmInfo();
// Drops the form when the main window closes.
void UnloadFrmInfo();

#include <QString>
// For the batch tool: the text txtInfo holds after a press on Map1 at the map
// point (x, y), with the map as it stands.
QString IdentifyTextAt(double x, double y);
