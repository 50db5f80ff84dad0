#pragma once
// Shared by the tests of the query run, the results table and the batch tool:
// a fresh main form, tiny hand-made datasets, and driving the panel as a user.
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

inline std::string rect(double x, double y, double w, double h)
{
    auto n = [](double v) { return std::to_string(v); };
    return "POLYGON((" + n(x) + " " + n(y) + "," + n(x + w) + " " + n(y) + "," + n(x + w) + " " + n(y + h) + "," + n(x) +
           " " + n(y + h) + "," + n(x) + " " + n(y) + "))";
}

struct Poly {
    std::string wkt;
    double value;
};

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

// A point far from everything, so that a repaint always draws a layer that
// does not cover the results.
inline void writeCity(const std::string& dir)
{
    datagen::writeShapefile(dir + "/59_cities.shp", datagen::GeomKind::Point, {{"NAME", 'C', 20}},
                            {{"POINT(-50000 -50000)", {std::string("Far")}}});
}

// Wind polygons of 1 km by 1 km side by side, with these densities.
inline std::vector<Poly> windRow(const std::vector<double>& values, double y = 0)
{
    std::vector<Poly> out;
    for (size_t i = 0; i < values.size(); ++i) out.push_back({rect(2000.0 * double(i), y, 1000, 1000), values[i]});
    return out;
}

inline void load(FrmMain& f, const std::string& dir)
{
    const QStringList files = QDir(QString::fromStdString(dir)).entryList({"*.shp"}, QDir::Files, QDir::Name);
    const QString title = files.isEmpty() ? QStringLiteral("20_wind.shp") : files.first();
    LoadProject(title, QString::fromStdString(dir) + "/" + title, f.Map1, f.legend);
    testsupport::recorder().clear();
}

inline void selectQuery(FrmMain& f, const QString& name)
{
    for (int i = 0; i < f.cboSelectQuery->ListCount(); ++i) {
        if (f.cboSelectQuery->List(i) == name) {
            f.cboSelectQuery->setListIndex(i);
            return;
        }
    }
    ADD_FAILURE() << "no query " << name.toStdString();
}

inline void selectResource(FrmMain& f, const QString& name)
{
    for (int i = 0; i < f.cboQueryDropDown3->ListCount(); ++i) {
        if (f.cboQueryDropDown3->List(i) == name) {
            f.cboQueryDropDown3->setListIndex(i);
            return;
        }
    }
    ADD_FAILURE() << "no solar resource " << name.toStdString();
}

inline void setRange(FrmMain& f, const QString& min, const QString& max)
{
    f.cboQueryDropDown->setText(min);
    f.cboQueryDropDown2->setText(max);
}

// Records the progress texts of a run in order.
struct ProgressLog {
    QStringList texts;
    std::function<void(const QString&)> also;
    ProgressLog()
    {
        SetProgressHook([this](const QString& t) {
            texts << t;
            if (also) also(t);
        });
    }
    ~ProgressLog() { SetProgressHook({}); }
};

inline int colorAt(const QString& key) { return cSymbols->Item(key)->Color; }

}  // namespace qf
