// Laying tiles over a map, and repairing a map's borders.

#include <algorithm>

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

// Tiles are laid over maps of three planes, of one byte a sample, or of one plane, of two bytes.
template <std::size_t kPlanes>
constexpr std::size_t kSampleBytes = kPlanes == 1 ? 2 : 1;

template <std::size_t kPlanes>
auto placesIn(const PlanePieces& pieces, std::size_t at = 0) {
    typename PaintedRuns<kPlanes>::Places places;
    for (std::size_t plane = 0; plane < kPlanes; ++plane)
        places[plane] = pieces.at(plane) + at;
    return places;
}

// Lays `count` bytes of each of the tile's planes over as many of the map's.
void layOver(const PlanePieces& map, const PaintedRuns<3>::Places& tile,
             const PlanePieces& background, std::size_t count) {
    layOverPlanes(map.colours(), tile, {*background.at(0), *background.at(1), *background.at(2)},
                  count);
}

void layOver(const PlanePieces& map, const PaintedRuns<1>::Places& tile,
             const PlanePieces& background, std::size_t count) {
    layOverShorts(map.at(0), tile[0], background.at(0), count / 2);
}

void copyFirstSamples(const Planes& planes, std::size_t sampleBytes, const PlanePieces& from,
                      const PlanePieces& to) {
    for (std::size_t plane = 0; plane < planes.count; ++plane)
        std::copy_n(from.at(plane), sampleBytes, to.at(plane));
}

enum class End { kDone, kNotRead, kNotWritten };

// Lays a run of the tile over the target, of which nothing is read where the tile hides all of it.
template <std::size_t kPlanes>
End mergeRun(const PaintedRuns<kPlanes>& painted, const PaintedRun& run, const PlanePieces& tile,
             const PlanePieces& background, PlanePieces& map, const File& target) {
    const auto row = placesIn<kPlanes>(tile);
    const PaintedRun exact = painted.trimmed(row, run);
    if (painted.isSolid(row, exact))
        return tile.write(target, exact) ? End::kDone : End::kNotWritten;
    if (!map.read(target, tile.start() + run.start, run.size())) return End::kNotRead;
    layOver(map, placesIn<kPlanes>(tile, run.start), background, run.size());
    return map.write(target, {0, run.size()}) ? End::kDone : End::kNotWritten;
}

// Where the tile has the background, the target is neither read nor written. Its first pixel, which is
// the background, is written last: a merge that ends halfway can be made again.
//
//   returns  kNotOpened when a file cannot be read; else kOk, also when the disk takes no more
template <std::size_t kPlanes>
float mergePlanes(const File& source, const File& target, const Planes& planes) {
    constexpr std::size_t sampleBytes = kSampleBytes<kPlanes>;
    PlanePieces tile(planes);
    PlanePieces map(planes);
    PlanePieces background(planes);
    PlanePieces firstPixel(planes);
    if (!background.read(target, 0, sampleBytes) || !firstPixel.read(source, 0, sampleBytes))
        return kNotOpened;

    const PaintedRuns<kPlanes> painted(placesIn<kPlanes>(background), sampleBytes);
    for (std::size_t start = 0; start < planes.bytes; start += PlanePieces::kBytes) {
        if (!tile.read(source, start, std::min(PlanePieces::kBytes, planes.bytes - start)))
            return kNotOpened;
        if (start == 0) copyFirstSamples(planes, sampleBytes, background, tile);
        const auto row = placesIn<kPlanes>(tile);
        End end = End::kDone;
        forEachRun(painted, row, tile.size(), [&](const PaintedRun& run) {
            end = mergeRun(painted, run, tile, background, map, target);
            return end == End::kDone;
        });
        if (end != End::kDone) return end == End::kNotRead ? kNotOpened : kOk;
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

// Each repairs one plane of width x height bytes, whose place in the displaced map is given. False when
// that cannot be read.

bool repairColumns(std::uint8_t* plane, const File& shifted, std::size_t place, std::size_t width,
                   std::size_t height) {
    constexpr std::size_t kBoth =
        2 * kSeamColumns;  // side by side: the right seam's, the left one's
    const std::size_t right = width - kSeamColumns;
    Runs rows(shifted, kBoth, width);
    for (std::size_t row = kRowsKeptAtTop; row < height - kRowsKeptAtBottom; ++row) {
        const std::size_t start = row * width;
        const std::uint8_t* const from =
            rows.read(place + start + kDisplacement - kSeamColumns, kBoth);
        if (from == nullptr) return false;
        std::copy_n(from + kSeamColumns, kSeamColumns, plane + start);
        std::copy_n(from, kSeamColumns, plane + start + right);
    }
    return true;
}

bool repairRows(std::uint8_t* plane, const File& shifted, std::size_t place, std::size_t width,
                std::size_t height) {
    const std::size_t seam = kSeamRows * width;
    const std::size_t top = place + kDisplacement * width;
    std::uint8_t* const bottom = plane + height * width - seam;
    return shifted.readAt(top, plane, seam) == seam &&
           shifted.readAt(top - seam, bottom, seam) == seam;
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
    if (kind == kGray16) return mergePlanes<1>(tile.file, rewritten, {offset, 2 * pixels, 1});
    return mergePlanes<3>(tile.file, rewritten, {offset, pixels, 3});
}

float mergeSeamlessPSD(const char* shifted, const char* plain, bool horizontal) {
    PsdOnDisk displaced;
    const float status = openPSD(shifted, displaced);
    if (status != kOk) return status;
    const std::size_t width = displaced.header.width;
    const std::size_t height = displaced.header.height;
    if (height < kMinSide || width < kMinSide) return kBadSize;

    PsdOnDisk map;
    map.header = displaced.header;  // a size that cannot be read counts as that of `shifted`
    openPSD(plain, map);
    if (!map.file.isOpen()) return kNotOpened;
    if (!sameSize(displaced.header, map.header)) return kSizesDiffer;
    const std::size_t offset = map.dataOffset;
    if (!map.holds(offset, 3)) return kNotOpened;
    const std::size_t pixels = width * height;
    const std::size_t lastRow = height - kRowsKeptAtBottom - 1;
    const std::size_t bytesRead = horizontal ? lastRow * width + kDisplacement + kSeamColumns
                                             : (kDisplacement + kSeamRows) * width;
    if (displaced.fileBytes < offset + 2 * pixels + bytesRead) return kNotOpened;

    // All of it, before anything is written: on any failure `shifted` stays as it is.
    const FileBytes repaired = loadFile(map.file);
    if (repaired.data == nullptr) return kNotOpened;
    const auto repair = horizontal ? repairColumns : repairRows;
    for (std::size_t plane = 0; plane < 3; ++plane) {
        const std::size_t start = offset + plane * pixels;
        if (!repair(&repaired.data[start], displaced.file, start, width, height)) return kNotOpened;
    }
    return writePSD(shifted, {repaired.data.get(), repaired.size});
}
