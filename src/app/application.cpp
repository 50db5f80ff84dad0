#include "app/application.h"

#include <QApplication>
#include <QFont>

void InitApplication()
{
    QApplication::setApplicationName(QStringLiteral("Marlowan"));
    QApplication::setApplicationVersion(QStringLiteral("1.2.0"));
    QFont font(QStringLiteral("DejaVu Sans"));
    font.setPointSizeF(7.5);
    QApplication::setFont(font);
}
