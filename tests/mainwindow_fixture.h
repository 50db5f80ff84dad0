#pragma once
// Shared by the tests of the main window, loading, visibility and navigation:
// a fresh main form per case and small hand-made shapefiles.
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "app/frmMain.h"
#include "datagen.h"
#include "support/testsupport.h"
#include "workspace/loading.h"
#include "workspace/state.h"

namespace fixture {

// A main form as the program has it after start: state reset, form loaded.
inline FrmMain& freshMain()
{
    unloadFrmMain();
    ResetProgramState();
    testsupport::recorder().clear();
    FrmMain& f = frmMain();
    testsupport::recorder().clear();
    return f;
}

inline QString q(const std::string& s) { return QString::fromStdString(s); }

// n small squares in a row (or their centres, or their diagonals), with an
// ID and a NAME field.
inline void writeFeatures(const std::string& path, int n, datagen::GeomKind kind = datagen::GeomKind::Polygon,
                          bool withPrj = true)
{
    std::vector<datagen::FeatureSpec> features;
    for (int i = 0; i < n; ++i) {
        const double x = 1000.0 * i, y = 0;
        std::string wkt;
        switch (kind) {
        case datagen::GeomKind::Polygon:
            wkt = "POLYGON((" + std::to_string(x) + " " + std::to_string(y) + "," + std::to_string(x + 800) + " "
                  + std::to_string(y) + "," + std::to_string(x + 800) + " " + std::to_string(y + 800) + ","
                  + std::to_string(x) + " " + std::to_string(y + 800) + "," + std::to_string(x) + " "
                  + std::to_string(y) + "))";
            break;
        case datagen::GeomKind::Line:
            wkt = "LINESTRING(" + std::to_string(x) + " " + std::to_string(y) + "," + std::to_string(x + 800) + " "
                  + std::to_string(y + 800) + ")";
            break;
        case datagen::GeomKind::Point:
            wkt = "POINT(" + std::to_string(x + 400) + " " + std::to_string(y + 400) + ")";
            break;
        }
        features.push_back({wkt, {static_cast<long long>(i), std::string("F") + std::to_string(i)}});
    }
    datagen::writeShapefile(path, kind, {{"ID", 'I'}, {"NAME", 'C', 20}}, features, withPrj);
}

// Copies the files of one shapefile (every extension) under a new base name.
inline void copyShapefile(const QString& fromDir, const QString& baseName, const QString& toDir,
                          const QString& newBase = QString())
{
    QDir from(fromDir);
    const QStringList parts = from.entryList({baseName + ".*"}, QDir::Files);
    for (const QString& part : parts) {
        const QString ext = part.mid(baseName.size());
        QFile::copy(from.filePath(part), QDir(toDir).filePath((newBase.isEmpty() ? baseName : newBase) + ext));
    }
}

// A copy of a generated dataset, for cases that add or remove files.
inline QString copyOfDataset(const std::string& name, const std::set<std::string>& omit = {})
{
    const QString src = q(testsupport::dataset("small", 1, omit));
    const QString dst = q(testsupport::tempDir(name));
    for (const QString& f : QDir(src).entryList(QDir::Files))
        QFile::copy(QDir(src).filePath(f), QDir(dst).filePath(f));
    return dst;
}

// Loads a directory as if any file in it had been picked.
inline void loadDirectory(const QString& dir, const QString& picked = QStringLiteral("picked.shp"))
{
    FrmMain& f = frmMain();
    LoadProject(picked, QDir(dir).filePath(picked), f.Map1, f.legend);
}

inline QStringList tags(const Map* map)
{
    QStringList out;
    for (const MapLayerPtr& l : map->Layers()) out << l->Tag;
    return out;
}

}  // namespace fixture
