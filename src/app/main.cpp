// The program starts with the splash, which loads the main window; the main
// window shows when the splash is dismissed.
#include <QApplication>

#include "app/application.h"
#include "app/frmSplash.h"

int main(int argc, char* argv[])
{
    QApplication app(argc, argv);
    InitApplication();
    frmSplash().show();
    return app.exec();
}
