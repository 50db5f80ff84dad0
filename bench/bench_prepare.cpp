// marlowan-prepare figures of the README, wall and CPU time:
//  (a) a national wind raster of 4,000 x 4,000 pixels (about 280 m, in
//      longitude/latitude) onto cells of 3 km, clipped to the country;
//  (b) the whole recipe of the large generated sources, every layer.
//   bench_prepare [WORK_DIR]   (default /tmp/marlowan-bench-prepare)
#include <chrono>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <gdal_priv.h>
#include <ogr_spatialref.h>
#include <sstream>
#include <string>
#include <sys/resource.h>
#include <vector>

#include "prepare/prepare.h"
#include "sources.h"

namespace fs = std::filesystem;

namespace {

double cpuSeconds()
{
    rusage u{};
    getrusage(RUSAGE_SELF, &u);
    return double(u.ru_utime.tv_sec + u.ru_stime.tv_sec) + double(u.ru_utime.tv_usec + u.ru_stime.tv_usec) / 1e6;
}

void timed(const char* what, const std::string& recipe, const std::string& out)
{
    std::ostringstream log, err;
    const double cpu0 = cpuSeconds();
    const auto t0 = std::chrono::steady_clock::now();
    const int code = prepare::run({recipe, out, true, false}, log, err);
    const double wall = std::chrono::duration<double>(std::chrono::steady_clock::now() - t0).count();
    const double cpu = cpuSeconds() - cpu0;
    if (code != 0) std::fprintf(stderr, "%s", err.str().c_str());
    std::printf("== %s\n%s", what, log.str().c_str());
    std::printf("%s: wall %.2f s, CPU %.2f s\n\n", what, wall, cpu);
}

// A country of about 1,000 km across near the equator, and its wind atlas.
void nationalWind(const fs::path& dir)
{
    const double lon0 = 10, lat0 = 2, span = 10;
    std::ofstream b(dir / "country.geojson");
    b << R"({"type":"FeatureCollection","features":[{"type":"Feature","properties":{"name":"Home"},)"
      << R"("geometry":{"type":"Polygon","coordinates":[[)";
    for (int i = 0; i <= 360; ++i) {
        const double a = (i % 360) * M_PI / 180, r = span * (0.42 + 0.05 * std::sin(5 * a) + 0.02 * std::cos(13 * a));
        b << (i ? "," : "") << "[" << lon0 + span / 2 + r * std::cos(a) << "," << lat0 + span / 2 + r * std::sin(a) << "]";
    }
    b << "]]}}]}";
    b.close();

    const int n = 4000;
    GDALAllRegister();
    GDALDatasetUniquePtr ds(GetGDALDriverManager()->GetDriverByName("GTiff")->Create(
        (dir / "wind.tif").string().c_str(), n, n, 1, GDT_Float32, nullptr));
    double gt[6] = {lon0, span / n, 0, lat0 + span, 0, -span / n};
    ds->SetGeoTransform(gt);
    OGRSpatialReference srs;
    srs.importFromEPSG(4326);
    ds->SetSpatialRef(&srs);
    ds->GetRasterBand(1)->SetNoDataValue(-9999);
    std::vector<float> row(n);
    for (int r = 0; r < n; ++r) {
        for (int c = 0; c < n; ++c)
            row[size_t(c)] = float(450 + 300 * std::sin(c * 0.004) * std::cos(r * 0.003) + 40 * std::sin((c + r) * 0.05));
        ds->GetRasterBand(1)->RasterIO(GF_Write, 0, r, n, 1, row.data(), n, 1, GDT_Float32, 0, 0);
    }
    std::ofstream(dir / "recipe.toml") << "crs = \"auto\"\n[39_countryboundary]\nsource = \"country.geojson\"\n"
                                          "[20_wind]\nsource = \"wind.tif\"\ncell_km = 3\n";
}

}  // namespace

int main(int argc, char** argv)
{
    const fs::path work = argc > 1 ? argv[1] : "/tmp/marlowan-bench-prepare";
    fs::create_directories(work / "national");
    if (!fs::exists(work / "national" / "wind.tif")) nationalWind(work / "national");
    timed("(a) 4,000 x 4,000 wind raster onto 3 km cells", (work / "national" / "recipe.toml").string(),
          (work / "national-out").string());

    if (!fs::exists(work / "large" / "recipe.toml")) {
        std::printf("generating the large sources in %s\n", (work / "large").c_str());
        datagen::Options o;
        o.size = "large";
        datagen::writeSources((work / "large").string(), o);
    }
    timed("(b) whole recipe of the large generated sources", (work / "large" / "recipe.toml").string(),
          (work / "large-out").string());
    return 0;
}
