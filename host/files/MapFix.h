#pragma once
// Maps of other programs rewritten as the kind that the exports take: files as TiffWriter,
// PsdWriter and BmpWriter write them, with the same samples as far as these files can hold them.

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "files/MapFormat.h"

struct FixOptions {
    std::optional<unsigned>
        bits;                // of a sample: 8, 16 or 32; nothing: as many as the map has, or as
                             // the exports take without loss
    bool dropAlpha = false;  // leave out alpha and other channels beyond grey or RGB
};

struct FixedMap {
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    unsigned channels = 0;
    unsigned bits = 0;
    std::vector<std::string> changes;  // such as "big-endian -> little-endian"
};

// Reads a map of the format and writes it to `out`, another file, which is created or replaced.
//
//   returns  what was written. Throws Failure for a map that cannot be read or written, and for one
//            that would lose samples which the options do not give up.
FixedMap fixMap(MapFormat format, const std::string& in, const std::string& out,
                const FixOptions& options);

// The longest side that a map can have.
inline constexpr std::uint32_t kMaxMapSide = 65535;

// The rest is for the readers of each format.

// A byte of a file never stands for more bytes of pixels. Headers that claim more are broken.
inline constexpr std::uint64_t kMaxPixelBytesPerByte = 65536;

// Throws Failure for a side of 0 or of more than `maxSide`.
void requireSides(const std::string& path, std::uint64_t width, std::uint64_t height,
                  std::uint32_t maxSide = kMaxMapSide);

// Throws Failure, which names --drop-alpha, unless there are no further channels or they may go.
void requireNoLoss(const std::string& path, unsigned furtherChannels, const FixOptions& options);

// "2 further channels".
std::string counted(unsigned long count, const char* one, const char* many);

FixedMap fixTiff(const std::string& in, const std::string& out, const FixOptions& options);
FixedMap fixPsd(const std::string& in, const std::string& out, const FixOptions& options);
FixedMap fixBmp(const std::string& in, const std::string& out, const FixOptions& options);
