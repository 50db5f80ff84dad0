#pragma once
// marlowan-prepare: builds a standard dataset from the sources a recipe names.
#include <ostream>
#include <string>

namespace prepare {

struct Options {
    std::string recipe;
    std::string outdir;
    bool force = false;   // replace an existing non-empty OUTDIR
    bool quiet = false;   // no progress and no summary
};

enum Exit { kOk = 0, kFailure = 1, kBadInput = 2 };

// Progress and the summary go to out, problems to err. The dataset is built
// in a folder beside OUTDIR and moved into place only when every file is made.
int run(const Options& options, std::ostream& out, std::ostream& err);

}  // namespace prepare
