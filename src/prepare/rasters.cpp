#include "prepare/rasters.h"

#include <cmath>
#include <cpl_error.h>
#include <cpl_string.h>
#include <filesystem>
#include <gdal_alg.h>
#include <gdal_priv.h>
#include <gdal_utils.h>
#include <limits>
#include <map>
#include <ogrsf_frmts.h>
#include <set>

#include "prepare/progress.h"

namespace prepare {

namespace fs = std::filesystem;

namespace {

constexpr int kNoClass = std::numeric_limits<int>::min();

std::string number(double v)
{
    char s[64];
    std::snprintf(s, sizeof s, "%.17g", v);
    return s;
}

// The band of the raster the recipe names, as a dataset of that one band.
class RasterSource {
public:
    RasterSource(const Recipe& recipe, const LayerRecipe& r) : recipe_(recipe), r_(r)
    {
        if (!fs::exists(r.source)) fail(r.sourceLine, "the source does not exist");
        CPLErrorReset();
        ds_.reset(GDALDataset::Open(r.source.c_str(), GDAL_OF_RASTER | GDAL_OF_READONLY));
        if (!ds_) fail(r.sourceLine, "the source cannot be read as a raster" + gdalMessage());
        const OGRSpatialReference* srs = ds_->GetSpatialRef();
        if (!srs || srs->IsEmpty()) fail(r.sourceLine, "the raster has no coordinate system");
        if (r.band > ds_->GetRasterCount())
            fail(r.bandLine ? r.bandLine : r.sourceLine,
                 "the raster has no band " + std::to_string(r.band) + " (it has " + std::to_string(ds_->GetRasterCount()) + ")");
        if (ds_->GetRasterCount() > 1) {
            // Warping takes every band; a virtual copy of the one band is enough.
            CPLStringList args;
            args.AddString("-of");
            args.AddString("VRT");
            args.AddString("-b");
            args.AddString(std::to_string(r.band).c_str());
            GDALTranslateOptions* o = GDALTranslateOptionsNew(args.List(), nullptr);
            band_.reset(GDALDataset::FromHandle(GDALTranslate("", GDALDataset::ToHandle(ds_.get()), o, nullptr)));
            GDALTranslateOptionsFree(o);
            if (!band_) fail(r.sourceLine, "band " + std::to_string(r.band) + " cannot be read" + gdalMessage());
        }
    }

    [[noreturn]] void fail(int line, const std::string& what) const { throw InputError(where(recipe_, r_, line, what)); }
    GDALDataset* dataset() { return band_ ? band_.get() : ds_.get(); }

    // The pixel width in metres, near enough for choosing a resolution.
    double pixelMetres()
    {
        double gt[6];
        if (ds_->GetGeoTransform(gt) != CE_None) return 0;
        const OGRSpatialReference* srs = ds_->GetSpatialRef();
        if (srs->IsGeographic()) {
            const double lat = gt[3] + gt[5] * ds_->GetRasterYSize() / 2.0;
            return std::fabs(gt[1]) * 111320.0 * std::cos(lat * M_PI / 180.0);
        }
        return std::fabs(gt[1]) * srs->GetLinearUnits();
    }

    // Warps the band onto a grid of the target system over the boundary.
    GDALDatasetUniquePtr warp(const Target& target, double size, const char* resampling, const char* type,
                              const std::string& noData, Progress& progress)
    {
        const Envelope& e = target.extent;
        const double x0 = std::floor(e.minX / size) * size, y0 = std::floor(e.minY / size) * size;
        const double x1 = std::ceil(e.maxX / size) * size, y1 = std::ceil(e.maxY / size) * size;
        // The grid is held in memory: a cell size far too fine for the country is refused.
        const double cells = (x1 - x0) / size * ((y1 - y0) / size);
        if (cells > 5e7)
            fail(r_.line, "cells of " + number(size / 1000) + " km make " + std::to_string(static_cast<long long>(cells)) +
                              " cells over the boundary; choose a larger cell_km");
        char* wkt = nullptr;
        target.srs.exportToWkt(&wkt);
        CPLStringList args;
        for (const std::string& a : {std::string("-of"), std::string("MEM"), std::string("-t_srs"), std::string(wkt),
                                     std::string("-te"), number(x0), number(y0), number(x1), number(y1),
                                     std::string("-tr"), number(size), number(size), std::string("-r"),
                                     std::string(resampling), std::string("-ot"), std::string(type),
                                     std::string("-dstnodata"), noData, std::string("-wo"),
                                     std::string("INIT_DEST=NO_DATA"), std::string("-wo"),
                                     std::string("NUM_THREADS=ALL_CPUS"), std::string("-multi")})
            args.AddString(a.c_str());
        CPLFree(wkt);
        GDALWarpAppOptions* o = GDALWarpAppOptionsNew(args.List(), nullptr);
        GDALWarpAppOptionsSetProgress(o, Progress::gdalProgress, &progress);
        GDALDatasetH src = GDALDataset::ToHandle(dataset());
        CPLErrorReset();
        GDALDatasetUniquePtr out(GDALDataset::FromHandle(GDALWarp("", nullptr, 1, &src, o, nullptr)));
        GDALWarpAppOptionsFree(o);
        if (!out) fail(r_.sourceLine, "the raster cannot be reprojected" + gdalMessage());
        return out;
    }

private:
    const Recipe& recipe_;
    const LayerRecipe& r_;
    GDALDatasetUniquePtr ds_, band_;
};

struct GridGeometry {
    double x0, y1, size;
    int width, height;
};

GridGeometry gridOf(GDALDataset& ds)
{
    double gt[6];
    ds.GetGeoTransform(gt);
    return {gt[0], gt[3], gt[1], ds.GetRasterXSize(), ds.GetRasterYSize()};
}

// The class table: code, text; a header line, further columns ignored.
std::map<long long, std::string> readClasses(const Recipe& recipe, const LayerRecipe& r)
{
    auto fail = [&](const std::string& what) { throw InputError(where(recipe, r, r.classesLine, what)); };
    if (!fs::exists(r.classes)) fail("the class table " + r.classesText + " does not exist");
    const char* const drivers[] = {"CSV", nullptr};
    const char* const options[] = {"HEADERS=YES", nullptr};
    CPLErrorReset();
    GDALDatasetUniquePtr ds(GDALDataset::Open(r.classes.c_str(), GDAL_OF_VECTOR | GDAL_OF_READONLY, drivers, options));
    if (!ds || ds->GetLayerCount() != 1) fail("the class table " + r.classesText + " cannot be read as CSV" + gdalMessage());
    OGRLayer* layer = ds->GetLayer(0);
    if (layer->GetLayerDefn()->GetFieldCount() < 2)
        fail("the class table " + r.classesText + " needs two columns, code and text");
    std::map<long long, std::string> classes;
    int line = 1;
    for (OGRFeatureUniquePtr f(layer->GetNextFeature()); f; f.reset(layer->GetNextFeature())) {
        ++line;
        const std::string code = f->GetFieldAsString(0);
        char* end = nullptr;
        const long long c = std::strtoll(code.c_str(), &end, 10);
        while (end && *end == ' ') ++end;
        if (code.empty() || !end || *end)
            fail("line " + std::to_string(line) + " of the class table " + r.classesText + ": the code \"" + code +
                 "\" is not a whole number");
        classes[c] = f->GetFieldAsString(1);
    }
    return classes;
}

}  // namespace

OutTable makeGrid(const Recipe& recipe, const LayerRecipe& r, const StandardLayer& standard, const Target& target,
                  Progress& progress)
{
    RasterSource src(recipe, r);
    const double size = r.cellKm * 1000;
    progress.part(0, 0.5);
    GDALDatasetUniquePtr grid = src.warp(target, size, "average", "Float64", "nan", progress);
    progress.part(0.5, 1);
    const GridGeometry g = gridOf(*grid);
    std::vector<double> values(std::size_t(g.width) * std::size_t(g.height));
    if (grid->GetRasterBand(1)->RasterIO(GF_Read, 0, 0, g.width, g.height, values.data(), g.width, g.height,
                                         GDT_Float64, 0, 0) != CE_None)
        src.fail(r.sourceLine, "the averaged raster cannot be read" + gdalMessage());

    OutTable table;
    table.dim = 2;
    const bool elevation = std::string(standard.field) == "Elev_m";
    const bool wind = std::string(standard.field) == "WINDPWRD";
    table.fields.push_back({standard.field, OFTReal, 14, elevation ? 2 : wind ? 3 : 4});
    const double divisor = r.perYear ? 365.0 : 1.0;
    for (int row = 0; row < g.height; ++row) {
        progress.percent(double(row) / g.height);
        for (int col = 0; col < g.width; ++col) {
            const double v = values[std::size_t(row) * std::size_t(g.width) + std::size_t(col)];
            if (std::isnan(v)) continue;
            GeomPtr cell = target.boundary.clip(square(g.x0 + col * size, g.y1 - (row + 1) * size, size), 2);
            if (cell) table.records.push_back({cell, {v / divisor}});
        }
    }
    return table;
}

OutTable makeLandUseFromClasses(const Recipe& recipe, const LayerRecipe& r, const Target& target, Progress& progress)
{
    const std::map<long long, std::string> classes = readClasses(recipe, r);
    RasterSource src(recipe, r);
    // Each pixel keeps its class: the most frequent one where pixels merge.
    // Finer than 100 m would only add vertices to the outlines.
    const double size = std::max(100.0, src.pixelMetres());
    progress.part(0, 0.5);
    GDALDatasetUniquePtr grid = src.warp(target, size, "mode", "Int32", std::to_string(kNoClass), progress);
    progress.part(0.5, 1);

    GDALDriver* memory = GetGDALDriverManager()->GetDriverByName("Memory");
    GDALDatasetUniquePtr polys(memory->Create("", 0, 0, 0, GDT_Unknown, nullptr));
    OGRLayer* layer = polys->CreateLayer("classes", nullptr, wkbPolygon, nullptr);
    OGRFieldDefn code("code", OFTInteger);
    layer->CreateField(&code);
    GDALRasterBand* band = grid->GetRasterBand(1);
    CPLErrorReset();
    if (GDALPolygonize(band, band->GetMaskBand(), layer, 0, nullptr, Progress::gdalProgress, &progress) != CE_None)
        src.fail(r.sourceLine, "the class raster cannot be turned into polygons" + gdalMessage());

    OutTable table;
    table.dim = 2;
    table.fields.push_back({"LAND_USE", OFTString, 0, 0});
    std::set<long long> unknown;
    layer->ResetReading();
    for (OGRFeatureUniquePtr f(layer->GetNextFeature()); f; f.reset(layer->GetNextFeature())) {
        const long long c = f->GetFieldAsInteger64(0);
        const auto it = classes.find(c);
        if (it == classes.end()) {
            unknown.insert(c);
            continue;
        }
        const OGRGeometry* g = f->GetGeometryRef();
        if (!g) continue;
        if (GeomPtr shape = target.boundary.clip(makeValid(toGeos(*g)), 2)) table.records.push_back({shape, {it->second}});
    }
    if (!unknown.empty()) {
        std::string list;
        for (long long c : unknown) list += (list.empty() ? "" : ", ") + std::to_string(c);
        throw InputError(where(recipe, r, r.classesLine, "the raster has codes that the class table " + r.classesText +
                                                             " does not name: " + list));
    }
    return table;
}

}  // namespace prepare
