#include "support/PsdFile.h"

#include "support/Append.h"

namespace {

void appendBlock(ByteList& file, const ByteList& block, std::optional<std::uint32_t> announced) {
    appendBe32(file, announced.value_or(static_cast<std::uint32_t>(block.size())));
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
    appendBe16(file, version_);
    append(file, ByteList(6, reserved_));
    appendBe16(file, channels_);
    appendBe32(file, height_);
    appendBe32(file, width_);
    appendBe16(file, depth_);
    appendBe16(file, colourMode_);
    appendBlock(file, colourTable_, {});
    appendBlock(file, resources_, announcedResources_);
    appendBlock(file, layers_, announcedLayers_);
    appendBe16(file, compression_);
    append(file, planes_);
    return file;
}

PsdFile drawnPsd(std::uint32_t width, std::uint32_t height, const SampleOfPlace& sample) {
    ByteList planes;
    for (std::uint32_t plane = 0; plane < 3; ++plane)
        for (std::uint32_t row = 0; row < height; ++row)
            for (std::uint32_t column = 0; column < width; ++column)
                planes.push_back(static_cast<std::uint8_t>(sample(plane, row, column)));
    return PsdFile(width, height).planes(planes);
}
