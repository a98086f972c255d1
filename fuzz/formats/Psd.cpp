// PSD files, big-endian: a header of 26 bytes, three blocks with their lengths, a compression code,
// planes.

#include <algorithm>

#include "harness/Format.h"

namespace {

constexpr Field big(std::size_t offset, std::size_t bytes) {
    return {offset, bytes, Order::kBig};
}

constexpr Field kSignature = big(0, 4);
constexpr Field kVersion = big(4, 2);
constexpr Field kChannels = big(12, 2);
constexpr Field kHeight = big(14, 4);
constexpr Field kWidth = big(18, 4);
constexpr Field kDepth = big(22, 2);
constexpr Field kColourMode = big(24, 2);
constexpr Field kColourTableLength = big(26, 4);
constexpr Field kResourceLength = big(30, 4);

Field layerLength(const ByteList& file) {
    return big(kResourceLength.offset + 4 +
                   std::min<std::size_t>(loadField(file, kResourceLength), file.size()),
               4);
}

Field compression(const ByteList& file) {
    const Field layers = layerLength(file);
    return big(layers.offset + 4 + std::min<std::size_t>(loadField(file, layers), file.size()), 2);
}

std::vector<Field> fields(const ByteList& file) {
    std::vector<Field> found = {kSignature, kVersion,    kChannels,          kHeight,        kWidth,
                                kDepth,     kColourMode, kColourTableLength, kResourceLength};
    found.push_back(layerLength(file));
    found.push_back(compression(file));
    return found;
}

// A depth and channels that can be merged, blocks that leave room for planes, as many rows as the
// file has.
void repair(ByteList& file, std::size_t fileBytes) {
    storeField(file, kSignature, 0x38425053);
    storeField(file, kVersion, 1);
    storeField(file, kColourTableLength, 0);
    const bool grey16 = loadField(file, kDepth) == 16;
    storeField(file, kColourMode, grey16 ? 1 : 3);
    storeField(file, kDepth, grey16 ? 16 : 8);
    const std::uint32_t channels = grey16 ? 1 : 3 + loadField(file, kChannels) % 2;
    storeField(file, kChannels, channels);

    if (file.size() < 40) return;
    const auto room = static_cast<std::uint32_t>(file.size() - 40);
    const std::uint32_t resources = std::min(loadField(file, kResourceLength), room);
    storeField(file, kResourceLength, resources);
    const Field layers = layerLength(file);
    storeField(file, layers, std::min(loadField(file, layers), room - resources));
    storeField(file, compression(file), 0);

    const std::size_t data = compression(file).offset + 2;
    const std::size_t pixels = (fileBytes - data) / (channels * (grey16 ? 2 : 1));
    const std::size_t width = std::clamp<std::size_t>(loadField(file, kWidth), 1, 256);
    const std::size_t height = std::min<std::size_t>(loadField(file, kHeight), pixels / width);
    storeField(file, kWidth, static_cast<std::uint32_t>(width));
    storeField(file, kHeight, static_cast<std::uint32_t>(height));
}

}  // namespace

const Format kPsd{"psd", fields, repair};
