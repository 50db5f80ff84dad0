#pragma once
// For the query tests: a fresh main form, tiny hand-made datasets, and the panel driven as a user drives it.
#include <QDir>
#include <ostream>
#include <QStringList>
#include <gtest/gtest.h>
#include <string>
#include <utility>
#include <vector>

#include "app/frmMain.h"
#include "datagen.h"
#include "engine/query_run.h"
#include "support/testsupport.h"
#include "workspace/loading.h"
#include "workspace/state.h"

// Readable failures for texts.
inline void PrintTo(const QString& s, std::ostream* os) { *os << '"' << s.toStdString() << '"'; }
inline void PrintTo(const QStringList& l, std::ostream* os) { *os << '[' << l.join("|").toStdString() << ']'; }

namespace qf {

inline FrmMain& freshMain()
{
    unloadFrmMain();
    ResetProgramState();
    testsupport::recorder().clear();
    FrmMain& f = frmMain();
    f.show();
    testsupport::recorder().clear();
    return f;
}

inline std::string rect(double x, double y, double w, double h) { return testsupport::box(x, y, x + w, y + h); }

struct Poly { std::string wkt; double value; };

// A polygon layer with one numeric field.
inline void writePolygons(const std::string& dir, const std::string& file, const std::string& field,
                          const std::vector<Poly>& polys)
{
    std::vector<datagen::FeatureSpec> features;
    for (const Poly& p : polys) features.push_back({p.wkt, {p.value}});
    datagen::writeShapefile(dir + "/" + file, datagen::GeomKind::Polygon, {{field, 'N', 19, 6}}, features);
}

inline void writeLines(const std::string& dir, const std::string& file, const std::vector<std::string>& wkts)
{
    std::vector<datagen::FeatureSpec> features;
    long long id = 0;
    for (const std::string& w : wkts) features.push_back({w, {id++}});
    datagen::writeShapefile(dir + "/" + file, datagen::GeomKind::Line, {{"ID", 'I'}}, features);
}

// A point far from everything: a repaint always draws a layer, one that does not cover the results.
inline void writeCity(const std::string& dir)
{
    datagen::writeShapefile(dir + "/59_cities.shp", datagen::GeomKind::Point, {{"NAME", 'C', 20}},
                            {{"POINT(-50000 -50000)", {std::string("Far")}}});
}

// Polygons of 1 km by 1 km side by side, with these values.
inline std::vector<Poly> windRow(const std::vector<double>& values, double y = 0)
{
    std::vector<Poly> out;
    for (size_t i = 0; i < values.size(); ++i) out.push_back({rect(2000.0 * double(i), y, 1000, 1000), values[i]});
    return out;
}

// Loads a directory as if a file in it had been picked.
inline void load(FrmMain& f, const std::string& dir)
{
    LoadProject("picked.shp", QString::fromStdString(dir) + "/picked.shp", f.Map1, f.legend);
    testsupport::recorder().clear();
}

inline void setRange(FrmMain& f, const QString& min, const QString& max)
{ f.cboQueryDropDown->setText(min), f.cboQueryDropDown2->setText(max); }

// Records the progress texts of a run in order.
struct ProgressLog {
    QStringList texts;
    std::function<void(const QString&)> also;
    ProgressLog() { SetProgressHook([this](const QString& t) { texts << t; if (also) also(t); }); }
    ~ProgressLog() { SetProgressHook({}); }
};

inline int colorAt(const QString& key) { return cSymbols->Item(key)->Color; }

// Parallel segments 10 m long and 10 m apart: with a buffer of 1 m no two
// buffers meet, so the area of the union counts the records in it.
inline std::vector<std::string> shortSegments(int count, double y = 0)
{
    std::vector<std::string> out;
    for (int i = 0; i < count; ++i) out.push_back(QString("LINESTRING(%1 %2,%1 %3)").arg(10 * i).arg(y).arg(y + 10).toStdString());
    return out;
}

// The range queries set up as a user would.
inline const QString kWindQuery = QStringLiteral("Wind by Power Density");
inline const QString kSolarQuery = QStringLiteral("Best Solar X kWh/m2/day");
inline const QString kGlobal10 = QStringLiteral("10 km Solar Global Horizontal Annual Average(KWH/M2/DAY)");
inline const QString kPv10 = QStringLiteral("10 km Solar PV Annual Average(KWH/M2/DAY)");

inline QStringList boxes() { return testsupport::recorder().texts(); }

// A directory with one solar layer of 1 km squares and the far city.
inline std::string solarDir(const std::string& name, const std::string& file, const std::string& field,
                            const std::vector<double>& values)
{
    const std::string dir = testsupport::tempDir(name);
    writePolygons(dir, file, field, windRow(values));
    writeCity(dir);
    return dir;
}

// A fresh window with the dataset loaded and the query chosen; a null range is left as it is.
inline FrmMain& panel(const std::string& dir, const QString& query, const QString& min = {}, const QString& max = {},
                      const QString& resource = {})
{
    FrmMain& f = freshMain();
    load(f, dir);
    f.cboSelectQuery->setListIndex(f.cboSelectQuery->findText(query));  // as the user chooses, raising its Click
    if (!resource.isEmpty()) f.cboQueryDropDown3->setListIndex(f.cboQueryDropDown3->findText(resource));
    if (!min.isNull()) setRange(f, min, max);
    testsupport::recorder().clear();
    return f;
}

}  // namespace qf
