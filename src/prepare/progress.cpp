#include "prepare/progress.h"

#include <cstdio>

namespace prepare {

void Progress::start(const std::string& file, const std::string& doing)
{
    line_ = file + ": " + doing;
    shown_ = -1;
    from_ = 0, to_ = 1;
    if (quiet_) return;
    out_ << line_ << (overwrite_ ? "" : "\n") << std::flush;
}

void Progress::percent(double fraction)
{
    const int p = int((from_ + fraction * (to_ - from_)) * 100);
    if (quiet_ || !overwrite_ || p == shown_) return;
    shown_ = p;
    out_ << "\r" << line_ << " " << p << "%" << std::flush;
}

void Progress::finish(std::size_t records, double seconds)
{
    if (quiet_) return;
    char text[64];
    std::snprintf(text, sizeof text, "%zu records, %.1f s", records, seconds);
    if (overwrite_) out_ << "\r" << line_ << ": " << text << "     \n";
    else out_ << "  " << text << "\n";
    out_ << std::flush;
}

int Progress::gdalProgress(double fraction, const char*, void* progress)
{
    static_cast<Progress*>(progress)->percent(fraction);
    return 1;
}

}  // namespace prepare
