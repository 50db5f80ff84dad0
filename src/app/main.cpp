// The program starts with the splash, which loads the main window; the main
// window shows when the splash is dismissed.
#include <QApplication>

#include "app/frmSplash.h"

int main(int argc, char* argv[])
{
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Marlowan"));
    QApplication::setApplicationVersion(QStringLiteral("1.2.0"));
    frmSplash().show();
    return app.exec();
}
