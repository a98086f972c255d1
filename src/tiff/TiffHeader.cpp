#include "tiff/TiffHeader.h"

#include <algorithm>
#include <array>

#include "files/File.h"
#include "tiff/TiffOps.h"

namespace {

using Head = std::array<std::uint8_t, kTiffHeadBytes>;

constexpr std::uint64_t kEntryBytes = 12;

enum Tag : std::uint16_t {
    kImageWidth = 256,
    kImageLength = 257,
    kBitsPerSample = 258,
    kCompression = 259,
    kPhotometric = 262,
    kStripOffsets = 273,
    kStripByteCounts = 279,
    kSampleFormat = 339,
};

constexpr std::uint32_t kUncompressed = 1;
constexpr std::uint32_t kPhotometricRgb = 2;

struct Entry {
    std::uint16_t tag;
    std::uint32_t count;
    std::uint32_t value;  // or the offset of the values, where they take more than 4 bytes
};

Entry entryAt(Bytes& head, std::uint64_t offset) {
    return {head.le16(offset), head.le32(offset + 4), head.le32(offset + 8)};
}

float readBitsPerSample(Bytes& head, const Entry& entry, TiffInfo& info) {
    if (entry.count != 1 && entry.count != 3) return tiff_status::kBadSampleCount;
    const std::uint32_t bits = entry.count == 1 ? entry.value : head.le16(entry.value);
    info.channels = static_cast<std::int32_t>(entry.count);
    info.bitsPerSample = static_cast<std::int32_t>(bits);
    return tiff_status::kOk;
}

float readEntry(Bytes& head, const Entry& entry, TiffInfo& info) {
    const auto number = static_cast<std::int32_t>(entry.value);
    switch (entry.tag) {
        case kImageWidth:
            info.width = number;
            break;
        case kImageLength:
            info.length = number;
            break;
        case kBitsPerSample:
            return readBitsPerSample(head, entry, info);
        case kCompression:
            if (entry.value != kUncompressed) return tiff_status::kCompressed;
            break;
        case kPhotometric:
            if (entry.value > kPhotometricRgb) return tiff_status::kBadPhotometric;
            break;
        case kStripOffsets:
            if (entry.count != 1) return tiff_status::kSeveralStrips;
            info.stripOffset = number;
            break;
        case kStripByteCounts:
            info.stripByteCount = number;
            break;
        case kSampleFormat:
            if (entry.count != 1 && entry.count != 3) return tiff_status::kBadSampleFormatCount;
            break;
        default:
            break;
    }
    return tiff_status::kOk;
}

TiffHeader parseDirectory(Bytes head) {
    const std::uint64_t directory = head.le32(4);
    const auto entries = static_cast<std::int16_t>(head.le16(directory));
    TiffHeader header{tiff_status::kOk, {}, entries <= 0};
    for (int i = 0; i < entries && header.refused == tiff_status::kOk; ++i) {
        const std::uint64_t offset = directory + 2 + kEntryBytes * static_cast<std::uint64_t>(i);
        header.refused = readEntry(head, entryAt(head, offset), header.info);
    }
    return header;
}

Head readHead(const File& file) {
    Head head{};
    const std::size_t count = file.readAt(0, head.data(), head.size());
    if (count > 0)
        std::fill(head.begin() + static_cast<std::ptrdiff_t>(count), head.end(), head[count - 1]);
    return head;
}

}  // namespace

TiffHeader readTiffHeader(const char* path, float notOpened) {
    const File file = File::openForReading(path);
    if (!file.isOpen()) return {notOpened, {}, true};
    const Head head = readHead(file);
    return parseDirectory({head.data(), head.size()});
}
