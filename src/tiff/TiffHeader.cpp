#include "tiff/TiffHeader.h"

#include <algorithm>
#include <array>
#include <utility>

#include "bytes/Bytes.h"
#include "files/File.h"
#include "tiff/TiffOps.h"
#include "tiff/TiffTags.h"

namespace {

constexpr std::size_t kEntryBytes = 12;

constexpr std::uint32_t kUncompressed = 1;
constexpr std::uint32_t kPhotometricRgb = 2;

// The part of a file in which the directory is looked for. What is not there reads as 0, except
// that a file shorter than the head of 1000 bytes repeats its last byte up to there.
class Head {
public:
    Head(File file, bool wholeFile) : file_(std::move(file)), wholeFile_(wholeFile) {
        const std::size_t count = file_.readAt(0, first_.data(), first_.size());
        wasRead_ = count == std::min<std::uint64_t>(first_.size(), file_.size());
        if (count > 0 && !wholeFile)
            std::fill(first_.data() + count, first_.data() + first_.size(), first_[count - 1]);
    }

    bool wasRead() const { return wasRead_; }

    std::vector<std::uint8_t> read(std::uint64_t offset, std::size_t count) const {
        std::vector<std::uint8_t> bytes(count);
        if (offset + count <= first_.size() || !wholeFile_) {
            const std::size_t start =
                static_cast<std::size_t>(std::min<std::uint64_t>(offset, first_.size()));
            std::copy_n(first_.data() + start, std::min(count, first_.size() - start),
                        bytes.data());
        } else {
            file_.readAt(offset, bytes.data(), count);
        }
        return bytes;
    }

    std::uint16_t le16(std::uint64_t offset) const { return loadLe16(read(offset, 2).data()); }
    std::uint32_t le32(std::uint64_t offset) const { return loadLe32(read(offset, 4).data()); }

private:
    File file_;
    bool wholeFile_;
    bool wasRead_ = false;
    std::array<std::uint8_t, kTiffHeadBytes> first_{};
};

float readBitsPerSample(const Head& head, const TiffEntry& entry, const TiffRules& rules,
                        TiffInfo& info) {
    if (entry.count != 1 && entry.count != 3)
        return rules.floatOnly ? tiff_status::kFloatBadSampleCount : tiff_status::kBadSampleCount;
    const std::uint32_t bits = entry.count == 1 ? entry.value : head.le16(entry.value);
    info.channels = static_cast<std::int32_t>(entry.count);
    info.bitsPerSample = static_cast<std::int32_t>(bits);
    return rules.floatOnly && bits != 32 ? tiff_status::kNotFloat : tiff_status::kOk;
}

float readEntry(const Head& head, const TiffEntry& entry, const TiffRules& rules, TiffInfo& info) {
    const auto number = static_cast<std::int32_t>(entry.value);
    switch (entry.tag) {
        case tiff_tag::kImageWidth:
            info.width = number;
            break;
        case tiff_tag::kImageLength:
            info.length = number;
            break;
        case tiff_tag::kBitsPerSample:
            return readBitsPerSample(head, entry, rules, info);
        case tiff_tag::kCompression:
            if (entry.value != kUncompressed) return tiff_status::kCompressed;
            break;
        case tiff_tag::kPhotometric:
            if (entry.value > kPhotometricRgb) return tiff_status::kBadPhotometric;
            break;
        case tiff_tag::kStripOffsets:
            if (entry.count != 1) return tiff_status::kSeveralStrips;
            info.stripOffset = number;
            break;
        case tiff_tag::kStripByteCounts:
            info.stripByteCount = number;
            break;
        case tiff_tag::kSampleFormat:
            if (entry.count != 1 && entry.count != 3) return tiff_status::kBadSampleFormatCount;
            break;
        default:
            break;
    }
    return tiff_status::kOk;
}

}  // namespace

TiffHeader readTiffHeader(const char* path, float notOpened, const TiffRules& rules) {
    File file = File::openForReading(path);
    if (!file.isOpen()) return {notOpened, {}, {}};
    const Head head(std::move(file), rules.directoryAnywhere);
    if (!head.wasRead()) return {notOpened, {}, {}};

    TiffHeader header;
    const std::uint64_t directory = head.le32(4);
    const int count = std::max<int>(static_cast<std::int16_t>(head.le16(directory)), 0);
    const std::vector<std::uint8_t> bytes =
        head.read(directory + 2, kEntryBytes * static_cast<std::size_t>(count));
    for (std::size_t at = 0; at < bytes.size() && header.refused == tiff_status::kOk;
         at += kEntryBytes) {
        const std::uint8_t* entry = &bytes[at];
        header.entries.push_back(
            {loadLe16(entry), loadLe32(entry + 4), loadLe32(entry + 8), directory + 2 + at + 8});
        header.refused = readEntry(head, header.entries.back(), rules, header.info);
    }
    return header;
}
