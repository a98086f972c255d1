#include <algorithm>
#include <optional>

#include "files/Diagnosis.h"
#include "files/Fields.h"
#include "tiff/TiffTags.h"

namespace {

using namespace number;

struct TagName {
    std::uint16_t tag;
    const char* name;
};

constexpr TagName kTags[] = {{tiff_tag::kNewSubfileType, "subfile type"},
                             {tiff_tag::kImageWidth, "width"},
                             {tiff_tag::kImageLength, "length"},
                             {tiff_tag::kBitsPerSample, "bits per sample"},
                             {tiff_tag::kCompression, "compression"},
                             {tiff_tag::kPhotometric, "photometric"},
                             {tiff_tag::kStripOffsets, "strip offset"},
                             {tiff_tag::kSamplesPerPixel, "samples per pixel"},
                             {tiff_tag::kRowsPerStrip, "rows per strip"},
                             {tiff_tag::kStripByteCounts, "strip bytes"},
                             {tiff_tag::kXResolution, "x resolution"},
                             {tiff_tag::kYResolution, "y resolution"},
                             {tiff_tag::kPlanarConfiguration, "planes"},
                             {tiff_tag::kResolutionUnit, "resolution unit"},
                             {kTileWidthTag, "tile width"},
                             {tiff_tag::kSampleFormat, "sample format"}};

constexpr std::int64_t kMaxChannels = 65535;  // as the tag 277 can count
constexpr std::size_t kEntryBytes = 12;
constexpr std::size_t kValueInEntry = 8;
constexpr std::size_t kInlineBytes = 4;  // of the values that an entry can have in itself

constexpr std::int64_t kBigTiffVersion = 43;

constexpr Component kEntry[] = {
    {"tag", kLe16}, {"type", kLe16}, {"count", kLe32}, {"value", kLe32}};
constexpr Component kBigEndianEntry[] = {
    {"tag", kBe16}, {"type", kBe16}, {"count", kBe32}, {"value", kBe32}};

constexpr Component kShort[] = {{nullptr, kLe16}};
constexpr Component kLong[] = {{nullptr, kLe32}};
constexpr Component kRational[] = {{"numerator", kLe32}, {"denominator", kLe32}};
constexpr Component kFloat[] = {{nullptr, kLeFloat}};

// Reads the numbers of a file in its own byte order.
struct Reader {
    Fields& fields;
    bool bigEndian;

    NumberKind kind(std::size_t bytes) const { return {bytes, NumberKind::kUnsigned, bigEndian}; }
    std::uint32_t at(std::uint64_t offset, std::size_t bytes) const {
        return static_cast<std::uint32_t>(integerIn(fields.part(offset, bytes), kind(bytes)));
    }
};

// What an entry says.
struct Entry {
    std::uint16_t tag;
    std::uint16_t type;
    std::uint32_t count;
    std::uint32_t value;       // the first one
    std::uint64_t valuesFrom;  // where the values are: in the entry, or elsewhere
};

std::size_t bytesOfType(std::uint16_t type) {
    constexpr std::size_t kBytes[] = {0, 1, 1, 2, 4, 8, 1, 1, 2, 4, 8, 4, 8};
    return type < std::size(kBytes) ? kBytes[type] : 0;
}

Entry entryAt(const Reader& reader, std::uint64_t offset) {
    const auto tag = static_cast<std::uint16_t>(reader.at(offset, 2));
    const auto type = static_cast<std::uint16_t>(reader.at(offset + 2, 2));
    const std::uint32_t count = reader.at(offset + 4, 4);
    const bool isInline = std::uint64_t{count} * bytesOfType(type) <= kInlineBytes;
    const std::uint64_t place = offset + kValueInEntry;
    const std::uint64_t from = isInline ? place : reader.at(place, 4);
    return {tag, type, count, reader.at(from, type == tiff_type::kShort ? 2 : 4), from};
}

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
std::string valuesOf(const Reader& reader, const Entry& entry) {
    const bool isNumber = entry.type == tiff_type::kShort || entry.type == tiff_type::kLong;
    if (entry.count == 1 && isNumber) return std::to_string(entry.value);
    std::string text =
        std::to_string(entry.count) + " values at " + std::to_string(entry.valuesFrom);
    if (entry.type != tiff_type::kShort || entry.count != 3) return text;
    for (std::size_t i = 0; i < 3; ++i) {
        text += i == 0 ? ": " : ", ";
        text += std::to_string(reader.at(entry.valuesFrom + 2 * i, 2));
    }
    return text;
}

// The components of values are those of a little-endian file.
void addEntry(const Reader& reader, std::uint64_t offset, const Entry& entry) {
    const std::string name = nameOf(entry.tag);
    Field field{offset, kEntryBytes, name, valuesOf(reader, entry), "entry " + name, kEntry};
    if (reader.bigEndian) field.head = kBigEndianEntry;
    reader.fields.add(std::move(field));
    const std::span<const Component> components = componentsOf(entry.type);
    const std::uint64_t bytes = bytesOf(components) * entry.count;
    if (bytes <= kInlineBytes || reader.bigEndian) return;
    Field values{entry.valuesFrom, bytes, name, "", "values of entry " + name};
    values.elements = {"value", entry.count, nullptr, 1, components};
    reader.fields.facts().details.push_back(std::move(values));
}

void readDirectory(const Reader& reader, TiffFacts& tiff) {
    const std::int64_t entries = reader.fields.number(tiff.directory, reader.kind(2), "entries");
    for (std::int64_t i = 0; i < entries && !reader.fields.isFull(); ++i) {
        const std::uint64_t offset =
            tiff.directory + 2 + kEntryBytes * static_cast<std::uint64_t>(i);
        Bytes bytes = reader.fields.part(offset, kEntryBytes);
        bytes.u8(kEntryBytes - 1);
        if (reader.fields.endsWithin("an entry", bytes, offset)) break;
        const Entry entry = entryAt(reader, offset);
        addEntry(reader, offset, entry);
        tiff.tags[entry.tag] = {entry.count, entry.value, offset + kValueInEntry, entry.valuesFrom};
        tiff.directoryEnd = offset + kEntryBytes;
    }
}

PictureFacts pictureOf(const TiffFacts& tiff) {
    using namespace tiff_tag;
    PictureFacts picture;
    picture.width = tiff.value(kImageWidth);
    picture.height = tiff.value(kImageLength);
    const bool hasDepth = tiff.has(kBitsPerSample);
    picture.channels = hasDepth ? tiff.count(kBitsPerSample) : tiff.value(kSamplesPerPixel, 1);
    picture.depth = tiff.value(kBitsPerSample, 1);
    return picture;
}

// The kind of sample that can be read; nothing for others.
std::optional<NumberKind> sampleKind(const TiffFacts& tiff, std::int64_t depth) {
    constexpr std::uint32_t kSignedFormat = 2;
    constexpr std::uint32_t kFloatFormat = 3;
    const std::uint32_t format = tiff.value(tiff_tag::kSampleFormat, 1);
    if (depth <= 0 || depth > 64 || depth % 8 != 0) return std::nullopt;
    NumberKind kind{static_cast<std::size_t>(depth / 8), NumberKind::kUnsigned, tiff.bigEndian};
    if (format == kSignedFormat) kind.type = NumberKind::kSigned;
    if (format != kFloatFormat) return depth <= 32 ? std::optional(kind) : std::nullopt;
    kind.type = NumberKind::kFloat;
    const bool isFloat = depth == 16 || depth == 32 || depth == 64;
    return isFloat ? std::optional(kind) : std::nullopt;
}

// One strip that is not compressed has its samples where they can be read.
std::optional<PixelLayout> layoutIn(const PictureFacts& picture, const TiffFacts& tiff) {
    using namespace tiff_tag;
    const auto kind = sampleKind(tiff, picture.depth);
    const bool isPlain = tiff.count(kStripOffsets) == 1 && tiff.value(kCompression, 1) == 1 &&
                         tiff.value(kPlanarConfiguration, 1) == 1;
    if (!isPlain || !kind || picture.channels > kMaxChannels) return std::nullopt;
    return layoutOf(picture, *kind, tiff.value(kStripOffsets));
}

}  // namespace

void readTiff(Fields& fields) {
    fields.text(0, 2, "byte order");
    TiffFacts tiff;
    tiff.bigEndian = fields.lettersAt(0, 2) == "MM";
    const Reader reader{fields, tiff.bigEndian};
    tiff.bigTiff = fields.number(2, reader.kind(2), "version") == kBigTiffVersion;
    if (!tiff.bigTiff) {
        tiff.directory = static_cast<std::uint64_t>(fields.number(4, reader.kind(4), "directory"));
        readDirectory(reader, tiff);
        PictureFacts& picture = fields.facts().picture.emplace(pictureOf(tiff));
        picture.pixels = layoutIn(picture, tiff);
    }
    fields.facts().notes = notesOn(fields.facts(), tiff);
}
