#include "files/FileFacts.h"

#include <algorithm>
#include <bit>
#include <string_view>
#include <utility>

#include "bytes/Bytes.h"
#include "exports/Meanings.h"
#include "files/DiskFile.h"
#include "mesh/VemoFile.h"
#include "tiff/TiffTags.h"

namespace {

constexpr std::size_t kMostFields = 1000;
constexpr std::size_t kLongestText = 60;  // of a value that the file spells out

std::string number(std::uint64_t value) {
    return std::to_string(value);
}

// Fields of a file, noted as they are read. What the file does not have reads as 0.
class Fields {
public:
    explicit Fields(const std::string& path) : file_(path, "file") { facts_.bytes = file_.size(); }

    // A part of the file; it lasts until the next one.
    Bytes part(std::uint64_t offset, std::size_t count) {
        part_.resize(count);
        part_.resize(file_.read(offset, part_));
        return {part_.data(), part_.size()};
    }

    std::uint16_t le16(std::uint64_t offset, const char* name) {
        return noted(offset, 2, name, part(offset, 2).le16(0));
    }
    std::uint32_t le32(std::uint64_t offset, const char* name) {
        return noted(offset, 4, name, part(offset, 4).le32(0));
    }
    std::int32_t signedLe32(std::uint64_t offset, const char* name) {
        const auto value = static_cast<std::int32_t>(part(offset, 4).le32(0));
        add(offset, 4, name, std::to_string(value));
        return value;
    }
    std::uint16_t be16(std::uint64_t offset, const char* name) {
        return noted(offset, 2, name, part(offset, 2).be16(0));
    }
    std::uint32_t be32(std::uint64_t offset, const char* name) {
        return noted(offset, 4, name, part(offset, 4).be32(0));
    }
    std::uint8_t byte(std::uint64_t offset, const char* name) {
        return noted(offset, 1, name, part(offset, 1).u8(0));
    }
    // Bytes as letters; others come out as dots.
    std::string text(std::uint64_t offset, std::size_t count, const char* name) {
        std::string letters = lettersAt(offset, count);
        add(offset, count, name, letters);
        return letters;
    }
    std::string lettersAt(std::uint64_t offset, std::size_t count) {
        const Bytes bytes = part(offset, std::min(count, kLongestText));
        std::string letters(bytes.data, bytes.data + bytes.size);
        std::ranges::replace_if(
            letters, [](char c) { return c < ' ' || c > '~'; }, '.');
        return letters;
    }

    void add(std::uint64_t offset, std::uint64_t bytes, std::string name, std::string value) {
        if (isFull()) return;
        facts_.fields.push_back({offset, bytes, std::move(name), std::move(value)});
    }

    bool isFull() const { return facts_.fields.size() >= kMostFields; }
    bool has(std::uint64_t offset) const { return offset < facts_.bytes; }
    FileFacts& facts() { return facts_; }

private:
    template <typename Value>
    Value noted(std::uint64_t offset, std::uint64_t bytes, const char* name, Value value) {
        add(offset, bytes, name, number(value));
        return value;
    }

    InputFile file_;
    std::vector<std::uint8_t> part_;
    FileFacts facts_;
};

constexpr std::pair<std::uint32_t, const char*> kChunks[] = {{kVertexChunk, "vertices"},
                                                             {kFaceChunk, "faces"},
                                                             {kFaceUvChunk, "face UVs"},
                                                             {kMaskChunk, "mask"},
                                                             {kVertexColourChunk, "vertex colours"},
                                                             {kFaceGroupChunk, "face groups"}};

constexpr std::pair<std::uint32_t, const char*> kTags[] = {
    {tiff_tag::kNewSubfileType, "subfile type"}, {tiff_tag::kImageWidth, "width"},
    {tiff_tag::kImageLength, "length"},          {tiff_tag::kBitsPerSample, "bits per sample"},
    {tiff_tag::kCompression, "compression"},     {tiff_tag::kPhotometric, "photometric"},
    {tiff_tag::kStripOffsets, "strip offset"},   {tiff_tag::kSamplesPerPixel, "samples per pixel"},
    {tiff_tag::kRowsPerStrip, "rows per strip"}, {tiff_tag::kStripByteCounts, "strip bytes"},
    {tiff_tag::kXResolution, "x resolution"},    {tiff_tag::kYResolution, "y resolution"},
    {tiff_tag::kPlanarConfiguration, "planes"},  {tiff_tag::kResolutionUnit, "resolution unit"},
    {tiff_tag::kSampleFormat, "sample format"}};

// "256 width"; the number alone where there is no name for it.
template <std::size_t kCount>
std::string named(const std::pair<std::uint32_t, const char*> (&names)[kCount], std::uint32_t id) {
    for (const auto& [known, name] : names) {
        if (known == id) return number(id) + ' ' + name;
    }
    return number(id);
}

// Notes what is left of a file whose next `what` is not whole; false for one that is.
bool endsWithin(const char* what, const Bytes& read, std::uint64_t offset, Fields& fields) {
    if (read.overran) fields.add(offset, read.size, "rest", std::string("too short for ") + what);
    return read.overran;
}

bool isChunkId(std::uint32_t id) {
    return std::ranges::any_of(kChunks, [&](const auto& chunk) { return chunk.first == id; });
}

void readVemo(Fields& fields) {
    fields.add(0, kFirstChunk, "header", "not looked at");
    for (std::uint64_t offset = kFirstChunk; fields.has(offset) && !fields.isFull();) {
        Bytes header = fields.part(offset, kChunkHeaderBytes);
        const std::uint32_t id = header.le32(0);
        const std::uint32_t length = header.le32(4);
        const std::uint32_t count = header.le32(8);
        if (endsWithin("a chunk", header, offset, fields)) return;
        const bool closes = id == 0 && length == 0;
        fields.add(offset, closes ? kChunkHeaderBytes : length,
                   closes ? "closing header" : named(kChunks, id),
                   closes ? "" : number(count) + " elements");
        offset += closes ? kChunkHeaderBytes : length;
        if (length == 0 && !closes) return;  // the walk would stand still
    }
}

// Where values take more than the four bytes of an entry, they stand elsewhere.
std::string valuesOf(Fields& fields, std::uint16_t type, std::uint32_t count, std::uint32_t value) {
    if (count == 1 && type == tiff_type::kShort) return number(value & 0xFFFFu);
    if (count == 1 && type == tiff_type::kLong) return number(value);
    std::string text = number(count) + " values at " + number(value);
    if (type != tiff_type::kShort || count != 3) return text;
    Bytes shorts = fields.part(value, 6);
    for (std::size_t i = 0; i < 3; ++i) {
        text += i == 0 ? ": " : ", ";
        text += number(shorts.le16(2 * i));
    }
    return text;
}

void noteTiffPicture(Fields& fields, std::uint16_t tag, std::uint32_t count, std::uint32_t value) {
    PictureFacts& picture = *fields.facts().picture;
    if (tag == tiff_tag::kImageWidth) picture.width = value;
    if (tag == tiff_tag::kImageLength) picture.height = value;
    if (tag == tiff_tag::kStripOffsets) picture.samplesAt = value;
    if (tag != tiff_tag::kBitsPerSample) return;
    picture.channels = count;
    picture.depth = count == 1 ? value : fields.part(value, 2).le16(0);
}

void readTiff(Fields& fields) {
    const bool bigEndian = fields.text(0, 2, "byte order") == "MM";
    if (bigEndian) {
        fields.add(2, 0, "note", "big-endian, which Quillon does not read");
        return;
    }
    fields.le16(2, "version");
    const std::uint64_t directory = fields.le32(4, "directory");
    const std::uint16_t entries = fields.le16(directory, "entries");
    fields.facts().picture.emplace();
    for (std::uint16_t i = 0; i < entries && !fields.isFull(); ++i) {
        const std::uint64_t offset = directory + 2 + std::uint64_t{12} * i;
        Bytes entry = fields.part(offset, 12);
        const std::uint16_t tag = entry.le16(0);
        const std::uint16_t type = entry.le16(2);
        const std::uint32_t count = entry.le32(4);
        const std::uint32_t value = entry.le32(8);
        if (endsWithin("an entry", entry, offset, fields)) return;
        fields.add(offset, 12, named(kTags, tag), valuesOf(fields, type, count, value));
        noteTiffPicture(fields, tag, count, value);
    }
}

void readPsd(Fields& fields) {
    PictureFacts& picture = fields.facts().picture.emplace();
    fields.text(0, 4, "signature");
    fields.be16(4, "version");
    picture.channels = fields.be16(12, "channels");
    picture.height = fields.be32(14, "height");
    picture.width = fields.be32(18, "width");
    picture.depth = fields.be16(22, "depth");
    fields.be16(24, "colour mode");
    std::uint64_t offset = 26;
    for (const char* block : {"colour table bytes", "resource bytes", "layer bytes"})
        offset += 4 + std::uint64_t{fields.be32(offset, block)};
    fields.be16(offset, "compression");
    offset += 2;
    picture.samplesAt = offset;
    if (fields.has(offset)) fields.add(offset, fields.facts().bytes - offset, "image data", "");
}

void readBmp(Fields& fields) {
    PictureFacts& picture = fields.facts().picture.emplace();
    fields.text(0, 2, "signature");
    fields.le32(2, "file size");
    const std::uint32_t pixels = fields.le32(10, "pixel offset");
    picture.samplesAt = pixels;
    fields.le32(14, "header bytes");
    picture.width = fields.signedLe32(18, "width");
    picture.height = fields.signedLe32(22, "height");
    fields.le16(26, "planes");
    const std::uint16_t bits = fields.le16(28, "bits per pixel");
    fields.le32(30, "compression");
    fields.le32(34, "image bytes");
    if (fields.has(pixels)) fields.add(pixels, fields.facts().bytes - pixels, "pixels", "");
    picture.channels = bits == 24 ? 3 : bits == 32 ? 4 : 1;
    picture.depth = bits / picture.channels;
}

void readTarga(Fields& fields) {
    PictureFacts& picture = fields.facts().picture.emplace();
    const std::uint8_t idBytes = fields.byte(0, "image id bytes");
    fields.byte(1, "colour map");
    fields.byte(2, "image type");
    picture.width = fields.le16(12, "width");
    picture.height = fields.le16(14, "height");
    const std::uint8_t bits = fields.byte(16, "bits per pixel");
    fields.byte(17, "descriptor");
    picture.channels = bits / 8;
    picture.depth = 8;
    const std::uint64_t pixels = 18u + idBytes;
    if (fields.has(pixels)) fields.add(pixels, fields.facts().bytes - pixels, "pixels", "");
}

// Markers that start a frame: C0 to CF but for the tables C4, C8 and CC among them.
bool startsFrame(std::uint8_t marker) {
    return marker >= 0xC0 && marker <= 0xCF && marker != 0xC4 && marker != 0xC8 && marker != 0xCC;
}

void readJpeg(Fields& fields) {
    constexpr std::uint8_t kStartOfScan = 0xDA;
    constexpr const char* kDigits = "0123456789ABCDEF";
    fields.add(0, 2, "FFD8", "start of image");
    for (std::uint64_t offset = 2; fields.has(offset) && !fields.isFull();) {
        Bytes segment = fields.part(offset, 10);
        if (segment.u8(0) != 0xFF) return;
        const std::uint8_t marker = segment.u8(1);
        const std::uint16_t length = segment.be16(2);
        const bool frame = startsFrame(marker);
        const std::uint16_t height = segment.be16(5);
        const std::uint16_t width = segment.be16(7);
        const std::uint8_t channels = segment.u8(9);
        const std::string size = number(width) + " x " + number(height) + " pixels";
        fields.add(offset, 2u + length,
                   std::string("FF") + kDigits[marker >> 4] + kDigits[marker & 15],
                   frame ? "frame of " + size : "");
        if (frame) fields.facts().picture = PictureFacts{width, height, channels, segment.u8(4)};
        if (marker == kStartOfScan || length < 2) return;
        offset += 2u + length;
    }
}

// A text that ends with a NUL; nothing when there is none within reach.
std::optional<std::string> nameAt(Fields& fields, std::uint64_t offset) {
    const Bytes bytes = fields.part(offset, 256);
    const auto* end = std::find(bytes.data, bytes.data + bytes.size, 0);
    if (end == bytes.data + bytes.size) return std::nullopt;
    return std::string(bytes.data, end);
}

std::string channelNames(Fields& fields, std::uint64_t offset, std::uint64_t end) {
    std::string names;
    while (offset < end) {
        const auto name = nameAt(fields, offset);
        if (!name || name->empty()) break;
        names += (names.empty() ? "" : ", ") + *name;
        offset += name->size() + 1 + 16;  // type and sampling follow the name
    }
    return names;
}

std::string attributeValue(Fields& fields, const std::string& type, std::uint64_t offset,
                           std::uint32_t bytes) {
    if (type == "chlist") return channelNames(fields, offset, offset + bytes);
    if (type == "string") return fields.lettersAt(offset, bytes);
    Bytes value = fields.part(offset, 16);
    if (type == "compression" || type == "lineOrder") return number(value.u8(0));
    if (type == "float") return statusText(std::bit_cast<float>(value.le32(0)));
    if (type == "int") return std::to_string(static_cast<std::int32_t>(value.le32(0)));
    if (type != "box2i") return {};
    std::string box;
    for (std::size_t i = 0; i < 16; i += 4) {
        box += i == 0 ? "" : " ";
        box += std::to_string(static_cast<std::int32_t>(value.le32(i)));
    }
    return box;
}

void noteExrSize(Fields& fields, const std::string& attribute, std::uint64_t offset,
                 const std::string& value) {
    PictureFacts& picture = *fields.facts().picture;
    if (attribute == "channels")
        picture.channels = value.empty() ? 0 : std::ranges::count(value, ',') + 1;
    if (attribute != "dataWindow") return;
    Bytes box = fields.part(offset, 16);
    const auto side = [&box](std::size_t low, std::size_t high) {
        return std::int64_t{static_cast<std::int32_t>(box.le32(high))} -
               static_cast<std::int32_t>(box.le32(low)) + 1;
    };
    picture.width = side(0, 8);
    picture.height = side(4, 12);
}

void readExr(Fields& fields) {
    fields.facts().picture.emplace();
    fields.le32(0, "magic");
    fields.le32(4, "version and flags");
    for (std::uint64_t offset = 8; fields.has(offset) && !fields.isFull();) {
        const auto name = nameAt(fields, offset);
        if (!name || name->empty()) return;
        const std::uint64_t typeAt = offset + name->size() + 1;
        const auto type = nameAt(fields, typeAt);
        if (!type) return;
        const std::uint64_t sizeAt = typeAt + type->size() + 1;
        const std::uint32_t bytes = fields.part(sizeAt, 4).le32(0);
        const std::string value = attributeValue(fields, *type, sizeAt + 4, bytes);
        fields.add(offset, sizeAt + 4 + bytes - offset, *name, value);
        noteExrSize(fields, *name, sizeAt + 4, value);
        offset = sizeAt + 4 + bytes;
    }
}

struct Format {
    FileKind kind;
    const char* name;
    void (*read)(Fields&);
};
constexpr Format kFormats[] = {
    {FileKind::kVemo, "Vemo mesh", readVemo}, {FileKind::kTiff, "TIFF", readTiff},
    {FileKind::kPsd, "PSD", readPsd},         {FileKind::kBmp, "BMP", readBmp},
    {FileKind::kExr, "OpenEXR", readExr},     {FileKind::kJpeg, "JPEG", readJpeg},
    {FileKind::kTarga, "Targa", readTarga}};

constexpr std::pair<std::string_view, FileKind> kExtensions[] = {
    {".vemo", FileKind::kVemo}, {".tif", FileKind::kTiff},  {".tiff", FileKind::kTiff},
    {".psd", FileKind::kPsd},   {".bmp", FileKind::kBmp},   {".exr", FileKind::kExr},
    {".jpg", FileKind::kJpeg},  {".jpeg", FileKind::kJpeg}, {".tga", FileKind::kTarga}};

FileKind kindByExtension(const std::string& path) {
    const std::string extension = extensionOf(path);
    for (const auto& [known, kind] : kExtensions) {
        if (known == extension) return kind;
    }
    return FileKind::kUnknown;
}

FileKind kindOf(Fields& fields, const std::string& path) {
    Bytes head = fields.part(0, kFirstChunk + 4);
    const std::string start(head.data, head.data + std::min<std::size_t>(head.size, 4));
    if (start == "8BPS") return FileKind::kPsd;
    if (start.starts_with("BM")) return FileKind::kBmp;
    if (start == std::string("II*\0", 4) || start == std::string("MM\0*", 4))
        return FileKind::kTiff;
    if (start == "\x76\x2F\x31\x01") return FileKind::kExr;
    if (start.starts_with("\xFF\xD8\xFF")) return FileKind::kJpeg;
    return isChunkId(head.le32(kFirstChunk)) ? FileKind::kVemo : kindByExtension(path);
}

}  // namespace

FileFacts factsOf(const std::string& path) {
    Fields fields(path);
    fields.facts().kind = kindOf(fields, path);
    fields.facts().format = "no format that Quillon knows";
    for (const Format& format : kFormats) {
        if (format.kind != fields.facts().kind) continue;
        fields.facts().format = format.name;
        format.read(fields);
    }
    return std::move(fields.facts());
}
