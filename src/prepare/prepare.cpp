#include "prepare/prepare.h"

#include <chrono>
#include <cpl_conv.h>
#include <cpl_error.h>
#include <filesystem>
#include <iostream>
#include <gdal_priv.h>
#include <unistd.h>

#include "prepare/progress.h"
#include "prepare/rasters.h"
#include "prepare/vectors.h"

namespace prepare {

namespace fs = std::filesystem;

namespace {

struct Made {
    std::string file;
    std::size_t records;
    std::string source;
    double seconds;
};

std::string doingText(const StandardLayer& standard, const LayerRecipe& r)
{
    char km[32];
    std::snprintf(km, sizeof km, "%g", r.cellKm);
    switch (standard.kind) {
    case Kind::Grid: return "averaging " + r.sourceText + " onto cells of " + km + " km";
    case Kind::LandUse:
        return r.classes.empty() ? "reading " + r.sourceText : "classes of " + r.sourceText + " into polygons";
    case Kind::Boundary: return "reading " + r.sourceText;
    default: break;
    }
    return "reprojecting and clipping " + r.sourceText;
}

// A folder that is ours alone until the end: its removal cannot touch OUTDIR.
class WorkFolder {
public:
    explicit WorkFolder(const fs::path& outdir)
        : path_(outdir.parent_path() / ("." + outdir.filename().string() + ".preparing-" + std::to_string(getpid())))
    {
        fs::remove_all(path_);
        fs::create_directories(path_);
    }
    ~WorkFolder()
    {
        std::error_code ec;
        if (!moved_) fs::remove_all(path_, ec);
    }
    const fs::path& path() const { return path_; }

    // Puts the folder in the place of OUTDIR; a former OUTDIR goes only once
    // the new one is in place.
    void moveTo(const fs::path& outdir)
    {
        const fs::path old = outdir.parent_path() / ("." + outdir.filename().string() + ".replaced-" + std::to_string(getpid()));
        const bool replace = fs::exists(outdir);
        if (replace) fs::rename(outdir, old);
        try {
            fs::rename(path_, outdir);
        } catch (...) {
            if (replace) fs::rename(old, outdir);
            throw;
        }
        moved_ = true;
        std::error_code ec;
        if (replace) fs::remove_all(old, ec);
    }

private:
    fs::path path_;
    bool moved_ = false;
};

void checkOutdir(const fs::path& outdir, bool force)
{
    std::error_code ec;
    if (!fs::exists(outdir, ec)) return;
    if (!fs::is_directory(outdir, ec)) throw InputError(outdir.string() + " exists and is not a folder");
    if (!fs::is_empty(outdir, ec) && !force)
        throw InputError(outdir.string() + " is not empty; give --force to replace it");
}

}  // namespace

int run(const Options& options, std::ostream& out, std::ostream& err)
{
    static const bool registered = [] {
        GDALAllRegister();
        return true;
    }();
    (void)registered;
    // GDAL's own reports would repeat our messages in another form.
    CPLPushErrorHandler(CPLQuietErrorHandler);
    struct PopHandler {
        ~PopHandler() { CPLPopErrorHandler(); }
    } pop;
    const bool overwrite = isatty(STDOUT_FILENO) && &out == &std::cout;
    Progress progress(out, options.quiet, overwrite);
    std::vector<Made> made;
    try {
        const Recipe recipe = readRecipe(options.recipe);
        const fs::path outdir = fs::absolute(options.outdir).lexically_normal();
        if (outdir.filename().empty()) throw InputError("OUTDIR " + options.outdir + " names no folder");
        checkOutdir(outdir, options.force);
        if (!fs::is_directory(outdir.parent_path())) throw InputError("the folder of OUTDIR does not exist: " + outdir.parent_path().string());

        const LayerRecipe* boundary = nullptr;
        for (const LayerRecipe& r : recipe.layers)
            if (findLayer(r.stem)->kind == Kind::Boundary) boundary = &r;
        using Clock = std::chrono::steady_clock;
        auto started = Clock::now();
        auto seconds = [](Clock::time_point since) { return std::chrono::duration<double>(Clock::now() - since).count(); };

        progress.start("39_countryboundary.shp", doingText(*findLayer(boundary->stem), *boundary));
        const Target target = makeTarget(recipe, *boundary);
        WorkFolder work(outdir);
        writeShapefile((work.path() / "39_countryboundary.shp").string(), target.boundaryTable, target.prj);
        made.push_back({"39_countryboundary.shp", target.boundaryTable.records.size(), boundary->sourceText, seconds(started)});
        progress.finish(made.back().records, made.back().seconds);

        for (const LayerRecipe& r : recipe.layers) {
            const StandardLayer& standard = *findLayer(r.stem);
            if (standard.kind == Kind::Boundary) continue;
            const std::string file = r.stem + ".shp";
            started = Clock::now();
            progress.start(file, doingText(standard, r));
            OutTable table;
            if (standard.kind == Kind::Grid) table = makeGrid(recipe, r, standard, target, progress);
            else if (standard.kind == Kind::LandUse && !r.classes.empty()) table = makeLandUseFromClasses(recipe, r, target, progress);
            else table = makeVectorLayer(recipe, r, standard, target);
            writeShapefile((work.path() / file).string(), table, target.prj);
            made.push_back({file, table.records.size(), r.sourceText, seconds(started)});
            progress.finish(made.back().records, made.back().seconds);
        }
        work.moveTo(outdir);
    } catch (const InputError& e) {
        out << std::flush;
        err << "marlowan-prepare: " << e.what() << std::endl;
        return kBadInput;
    } catch (const std::exception& e) {
        out << std::flush;
        err << "marlowan-prepare: failed: " << e.what() << std::endl;
        return kFailure;
    }
    if (!options.quiet) {
        out << "\n";
        char line[512];
        std::snprintf(line, sizeof line, "%-26s %9s  %-40s %8s\n", "file", "records", "source", "seconds");
        out << line;
        double total = 0;
        for (const Made& m : made) {
            std::snprintf(line, sizeof line, "%-26s %9zu  %-40s %8.2f\n", m.file.c_str(), m.records, m.source.c_str(), m.seconds);
            out << line;
            total += m.seconds;
        }
        std::snprintf(line, sizeof line, "%zu files in %s, %.2f s\n", made.size(), options.outdir.c_str(), total);
        out << line << std::flush;
    }
    return kOk;
}

}  // namespace prepare
