// marlowan-gendata: writes a standard dataset of a fictional country.
#include <charconv>
#include <chrono>
#include <cstdio>
#include <exception>
#include <string>
#include <vector>

#include "datagen.h"
#include "sources.h"

namespace {

const char* kUsage =
    "usage: marlowan-gendata [--size small|large|huge] [--seed N] [--omit FILE[,FILE...]] [--verbose] OUTDIR\n"
    "       marlowan-gendata --sources [--size small|large|huge] [--seed N] OUTDIR\n"
    "  --size     small (default); large, a national-scale stress case; huge, a 1 km wind grid\n"
    "  --seed     whole number, default 1; a seed always gives the same files\n"
    "  --omit     standard files to leave out, such as 43_roads.shp or 43_roads\n"
    "  --verbose  list the files written\n"
    "  --sources  write raw sources (GeoTIFF, GeoPackage, GeoJSON, shapefile in longitude/latitude)\n"
    "             to OUTDIR/sources and the marlowan-prepare recipe for them to OUTDIR/recipe.toml\n";

int usage(const std::string& problem)
{
    if (!problem.empty()) std::fprintf(stderr, "marlowan-gendata: %s\n", problem.c_str());
    std::fputs(kUsage, stderr);
    return 2;
}

bool parseSeed(const std::string& text, unsigned& seed)
{
    const char* end = text.data() + text.size();
    auto [ptr, ec] = std::from_chars(text.data(), end, seed);
    return !text.empty() && ec == std::errc() && ptr == end;
}

}  // namespace

int main(int argc, char** argv)
{
    datagen::Options options;
    bool verbose = false;
    bool sources = false;
    std::vector<std::string> positional;
    for (int i = 1; i < argc; ++i) {
        std::string arg = argv[i];
        std::string value;
        bool hasValue = false;
        if (arg.rfind("--", 0) == 0) {
            const auto eq = arg.find('=');
            if (eq != std::string::npos) {
                value = arg.substr(eq + 1);
                arg = arg.substr(0, eq);
                hasValue = true;
            }
        }
        auto takeValue = [&]() -> bool {
            if (hasValue) return true;
            if (i + 1 >= argc) return false;
            value = argv[++i];
            return true;
        };
        if (arg == "-h" || arg == "--help") {
            std::fputs(kUsage, stdout);
            return 0;
        } else if (arg == "--sources") {
            sources = true;
        } else if (arg == "--verbose" || arg == "-v") {
            verbose = true;
        } else if (arg == "--size") {
            if (!takeValue()) return usage("--size needs a value");
            if (value != "small" && value != "large" && value != "huge") return usage("unknown size: " + value);
            options.size = value;
        } else if (arg == "--seed") {
            if (!takeValue() || !parseSeed(value, options.seed)) return usage("--seed needs a whole number");
        } else if (arg == "--omit") {
            if (!takeValue()) return usage("--omit needs file names");
            std::size_t start = 0;
            while (start <= value.size()) {
                const auto comma = value.find(',', start);
                const std::string name = value.substr(start, comma == std::string::npos ? std::string::npos : comma - start);
                if (!name.empty()) {
                    if (datagen::standardName(name).empty()) return usage("not a standard file: " + name);
                    options.omit.insert(name);
                }
                if (comma == std::string::npos) break;
                start = comma + 1;
            }
        } else if (!arg.empty() && arg[0] == '-' && arg != "-") {
            return usage("unknown option: " + arg);
        } else {
            positional.push_back(arg);
        }
    }
    if (positional.size() != 1) return usage(positional.empty() ? "OUTDIR is missing" : "only one OUTDIR");

    const auto started = std::chrono::steady_clock::now();
    if (verbose) {
        options.onFile = [](const std::string& file, std::size_t records) {
            std::printf("%-26s %8zu records\n", file.c_str(), records);
        };
    }
    try {
        if (sources) datagen::writeSources(positional[0], options);
        else datagen::generate(positional[0], options);
    } catch (const std::exception& e) {
        std::fprintf(stderr, "marlowan-gendata: %s\n", e.what());
        return 1;
    }
    if (verbose) {
        const auto ms = std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - started);
        std::printf("%s dataset, seed %u, in %s: %lld ms\n", options.size.c_str(), options.seed, positional[0].c_str(),
                    static_cast<long long>(ms.count()));
    }
    return 0;
}
