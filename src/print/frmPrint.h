#pragma once
// "Print Map": the page set-up window and the printed page.
void UnloadFrmPrint();

#include <QString>
// For the batch tool: loads frmPrint, types the heading and prints the page to
// a PDF file at 600 dpi. False when the print failed (its message was shown).
bool PrintPageToPdf(const QString& pdfPath, const QString& heading);
