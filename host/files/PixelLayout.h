#pragma once
// Where the samples of an uncompressed image are in its file.

#include <cstdint>
#include <optional>

#include "files/NumberKind.h"

struct PixelLayout {
    NumberKind sample;
    std::uint64_t start;     // of the first row in the file
    std::uint64_t rowBytes;  // from one row to the next, padding included
    std::uint64_t width;     // in pixels
    std::uint64_t height;
    std::uint64_t channels;
    bool planes = false;  // a plane for each channel, one after the other; otherwise they alternate
    bool bottomRowFirst = false;
    bool blueFirst = false;  // blue, green, red; otherwise red, green, blue
};

struct Sample {
    std::uint64_t x;
    std::uint64_t y;        // from the top
    std::uint64_t channel;  // red is 0
    bool operator==(const Sample&) const = default;
};

// Returns what a channel of an image with so many is called: "grey", "red", "alpha", "channel 4".
std::string channelName(std::uint64_t channels, std::uint64_t channel);

// Returns the bytes from one pixel of a row and channel to the next.
std::uint64_t pixelBytesOf(const PixelLayout& layout);

// Returns the offset of a sample. The image is at most 65535 pixels wide and high.
std::uint64_t offsetOf(const PixelLayout& layout, const Sample& sample);

// Returns where the last pixel ends; at most 2^62, which is beyond the end of every file.
std::uint64_t endOf(const PixelLayout& layout);

// What a byte of the image data belongs to: a sample, or else a row's padding.
struct SampleOrPadding {
    std::uint64_t y;
    std::optional<Sample> sample;
    std::uint64_t offset = 0;  // of the sample or the padding
    std::uint64_t bytes = 0;
};

// Nothing for a byte before the first or after the last row.
std::optional<SampleOrPadding> sampleAt(const PixelLayout& layout, std::uint64_t offset);
