#include "files/PixelLayout.h"

namespace {

// Where a channel comes in its pixel, and which channel comes at a place: alpha stays the last.
std::uint64_t swappedIfBlueFirst(const PixelLayout& layout, std::uint64_t channel) {
    return layout.blueFirst && channel < 3 ? 2 - channel : channel;
}

// The number of a row in the file, and the y of a row with a number.
std::uint64_t flippedIfBottomFirst(const PixelLayout& layout, std::uint64_t row) {
    return layout.bottomRowFirst ? layout.height - 1 - row : row;
}

}  // namespace

std::string channelName(std::uint64_t channels, std::uint64_t channel) {
    constexpr const char* kColours[] = {"red", "green", "blue", "alpha"};
    if (channels < 3) return channel == 0 ? "grey" : "alpha";
    return channel < 4 ? kColours[channel] : "channel " + std::to_string(channel);
}

std::uint64_t pixelBytesOf(const PixelLayout& layout) {
    return layout.sample.bytes * (layout.planes ? 1 : layout.channels);
}

std::uint64_t offsetOf(const PixelLayout& layout, const Sample& sample) {
    const std::uint64_t channel = swappedIfBlueFirst(layout, sample.channel);
    const std::uint64_t row = flippedIfBottomFirst(layout, sample.y);
    const std::uint64_t inPixel = layout.planes ? 0 : channel * layout.sample.bytes;
    const std::uint64_t rows = layout.planes ? channel * layout.height + row : row;
    return layout.start + rows * layout.rowBytes + sample.x * pixelBytesOf(layout) + inPixel;
}

std::uint64_t endOf(const PixelLayout& layout) {
    constexpr std::uint64_t kMost = std::uint64_t{1} << 62;
    const std::uint64_t rows = layout.height * (layout.planes ? layout.channels : 1);
    if (rows > (kMost - layout.start) / layout.rowBytes) return kMost;
    const std::uint64_t padding = layout.rowBytes - layout.width * pixelBytesOf(layout);
    return layout.start + rows * layout.rowBytes - padding;
}

std::optional<SampleOrPadding> sampleAt(const PixelLayout& layout, std::uint64_t offset) {
    if (offset < layout.start) return std::nullopt;
    const std::uint64_t row = (offset - layout.start) / layout.rowBytes;
    const std::uint64_t inRow = (offset - layout.start) % layout.rowBytes;
    const std::uint64_t plane = row / layout.height;
    if (plane >= (layout.planes ? layout.channels : 1)) return std::nullopt;

    const std::uint64_t y = flippedIfBottomFirst(layout, row % layout.height);
    const std::uint64_t pixelBytes = pixelBytesOf(layout);
    const std::uint64_t used = layout.width * pixelBytes;
    if (inRow >= used)
        return SampleOrPadding{y, std::nullopt, offset - inRow + used, layout.rowBytes - used};
    const std::uint64_t bytes = layout.sample.bytes;
    const std::uint64_t place = layout.planes ? plane : inRow % pixelBytes / bytes;
    const Sample sample{inRow / pixelBytes, y, swappedIfBlueFirst(layout, place)};
    return SampleOrPadding{y, sample, offset - inRow % bytes, bytes};
}
