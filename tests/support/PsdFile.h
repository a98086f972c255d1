#pragma once
// Builds PSD files. Unless a setter says otherwise: version 1, 8-bit RGB of three channels, no
// resources, no layers, no compression.

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "support/TempDir.h"

class PsdFile {
public:
    PsdFile(std::uint32_t width, std::uint32_t height) : width_(width), height_(height) {}

    // The image data: whole planes one after the other, or pixels in reading order.
    PsdFile& planes(ByteList bytes);
    PsdFile& pixels(const std::vector<std::array<std::uint8_t, 3>>& rgb);
    PsdFile& filled(std::size_t count, std::uint8_t value) {
        return planes(ByteList(count, value));
    }

    PsdFile& signature(const std::string& text) { return set(signature_, text); }
    PsdFile& version(std::uint16_t number) { return set(version_, number); }
    PsdFile& reserved(std::uint8_t byte) { return set(reserved_, byte); }
    PsdFile& channels(std::uint16_t count) { return set(channels_, count); }
    PsdFile& depth(std::uint16_t bits) { return set(depth_, bits); }
    PsdFile& colourMode(std::uint16_t mode) { return set(colourMode_, mode); }
    PsdFile& grey16() { return channels(1).depth(16).colourMode(1); }
    PsdFile& compression(std::uint16_t code) { return set(compression_, code); }

    // Blocks in front of the image data, filled with a byte that shows where they went.
    PsdFile& colourTable(std::size_t bytes) { return set(colourTable_, ByteList(bytes, 0xC0)); }
    PsdFile& resources(std::size_t bytes) { return set(resources_, ByteList(bytes, 0xE5)); }
    PsdFile& layers(std::size_t bytes) { return set(layers_, ByteList(bytes, 0x1A)); }

    // The length of a block as the file announces it, whatever it has.
    PsdFile& announceResources(std::uint32_t bytes) { return set(announcedResources_, bytes); }
    PsdFile& announceLayers(std::uint32_t bytes) { return set(announcedLayers_, bytes); }

    ByteList bytes() const;
    operator ByteList() const { return bytes(); }

private:
    template <typename Value>
    PsdFile& set(Value& field, std::type_identity_t<Value> value) {
        field = std::move(value);
        return *this;
    }

    std::uint32_t width_;
    std::uint32_t height_;
    std::string signature_ = "8BPS";
    std::uint16_t version_ = 1;
    std::uint8_t reserved_ = 0;
    std::uint16_t channels_ = 3;
    std::uint16_t depth_ = 8;
    std::uint16_t colourMode_ = 3;
    std::uint16_t compression_ = 0;
    ByteList colourTable_;
    ByteList resources_;
    ByteList layers_;
    std::optional<std::uint32_t> announcedResources_;
    std::optional<std::uint32_t> announcedLayers_;
    ByteList planes_;
};

// A file whose three planes hold the low byte of `sample(plane, row, column)`.
using SampleOfPlace =
    std::function<std::uint32_t(std::uint32_t plane, std::uint32_t row, std::uint32_t column)>;
PsdFile drawnPsd(std::uint32_t width, std::uint32_t height, const SampleOfPlace& sample);

// The bytes of a file from `offset` on; 40 is where the image data of a plain PSD file starts.
inline ByteList imageData(const std::string& path, std::size_t offset = 40) {
    return readBytes(path, offset);
}
