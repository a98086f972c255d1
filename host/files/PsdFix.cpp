#include <algorithm>
#include <limits>
#include <numeric>

#include "files/MapFix.h"
#include "files/PsdWriter.h"
#include "files/Samples.h"
#include "terminal/Failure.h"

namespace {

using ByteList = std::vector<std::uint8_t>;

constexpr std::uint32_t kMaxSide = 30000;  // of the format
constexpr unsigned kMaxChannels = 56;
enum Mode : std::uint16_t { kGrey = 1, kIndexed = 2, kRgb = 3 };
enum Compression : std::uint16_t { kRaw = 0, kRunLengths = 1 };

struct Header {
    bool isLarge = false;  // version 2, whose lengths are longer
    std::uint16_t channels = 0;
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    std::uint16_t bits = 0;
    std::uint16_t mode = 0;
    std::uint32_t tableBytes = 0;
    std::uint64_t resources = 0;  // their offset and length
    std::uint32_t resourceBytes = 0;
    std::uint64_t layerBytes = 0;
    std::uint16_t compression = 0;
    std::uint64_t data = 0;  // the offset of what follows the compression

    unsigned colours() const { return mode == kRgb ? 3 : 1; }
    std::size_t rowBytes() const { return std::size_t{width} * bits / 8; }
};

[[noreturn]] void cutShort(const std::string& path) {
    throw Failure(path + " is cut short or damaged; save it again");
}

// A field's value; the file must have it.
std::uint64_t numberAt(const std::string& path, InputFile& file, std::uint64_t offset,
                       std::size_t bytes) {
    Bytes field = file.part(offset, bytes);
    const std::uint64_t high = bytes == 8 ? field.be32(0) : 0;
    const std::uint64_t low = bytes == 2 ? field.be16(0) : field.be32(bytes - 4);
    if (field.overran) cutShort(path);
    return high << 32 | low;
}

Header headerOf(const std::string& path, InputFile& file) {
    Bytes head = file.part(0, 26);
    const bool isPsd = head.be32(0) == 0x38425053;  // "8BPS"
    const std::uint16_t version = head.be16(4);
    if (!isPsd || version < 1 || version > 2) throw Failure(path + " is no PSD file");
    Header header{version == 2,  head.be16(12), head.be32(18),
                  head.be32(14), head.be16(22), head.be16(24)};
    const auto number = [&](std::uint64_t offset, std::size_t bytes) {
        return numberAt(path, file, offset, bytes);
    };
    header.tableBytes = static_cast<std::uint32_t>(number(26, 4));
    header.resources = 34 + std::uint64_t{header.tableBytes};
    header.resourceBytes = static_cast<std::uint32_t>(number(header.resources - 4, 4));
    const std::uint64_t layers = header.resources + header.resourceBytes;
    const std::size_t lengthBytes = header.isLarge ? 8 : 4;
    header.layerBytes = number(layers, lengthBytes);
    if (header.layerBytes > file.size()) cutShort(path);
    header.data = layers + lengthBytes + header.layerBytes + 2;
    header.compression = static_cast<std::uint16_t>(number(header.data - 2, 2));
    return header;
}

// Whether the file says that it was saved without the merged image of its layers. A resource is
// "8BIM", a number, a name of even length, and its data, of even length in the file.
bool lacksMergedImage(InputFile& file, const Header& header) {
    constexpr std::uint16_t kVersionInfo = 1057;  // a number, then whether there is a merged image
    const std::uint64_t end = header.resources + header.resourceBytes;
    for (std::uint64_t at = header.resources; at + 12 <= end;) {
        Bytes block = file.part(at, 4 + 2 + 256 + 4 + 5);
        const std::uint64_t data = 6 + (block.u8(6) + 2u) / 2 * 2 + 4;
        const std::uint32_t bytes = block.be32(data - 4);
        if (block.be32(0) != 0x3842494D) return false;
        if (block.be16(4) == kVersionInfo) return bytes >= 5 && block.u8(data + 4) == 0;
        at += data + bytes + bytes % 2;
    }
    return false;
}

void requireKind(const std::string& path, const Header& header, const FixOptions& options) {
    if (header.mode != kGrey && header.mode != kIndexed && header.mode != kRgb)
        throw Failure(path + " is in colour mode " + std::to_string(header.mode) +
                      ", which is neither grey, RGB nor a palette; convert it to RGB");
    if (header.bits != 8 && (header.bits != 16 || header.mode == kIndexed))
        throw Failure(path + " has " + std::to_string(header.bits) +
                      " bits per sample; the exports take 8 and 16, so save it with these");
    if (header.compression > kRunLengths)
        throw Failure(path + " is compressed in a way that quillon fix does not read (" +
                      std::to_string(header.compression) + "); save it again without layers");
    if (header.channels < header.colours() || header.channels > kMaxChannels ||
        (header.mode == kIndexed && header.tableBytes != 768))
        cutShort(path);
    const unsigned bits = header.mode == kGrey ? 16 : 8;  // what merges take
    if (options.bits.value_or(bits) != bits)
        throw Failure(path +
                      (header.mode == kGrey ? " is grey, and of grey PSD maps the exports take "
                                            : " is in colour, and of these PSD maps the "
                                              "exports take ") +
                      std::to_string(bits) + " bits only; leave --bits out");
    if (header.bits > bits && !options.bits)
        throw Failure(path +
                      " has colours of 16 bits, and of PSD maps in colour the exports take 8 "
                      "bits only; --bits 8 rounds them");
}

// The planes of a PSD's merged image, row by row.
class Planes {
public:
    Planes(const std::string& path, InputFile& file, const Header& header)
        : path_(path), file_(file), header_(header), next_(header.data) {
        const std::uint64_t rows = std::uint64_t{header.height} * header.channels;
        if (header.compression == kRunLengths) next_ += rows * countBytes();
        const std::uint64_t rowBytes = header.compression == kRaw ? header.rowBytes() : 1;
        if (next_ > file.size() || (file.size() - next_) / rowBytes < rows) cutShort(path);
    }

    // Returns the next row; the first plane comes first. Valid until the next call.
    std::span<const std::uint8_t> next() {
        row_.resize(header_.rowBytes());
        if (header_.compression == kRaw) {
            file_.read(next_, row_);
            next_ += row_.size();
            return row_;
        }
        const std::uint64_t bytes =
            numberAt(path_, file_, header_.data + countBytes() * rows_++, countBytes());
        if (bytes > 2 * row_.size() + 2) cutShort(path_);
        unpackRuns(file_.part(next_, static_cast<std::size_t>(bytes)));
        next_ += bytes;
        return row_;
    }

private:
    std::size_t countBytes() const { return header_.isLarge ? 4 : 2; }

    // A byte below 128 is followed by that many bytes and one more; one above 128 by a byte that is
    // repeated 257 times less it; 128 by nothing.
    void unpackRuns(Bytes packed) {
        std::size_t x = 0;
        for (std::size_t at = 0; at < packed.size && x < row_.size();) {
            const std::uint8_t head = packed.u8(at++);
            if (head == 128) continue;
            const bool repeats = head > 128;
            const std::size_t count = repeats ? 257u - head : head + 1u;
            if (count > row_.size() - x) cutShort(path_);
            for (std::size_t i = 0; i < count; ++i)
                row_[x++] = packed.u8(repeats ? at : at + i);
            at += repeats ? 1 : count;
        }
        if (packed.overran || x < row_.size()) cutShort(path_);
    }

    const std::string& path_;
    InputFile& file_;
    const Header& header_;
    std::uint64_t next_;      // where the next row is
    std::uint64_t rows_ = 0;  // that have been read
    ByteList row_;
};

// Samples of 8 bits as 16, or of 16 rounded to 8; high byte first.
void convertRow(std::span<const std::uint8_t> row, unsigned from, unsigned to, ByteList& result) {
    result.clear();
    for (std::size_t i = 0; i < row.size(); i += from / 8) {
        if (from == 16 && to == 8)
            result.push_back(byteOfShort(loadBe16(&row[i])));
        else
            result.insert(result.end(), to / from, row[i]);  // 257 times the level
        if (from == 16 && to == 16) result.push_back(row[i + 1]);
    }
}

// Returns one colour of each number of a palette.
ByteList colourOf(const ByteList& numbers, Bytes palette, std::size_t colour) {
    ByteList levels;
    for (const std::uint8_t number : numbers)
        levels.push_back(palette.u8(256 * colour + number));
    return levels;
}

// Writes a palette's pixels as three planes; the numbers, one byte each, are in memory meanwhile.
void writeIndexed(Planes& planes, const Header& header, InputFile& file, PsdWriter& writer) {
    ByteList numbers;
    for (std::uint32_t y = 0; y < header.height; ++y) {
        const auto row = planes.next();
        numbers.insert(numbers.end(), row.begin(), row.end());
    }
    for (std::size_t colour = 0; colour < 3; ++colour)
        writer.append(colourOf(numbers, file.part(30, 768), colour));
}

void writePlanes(Planes& planes, const Header& header, std::uint64_t count, unsigned bits,
                 PsdWriter& writer) {
    ByteList row;
    for (std::uint64_t i = 0; i < count * header.height; ++i) {
        convertRow(planes.next(), header.bits, bits, row);
        writer.append(row);
    }
}

std::vector<std::string> changesOf(const Header& header, const PsdFormat& format,
                                   unsigned channelsLeftOut) {
    std::vector<std::string> changes;
    if (header.isLarge) changes.emplace_back("version 2, of large files -> version 1");
    if (header.compression == kRunLengths)
        changes.emplace_back("run-length compression -> not compressed");
    if (header.mode == kIndexed) changes.emplace_back("palette -> RGB");
    if (header.bits != format.bits)
        changes.push_back(std::to_string(header.bits) + " bits per sample -> " +
                          std::to_string(format.bits) +
                          (header.bits > format.bits ? ", rounded" : ""));
    if (channelsLeftOut > 0)
        changes.push_back(counted(channelsLeftOut, "further channel", "further channels") +
                          " left out");
    if (header.layerBytes > 0) changes.emplace_back("layers -> the merged image alone");
    if (header.resourceBytes > 0) changes.emplace_back("image resources left out");
    return changes;
}

}  // namespace

FixedMap fixPsd(const std::string& in, const std::string& out, const FixOptions& options) {
    InputFile file(in, "map");
    const Header header = headerOf(in, file);
    requireSides(in, header.width, header.height, kMaxSide);
    requireKind(in, header, options);
    const unsigned further = header.channels - header.colours();
    requireNoLoss(in, further, options);
    if (lacksMergedImage(file, header))
        throw Failure(in +
                      " has layers only; save it with their merged image, which is what maps are");
    const PsdFormat format{header.width, header.height,
                           static_cast<std::uint16_t>(header.mode == kGrey ? 1 : 3),
                           static_cast<std::uint16_t>(header.mode == kGrey ? 16 : 8)};
    Planes planes(in, file, header);
    PsdWriter writer(out, format);
    if (header.mode == kIndexed)
        writeIndexed(planes, header, file, writer);
    else
        writePlanes(planes, header, header.colours(), format.bits, writer);
    writer.finish();
    return {format.width, format.height, format.channels, format.bits,
            changesOf(header, format, further)};
}
