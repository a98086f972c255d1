#pragma once
// ExrLoader: OpenEXR files through tinyexr, with guards around it.

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>

struct ExrSize {
    std::int32_t width = 0;
    std::int32_t height = 0;
};

// Is shown some samples.
using ExrLook = std::function<void(std::span<const float> samples)>;

// The loader's codes, which the host gets as they are; all negative.
namespace exr_status {
inline constexpr int kOk = 0;
inline constexpr int kNotExr = -1;      // the first four bytes are not those of an OpenEXR file
inline constexpr int kBadVersion = -2;  // not version 2
inline constexpr int kNoPath = -3;
inline constexpr int kBadData = -4;  // damaged, multipart, deep or larger than its file allows
inline constexpr int kNotOpened = -7;
inline constexpr int kUnknownFormat = -8;    // a compression that the loader does not know
inline constexpr int kBadHeader = -9;        // an attribute is missing
inline constexpr int kUnknownFeature = -10;  // subsampled channels
}

// Loads a file and shows the first channel in the order of its header, half floats and whole numbers
// turned into floats. The rows come one after the other, from the top one down; a scanline file whose
// line order is decreasing has its bottom row first. They come in pieces that stay in the
// processor's cache; only tiles, which lie in any order, are laid out as one plane first.
//
//   size     receives the size of the picture before anything is shown
//   returns  kOk, or one of the codes, also after some pieces were shown
int LoadMultiChannelEXRFromFile(const char* path, ExrSize& size, const ExrLook& look);
