#pragma once
// FloatMap: a map of 32-bit float samples, open for reading, all of whose pixels are there. A map
// whose width or length is below 1, or without a directory, has no pixels.

#include <cstddef>
#include <cstdint>

#include "files/File.h"
#include "files/Piece.h"
#include "tiff/TiffHeader.h"
#include "tiff/TiffOps.h"
#include "tiff/TiffStrip.h"

struct FloatMap {
    float refused = tiff_status::kOk;  // else nothing below counts
    TiffHeader header;
    File file;
    Strip strip;

    std::size_t channels() const { return strip.pixelBytes / sizeof(float); }
};

// A way to open a file: File::openForReading or File::openForRewriting.
using OpenFile = File (*)(const char* path);

// Opens a map whose pixels are taken to have `channels` samples, whatever the file says.
//
//   returns  with `refused` kOk, kNotOpened, a refused tag, kNotReopened when `open` fails,
//            kStripTooFar or kPixelsMissing
FloatMap openFloatMap(const char* path, std::size_t channels, const TiffRules& rules,
                      OpenFile open);

// Reads the samples of some pixels into a piece. Null when the file does not have them any more.
const float* readSamples(const FloatMap& map, Piece& piece, std::uint64_t offset,
                         std::size_t pixels);
