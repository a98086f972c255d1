#include <algorithm>
#include <array>
#include <bit>
#include <limits>
#include <memory>

#include "files/BmpWriter.h"
#include "files/MapFix.h"
#include "files/Samples.h"
#include "terminal/Failure.h"

namespace {

using ByteList = std::vector<std::uint8_t>;

enum Compression : std::uint32_t {
    kRaw = 0,
    kRunLengths8 = 1,
    kRunLengths4 = 2,
    kMasks = 3,
    kAlphaMasks = 6
};

constexpr std::uint32_t kOldHeaderBytes = 12;
constexpr std::uint32_t kPlainHeaderBytes = 40;
constexpr std::uint32_t kAlphaHeaderBytes = 56;  // from here on it has a mask for alpha

struct Header {
    std::uint32_t headerBytes = 0;  // of the second of the two headers
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    bool isTopDown = false;
    std::uint32_t bits = 0;  // of a pixel
    std::uint32_t compression = 0;
    std::uint32_t pixels = 0;              // the offset of the first row
    std::array<std::uint32_t, 4> masks{};  // red, green, blue, alpha
    std::uint32_t paletteCount = 0;        // as the file says; 0: as many as the bits have
    std::uint64_t palette = 0;             // its offset

    bool isPacked() const { return compression == kRunLengths8 || compression == kRunLengths4; }
    bool hasPalette() const { return bits <= 8; }
    std::uint64_t rowBytes() const { return (std::uint64_t{width} * bits + 31) / 32 * 4; }
};

[[noreturn]] void cutShort(const std::string& path) {
    throw Failure(path + " is cut short or damaged; save it again");
}

void readOldHeader(Bytes& head, Header& header) {
    header.width = head.le16(18);
    header.height = head.le16(20);
    header.bits = head.le16(24);
}

void readHeader(Bytes& head, Header& header) {
    const std::uint32_t height = head.le32(22);
    header.isTopDown = height >> 31 != 0;
    header.width = head.le32(18);
    header.height = header.isTopDown ? 0 - height : height;
    header.bits = head.le16(28);
    header.compression = head.le32(30);
    header.paletteCount = head.le32(46);
}

// The masks are in the header, or behind one of 40 bytes; or they are the usual ones.
void readMasks(Bytes& head, Header& header) {
    const bool hasMasks = header.compression == kMasks || header.compression == kAlphaMasks;
    if (!hasMasks) {
        header.masks = header.bits == 16 ? std::array{0x7C00u, 0x03E0u, 0x001Fu, 0u}
                                         : std::array{0xFF0000u, 0x00FF00u, 0x0000FFu, 0u};
        return;
    }
    const bool hasAlpha =
        header.compression == kAlphaMasks || header.headerBytes >= kAlphaHeaderBytes;
    for (std::size_t i = 0; i < 3; ++i)
        header.masks[i] = head.le32(54 + 4 * i);
    if (hasAlpha) header.masks[3] = head.le32(66);
}

Header headerOf(const std::string& path, InputFile& file) {
    Bytes head = file.part(0, 138);
    if (head.u8(0) != 'B' || head.u8(1) != 'M') throw Failure(path + " is no BMP file");
    Header header;
    header.pixels = head.le32(10);
    header.headerBytes = head.le32(14);
    header.palette = std::uint64_t{14} + header.headerBytes;
    if (header.headerBytes == kOldHeaderBytes)
        readOldHeader(head, header);
    else
        readHeader(head, header);
    readMasks(head, header);
    if (head.overran) cutShort(path);
    return header;
}

void requireKind(const std::string& path, const Header& header) {
    constexpr std::uint32_t kHeaders[] = {kOldHeaderBytes, kPlainHeaderBytes, 52, 56, 64, 108, 124};
    const auto isOneOf = [&](std::initializer_list<std::uint32_t> bits) {
        return std::ranges::count(bits, header.bits) > 0;
    };
    if (std::ranges::count(kHeaders, header.headerBytes) == 0)
        throw Failure(path + " has a BMP header of " + std::to_string(header.headerBytes) +
                      " bytes, which is none that quillon fix reads; save it again");
    const bool isKnown =
        header.compression == kRaw           ? isOneOf({1, 4, 8, 16, 24, 32})
        : header.compression == kRunLengths8 ? header.bits == 8 && !header.isTopDown
        : header.compression == kRunLengths4 ? header.bits == 4 && !header.isTopDown
        : header.headerBytes == 64           ? false  // other compressions there
        : header.compression == kMasks || header.compression == kAlphaMasks ? isOneOf({16, 32})
                                                                            : false;
    if (!isKnown)
        throw Failure(path + " has " + std::to_string(header.bits) +
                      " bits per pixel in compression " + std::to_string(header.compression) +
                      ", which quillon fix does not read; save it with 24 bits");
}

void requireBmpSize(const std::string& path, const Header& header) {
    requireSides(path, header.width, header.height);
    const std::uint64_t bytes = std::uint64_t{bmpRowBytes(header.width)} * header.height;
    if (bytes > std::numeric_limits<std::uint32_t>::max() - 54)
        throw Failure(path + " would take " + std::to_string(bytes) +
                      " bytes, and BMP files end at 4 GiB; make it smaller");
}

// Numbers of a palette's colours, row by row from the bottom one, in run lengths.
class RunLengthRows {
public:
    RunLengthRows(const std::string& path, InputFile& file, const Header& header)
        : path_(path), bits_(header.bits) {
        const std::uint64_t most = file.size() * kMaxPixelBytesPerByte;
        if (header.pixels > file.size() || most / header.width < header.height) cutShort(path);
        packed_.resize(static_cast<std::size_t>(file.size() - header.pixels));
        file.read(header.pixels, packed_);
    }

    // Two bytes each: a count above 0 and what is repeated; or 0 and the end of the row (0), of the
    // image (1), a step to the right and up (2), or the number of pixels that follow.
    void read(ByteList& row) {
        if (emptyRows_ > 0) {
            --emptyRows_;
            return;
        }
        while (!ended_) {
            const std::uint8_t count = next();
            const std::uint8_t value = next();
            if (count > 0)
                repeat(row, count, value);
            else if (value > 2)
                copy(row, value);
            else if (endsRow(value))
                return;
        }
    }

private:
    std::uint8_t next() {
        if (at_ == packed_.size()) cutShort(path_);
        return packed_[at_++];
    }

    void put(ByteList& row, std::uint8_t number) {
        if (x_ < row.size()) row[x_] = number;
        ++x_;
    }

    // Half a byte is a number of 4 bits, the high half first.
    std::uint8_t numberIn(std::uint8_t value, std::size_t i) const {
        if (bits_ == 8) return value;
        return i % 2 == 0 ? value >> 4 : value & 15;
    }

    void repeat(ByteList& row, std::size_t count, std::uint8_t value) {
        for (std::size_t i = 0; i < count; ++i)
            put(row, numberIn(value, i));
    }

    void copy(ByteList& row, std::size_t count) {
        const std::size_t bytes = (count * bits_ + 7) / 8;
        std::uint8_t value = 0;
        for (std::size_t i = 0; i < count; ++i) {
            if (i * bits_ % 8 == 0) value = next();
            put(row, numberIn(value, i));
        }
        if (bytes % 2 != 0) next();
    }

    bool endsRow(std::uint8_t code) {
        if (code == 1) ended_ = true;
        if (code < 2) x_ = 0;
        if (code < 2) return true;
        x_ += next();
        const std::uint8_t up = next();
        if (up > 0) emptyRows_ = up - 1u;
        return up > 0;
    }

    const std::string& path_;
    std::uint32_t bits_;
    ByteList packed_;
    std::size_t at_ = 0;
    std::size_t x_ = 0;  // where the next number goes
    unsigned emptyRows_ = 0;
    bool ended_ = false;
};

// The rows of a BMP from the bottom one on, as red, green and blue.
class RgbRows {
public:
    RgbRows(const std::string& path, InputFile& file, const Header& header)
        : path_(path), file_(file), header_(header) {
        if (header.hasPalette()) readPalette();
        if (header.isPacked()) {
            packed_ = std::make_unique<RunLengthRows>(path, file, header);
            return;
        }
        const std::uint64_t bytes = header.rowBytes() * header.height;
        if (header.pixels > file.size() || file.size() - header.pixels < bytes) cutShort(path);
    }

    // Valid until the next call; `y` counts from the bottom, each once.
    const ByteList& at(std::uint32_t y) {
        rgb_.resize(std::size_t{3} * header_.width);
        if (header_.hasPalette())
            lookUp(y);
        else
            takeMasked(y);
        return rgb_;
    }

private:
    // A colour takes 4 bytes, in the old format 3: blue, green, red.
    void readPalette() {
        const std::uint32_t size = header_.headerBytes == kOldHeaderBytes ? 3 : 4;
        const std::uint32_t most = 1u << header_.bits;
        const std::uint32_t said = header_.paletteCount == 0 ? most : header_.paletteCount;
        const std::uint64_t room =
            header_.pixels > header_.palette ? (header_.pixels - header_.palette) / size : 0;
        const auto count =
            static_cast<std::size_t>(std::min<std::uint64_t>(std::min(said, most), room));
        Bytes colours = file_.part(header_.palette, count * size);
        for (std::size_t i = 0; i < count; ++i)
            palette_.push_back(
                {colours.u8(i * size + 2), colours.u8(i * size + 1), colours.u8(i * size)});
        if (colours.overran) cutShort(path_);
    }

    Bytes rawRow(std::uint32_t y) {
        const std::uint64_t stored = header_.isTopDown ? header_.height - 1 - y : y;
        return file_.part(header_.pixels + stored * header_.rowBytes(),
                          static_cast<std::size_t>(header_.rowBytes()));
    }

    void lookUp(std::uint32_t y) {
        numbers_.assign(header_.width, 0);
        if (packed_) {
            packed_->read(numbers_);
        } else {
            const Bytes row = rawRow(y);
            unpackBits({row.data, row.size}, header_.bits, numbers_);
        }
        for (std::size_t x = 0; x < numbers_.size(); ++x) {
            if (numbers_[x] >= palette_.size())
                throw Failure(path_ + " is damaged: a pixel has the colour " +
                              std::to_string(numbers_[x]) + " of a palette of " +
                              std::to_string(palette_.size()));
            std::ranges::copy(palette_[numbers_[x]], &rgb_[3 * x]);
        }
    }

    void takeMasked(std::uint32_t y) {
        Bytes row = rawRow(y);
        const std::size_t bytes = header_.bits / 8;
        for (std::size_t x = 0; x < header_.width; ++x) {
            std::uint32_t pixel = 0;
            for (std::size_t i = 0; i < bytes; ++i)
                pixel |= std::uint32_t{row.u8(bytes * x + i)} << 8 * i;
            for (std::size_t channel = 0; channel < 3; ++channel)
                rgb_[3 * x + channel] = levelOf(pixel, header_.masks[channel]);
        }
    }

    // The bits under a mask, 0 to 255; 0 for a mask without bits.
    static std::uint8_t levelOf(std::uint32_t pixel, std::uint32_t mask) {
        const int shift = mask == 0 ? 0 : std::countr_zero(mask);
        return byteOfLevel((pixel & mask) >> shift, mask >> shift);
    }

    const std::string& path_;
    InputFile& file_;
    const Header& header_;
    std::vector<std::array<std::uint8_t, 3>> palette_;
    std::unique_ptr<RunLengthRows> packed_;
    ByteList numbers_, rgb_;
};

std::vector<std::string> changesOf(const Header& header) {
    std::vector<std::string> changes;
    if (header.headerBytes != kPlainHeaderBytes)
        changes.push_back("header of " + std::to_string(header.headerBytes) + " bytes -> 40 bytes");
    if (header.isPacked()) changes.emplace_back("run-length compression -> not compressed");
    if (header.isTopDown) changes.emplace_back("top row first -> bottom row first");
    if (header.hasPalette())
        changes.push_back("palette of " + std::to_string(header.bits) +
                          " bits -> 24 bits per pixel");
    else if (header.bits != 24)
        changes.push_back(std::to_string(header.bits) + " bits per pixel -> 24");
    const auto isWide = [](std::uint32_t mask) { return std::popcount(mask) > 8; };
    if (std::any_of(header.masks.begin(), header.masks.begin() + 3, isWide))
        changes.emplace_back("colours of more than 8 bits -> 8, rounded");
    if (header.masks[3] != 0) changes.emplace_back("1 further channel left out");
    if (!header.hasPalette() && header.pixels != 54)
        changes.push_back("pixels at byte " + std::to_string(header.pixels) + " -> byte 54");
    return changes;
}

}  // namespace

FixedMap fixBmp(const std::string& in, const std::string& out, const FixOptions& options) {
    InputFile file(in, "map");
    const Header header = headerOf(in, file);
    requireKind(in, header);
    requireBmpSize(in, header);
    requireNoLoss(in, header.masks[3] != 0 ? 1 : 0, options);
    if (options.bits.value_or(8) != 8)
        throw Failure(in +
                      " is a BMP, and of these the exports take 8 bits per channel only; leave "
                      "--bits out");
    RgbRows rows(in, file, header);
    BmpWriter writer(out, header.width, header.height);
    for (std::uint32_t y = 0; y < header.height; ++y)
        writer.appendRgb(rows.at(y));
    writer.finish();
    return {header.width, header.height, 3, 8, changesOf(header)};
}
