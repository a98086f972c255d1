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

bool haveAnnouncedPlanes(const PsdView& a, const PsdView& b) {
    return a.holdsAnnouncedPlanes() && b.holdsAnnouncedPlanes();
}

bool bothHold(const PsdView& a, const PsdView& b, std::size_t offset, std::size_t bytesPerPixel) {
    return a.holds(offset, bytesPerPixel) && b.holds(offset, bytesPerPixel);
}

// Each returns whether the files have the planes; `merged` is untouched if they do not.

bool mergeRgb8(PsdImage& merged, const PsdView& source) {
    const std::size_t offset = merged.dataOffset;
    if (!bothHold(merged.view(), source, offset, 3)) return false;
    const auto pixels = static_cast<std::size_t>(source.pixels());
    if (pixels == 0) return true;
    std::uint8_t* const planes = &merged.bytes[offset];
    const Rgb background = {planes[0], planes[pixels], planes[2 * pixels]};
    layOverPlanes(planes, &source.bytes[offset], background, pixels);
    return true;
}

bool mergeGray16(PsdImage& merged, const PsdView& source) {
    const std::size_t offset = source.dataOffset;
    if (!bothHold(merged.view(), source, offset, 2)) return false;
    const auto pixels = static_cast<std::size_t>(source.pixels());
    if (pixels == 0) return true;
    layOverShorts(&merged.bytes[offset], &source.bytes[offset], pixels);
    return true;
}

constexpr std::uint32_t kDisplacement = 50;
constexpr std::uint32_t kLeastSide = 2 * kDisplacement;
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
    const ImgInUse inUse;
    float status = loadPSD(target);
    if (status != kOk) return status;
    PsdImage merged = takeImg();
    status = loadPSD(source);
    if (status != kOk) return status;
    if (!sameSize(merged.header, fHeader)) return kSizesDiffer;

    const PsdView from = viewOfImg();
    const int kind = fHeader.depth * fHeader.colourMode;
    if (kind != kRgb8 && kind != kGray16) return kUnknownKind;
    if (!haveAnnouncedPlanes(merged.view(), from)) return kNotOpened;
    const bool complete = kind == kRgb8 ? mergeRgb8(merged, from) : mergeGray16(merged, from);
    if (!complete) return kNotOpened;

    emptyImg();
    return writePSD(target, {merged.bytes});
}

float mergeSeamlessPSD(const char* shifted, const char* plain, bool horizontal) {
    const ImgInUse inUse;
    const float status = loadPSD(shifted);
    if (status != kOk) return status;
    if (fHeader.height < kLeastSide || fHeader.width < kLeastSide) return kBadSize;
    const PsdImage displaced = takeImg();

    if (!loadImg(plain)) return kNotOpened;
    readPSDHeader();  // only the size matters
    if (!sameSize(displaced.header, fHeader)) return kSizesDiffer;
    const PsdView repaired = viewOfImg();
    const std::size_t offset = repaired.dataOffset;
    if (!haveAnnouncedPlanes(displaced.view(), repaired) || !repaired.holds(offset, 3))
        return kNotOpened;
    const auto pixels = static_cast<std::size_t>(repaired.pixels());
    const std::size_t rowsRead =
        horizontal ? fHeader.height - kRowsKeptAtBottom : kDisplacement + kSeamRows;
    if (displaced.bytes.size() < offset + 2 * pixels + rowsRead * fHeader.width) return kNotOpened;

    const auto repair = horizontal ? repairColumns : repairRows;
    for (std::size_t plane = 0; plane < 3; ++plane) {
        const std::size_t start = offset + plane * pixels;
        repair(&img[start], &displaced.bytes[start], fHeader.width, fHeader.height);
    }
    return writePSD(shifted, {img});
}
