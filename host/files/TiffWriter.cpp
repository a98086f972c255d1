#include "files/TiffWriter.h"

#include <array>

#include "bytes/Bytes.h"

namespace {

enum FieldType : std::uint16_t { kShort = 3, kLong = 4, kRational = 5 };

struct Entry {
    std::uint16_t tag;
    FieldType type;
    std::uint32_t count;
    std::uint32_t value;  // or where the values are
};

constexpr std::uint32_t kDirectoryOffset = 8;
constexpr std::size_t kEntries = 15;
constexpr std::uint32_t kEntryBytes = 12;

// What does not fit into an entry follows the directory: the resolution, and the depths and sample
// formats of three channels.
constexpr std::uint32_t kResolutionOffset = kDirectoryOffset + 2 + kEntries * kEntryBytes + 4;
constexpr std::uint32_t kDepthsOffset = kResolutionOffset + 8;
constexpr std::uint32_t kFormatsOffset = kDepthsOffset + 3 * 2;
static_assert(kFormatsOffset + 3 * 2 <= kTiffPixelOffset);

constexpr std::uint16_t kUnsigned = 1;  // sample formats
constexpr std::uint16_t kFloat = 3;

constexpr std::uint32_t kPixelsPerInch = 72;

using Head = std::array<std::uint8_t, kTiffPixelOffset>;

// All tags up to the resolution's unit: a conversion to 16 bits puts the sizes where this directory
// has them.
std::array<Entry, kEntries> entriesOf(const TiffFormat& format) {
    const bool rgb = format.channels == 3;
    const std::uint16_t sampleFormat = format.bits == 32 ? kFloat : kUnsigned;
    return {{{254, kLong, 1, 0},
             {256, kLong, 1, format.width},
             {257, kLong, 1, format.height},
             {258, kShort, format.channels, rgb ? kDepthsOffset : format.bits},
             {259, kShort, 1, 1},              // not compressed
             {262, kShort, 1, rgb ? 2u : 1u},  // RGB, or grey with 0 as black
             {273, kLong, 1, kTiffPixelOffset},
             {277, kShort, 1, format.channels},
             {278, kLong, 1, format.height},  // all rows in one strip
             {279, kLong, 1, static_cast<std::uint32_t>(format.pixelsBytes())},
             {282, kRational, 1, kResolutionOffset},
             {283, kRational, 1, kResolutionOffset},
             {284, kShort, 1, 1},  // channels interleaved
             {296, kShort, 1, 2},  // resolution per inch
             {339, kShort, format.channels, rgb ? kFormatsOffset : sampleFormat}}};
}

Head headOf(const TiffFormat& format) {
    Head head{'I', 'I', 42, 0, kDirectoryOffset};
    storeLe16(&head[kDirectoryOffset], kEntries);
    std::size_t at = kDirectoryOffset + 2;
    for (const Entry& entry : entriesOf(format)) {
        storeLe16(&head[at], entry.tag);
        storeLe16(&head[at + 2], entry.type);
        storeLe32(&head[at + 4], entry.count);
        storeLe32(&head[at + 8], entry.value);
        at += kEntryBytes;
    }
    storeLe32(&head[kResolutionOffset], kPixelsPerInch);
    storeLe32(&head[kResolutionOffset + 4], 1);
    for (std::size_t channel = 0; format.channels == 3 && channel < 3; ++channel) {
        storeLe16(&head[kDepthsOffset + 2 * channel], format.bits);
        storeLe16(&head[kFormatsOffset + 2 * channel], format.bits == 32 ? kFloat : kUnsigned);
    }
    return head;
}

}  // namespace

TiffWriter::TiffWriter(const std::string& path, const TiffFormat& format) : OutputFile(path) {
    append(headOf(format));
}
