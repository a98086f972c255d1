#include <optional>

#include "files/Fields.h"
#include "tiff/TiffTags.h"

namespace {

using enum NumberKind;

constexpr std::pair<std::uint32_t, const char*> kTags[] = {
    {tiff_tag::kNewSubfileType, "subfile type"}, {tiff_tag::kImageWidth, "width"},
    {tiff_tag::kImageLength, "length"},          {tiff_tag::kBitsPerSample, "bits per sample"},
    {tiff_tag::kCompression, "compression"},     {tiff_tag::kPhotometric, "photometric"},
    {tiff_tag::kStripOffsets, "strip offset"},   {tiff_tag::kSamplesPerPixel, "samples per pixel"},
    {tiff_tag::kRowsPerStrip, "rows per strip"}, {tiff_tag::kStripByteCounts, "strip bytes"},
    {tiff_tag::kXResolution, "x resolution"},    {tiff_tag::kYResolution, "y resolution"},
    {tiff_tag::kPlanarConfiguration, "planes"},  {tiff_tag::kResolutionUnit, "resolution unit"},
    {tiff_tag::kSampleFormat, "sample format"}};

constexpr std::int64_t kMaxChannels = 65535;  // as the tag 277 can count
constexpr std::size_t kEntryBytes = 12;
constexpr Component kEntry[] = {
    {"tag", kLe16}, {"type", kLe16}, {"count", kLe32}, {"value", kLe32}};

constexpr Component kShort[] = {{nullptr, kLe16}};
constexpr Component kLong[] = {{nullptr, kLe32}};
constexpr Component kRational[] = {{"numerator", kLe32}, {"denominator", kLe32}};
constexpr Component kFloat[] = {{nullptr, kLeFloat}};

// What an entry says.
struct Entry {
    std::uint16_t tag;
    std::uint16_t type;
    std::uint32_t count;
    std::uint32_t value;  // or the offset of the values
};

// The components of one value; none for types that are not shown.
std::span<const Component> componentsOf(std::uint16_t type) {
    switch (type) {
        case tiff_type::kShort:
            return kShort;
        case tiff_type::kLong:
            return kLong;
        case tiff_type::kRational:
            return kRational;
        case tiff_type::kFloat:
            return kFloat;
        default:
            return {};
    }
}

// Values that take more than the four bytes of an entry are elsewhere in the file.
std::string valuesOf(Fields& fields, const Entry& entry) {
    if (entry.count == 1 && entry.type == tiff_type::kShort)
        return std::to_string(entry.value & 0xFFFFu);
    if (entry.count == 1 && entry.type == tiff_type::kLong) return std::to_string(entry.value);
    std::string text = std::to_string(entry.count) + " values at " + std::to_string(entry.value);
    if (entry.type != tiff_type::kShort || entry.count != 3) return text;
    Bytes shorts = fields.part(entry.value, 6);
    for (std::size_t i = 0; i < 3; ++i) {
        text += i == 0 ? ": " : ", ";
        text += std::to_string(shorts.le16(2 * i));
    }
    return text;
}

void addEntry(Fields& fields, std::uint64_t offset, const Entry& entry) {
    const std::string name = named(kTags, entry.tag);
    Field field{offset, kEntryBytes, name, valuesOf(fields, entry), "entry " + name, kEntry};
    fields.add(std::move(field));
    const std::span<const Component> components = componentsOf(entry.type);
    const std::uint64_t bytes = bytesOf(components) * entry.count;
    if (bytes <= 4) return;
    Field values{entry.value, bytes, name, "", "values of entry " + name};
    values.elements = {"value", entry.count, nullptr, 1, components};
    fields.facts().details.push_back(std::move(values));
}

std::optional<NumberKind> sampleKind(std::int64_t depth) {
    if (depth == 8) return kByte;
    if (depth == 16) return kLe16;
    if (depth == 32) return kLeFloat;  // as the library takes them, whatever the file says
    return std::nullopt;
}

// Collects from the entries what the picture is like.
class Picture {
public:
    void take(Fields& fields, const Entry& entry) {
        if (entry.tag == tiff_tag::kImageWidth) facts_.width = entry.value;
        if (entry.tag == tiff_tag::kImageLength) facts_.height = entry.value;
        if (entry.tag == tiff_tag::kStripOffsets) strip_ = entry;
        if (entry.tag == tiff_tag::kCompression) compression_ = entry.value;
        if (entry.tag != tiff_tag::kBitsPerSample) return;
        facts_.channels = entry.count;
        facts_.depth = entry.count == 1 ? entry.value : fields.part(entry.value, 2).le16(0);
    }

    // One strip that is not compressed has its samples where they can be read.
    PictureFacts finish() {
        const auto kind = sampleKind(facts_.depth);
        const bool isPlain = strip_ && strip_->count == 1 && compression_ == 1;
        const bool hasSamples = facts_.width > 0 && facts_.height > 0 && facts_.channels > 0;
        if (!kind || !isPlain || !hasSamples || facts_.channels > kMaxChannels) return facts_;
        const auto width = static_cast<std::uint64_t>(facts_.width);
        const auto channels = static_cast<std::uint64_t>(facts_.channels);
        facts_.pixels = {.sample = *kind,
                         .start = strip_->value,
                         .rowBytes = width * channels * bytesOf(*kind),
                         .width = width,
                         .height = static_cast<std::uint64_t>(facts_.height),
                         .channels = channels};
        return facts_;
    }

private:
    PictureFacts facts_;
    std::optional<Entry> strip_;
    std::uint32_t compression_ = 1;
};

}  // namespace

void readTiff(Fields& fields) {
    fields.text(0, 2, "byte order");
    if (fields.lettersAt(0, 2) == "MM") {
        fields.add({2, 0, "note", "big-endian, which Quillon does not read"});
        return;
    }
    fields.number(2, kLe16, "version");
    const auto directory = static_cast<std::uint64_t>(fields.number(4, kLe32, "directory"));
    const std::int64_t entries = fields.number(directory, kLe16, "entries");
    Picture picture;
    for (std::int64_t i = 0; i < entries && !fields.isFull(); ++i) {
        const std::uint64_t offset = directory + 2 + kEntryBytes * static_cast<std::uint64_t>(i);
        Bytes bytes = fields.part(offset, kEntryBytes);
        const Entry entry{bytes.le16(0), bytes.le16(2), bytes.le32(4), bytes.le32(8)};
        if (fields.endsWithin("an entry", bytes, offset)) break;
        addEntry(fields, offset, entry);
        picture.take(fields, entry);
    }
    fields.facts().picture = picture.finish();
}
