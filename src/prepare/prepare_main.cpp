// marlowan-prepare RECIPE OUTDIR [--force] [--quiet]: builds a standard dataset
// from the rasters and vectors a recipe names.
#include <cstring>
#include <iostream>

#include "prepare/prepare.h"

namespace {

const char* const kUsage =
    "usage: marlowan-prepare RECIPE OUTDIR [--force] [--quiet]\n"
    "  RECIPE   a TOML file: one table per standard file to make, named by its stem\n"
    "  --force  replace an existing, non-empty OUTDIR\n"
    "  --quiet  no progress and no summary\n";

int usage(const std::string& problem)
{
    std::cerr << "marlowan-prepare: " << problem << "\n" << kUsage;
    return prepare::kBadInput;
}

}  // namespace

int main(int argc, char** argv)
{
    prepare::Options o;
    int positional = 0;
    for (int i = 1; i < argc; ++i) {
        const std::string a = argv[i];
        if (a == "-h" || a == "--help") {
            std::cout << kUsage;
            return prepare::kOk;
        }
        if (a == "--force") o.force = true;
        else if (a == "--quiet") o.quiet = true;
        else if (a.rfind("-", 0) == 0 && a != "-") return usage("unknown option " + a);
        else if (positional == 0) o.recipe = a, ++positional;
        else if (positional == 1) o.outdir = a, ++positional;
        else return usage("unexpected argument " + a);
    }
    if (positional < 2) return usage(positional == 0 ? "RECIPE and OUTDIR are missing" : "OUTDIR is missing");
    return prepare::run(o, std::cout, std::cerr);
}
