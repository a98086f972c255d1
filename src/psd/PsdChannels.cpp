// Operations on the colour planes of one map.

#include <algorithm>
#include <array>

#include "bytes/Numbers.h"
#include "files/FileWriter.h"
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

// For each plane, which of the old ones takes its place.
using Order = std::array<std::size_t, 3>;

Order inverseOf(const Order& order) {
    Order inverse{};
    for (std::size_t plane = 0; plane < order.size(); ++plane)
        inverse[order[plane]] = plane;
    return inverse;
}

enum class End { kDone, kNotRead, kNotWritten };

// Puts the planes into another order, up to byte `end` of each. A piece that cannot be read stays as
// it is, and the file ends where the disk takes no more. `done` is how far it came.
End reorder(const File& file, const Planes& planes, const Order& order, std::size_t end,
            std::size_t& done) {
    PlanePieces pieces(planes);
    for (done = 0; done < end; done += PlanePieces::kBytes) {
        const std::size_t count = std::min(PlanePieces::kBytes, end - done);
        if (!pieces.read(file, done, count)) return End::kNotRead;
        for (std::size_t plane = 0; plane < order.size(); ++plane) {
            if (!pieces.write(file, plane, order[plane])) return End::kNotWritten;
        }
    }
    return End::kDone;
}

// A swap that cannot be read to its end is undone.
float swapPlanes(const File& file, const Planes& planes, const Order& order) {
    std::size_t done = 0;
    const End end = reorder(file, planes, order, planes.bytes, done);
    if (end == End::kDone) file.cut(planes.placeOf(3, 0));
    if (end != End::kNotRead) return kOk;
    std::size_t undone = 0;
    reorder(file, planes, inverseOf(order), done, undone);
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

// Calls `append(bytes, count)` for the grey of each piece of a map, as long as it returns true.
// False when the map cannot be read to its end.
template <typename Append>
bool forEachGrey(const PsdOnDisk& map, const Greys& greys, Append append) {
    const Planes planes{map.dataOffset, static_cast<std::size_t>(map.pixels()), 3};
    PlanePieces pieces(planes);
    for (std::size_t start = 0; start < planes.bytes; start += PlanePieces::kBytes) {
        const std::size_t count = std::min(PlanePieces::kBytes, planes.bytes - start);
        if (!pieces.read(map.file, start, count)) return false;
        greys.replaceRed(pieces.colours(), count);
        if (!append(pieces.at(0), count)) return true;
    }
    return true;
}

// Writes `img` and the grey of a map.
float writeGrey(const PsdOnDisk& map, const Greys& greys, const char* output) {
    FileWriter file(File::createOver(output));
    if (!file.isOpen()) return kNotWritten;
    if (!file.append(img.data(), img.size())) return kOk;
    const auto append = [&](const std::uint8_t* bytes, std::size_t count) {
        return file.append(bytes, count);
    };
    return forEachGrey(map, greys, append) ? kOk : kNotOpened;
}

// The same over the map itself, which stays as it was if it cannot be read to its end.
float replaceByGrey(const PsdOnDisk& map, const Greys& greys, const char* output) {
    img.reserve(img.size() + static_cast<std::size_t>(map.pixels()));
    const auto append = [](const std::uint8_t* bytes, std::size_t count) {
        img.insert(img.end(), bytes, bytes + count);
        return true;
    };
    return forEachGrey(map, greys, append) ? writePSD(output, img) : kNotOpened;
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
    const Planes planes{map.dataOffset, static_cast<std::size_t>(map.pixels()), 3};
    switch (mode) {
        case 1:
            return swapPlanes(rewritten, planes, {0, 2, 1});
        case 2:
            return swapPlanes(rewritten, planes, {2, 0, 1});
        case 3:
            return swapPlanes(rewritten, planes, {1, 2, 0});
        default:
            rewritten.cut(map.dataOffset);
            return kOk;
    }
}

float GrayscalePSD(const char* input, const char* output, std::int32_t level) {
    PsdOnDisk map;
    float status = openPSD(input, map);
    if (status != kOk) return status;
    if (map.header.colourMode != kRgbMode) return kGrayscaleNotRgb;
    if (!map.holdsColourPlanes()) return kNotOpened;

    const ImgInUse inUse;
    status = loadHead(map);
    if (status != kOk) return status;
    writeShort(kChannelsField, kOneGrey);
    writeShort(kColourModeField, kOneGrey);
    const Greys greys(tonesFor(level));
    return map.file.isSameAs(output) ? replaceByGrey(map, greys, output)
                                     : writeGrey(map, greys, output);
}

float convertPSD(const char* path, float fromColour, float toColour, bool invert) {
    PsdOnDisk map;
    const float status = openPSD(path, map);
    if (status != kOk) return status;
    if (!map.holdsColourPlanes()) return kNotOpened;

    const File rewritten = File::openForRewriting(path);
    if (!rewritten.isOpen()) return kNotWritten;
    const Planes planes{map.dataOffset, static_cast<std::size_t>(map.pixels()), 3};
    PlanePieces pieces(planes);
    const Rgb from = unpacked(fromColour);
    const Rgb to = unpacked(toColour);
    for (std::size_t start = 0; start < planes.bytes; start += PlanePieces::kBytes) {
        const std::size_t count = std::min(PlanePieces::kBytes, planes.bytes - start);
        if (!pieces.read(rewritten, start, count)) return kNotOpened;
        const PaintedRun run = replaceInPlanes(pieces.colours(), from, to, invert, count);
        if (!pieces.write(rewritten, run)) return kOk;
    }
    rewritten.touch();  // a map in which no pixel changes counts as rewritten, too
    return kOk;
}
