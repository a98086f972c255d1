#pragma once
// ExrLoader: OpenEXR files through tinyexr, with guards around it.

#include <cstdint>
#include <vector>

// What was loaded of a file.
struct ExrImage {
    std::int32_t width = 0;
    std::int32_t height = 0;
    // The first channel in the order of the file's header: width * height samples, row after row. A
    // scanline file whose line order is decreasing has its bottom row first.
    std::vector<float> firstPlane;
};

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

// Loads a file, half floats and whole numbers turned into floats, tiles laid out as one plane.
//
//   returns  kOk, or one of the codes; `image` is then as it was
int LoadMultiChannelEXRFromFile(ExrImage& image, const char* path);
