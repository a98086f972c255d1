#include "tiff/TiffStrip.h"

#include <algorithm>

namespace {

// More pixels than any file holds, few enough that their bytes can be counted.
constexpr std::uint64_t kMaxPixels = std::uint64_t{1} << 58;

}  // namespace

bool hasPixels(const TiffInfo& info) {
    return info.width >= 1 && info.length >= 1;
}

Strip stripOf(const TiffInfo& info, std::size_t pixelBytes) {
    if (!hasPixels(info) || info.stripOffset < 0) return {0, 0, pixelBytes};
    const std::uint64_t pixels =
        static_cast<std::uint64_t>(info.width) * static_cast<std::uint64_t>(info.length);
    return {static_cast<std::uint64_t>(info.stripOffset), std::min(pixels, kMaxPixels), pixelBytes};
}

Strip wholeRowsWithin(const Strip& strip, const TiffInfo& info, std::uint64_t fileBytes) {
    if (strip.pixels == 0 || fileBytes <= strip.offset) return {strip.offset, 0, strip.pixelBytes};
    const auto width = static_cast<std::uint64_t>(info.width);
    const std::uint64_t rows = (fileBytes - strip.offset) / (width * strip.pixelBytes);
    return {strip.offset, std::min(strip.pixels, rows * width), strip.pixelBytes};
}
