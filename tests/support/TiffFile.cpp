#include "support/TiffFile.h"

#include "support/Append.h"

namespace {

constexpr std::uint16_t kShort = 3;
constexpr std::uint16_t kLong = 4;

constexpr std::size_t kFileHeader = 8;

// Each of the lists of 16-bit numbers after the directory: bits per sample, then sample format.
constexpr std::size_t kListBytes = 6;

template <typename Sample, typename Append>
ByteList bytesOf(const std::vector<Sample>& samples, Append appendSample) {
    ByteList bytes;
    for (const Sample sample : samples)
        appendSample(bytes, sample);
    return bytes;
}

}  // namespace

TiffFile::TiffFile(std::uint32_t width, std::uint32_t length, Order order)
    : order_(order), width_(width), length_(length) {}

TiffFile& TiffFile::pixels(std::uint32_t channels, std::uint32_t bits, std::uint32_t format,
                           const ByteList& samples) {
    channels_ = channels;
    bits_ = bits;
    format_ = format;
    pixels_ = samples;
    return *this;
}

TiffFile& TiffFile::grey16(const std::vector<std::uint16_t>& samples) {
    return pixels(1, 16, 1, bytesOf(samples, appendLe16));
}

TiffFile& TiffFile::rgb16(const std::vector<std::uint16_t>& samples) {
    return pixels(3, 16, 1, bytesOf(samples, appendLe16));
}

TiffFile& TiffFile::grey32(const std::vector<float>& samples) {
    return pixels(1, 32, 3, bytesOf(samples, appendLeFloat));
}

TiffFile& TiffFile::rgb32(const std::vector<float>& samples) {
    return pixels(3, 32, 3, bytesOf(samples, appendLeFloat));
}

TiffFile& TiffFile::entry(std::uint16_t tag, std::uint32_t count, std::uint32_t value) {
    bent_[tag] = {kLong, count, value};
    return *this;
}

TiffFile& TiffFile::without(std::uint16_t tag) {
    removed_.insert(tag);
    return *this;
}

TiffFile& TiffFile::claimEntries(std::uint16_t count) {
    claimedEntries_ = count;
    return *this;
}

std::size_t TiffFile::directoryOffset() const {
    return kFileHeader + (order_ == Order::kPixelsFirst ? pixels_.size() : 0);
}

// With the lists after it.
std::size_t TiffFile::directoryBytes() const {
    std::set<std::uint16_t> tags = {256, 257, 258, 259, 262, 273, 277, 278, 279, 284, 339};
    for (const auto& [tag, entry] : bent_)
        tags.insert(tag);
    for (const std::uint16_t tag : removed_)
        tags.erase(tag);
    return 2 + 12 * tags.size() + 4 + 2 * kListBytes;
}

std::size_t TiffFile::pixelOffset() const {
    return kFileHeader + (order_ == Order::kPixelsFirst ? 0 : directoryBytes());
}

TiffFile::Entries TiffFile::entries() const {
    const auto lists =
        static_cast<std::uint32_t>(directoryOffset() + directoryBytes() - 2 * kListBytes);
    const bool colour = channels_ == 3;
    Entries entries = bent_;
    // insert keeps the entries that a test has set.
    entries.insert({
        {256, {kShort, 1, width_}},
        {257, {kShort, 1, length_}},
        {258, {kShort, channels_, colour ? lists : bits_}},
        {259, {kShort, 1, 1}},
        {262, {kShort, 1, colour ? 2u : 1u}},
        {273, {kLong, 1, static_cast<std::uint32_t>(pixelOffset())}},
        {277, {kShort, 1, channels_}},
        {278, {kShort, 1, length_}},
        {279, {kLong, 1, static_cast<std::uint32_t>(pixels_.size())}},
        {284, {kShort, 1, 1}},
        {339, {kShort, channels_, colour ? lists + std::uint32_t{kListBytes} : format_}},
    });
    for (const std::uint16_t tag : removed_)
        entries.erase(tag);
    return entries;
}

ByteList TiffFile::bytes() const {
    const Entries entries = this->entries();
    ByteList directory;
    appendLe16(directory, claimedEntries_.value_or(static_cast<std::uint16_t>(entries.size())));
    for (const auto& [tag, entry] : entries) {
        appendLe16(directory, tag);
        appendLe16(directory, entry.type);
        appendLe32(directory, entry.count);
        appendLe32(directory, entry.value);
    }
    appendLe32(directory, 0);  // no further directory
    for (int i = 0; i < 3; ++i)
        appendLe16(directory, bits_);
    for (int i = 0; i < 3; ++i)
        appendLe16(directory, format_);

    ByteList bytes = {'I', 'I', 42, 0};
    appendLe32(bytes, static_cast<std::uint32_t>(directoryOffset()));
    const bool pixelsFirst = order_ == Order::kPixelsFirst;
    append(bytes, pixelsFirst ? pixels_ : directory);
    append(bytes, pixelsFirst ? directory : pixels_);
    return bytes;
}

ByteList pixelsOf(const std::string& path, const TiffFile& built) {
    return firstBytes(readBytes(path, built.pixelOffset()), built.pixelBytes());
}
