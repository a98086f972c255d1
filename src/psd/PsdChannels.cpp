// Operations on the colour planes of one map.

#include <algorithm>
#include <array>

#include "bytes/Numbers.h"
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

bool hasColourPlanes(const PsdView& file) {
    return file.holdsAnnouncedPlanes() && file.holds(file.dataOffset, 3);
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
    const ImgInUse inUse;
    const float status = loadPSD(path);
    if (status != kOk) return status;
    if (fHeader.depth * fHeader.channels != kThreeBytes) return kNotThreeBytes;
    const PsdView file = viewOfImg();
    if (!hasColourPlanes(file)) return kNotOpened;

    const auto pixels = static_cast<std::size_t>(file.pixels());
    const auto head = file.bytes.first(file.dataOffset);
    const auto red = file.bytes.subspan(file.dataOffset, pixels);
    const auto green = file.bytes.subspan(file.dataOffset + pixels, pixels);
    const auto blue = file.bytes.subspan(file.dataOffset + 2 * pixels, pixels);
    switch (mode) {
        case 1:
            return writePSD(path, {head, red, blue, green});
        case 2:
            return writePSD(path, {head, blue, red, green});
        case 3:
            return writePSD(path, {head, green, blue, red});
        default:
            return writePSD(path, {head});
    }
}

float GrayscalePSD(const char* input, const char* output, std::int32_t level) {
    const ImgInUse inUse;
    const float status = loadPSD(input);
    if (status != kOk) return status;
    if (fHeader.colourMode != kRgbMode) return kGrayscaleNotRgb;
    const PsdView file = viewOfImg();
    if (!hasColourPlanes(file)) return kNotOpened;

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
    if (!hasColourPlanes(file)) return kNotOpened;

    std::uint8_t* const planes = img.data() + file.dataOffset;
    const auto pixels = static_cast<std::size_t>(file.pixels());
    replaceInPlanes(planes, unpacked(fromColour), unpacked(toColour), invert, pixels);
    return writePSD(path, {img});
}
