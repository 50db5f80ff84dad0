#include "app/messages.h"

#include "app/frmMain.h"
#include "mapping/seam.h"
#include "mapping/symbol.h"

void ErrorMessage(const QString& text, int /*severity*/)
{
    try {
        seam::FailureBox(text);
    } catch (...) {
        seam::FailureBox("Error in ErrorMessage() procedure");
    }
}

void DisplayError(const QString& text)
{
    try {
        FrmMain& f = frmMain();
        SetForeColor(f.lblWorking, RGB(255, 0, 0));
        f.lblWorking->setText(text);
        f.lblWorking->setVisible(true);
        f.RepaintNow();
    } catch (...) {
        ErrorMessage("Error Source:md_functions.DisplayError()", 48);
    }
}
