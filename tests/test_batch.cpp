// marlowan-batch run as a process: its table equals the one the window computes; it goes on after boxes as the window does;
// any failure box gives status 1, refusals and usage errors 2.
#include <QFileInfo>
#include <QImage>
#include <QProcess>
#include <QRegularExpression>
#include <algorithm>

#include "mapping/symbol.h"
#include "query_fixture.h"
#include "results/frmShowQueryData.h"

using namespace qf;

namespace {

struct BatchRun { int code = -1; QString out, err; };

// Run with the test's environment, offscreen; -1 when it did not start or crashed.
BatchRun batch(const QStringList& args)
{
    QProcess p;
    p.start(QStringLiteral(MARLOWAN_BIN_DIR "/marlowan-batch"), args), p.waitForFinished(-1);
    return {p.exitStatus() == QProcess::NormalExit && p.error() != QProcess::FailedToStart ? p.exitCode() : -1,
            QString::fromUtf8(p.readAllStandardOutput()), QString::fromUtf8(p.readAllStandardError())};
}

// The window's table as CSV lines, after pressing Update Map on this panel.
QStringList windowTable(const std::string& dir, const QString& query, const QString& min, const QString& max,
                        const QString& resource = {})
{
    panel(dir, query, min, max, resource).cmdUpdateMap->click();
    QStringList out;
    for (const QueryDataRow& r : QueryDataTable().value_or(std::vector<QueryDataRow>{}))
        out << QString("%1,%2,%3,%4,%5").arg(RedOf(r.color)).arg(GreenOf(r.color)).arg(BlueOf(r.color))
                   .arg(QString::number(r.area, 'g', 17), r.description);
    return out;
}

QStringList lines(const QString& text) { return text.split('\n', Qt::SkipEmptyParts); }

QString q(const std::string& s) { return QString::fromStdString(s); }

}  // namespace

TEST(Batch, SolarRangeTableToAFileWithProgressTimingAndMap)
{
    const std::string dir = testsupport::dataset("small");
    const QString table = q(testsupport::tempDir("batch-solar")) + "/table.csv", png = QFileInfo(table).path() + "/map.png";
    const BatchRun r = batch({q(dir), "--query", kSolarQuery, "--solar-resource", kGlobal10, "--min", "5", "--max",
                              "6.5", "--table", table, "--map", png, "--timing"});
    ASSERT_EQ(r.code, 0) << r.err.toStdString();
    EXPECT_TRUE(r.out.isEmpty());
    const QStringList err = lines(r.err);
    for (const char* text : {"Calculating...", "Calculating... 0.0% finished", "Calculating... finished"})
        EXPECT_TRUE(err.contains(text)) << text;
    for (const char* step : {"load", "query"})
        EXPECT_EQ(err.filter(QRegularExpression(QString("^%1 \\d+\\.\\d{3}$").arg(step))).size(), 1) << r.err.toStdString();

    const QStringList expected = windowTable(dir, kSolarQuery, "5", "6.5", kGlobal10);
    ASSERT_FALSE(expected.isEmpty());
    QFile file(table);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(lines(QString::fromUtf8(file.readAll())), expected);

    // The picture holds the colour of the first row.
    const QImage image = QImage(png).convertToFormat(QImage::Format_RGB32);
    const QStringList first = expected.first().split(',');
    const auto* pixels = reinterpret_cast<const QRgb*>(image.constBits()), *end = pixels + image.sizeInBytes() / 4;
    EXPECT_NE(std::find(pixels, end, qRgb(first[0].toInt(), first[1].toInt(), first[2].toInt())), end);
}

// A box at load or at selection does not end the run; any failure box makes
// the status 1, also with a table written; a refusal or a usage error gives 2.
TEST(Batch, GoesOnAfterBoxesAndExitsOneAfterAnyFailureBoxElseTwoForRefusalsAndUsage)
{
    // The land-use layer has no LAND_USE: its renderer fails at load, its list at selection.
    const std::string noLandUse = testsupport::tempDir("batch-no-land-use");
    writePolygons(noLandUse, "20_wind.shp", "WINDPWRD", windRow({450, 650}));
    writePolygons(noLandUse, "02_landuse.shp", "LAND_USX", windRow({1}));
    const std::string small = testsupport::dataset("small");
    // A wind layer below the first class warns at each selection of a wind query.
    const std::string weak = testsupport::tempDir("batch-weak");
    writePolygons(weak, "20_wind.shp", "WINDPWRD", windRow({100, 150}));
    // The availability check finds "16_solar_tilt.shp"; the run wants "12_solar_tilt.shp".
    writePolygons(weak, "16_solar_tilt.shp", "ANNTILT", windRow({5.5, 6.2}));
    // A protected-area field that the overlay's own search cannot compare.
    datagen::writeShapefile(weak + "/31_protectedarea.shp", datagen::GeomKind::Polygon, {{"FeatureID", 'C', 8}},
                            {{rect(0, 0, 500, 500), {std::string("x")}}});
    // Enough roads that the buffer run asks first.
    writeLines(weak, "43_roads.shp", shortSegments(400, -3000));
    // Sixteen solar colours, two more than the Results Table window shows.
    const std::string sixteen = solarDir("batch-sixteen", "14_solar_glo.shp", "ANNGLO",
                                         {9.5, 1.0, 2.2, 2.7, 3.2, 3.7, 4.2, 4.7, 5.2, 5.7, 6.2, 6.7, 7.2, 7.7, 8.2, 8.7});
    // Half of the one wind square is protected; roads, lines and land use cover all of it.
    const std::string all = testsupport::tempDir("batch-all");
    writePolygons(all, "20_wind.shp", "WINDPWRD", windRow({900}));
    writePolygons(all, "31_protectedarea.shp", "ID", {{rect(0, 0, 500, 1000), 1}});
    datagen::writeShapefile(all + "/02_landuse.shp", datagen::GeomKind::Polygon, {{"LAND_USE", 'C', 20}},
                            {{rect(-5000, -5000, 10000, 10000), {std::string("GRASS")}}});
    writeLines(all, "43_roads.shp", {"LINESTRING(-5000 500, 5000 500)"});
    writeLines(all, "44_transmissionline.shp", {"LINESTRING(500 -5000, 500 5000)"});
    const QStringList allQuery{q(all), "--query", "Best wind (all)", "--max", "Max", "--land-use", "GRASS",
                               "--protected-areas"};
    const QString lightGray = "The query results will be shown in light gray. Maximum Wind Power Density (150) is less than 200.";
    const QString usage = "usage: marlowan-batch DATASET_DIR --query NAME";

    struct Case { QStringList args; int code; QStringList says, rows; int rowCount = -1; };
    const Case cases[] = {
        {{q(small), "--query", kWindQuery, "--min", "200", "--max", "Max"}, 0, {},
         windowTable(small, kWindQuery, "200", "Max")},
        {{q(weak), "--query", "Best wind + roads", "--answer", "no"}, 0,
         {"This query may take few minutes to complete. Do you want to proceed?"}, {}},
        {{q(small), "--query", kWindQuery, "--min", "500", "--max", "500"}, 2,
         {"Max. Wind Power Density should be > Min. Wind Power Density"}, {}},
        // The query's layer is missing: the selection is refused.
        {{q(testsupport::dataset("small", 1, {"43_roads.shp"})), "--query", "Best wind + roads", "--road-km", "2"}, 2,
         {"This query requires 43_roads.shp shapefile."}, {}},
        {{q(weak), "--query", kSolarQuery, "--solar-resource", kPv10, "--min", "5", "--max", "7"}, 1,
         {" Error Source:md_query_functions2.solar_x_kwhm2_or_better() "}, {}},
        {{q(noLandUse), "--query", kWindQuery, "--min", "500", "--max", "Max"}, 1,
         {" Error Source:md_functions.LayerRenderer()"}, windowTable(noLandUse, kWindQuery, "500", "Max")},
        // The window's own check refuses the press; the failure boxes before it decide.
        {{q(noLandUse), "--query", "Best wind + land use"}, 1,
         {" Error Source:md_functions.FillLandUseDropDown()", "Please select a land use."}, {}},
        {{q(weak), "--query", kWindQuery, "--min", "0"}, 0, {lightGray}, {"230,230,230,2,Wind Power Density < 200"}},
        {{q(weak), "--query", "Best wind - protected areas"}, 1, {lightGray, "Error generated in while performing the query"},
         {}},
        {{q(sixteen), "--query", kSolarQuery, "--solar-resource", kGlobal10, "--min", "0", "--max", "10"}, 0,
         {"Form will not be able to show all values"}, windowTable(sixteen, kSolarQuery, "0", "10", kGlobal10), 16},
        {allQuery + QStringList{"keep"}, 0, {}, {"0,0,255,1,Wind Power Density >= 800"}},
        {allQuery + QStringList{"remove"}, 0, {}, {"0,0,255,0.5,Wind Power Density >= 800"}},
        {{q(weak), "--query", kWindQuery, "--speed", "fast"}, 2, {"unknown option --speed", usage}, {}},
        {{q(weak), "--query", "Wind by Power"}, 2, {"unknown query \"Wind by Power\"", usage}, {}},
        {{q(weak + "/nowhere"), "--query", kWindQuery}, 2, {"no such dataset directory", usage}, {}},
        {{q(weak), "--query", kWindQuery, "--answer", "maybe"}, 2, {"--answer takes yes or no", usage}, {}},
        {{q(weak), "--query", kWindQuery, "--road-km", "2"}, 2, {"--road-km does not apply", usage}, {}},
        {{q(weak), "--query", "Best wind (all)", "--protected-areas", "yes"}, 2, {"takes remove or keep", usage}, {}},
        {{q(weak), "--query", kWindQuery, "--protected-areas", "keep"}, 2, {"to Best wind (all) only", usage}, {}},
        {{q(weak), "--query", kSolarQuery, "--solar-resource", "Sun"}, 2, {"no solar resource \"Sun\"", usage}, {}},
        {{q(weak), "--query"}, 2, {"needs a value", usage}, {}},
        {{q(weak)}, 2, {"nothing to do", usage}, {}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.args.join(' ').toStdString());
        const BatchRun r = batch(QStringList{"--quiet"} + c.args);
        EXPECT_EQ(r.code, c.code) << r.err.toStdString();
        EXPECT_FALSE(r.err.contains("Calculating")) << "--quiet keeps progress off stderr";
        for (const QString& text : c.says) EXPECT_TRUE(r.err.contains(text)) << r.err.toStdString();
        const QStringList out = lines(r.out);
        EXPECT_TRUE(out.mid(0, int(c.rows.size())) == c.rows && out.size() == (c.rowCount < 0 ? c.rows.size() : c.rowCount)) << r.out.toStdString();
    }
}
