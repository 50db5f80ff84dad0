#include "app/application.h"

#include <QApplication>
#include <QFont>
#include <cstdlib>
#include <unistd.h>

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

void RestartWithLargePages(char** argv)
{
    if (std::getenv("GLIBC_TUNABLES")) return;
    setenv("GLIBC_TUNABLES", "glibc.malloc.hugetlb=1", 1);
    execv("/proc/self/exe", argv);
    unsetenv("GLIBC_TUNABLES");  // no restart: go on as we are
}
