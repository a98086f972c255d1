#include "terminal/Progress.h"

#include <unistd.h>

#include <cstdio>

namespace {

constexpr std::size_t kBarWidth = 24;
constexpr const char* kBackAndErase = "\r\x1B[K";

}  // namespace

Progress::Progress(bool wanted) : visible_(wanted && ::isatty(STDERR_FILENO) == 1) {}

void Progress::show(const char* work, std::size_t done, std::size_t total,
                    const std::string& current) {
    if (!visible_) return;
    std::fflush(stdout);
    std::string bar(total == 0 ? 0 : kBarWidth * done / total, '#');
    bar.resize(kBarWidth, '.');
    std::fprintf(stderr, "%s%s [%s] %zu of %zu  %s", kBackAndErase, work, bar.c_str(), done, total,
                 current.c_str());
    shown_ = true;
}

void Progress::clear() {
    if (shown_) std::fputs(kBackAndErase, stderr);
    shown_ = false;
}
