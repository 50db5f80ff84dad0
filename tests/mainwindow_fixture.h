#pragma once
// For the main window's tests: a fresh main form per case and small hand-made shapefiles.
#include <QDir>
#include <QFile>
#include <gtest/gtest.h>
#include <set>
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

// A case with a fresh main form, unloaded afterwards.
struct MainTest : ::testing::Test {
    void TearDown() override { unloadFrmMain(); }
    Map* map() { return main->Map1; }
    FrmMain& f = freshMain();
    FrmMain* main = &f;
};

inline QString q(const std::string& s) { return QString::fromStdString(s); }

// n small squares in a row (or their centres, or their diagonals), with an ID and a NAME field.
inline void writeFeatures(const std::string& path, int n, datagen::GeomKind kind = datagen::GeomKind::Polygon,
                          bool withPrj = true)
{
    std::vector<datagen::FeatureSpec> features;
    for (int i = 0; i < n; ++i) {
        const int x = 1000 * i;
        using datagen::GeomKind;
        const QString wkt = kind == GeomKind::Polygon ? QString("POLYGON((%1 0,%2 0,%2 800,%1 800,%1 0))").arg(x).arg(x + 800)
                            : kind == GeomKind::Line  ? QString("LINESTRING(%1 0,%2 800)").arg(x).arg(x + 800)
                                                      : QString("POINT(%1 400)").arg(x + 400);
        features.push_back({wkt.toStdString(), {static_cast<long long>(i), "F" + std::to_string(i)}});
    }
    datagen::writeShapefile(path, kind, {{"ID", 'I'}, {"NAME", 'C', 20}}, features, withPrj);
}

// Same, into a directory given as a QString.
inline void writeFeaturesIn(const QString& dir, const QString& file, int n,
                            datagen::GeomKind kind = datagen::GeomKind::Polygon)
{
    writeFeatures(QDir(dir).filePath(file).toStdString(), n, kind);
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

// The texts of the boxes shown so far, for failure output.
inline std::string boxTexts() { return testsupport::recorder().texts().join("|").toStdString(); }
#define EXPECT_NO_BOXES() EXPECT_TRUE(testsupport::recorder().boxes.empty()) << fixture::boxTexts()

}  // namespace fixture
