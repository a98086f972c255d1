#include "support/PsdFile.h"

#include <algorithm>

namespace {

void append(ByteList& file, const ByteList& bytes) {
    file.insert(file.end(), bytes.begin(), bytes.end());
}

void append16(ByteList& file, std::uint32_t value) {
    append(file, {static_cast<std::uint8_t>(value >> 8), static_cast<std::uint8_t>(value)});
}

void append32(ByteList& file, std::uint32_t value) {
    append16(file, value >> 16);
    append16(file, value);
}

void appendBlock(ByteList& file, const ByteList& block, std::optional<std::uint32_t> announced) {
    append32(file, announced.value_or(static_cast<std::uint32_t>(block.size())));
    append(file, block);
}

}  // namespace

PsdFile& PsdFile::planes(ByteList bytes) {
    planes_ = std::move(bytes);
    return *this;
}

PsdFile& PsdFile::pixels(const std::vector<std::array<std::uint8_t, 3>>& rgb) {
    planes_.clear();
    for (std::size_t plane = 0; plane < 3; ++plane)
        for (const std::array<std::uint8_t, 3>& pixel : rgb)
            planes_.push_back(pixel[plane]);
    return *this;
}

ByteList PsdFile::bytes() const {
    ByteList file(signature_.begin(), signature_.end());
    append16(file, version_);
    append(file, ByteList(6, reserved_));
    append16(file, channels_);
    append32(file, height_);
    append32(file, width_);
    append16(file, depth_);
    append16(file, colourMode_);
    appendBlock(file, colourTable_, {});
    appendBlock(file, resources_, announcedResources_);
    appendBlock(file, layers_, announcedLayers_);
    append16(file, compression_);
    append(file, planes_);
    return file;
}

ByteList imageData(const std::string& path, std::size_t offset) {
    const ByteList file = readBytes(path);
    return ByteList(file.begin() + static_cast<std::ptrdiff_t>(std::min(offset, file.size())),
                    file.end());
}
