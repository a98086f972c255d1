// Operations on the colour planes of one map.

#include <algorithm>
#include <array>

#include "bytes/Numbers.h"
#include "files/File.h"
#include "files/PieceBuffer.h"
#include "pixels/Planes.h"
#include "psd/PsdImage.h"
#include "psd/PsdOps.h"

using namespace psd_status;

namespace {

constexpr std::size_t kChannelsField = 12;
constexpr std::size_t kColourModeField = 24;

constexpr std::int16_t kRgbMode = 3;
constexpr int kOneGrey = 1;  // one channel, and the colour mode grey

constexpr int kThreeBytes = 24;  // channels x depth

// The colour planes of a map on disk.
struct ColourPlanes {
    const File& file;
    std::size_t offset;
    std::size_t pixels;

    std::size_t placeOf(std::size_t plane, std::size_t pixel) const {
        return offset + plane * pixels + pixel;
    }
};

// For each plane, which of the old ones takes its place.
using Order = std::array<std::size_t, 3>;

Order inverseOf(const Order& order) {
    Order inverse{};
    for (std::size_t plane = 0; plane < order.size(); ++plane)
        inverse[order[plane]] = plane;
    return inverse;
}

// Puts pieces of the planes into another order.
class Reorder {
public:
    Reorder(const ColourPlanes& planes, const Order& order) : planes_(planes), order_(order) {}

    enum class End { kDone, kNotRead, kNotWritten };

    // Reorders the pixels before `end`. Those of a piece that cannot be read stay as they are, the
    // file ends where the disk takes no more. `done` is how many were reordered.
    End run(std::size_t end, std::size_t& done) {
        for (done = 0; done < end; done += kPiece) {
            const std::size_t count = std::min(kPiece, end - done);
            if (!read(done, count)) return End::kNotRead;
            if (!write(done, count)) return End::kNotWritten;
        }
        return End::kDone;
    }

private:
    static constexpr std::size_t kPiece = kPieceBytes / 4;  // of each plane

    bool read(std::size_t start, std::size_t count) {
        for (std::size_t plane = 0; plane < order_.size(); ++plane) {
            const std::size_t place = planes_.placeOf(plane, start);
            pieces_[plane] = buffers_[plane].placeFor(place);
            if (planes_.file.readAt(place, pieces_[plane], count) < count) return false;
        }
        return true;
    }

    bool write(std::size_t start, std::size_t count) const {
        for (std::size_t plane = 0; plane < order_.size(); ++plane) {
            const std::size_t place = planes_.placeOf(plane, start);
            if (planes_.file.writeAt(place, pieces_[order_[plane]], count)) continue;
            planes_.file.cut(place);
            return false;
        }
        return true;
    }

    const ColourPlanes& planes_;
    const Order order_;
    const std::array<PieceBuffer, 3> buffers_{PieceBuffer(kPiece), PieceBuffer(kPiece),
                                              PieceBuffer(kPiece)};
    std::array<std::uint8_t*, 3> pieces_{};  // as they were read
};

float reorder(const ColourPlanes& planes, const Order& order) {
    Reorder there(planes, order);
    Reorder back(planes, inverseOf(order));
    std::size_t done = 0;
    const Reorder::End end = there.run(planes.pixels, done);
    if (end == Reorder::End::kDone) planes.file.cut(planes.placeOf(3, 0));
    if (end != Reorder::End::kNotRead) return kOk;
    std::size_t undone = 0;
    back.run(done, undone);
    return kNotOpened;
}

// What `grey` becomes when `level` is to be black.
std::uint8_t toneOf(int grey, std::int32_t level) {
    if (grey == 255) return 255;
    if (grey <= level) return 0;
    // Unsigned, so that a level far below 0 wraps around on every processor alike. The divisor is
    // not 0, and only 255 - 256 would be -1.
    const auto wrapped = static_cast<std::uint32_t>(level);
    const auto product =
        static_cast<std::int32_t>((255u - static_cast<std::uint32_t>(grey)) * (wrapped - 1u));
    const auto divisor = static_cast<std::int32_t>(255u - wrapped);
    return static_cast<std::uint8_t>(std::max(0, grey - product / divisor));
}

std::array<std::uint8_t, 256> tonesFor(std::int32_t level) {
    std::array<std::uint8_t, 256> tones{};
    for (int grey = 0; grey < 256; ++grey)
        tones[static_cast<std::size_t>(grey)] = toneOf(grey, level);
    return tones;
}

Rgb unpacked(double colour) {
    const std::int32_t red = saturatedInt(colour / 65536.0);
    const std::int32_t green = saturatedInt(colour / 256.0);
    const std::int32_t blue = saturatedInt(colour - green * 256.0);
    return {static_cast<std::uint8_t>(red), static_cast<std::uint8_t>(green),
            static_cast<std::uint8_t>(blue)};
}

}  // namespace

float swapChannelsPSD(const char* path, int mode) {
    PsdOnDisk map;
    const float status = openPSD(path, map);
    if (status != kOk) return status;
    if (map.header.depth * map.header.channels != kThreeBytes) return kNotThreeBytes;
    if (!map.holdsColourPlanes()) return kNotOpened;

    const File rewritten = File::openForRewriting(path);
    if (!rewritten.isOpen()) return kNotWritten;
    const ColourPlanes planes{rewritten, map.dataOffset, static_cast<std::size_t>(map.pixels())};
    switch (mode) {
        case 1:
            return reorder(planes, {0, 2, 1});
        case 2:
            return reorder(planes, {2, 0, 1});
        case 3:
            return reorder(planes, {1, 2, 0});
        default:
            rewritten.cut(map.dataOffset);
            return kOk;
    }
}

float GrayscalePSD(const char* input, const char* output, std::int32_t level) {
    const ImgInUse inUse;
    const float status = loadPSD(input);
    if (status != kOk) return status;
    if (fHeader.colourMode != kRgbMode) return kGrayscaleNotRgb;
    const PsdView file = viewOfImg();
    if (!file.holdsColourPlanes()) return kNotOpened;

    writeShort(kChannelsField, kOneGrey);
    writeShort(kColourModeField, kOneGrey);
    const auto pixels = static_cast<std::size_t>(file.pixels());
    greyPlanes(img.data() + file.dataOffset, tonesFor(level), pixels);
    return writePSD(output, {file.bytes.first(file.dataOffset + pixels)});
}

float convertPSD(const char* path, float fromColour, float toColour, bool invert) {
    const ImgInUse inUse;
    const float status = loadPSD(path);
    if (status != kOk) return status;
    const PsdView file = viewOfImg();
    if (!file.holdsColourPlanes()) return kNotOpened;

    std::uint8_t* const planes = img.data() + file.dataOffset;
    const auto pixels = static_cast<std::size_t>(file.pixels());
    replaceInPlanes(planes, unpacked(fromColour), unpacked(toColour), invert, pixels);
    return writePSD(path, {img});
}
