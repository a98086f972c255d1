#pragma once
// What other software does with the maps of a job. Each function returns what the export would return.

#include <cstdint>
#include <string>

#include "Job.h"

struct Maps {
    std::uint32_t side;    // in pixels; maps are square
    std::string tile;      // only read
    std::string map;       // read, or rewritten in place
    std::string original;  // of a map that is rewritten, otherwise the map itself
    std::string made;      // a new file

    std::size_t pixels() const { return std::size_t{side} * side; }
};

// How the three colours of an 8-bit map are stored.
struct Layout {
    std::uint32_t headBytes;
    std::uint32_t planes;  // 1: interleaved
};
inline constexpr Layout kBmpLayout{54, 1};
inline constexpr Layout kPsdLayout{40, 3};

// A competent program on libtiff.
float mergeByLibtiff(const Maps& maps);
float swapByLibtiff(const Maps& maps);
float convertByLibtiff(const Maps& maps);
float scaleByLibtiff(const Maps& maps);
float targaByLibtiff(const Maps& maps);

// Digest of a TIFF map's pixels, whatever the layout of the file.
std::uint64_t digestOfPixels(const std::string& path);

// numpy in a Python process that stays, so that its start is not timed.
Contender firstChannelByNumpy(const Maps& maps, const std::string& variant, double target);

// Plain C++ over mapped files, where no library edits the format in place.
float mergeMappedBmp(const Maps& maps);
float swapMappedBmp(const Maps& maps);
float shrinkMappedBmp(const Maps& maps);
float mergeMappedPsd(const Maps& maps);
float rotateMappedPsd(const Maps& maps);

inline constexpr std::uint32_t kThumbSide = 256;

// The least that a thumbnail needs: reads the rows that it shows and writes a file of its size.
Contender thumbnailLimit(const Maps& maps, const Layout& layout, double target);

// libjpeg-turbo: baseline, no subsampling, the quantization of quality 75, which the export's
// factor of 50 gives.
float jpegByFastDct(const Maps& maps);
float jpegByFloatDct(const Maps& maps);

// The OpenEXR library on one thread, converting the first channel only.
float rangeByOpenExr(const Maps& maps);
