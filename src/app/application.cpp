#include "app/application.h"

#include <QApplication>
#include <QFont>

#include "mapping/controls.h"

void InitApplication()
{
    QApplication::setApplicationName(QStringLiteral("Marlowan"));
    QApplication::setApplicationVersion(QStringLiteral("1.2.0"));
    QFont font(QStringLiteral("DejaVu Sans Condensed"));
    font.setPointSizeF(9);
    QApplication::setFont(font);
    ChooseTwipsPerPixel();
}
