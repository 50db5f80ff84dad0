#include "app/application.h"

#include <QApplication>
#include <QFont>
#include <cstdlib>
#include <unistd.h>

void InitApplication()
{
    QApplication::setApplicationName(QStringLiteral("Marlowan"));
    QApplication::setApplicationVersion(QStringLiteral("1.2.0"));
    QFont font(QStringLiteral("DejaVu Sans"));
    font.setPointSizeF(7.5);
    QApplication::setFont(font);
}

void RestartWithLargePages(char** argv)
{
    if (std::getenv("GLIBC_TUNABLES")) return;
    setenv("GLIBC_TUNABLES", "glibc.malloc.hugetlb=1", 1);
    execv("/proc/self/exe", argv);
    unsetenv("GLIBC_TUNABLES");  // no restart: go on as we are
}
