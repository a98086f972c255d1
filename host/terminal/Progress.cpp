#include "terminal/Progress.h"

#include <unistd.h>

#include <cstdio>
#include <nlohmann/json.hpp>

namespace {

constexpr std::size_t kBarWidth = 24;
constexpr const char* kBackAndErase = "\r\x1B[K";

}  // namespace

Progress::Progress(ProgressStyle style) : style_(style) {
    if (style == ProgressStyle::kBar && ::isatty(STDERR_FILENO) != 1) style_ = ProgressStyle::kNone;
}

void Progress::show(const char* step, std::size_t done, std::size_t total,
                    const std::string& current) {
    if (style_ == ProgressStyle::kJson) return print(step, done, total, &current);
    if (style_ == ProgressStyle::kNone) return;
    std::fflush(stdout);
    std::string bar(total == 0 ? 0 : kBarWidth * done / total, '#');
    bar.resize(kBarWidth, '.');
    std::fprintf(stderr, "%s%s [%s] %zu of %zu  %s", kBackAndErase, step, bar.c_str(), done, total,
                 current.c_str());
    shown_ = true;
}

void Progress::finish(const char* step, std::size_t total) {
    if (style_ == ProgressStyle::kJson) print(step, total, total, nullptr);
}

// In one write, so that a reader never sees a part of the line. A reader that has ended misses it.
void Progress::print(const char* step, std::size_t done, std::size_t total,
                     const std::string* current) {
    using Json = nlohmann::ordered_json;
    Json object = {{"file", file_}, {"step", step}, {"done", done}, {"total", total}};
    if (current != nullptr) object["next"] = *current;
    const std::string line = object.dump(-1, ' ', false, Json::error_handler_t::replace) + '\n';
    std::fwrite(line.data(), 1, line.size(), stderr);
    std::fflush(stderr);
}

void Progress::clear() {
    if (shown_) std::fputs(kBackAndErase, stderr);
    shown_ = false;
}
