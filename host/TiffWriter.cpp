#include "TiffWriter.h"

#include <array>

#include "bytes/Bytes.h"

namespace {

enum FieldType : std::uint16_t { kShort = 3, kLong = 4 };

struct Entry {
    std::uint16_t tag;
    FieldType type;
    std::uint32_t count;
    std::uint32_t value;  // or where the values stand
};

constexpr std::uint32_t kDirectoryOffset = 8;
constexpr std::size_t kEntries = 11;
constexpr std::uint32_t kEntryBytes = 12;

// Three channels have three depths and three sample formats, which stand behind the directory.
constexpr std::uint32_t kDepthsOffset = kDirectoryOffset + 2 + kEntries * kEntryBytes + 4;
constexpr std::uint32_t kFormatsOffset = kDepthsOffset + 3 * 2;
static_assert(kFormatsOffset + 3 * 2 <= kTiffPixelOffset);

constexpr std::uint16_t kUnsigned = 1;  // sample formats
constexpr std::uint16_t kFloat = 3;

using Head = std::array<std::uint8_t, kTiffPixelOffset>;

void store16(Head& head, std::size_t offset, std::uint16_t value) {
    head[offset] = static_cast<std::uint8_t>(value);
    head[offset + 1] = static_cast<std::uint8_t>(value >> 8);
}

std::array<Entry, kEntries> entriesOf(const TiffFormat& format) {
    const bool rgb = format.channels == 3;
    const std::uint16_t sampleFormat = format.bits == 32 ? kFloat : kUnsigned;
    return {{{256, kLong, 1, format.width},
             {257, kLong, 1, format.height},
             {258, kShort, format.channels, rgb ? kDepthsOffset : format.bits},
             {259, kShort, 1, 1},              // not compressed
             {262, kShort, 1, rgb ? 2u : 1u},  // RGB, or grey with 0 as black
             {273, kLong, 1, kTiffPixelOffset},
             {277, kShort, 1, format.channels},
             {278, kLong, 1, format.height},  // all rows in one strip
             {279, kLong, 1, static_cast<std::uint32_t>(format.pixelsBytes())},
             {284, kShort, 1, 1},  // channels interleaved
             {339, kShort, format.channels, rgb ? kFormatsOffset : sampleFormat}}};
}

Head headOf(const TiffFormat& format) {
    Head head{'I', 'I', 42, 0, kDirectoryOffset};
    store16(head, kDirectoryOffset, kEntries);
    std::size_t at = kDirectoryOffset + 2;
    for (const Entry& entry : entriesOf(format)) {
        store16(head, at, entry.tag);
        store16(head, at + 2, entry.type);
        storeLe32(&head[at + 4], entry.count);
        storeLe32(&head[at + 8], entry.value);
        at += kEntryBytes;
    }
    for (std::size_t channel = 0; format.channels == 3 && channel < 3; ++channel) {
        store16(head, kDepthsOffset + 2 * channel, format.bits);
        store16(head, kFormatsOffset + 2 * channel, format.bits == 32 ? kFloat : kUnsigned);
    }
    return head;
}

}  // namespace

TiffWriter::TiffWriter(const std::string& path, const TiffFormat& format) : file_(path) {
    file_.write(headOf(format));
}
