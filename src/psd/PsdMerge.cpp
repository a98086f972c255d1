// Laying tiles over a map, and repairing a map's borders.

#include <algorithm>
#include <utility>
#include <vector>

#include "pixels/Planes.h"
#include "psd/PsdImage.h"
#include "psd/PsdOps.h"

using namespace psd_status;

namespace {

// Depth x colour mode of the two kinds that are merged.
constexpr int kRgb8 = 24;
constexpr int kGray16 = 16;

bool sameSize(const PsdHeader& a, const PsdHeader& b) {
    return a.width == b.width && a.height == b.height;
}

void copyFirstSamples(const Planes& planes, std::size_t sampleBytes, const PlanePieces& from,
                      const PlanePieces& to) {
    for (std::size_t plane = 0; plane < planes.count; ++plane)
        std::copy_n(from.at(plane), sampleBytes, to.at(plane));
}

void layOver(const Planes& planes, const PlanePieces& map, const PlanePieces& tile,
             const PlanePieces& background, std::size_t count) {
    if (planes.count == 1) {
        layOverShorts(map.at(0), tile.at(0), background.at(0), count / 2);
        return;
    }
    layOverPlanes({map.at(0), map.at(1), map.at(2)}, {tile.at(0), tile.at(1), tile.at(2)},
                  {*background.at(0), *background.at(1), *background.at(2)}, count);
}

// Returns kNotOpened when a file cannot be read, else kOk. The map's first pixel, which tells the
// background, is written last: a merge that ends halfway can be made again.
float mergePlanes(const File& source, const File& target, const Planes& planes,
                  std::size_t sampleBytes) {
    PlanePieces tile(planes);
    PlanePieces map(planes);
    PlanePieces background(planes);
    PlanePieces firstPixel(planes);
    if (!background.read(target, 0, sampleBytes) || !firstPixel.read(target, 0, sampleBytes))
        return kNotOpened;
    for (std::size_t start = 0; start < planes.bytes; start += PlanePieces::kBytes) {
        const std::size_t count = std::min(PlanePieces::kBytes, planes.bytes - start);
        if (!tile.read(source, start, count) || !map.read(target, start, count)) return kNotOpened;
        layOver(planes, map, tile, background, count);
        if (start == 0) {
            copyFirstSamples(planes, sampleBytes, map, firstPixel);
            copyFirstSamples(planes, sampleBytes, background, map);
        }
        if (!map.write(target)) return kOk;
    }
    for (std::size_t plane = 0; plane < planes.count; ++plane)
        target.writeAt(planes.placeOf(plane, 0), firstPixel.at(plane), sampleBytes);
    return kOk;
}

constexpr std::uint32_t kDisplacement = 50;
constexpr std::uint32_t kMinSide = 2 * kDisplacement;
constexpr std::size_t kSeamColumns = 2;    // at each side
constexpr std::size_t kSeamRows = 10;      // at each end
constexpr std::size_t kRowsKeptAtTop = 2;  // between the left and the right seam
constexpr std::size_t kRowsKeptAtBottom = 1;

// Each repairs one plane of width x height bytes.

void repairColumns(std::uint8_t* plane, const std::uint8_t* shifted, std::size_t width,
                   std::size_t height) {
    const std::size_t right = width - kSeamColumns;
    for (std::size_t row = kRowsKeptAtTop; row < height - kRowsKeptAtBottom; ++row) {
        std::uint8_t* const to = plane + row * width;
        const std::uint8_t* const from = shifted + row * width;
        std::copy_n(from + kDisplacement, kSeamColumns, to);
        std::copy_n(from + kDisplacement - kSeamColumns, kSeamColumns, to + right);
    }
}

void repairRows(std::uint8_t* plane, const std::uint8_t* shifted, std::size_t width,
                std::size_t height) {
    const std::size_t seam = kSeamRows * width;
    const std::uint8_t* const from = shifted + kDisplacement * width;
    std::copy_n(from, seam, plane);
    std::copy_n(from - seam, seam, plane + height * width - seam);
}

}  // namespace

float mergePSD(const char* source, const char* target) {
    PsdOnDisk map;
    float status = openPSD(target, map);
    if (status != kOk) return status;
    PsdOnDisk tile;
    status = openPSD(source, tile);
    if (status != kOk) return status;
    if (!sameSize(map.header, tile.header)) return kSizesDiffer;

    const int kind = tile.header.depth * tile.header.colourMode;
    if (kind != kRgb8 && kind != kGray16) return kUnknownKind;
    const std::size_t offset = kind == kRgb8 ? map.dataOffset : tile.dataOffset;
    const std::size_t pixelBytes = kind == kRgb8 ? 3 : 2;
    if (!map.holds(offset, pixelBytes) || !tile.holds(offset, pixelBytes)) return kNotOpened;

    const File rewritten = File::openForRewriting(target);
    if (!rewritten.isOpen()) return kNotWritten;
    const auto pixels = static_cast<std::size_t>(map.pixels());
    if (pixels == 0) return kOk;
    if (kind == kGray16) return mergePlanes(tile.file, rewritten, {offset, 2 * pixels, 1}, 2);
    return mergePlanes(tile.file, rewritten, {offset, pixels, 3}, 1);
}

float mergeSeamlessPSD(const char* shifted, const char* plain, bool horizontal) {
    const ImgInUse inUse;
    const float status = loadPSD(shifted);
    if (status != kOk) return status;
    if (fHeader.height < kMinSide || fHeader.width < kMinSide) return kBadSize;
    const PsdHeader displaced = fHeader;
    const std::vector<std::uint8_t> displacedBytes = std::exchange(img, {});

    if (!loadImg(plain)) return kNotOpened;
    readPSDHeader();  // its status does not matter: a size that is not read counts as that of `shifted`
    if (!sameSize(displaced, fHeader)) return kSizesDiffer;
    const PsdLayout repaired = layoutOfImg();
    const std::size_t offset = repaired.dataOffset;
    if (!repaired.holds(offset, 3)) return kNotOpened;
    const auto pixels = static_cast<std::size_t>(repaired.pixels());
    const std::size_t lastRow = fHeader.height - kRowsKeptAtBottom - 1;
    const std::size_t bytesRead = horizontal
                                      ? lastRow * fHeader.width + kDisplacement + kSeamColumns
                                      : (kDisplacement + kSeamRows) * fHeader.width;
    if (displacedBytes.size() < offset + 2 * pixels + bytesRead) return kNotOpened;

    const auto repair = horizontal ? repairColumns : repairRows;
    for (std::size_t plane = 0; plane < 3; ++plane) {
        const std::size_t start = offset + plane * pixels;
        repair(&img[start], &displacedBytes[start], fHeader.width, fHeader.height);
    }
    return writePSD(shifted, img);
}
