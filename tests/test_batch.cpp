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

using namespace qrun;

namespace {

struct BatchRun {
    int code = -1;
    QString out, err;
};

BatchRun batch(const QStringList& args)
{
    const QString bin = QStringLiteral(MARLOWAN_BIN_DIR "/marlowan-batch");
    if (!QFileInfo::exists(bin)) {
        ADD_FAILURE() << "build the marlowan-batch target first";
        return {};
    }
    QProcess p;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert("QT_QPA_PLATFORM", "offscreen");
    p.setProcessEnvironment(env);
    p.start(bin, args);
    p.waitForFinished(-1);
    return {p.exitStatus() == QProcess::NormalExit ? p.exitCode() : -1, QString::fromUtf8(p.readAllStandardOutput()),
            QString::fromUtf8(p.readAllStandardError())};
}

// The window's table as CSV lines, after pressing Update Map on this panel.
QStringList windowTable(const std::string& dir, const QString& query, const QString& min, const QString& max,
                        const QString& resource = {})
{
    panel(dir, query, min, max, resource).cmdUpdateMap->click();
    const auto rows = QueryDataTable();
    if (!rows) return {"failed"};
    QStringList lines;
    for (const QueryDataRow& r : *rows)
        lines << QString("%1,%2,%3,%4,%5")
                     .arg(RedOf(r.color))
                     .arg(GreenOf(r.color))
                     .arg(BlueOf(r.color))
                     .arg(QString::number(r.area, 'g', 17))
                     .arg(r.description);
    return lines;
}

QStringList lines(const QString& text) { return text.split('\n', Qt::SkipEmptyParts); }

QString q(const std::string& s) { return QString::fromStdString(s); }

}  // namespace

TEST(Batch, WindRangeTableEqualsTheWindowsTable)
{
    const std::string dir = testsupport::dataset("small");
    const BatchRun r = batch({q(dir), "--query", kWindQuery, "--min", "200", "--max", "Max", "--quiet"});
    ASSERT_EQ(r.code, 0) << r.err.toStdString();
    EXPECT_FALSE(r.err.contains("Calculating")) << "--quiet keeps progress off stderr";

    const QStringList expected = windowTable(dir, kWindQuery, "200", "Max");
    ASSERT_GE(expected.size(), 5);  // the generated wind data reaches every class from 200
    EXPECT_EQ(lines(r.out), expected);
    // Values of exactly 200 and 800 lie in the data: their classes are there.
    EXPECT_EQ(expected.filter(QRegularExpression("^222,184,135,.*,Wind Power Density >= 200 and < 300$")).size(), 1);
    EXPECT_EQ(expected.filter(QRegularExpression("^0,0,255,.*,Wind Power Density >= 800$")).size(), 1);
}

TEST(Batch, SolarRangeTableToAFileWithProgressTimingAndMap)
{
    const std::string dir = testsupport::dataset("small");
    const QString table = q(testsupport::tempDir("batch-solar")) + "/table.csv";
    const QString png = q(testsupport::tempDir("batch-solar-map")) + "/map.png";
    const BatchRun r = batch({q(dir), "--query", kSolarQuery, "--solar-resource", kGlobal10, "--min", "5", "--max",
                              "6.5", "--table", table, "--map", png, "--timing"});
    ASSERT_EQ(r.code, 0) << r.err.toStdString();
    EXPECT_TRUE(r.out.isEmpty());
    const QStringList err = lines(r.err);
    for (const char* text : {"Calculating...", "Calculating... 0.0% finished", "Calculating... finished"})
        EXPECT_TRUE(err.contains(text)) << text;
    EXPECT_EQ(err.filter(QRegularExpression("^load \\d+\\.\\d{3}$")).size(), 1) << r.err.toStdString();
    EXPECT_EQ(err.filter(QRegularExpression("^query \\d+\\.\\d{3}$")).size(), 1) << r.err.toStdString();

    const QStringList expected = windowTable(dir, kSolarQuery, "5", "6.5", kGlobal10);
    ASSERT_FALSE(expected.isEmpty());
    QFile file(table);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(lines(QString::fromUtf8(file.readAll())), expected);

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

TEST(Batch, RefusalsExitWithTwoAndFailuresWithOneWithTheirOwnTexts)
{
    // The availability check finds "16_solar_tilt.shp"; the run wants "12_solar_tilt.shp".
    const std::string pv = testsupport::tempDir("batch-failure");
    writePolygons(pv, "16_solar_tilt.shp", "ANNTILT", windRow({5.5, 6.2}));
    struct Case { QStringList args; int code; const char* says; };
    const Case cases[] = {
        {{q(testsupport::dataset("small")), "--query", kWindQuery, "--min", "500", "--max", "500"}, 2,
         "Max. Wind Power Density should be > Min. Wind Power Density"},
        // The query's layer is missing: the selection is refused.
        {{q(testsupport::dataset("small", 1, {"43_roads.shp"})), "--query", "Best wind + roads", "--road-km", "2"}, 2,
         "This query requires 43_roads.shp shapefile."},
        {{q(pv), "--query", kSolarQuery, "--solar-resource", kPv10, "--min", "5", "--max", "7"}, 1,
         " Error Source:md_query_functions2.solar_x_kwhm2_or_better() "},
    };
    for (const Case& c : cases) {
        const BatchRun r = batch(c.args + QStringList{"--quiet"});
        EXPECT_EQ(r.code, c.code) << c.says;
        EXPECT_TRUE(r.err.contains(c.says)) << r.err.toStdString();
        EXPECT_TRUE(r.out.isEmpty()) << c.says;
    }
}

TEST(Batch, UsageErrorsExitWithTwo)
{
    const std::string dir = testsupport::tempDir("batch-usage");
    writePolygons(dir, "20_wind.shp", "WINDPWRD", windRow({300, 500}));
    struct Case { QStringList args; const char* says; };
    const Case cases[] = {
        {{q(dir), "--query", kWindQuery, "--speed", "fast"}, "unknown option --speed"},
        {{q(dir), "--query", "Wind by Power"}, "unknown query \"Wind by Power\""},
        {{q(dir + "/nowhere"), "--query", kWindQuery}, "no such dataset directory"},
        {{q(dir), "--query"}, "needs a value"},
        {{q(dir), "--query", kWindQuery, "--answer", "maybe"}, "--answer takes yes or no"},
        {{q(dir), "--query", kWindQuery, "--road-km", "2"}, "--road-km does not apply"},
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
