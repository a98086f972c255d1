#include <algorithm>
#include <optional>

#include "files/Fields.h"
#include "tiff/TiffTags.h"

namespace {

using namespace number;

struct TagName {
    std::uint16_t tag;
    const char* name;
};

constexpr TagName kTags[] = {
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
    if (type == tiff_type::kShort) return kShort;
    if (type == tiff_type::kLong) return kLong;
    if (type == tiff_type::kRational) return kRational;
    if (type == tiff_type::kFloat) return kFloat;
    return {};
}

// "256 width"; the number alone for a tag that is not in the table.
std::string nameOf(std::uint16_t tag) {
    const auto* const found = std::ranges::find(kTags, tag, &TagName::tag);
    const std::string number = std::to_string(tag);
    return found == std::end(kTags) ? number : number + ' ' + found->name;
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
    const std::string name = nameOf(entry.tag);
    Field field{offset, kEntryBytes, name, valuesOf(fields, entry), "entry " + name, kEntry};
    fields.add(std::move(field));
    const std::span<const Component> components = componentsOf(entry.type);
    const std::uint64_t bytes = bytesOf(components) * entry.count;
    if (bytes <= 4) return;
    Field values{entry.value, bytes, name, "", "values of entry " + name};
    values.elements = {"value", entry.count, nullptr, 1, components};
    fields.facts().details.push_back(std::move(values));
}

// What the entries say about the samples.
struct Samples {
    std::uint32_t strips = 0;
    std::uint32_t start = 0;
    std::uint32_t compression = 1;
};

void note(Fields& fields, const Entry& entry, Samples& samples) {
    PictureFacts& picture = *fields.facts().picture;
    if (entry.tag == tiff_tag::kImageWidth) picture.width = entry.value;
    if (entry.tag == tiff_tag::kImageLength) picture.height = entry.value;
    if (entry.tag == tiff_tag::kCompression) samples.compression = entry.value;
    if (entry.tag == tiff_tag::kStripOffsets) {
        samples.strips = entry.count;
        samples.start = entry.value;
    }
    if (entry.tag == tiff_tag::kBitsPerSample) {
        picture.channels = entry.count;
        picture.depth = entry.count == 1 ? entry.value : fields.part(entry.value, 2).le16(0);
    }
}

// One strip that is not compressed has its samples where they can be read. Those of 32 bits are
// floats, as the library takes them, whatever the file says.
std::optional<PixelLayout> tiffLayout(const PictureFacts& picture, const Samples& samples) {
    const bool isPlain = samples.strips == 1 && samples.compression == 1;
    if (!isPlain || picture.channels > kMaxChannels) return std::nullopt;
    if (picture.depth == 8) return layoutOf(picture, kByte, samples.start);
    if (picture.depth == 16) return layoutOf(picture, kLe16, samples.start);
    if (picture.depth == 32) return layoutOf(picture, kLeFloat, samples.start);
    return std::nullopt;
}

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
    PictureFacts& picture = fields.facts().picture.emplace();
    Samples samples;
    for (std::int64_t i = 0; i < entries && !fields.isFull(); ++i) {
        const std::uint64_t offset = directory + 2 + kEntryBytes * static_cast<std::uint64_t>(i);
        Bytes bytes = fields.part(offset, kEntryBytes);
        const Entry entry{bytes.le16(0), bytes.le16(2), bytes.le32(4), bytes.le32(8)};
        if (fields.endsWithin("an entry", bytes, offset)) break;
        addEntry(fields, offset, entry);
        note(fields, entry, samples);
    }
    picture.pixels = tiffLayout(picture, samples);
}
