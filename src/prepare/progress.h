#pragma once
// What the terminal shows while a recipe runs: one line per layer, with the
// percentage of long steps where the terminal can overwrite a line.
#include <ostream>
#include <string>

namespace prepare {

class Progress {
public:
    Progress(std::ostream& out, bool quiet, bool overwrite) : out_(out), quiet_(quiet), overwrite_(overwrite) {}
    void start(const std::string& file, const std::string& doing);
    void percent(double fraction);
    // The part of the whole step that the following fractions stand for.
    void part(double from, double to) { from_ = from, to_ = to; }
    void finish(std::size_t records, double seconds);
    // For GDAL's progress callbacks, with the Progress as the data pointer.
    static int gdalProgress(double fraction, const char* message, void* progress);

private:
    std::ostream& out_;
    bool quiet_, overwrite_;
    std::string line_;
    int shown_ = -1;
    double from_ = 0, to_ = 1;
};

}  // namespace prepare
