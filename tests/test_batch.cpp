// marlowan-batch run as a process: its table equals the one the window
// computes, refusals and usage errors exit with 2, failures with 1, and the
// question of a long buffer run takes the answer of --answer.
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QProcess>
#include <QRegularExpression>

#include "mapping/symbol.h"
#include "query_fixture.h"
#include "results/frmShowQueryData.h"

using namespace qf;

namespace {

struct BatchRun {
    int code = -1;
    QString out, err;
};

BatchRun batch(const QStringList& args)
{
    const QString bin = QStringLiteral(MARLOWAN_BIN_DIR "/marlowan-batch");
    BatchRun r;
    if (!QFileInfo::exists(bin)) {
        ADD_FAILURE() << "build the marlowan-batch target first";
        return r;
    }
    QProcess p;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert("QT_QPA_PLATFORM", "offscreen");
    p.setProcessEnvironment(env);
    p.start(bin, args);
    p.waitForFinished(-1);
    r.code = p.exitStatus() == QProcess::NormalExit ? p.exitCode() : -1;
    r.out = QString::fromUtf8(p.readAllStandardOutput());
    r.err = QString::fromUtf8(p.readAllStandardError());
    return r;
}

// The window's table as CSV lines, computed in this process.
QStringList windowTable()
{
    QStringList lines;
    const auto rows = QueryDataTable();
    if (!rows) return {"failed"};
    for (const QueryDataRow& r : *rows)
        lines << QString("%1,%2,%3,%4,%5")
                     .arg(RedOf(r.color))
                     .arg(GreenOf(r.color))
                     .arg(BlueOf(r.color))
                     .arg(QString::number(r.area, 'g', 17))
                     .arg(r.description);
    return lines;
}

QStringList csvLines(const QString& text) { return text.split('\n', Qt::SkipEmptyParts); }

QString q(const std::string& s) { return QString::fromStdString(s); }

}  // namespace

TEST(Batch, WindRangeTableEqualsTheWindowsTable)
{
    const std::string dir = testsupport::dataset("small");
    const BatchRun r = batch({q(dir), "--query", "Wind by Power Density", "--min", "200", "--max", "Max", "--quiet"});
    ASSERT_EQ(r.code, 0) << r.err.toStdString();
    EXPECT_FALSE(r.err.contains("Calculating")) << "--quiet keeps progress off stderr";

    FrmMain& f = freshMain();
    load(f, dir);
    selectQuery(f, "Wind by Power Density");
    setRange(f, "200", "Max");
    f.cmdUpdateMap->click();
    const QStringList expected = windowTable();
    ASSERT_GE(expected.size(), 5);  // the generated wind data reaches every class from 200
    EXPECT_EQ(csvLines(r.out), expected);
    // Values of exactly 200 and 800 lie in the data: their classes are there.
    EXPECT_EQ(expected.filter(QRegularExpression("^222,184,135,.*,Wind Power Density >= 200 and < 300$")).size(), 1);
    EXPECT_EQ(expected.filter(QRegularExpression("^0,0,255,.*,Wind Power Density >= 800$")).size(), 1);
}

TEST(Batch, SolarRangeTableToAFileWithProgressTimingAndMap)
{
    const std::string dir = testsupport::dataset("small");
    const QString table = q(testsupport::tempDir("batch-solar")) + "/table.csv";
    const QString png = q(testsupport::tempDir("batch-solar-map")) + "/map.png";
    const QString resource = "10 km Solar Global Horizontal Annual Average(KWH/M2/DAY)";
    const BatchRun r = batch({q(dir), "--query", "Best Solar X kWh/m2/day", "--solar-resource", resource, "--min", "5",
                         "--max", "6.5", "--table", table, "--map", png, "--timing"});
    ASSERT_EQ(r.code, 0) << r.err.toStdString();
    EXPECT_TRUE(r.out.isEmpty());
    const QStringList err = r.err.split('\n', Qt::SkipEmptyParts);
    EXPECT_TRUE(err.contains("Calculating..."));
    EXPECT_TRUE(err.contains("Calculating... 0.0% finished"));
    EXPECT_TRUE(err.contains("Calculating... finished"));
    EXPECT_TRUE(err.filter(QRegularExpression("^load \\d+\\.\\d{3}$")).size() == 1) << r.err.toStdString();
    EXPECT_TRUE(err.filter(QRegularExpression("^query \\d+\\.\\d{3}$")).size() == 1) << r.err.toStdString();

    FrmMain& f = freshMain();
    load(f, dir);
    selectQuery(f, "Best Solar X kWh/m2/day");
    selectResource(f, resource);
    setRange(f, "5", "6.5");
    f.cmdUpdateMap->click();
    const QStringList expected = windowTable();
    ASSERT_FALSE(expected.isEmpty());

    QFile file(table);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(csvLines(QString::fromUtf8(file.readAll())), expected);

    // The picture holds the colour of the first row.
    QImage image(png);
    ASSERT_FALSE(image.isNull());
    const QStringList first = expected.first().split(',');
    const QRgb want = qRgb(first[0].toInt(), first[1].toInt(), first[2].toInt());
    bool found = false;
    for (int y = 0; y < image.height() && !found; ++y)
        for (int x = 0; x < image.width() && !found; ++x) found = (image.pixel(x, y) & 0xFFFFFF) == (want & 0xFFFFFF);
    EXPECT_TRUE(found);
}

TEST(Batch, RefusalsExitWithTwoAndTheirOwnText)
{
    const std::string dir = testsupport::dataset("small");
    // CheckInputs refuses.
    BatchRun r = batch({q(dir), "--query", "Wind by Power Density", "--min", "500", "--max", "500", "--quiet"});
    EXPECT_EQ(r.code, 2);
    EXPECT_TRUE(r.err.contains("Max. Wind Power Density should be > Min. Wind Power Density")) << r.err.toStdString();
    EXPECT_TRUE(r.out.isEmpty());

    // The query's layer is missing: the selection is refused.
    const std::string noRoads = testsupport::dataset("small", 1, {"43_roads.shp"});
    r = batch({q(noRoads), "--query", "Best wind + roads", "--road-km", "2", "--quiet"});
    EXPECT_EQ(r.code, 2);
    EXPECT_TRUE(r.err.contains("This query requires 43_roads.shp shapefile.")) << r.err.toStdString();
    EXPECT_TRUE(r.out.isEmpty());
}

TEST(Batch, UsageErrorsExitWithTwo)
{
    const std::string dir = testsupport::tempDir("batch-usage");
    writePolygons(dir, "20_wind.shp", "WINDPWRD", windRow({300, 500}));
    struct Case { QStringList args; const char* says; };
    const Case cases[] = {
        {{q(dir), "--query", "Wind by Power Density", "--speed", "fast"}, "unknown option --speed"},
        {{q(dir), "--query", "Wind by Power"}, "unknown query \"Wind by Power\""},
        {{q(dir + "/nowhere"), "--query", "Wind by Power Density"}, "no such dataset directory"},
        {{q(dir), "--query"}, "needs a value"},
        {{q(dir), "--query", "Wind by Power Density", "--answer", "maybe"}, "--answer takes yes or no"},
        {{q(dir), "--query", "Wind by Power Density", "--road-km", "2"}, "--road-km does not apply"},
        {{q(dir)}, "nothing to do"},
    };
    for (const Case& c : cases) {
        const BatchRun r = batch(c.args);
        EXPECT_EQ(r.code, 2) << c.says;
        EXPECT_TRUE(r.err.contains(c.says)) << r.err.toStdString();
        EXPECT_TRUE(r.err.contains("usage: marlowan-batch DATASET_DIR --query NAME")) << c.says;
        EXPECT_TRUE(r.out.isEmpty());
    }
}

TEST(Batch, FailureInsideTheRunExitsWithOne)
{
    // The availability check finds "16_solar_tilt.shp"; the run wants "12_solar_tilt.shp".
    const std::string dir = testsupport::tempDir("batch-failure");
    writePolygons(dir, "16_solar_tilt.shp", "ANNTILT", windRow({5.5, 6.2}));
    const BatchRun r = batch({q(dir), "--query", "Best Solar X kWh/m2/day", "--solar-resource",
                         "10 km Solar PV Annual Average(KWH/M2/DAY)", "--min", "5", "--max", "7", "--quiet"});
    EXPECT_EQ(r.code, 1);
    EXPECT_TRUE(r.err.contains(" Error Source:md_query_functions2.solar_x_kwhm2_or_better() ")) << r.err.toStdString();
    EXPECT_TRUE(r.out.isEmpty());
}

TEST(Batch, AnswerNoToTheLongBufferQuestionGivesAnEmptyTable)
{
    const std::string dir = testsupport::tempDir("batch-question");
    writePolygons(dir, "20_wind.shp", "WINDPWRD", windRow({500, 600}));
    std::vector<std::string> roads;
    for (int i = 0; i < 400; ++i)
        roads.push_back("LINESTRING(" + std::to_string(i * 100) + " -3000, " + std::to_string(i * 100 + 50) + " -3000)");
    writeLines(dir, "43_roads.shp", roads);
    const BatchRun r = batch({q(dir), "--query", "Best wind + roads", "--road-km", "2", "--answer", "no", "--quiet"});
    EXPECT_EQ(r.code, 0) << r.err.toStdString();
    EXPECT_TRUE(r.err.contains("This query may take few minutes to complete. Do you want to proceed?")) << r.err.toStdString();
    EXPECT_TRUE(r.out.isEmpty());
}
