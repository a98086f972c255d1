#include "tiff/FloatMap.h"

#include <bit>
#include <utility>

namespace {

FloatMap refusal(float status) {
    return {status, {}, {}, {}};
}

}  // namespace

FloatMap openFloatMap(const char* path, std::size_t channels, const TiffRules& rules,
                      OpenFile open) {
    TiffHeader header = readTiffHeader(path, tiff_status::kNotOpened, rules);
    if (header.refused != tiff_status::kOk) return refusal(header.refused);
    File file = open(path);
    if (!file.isOpen()) return refusal(tiff_status::kNotReopened);

    const Strip strip = stripOf(header.info, channels * sizeof(float));
    if (strip.pixels == 0) return refusal(tiff_status::kNoPixels);
    if (strip.end() > file.size()) return refusal(tiff_status::kPixelsMissing);
    return {tiff_status::kOk, std::move(header), std::move(file), strip};
}

std::vector<float> pieceOfSamples() {
    return std::vector<float>(kPieceBytes / sizeof(float));
}

// Samples lie in a file as they lie in memory on both processors.
static_assert(std::endian::native == std::endian::little);

bool readSamples(const FloatMap& map, std::uint64_t offset, std::size_t pixels,
                 std::vector<float>& samples) {
    const std::size_t bytes = pixels * map.strip.pixelBytes;
    return map.file.readAt(offset, reinterpret_cast<std::uint8_t*>(samples.data()), bytes) == bytes;
}
