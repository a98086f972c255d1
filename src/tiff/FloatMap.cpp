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
    if (hasPixels(header.info) && header.info.stripOffset < 0)
        return refusal(tiff_status::kStripTooFar);
    if (strip.pixels > 0 && strip.end() > file.size()) return refusal(tiff_status::kPixelsMissing);
    return {tiff_status::kOk, std::move(header), std::move(file), strip};
}

// Samples have the same bytes in a file as in memory on both processors.
static_assert(std::endian::native == std::endian::little);

const float* readSamples(const FloatMap& map, Piece& piece, std::uint64_t offset,
                         std::size_t pixels) {
    if (!piece.read(map.file, offset, pixels * map.strip.pixelBytes)) return nullptr;
    return reinterpret_cast<const float*>(piece.data());
}
