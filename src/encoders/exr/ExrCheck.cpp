#include "encoders/exr/ExrCheck.h"

#include <algorithm>
#include <initializer_list>
#include <optional>
#include <string_view>
#include <vector>

#include "bytes/Bytes.h"
#include "encoders/ExrRange.h"
#include "encoders/exr/PizBlock.h"

using namespace exr_status;

namespace {

constexpr std::uint64_t kAttributes = 8;
constexpr std::uint8_t kTiledFlag = 2;
constexpr int kMaxAttributes = 1000;  // the loader takes one soon after for the end

constexpr std::uint32_t kHalf = 1;
constexpr std::uint32_t kLastPixelType = 2;

enum Compression : std::uint8_t { kNone, kRle, kZips, kZip, kPiz };

// Real pictures stay within this, and no sum of two such numbers wraps.
constexpr std::int32_t kMaxCoordinate = 1 << 21;
constexpr std::uint32_t kMaxTileSide = 1 << 20;

// How many bytes of memory a byte of the file can need at most: deflate shrinks data to a 1032nd, and
// a half float becomes a float of twice its size. Tiles reach beyond the picture's border, hence the
// extra bytes.
constexpr std::uint64_t kMaxExpansion = 2 * 1100;
constexpr std::uint64_t kMaxExtraBytes = 64 * 1024 * 1024;

enum LevelMode : std::uint8_t { kOneLevel, kMipmap, kRipmap };

struct Header {
    std::vector<std::uint32_t> pixelTypes;
    bool subsampled = false;
    int compression = -1;
    bool hasWindow = false;
    bool hasLineOrder = false;
    std::int32_t left = 0, top = 0, right = 0, bottom = 0;
    std::uint32_t tileWidth = 0, tileHeight = 0;
    std::uint8_t levelMode = kOneLevel;
    bool roundsUp = false;
    std::int32_t chunkCount = 0;
    std::uint64_t end = 0;  // of the header, where the table of offsets starts

    std::uint64_t pixelBytes() const {
        std::uint64_t bytes = 0;
        for (const std::uint32_t type : pixelTypes)
            bytes += type == kHalf ? 2 : 4;
        return bytes;
    }
};

// A text that ends within the file, or a text that starts at its end.
std::string_view textAt(const Bytes& file, std::uint64_t at) {
    const std::uint8_t* const start = file.data + std::min<std::uint64_t>(at, file.size);
    const std::uint8_t* const end = file.data + file.size;
    return {reinterpret_cast<const char*>(start),
            static_cast<std::size_t>(std::find(start, end, 0) - start)};
}

// Channels: name, pixel type, 4 bytes not looked at, two sampling rates; ended by an empty name.
bool readChannels(Bytes value, Header& header) {
    if (!header.pixelTypes.empty()) return false;  // the loader would join the two lists
    for (std::uint64_t at = 0; !textAt(value, at).empty();) {
        at += textAt(value, at).size() + 1;
        const std::uint32_t type = value.le32(at);
        if (value.le32(at + 8) != 1 || value.le32(at + 12) != 1) header.subsampled = true;
        at += 16;
        if (value.overran || at >= value.size || type > kLastPixelType) return false;
        header.pixelTypes.push_back(type);
    }
    return !header.pixelTypes.empty();
}

bool readTiles(Bytes value, Header& header) {
    header.tileWidth = value.le32(0);
    header.tileHeight = value.le32(4);
    const std::uint8_t mode = value.u8(8);
    header.levelMode = mode & 3;
    header.roundsUp = (mode >> 4 & 1) != 0;
    const auto isLength = [](std::uint32_t side) { return side > 0 && side <= kMaxTileSide; };
    return value.size == 9 && header.levelMode <= kRipmap && isLength(header.tileWidth) &&
           isLength(header.tileHeight);
}

bool readWindow(Bytes value, Header& header) {
    const auto number = [&](std::uint64_t at) { return static_cast<std::int32_t>(value.le32(at)); };
    header.left = number(0);
    header.top = number(4);
    header.right = number(8);
    header.bottom = number(12);
    const auto isNear = [](std::int32_t coordinate) {
        return coordinate >= -kMaxCoordinate && coordinate <= kMaxCoordinate;
    };
    header.hasWindow = true;
    return value.size == 16 && isNear(header.left) && isNear(header.top) && isNear(header.right) &&
           isNear(header.bottom) && header.left <= header.right && header.top <= header.bottom;
}

// False when the value is not one that the loader survives.
bool readValue(std::string_view name, Bytes value, Header& header, ExrLayout& layout) {
    if (name == "channels") return readChannels(value, header);
    if (name == "compression") {
        header.compression = value.u8(0);
        return value.size > 0;
    }
    if (name == "dataWindow") return readWindow(value, header);
    if (name == "lineOrder") {
        header.hasLineOrder = value.size > 0;
        layout.increasingRows = value.u8(0) == 0;
    }
    if (name == "tiles") return !layout.tiled || readTiles(value, header);
    if (name == "chunkCount") header.chunkCount = static_cast<std::int32_t>(value.le32(0));
    return true;
}

// The attribute that says whether a picture is rows or tiles. Where it contradicts the flags, these
// count, as in OpenEXR's own library. The loader asserts that both agree, but takes an empty type for
// none.
void emptyType(std::span<std::uint8_t> value) {
    if (!value.empty()) value.front() = 0;
}

int readHeader(std::span<std::uint8_t> bytes, Header& header, ExrLayout& layout) {
    Bytes file{bytes.data(), bytes.size()};
    std::uint64_t at = kAttributes;
    for (int count = 0; !textAt(file, at).empty(); ++count) {
        if (count == kMaxAttributes) return kBadData;
        const std::string_view name = textAt(file, at);
        at += name.size() + 1;
        at += textAt(file, at).size() + 1;
        const std::uint64_t size = file.le32(at);
        at += 4;
        if (file.overran || !file.holds(at, size, 1)) return kBadData;
        const Bytes value{file.data + at, static_cast<std::size_t>(size)};
        if (!readValue(name, value, header, layout)) return kBadData;
        if (name == "type") emptyType(bytes.subspan(static_cast<std::size_t>(at), value.size));
        at += size;
    }
    if (at >= file.size) return kBadData;
    header.end = at + 1;
    const bool complete = !header.pixelTypes.empty() && header.compression >= 0 &&
                          header.hasWindow && header.hasLineOrder &&
                          (!layout.tiled || header.tileWidth > 0);
    if (!complete) return kBadHeader;
    if (header.compression > kPiz) return kUnknownFormat;
    return header.subsampled ? kUnknownFeature : kOk;
}

// One resolution of a tiled picture.
struct Level {
    std::uint32_t x, y;
    std::uint32_t columns, rows;  // of tiles
    std::uint64_t firstTile;      // how many the levels before it have
};

std::uint32_t levelCount(std::uint32_t size, bool roundsUp) {
    std::uint32_t levels = 1;
    bool exact = true;
    for (; size > 1; size >>= 1, ++levels)
        exact = exact && (size & 1) == 0;
    return roundsUp && !exact ? levels + 1 : levels;
}

std::uint32_t levelSize(std::uint32_t size, std::uint32_t level, bool roundsUp) {
    const std::uint32_t scale = std::uint32_t{1} << level;
    return std::max<std::uint32_t>(size / scale + (roundsUp && size % scale != 0 ? 1 : 0), 1);
}

std::vector<Level> levelsOf(const Header& header, std::uint32_t width, std::uint32_t height) {
    std::vector<Level> levels;
    std::uint64_t tilesBefore = 0;
    const auto add = [&](std::uint32_t x, std::uint32_t y) {
        const auto tiles = [](std::uint32_t size, std::uint32_t tile) {
            return (size + tile - 1) / tile;
        };
        levels.push_back({x, y, tiles(levelSize(width, x, header.roundsUp), header.tileWidth),
                          tiles(levelSize(height, y, header.roundsUp), header.tileHeight),
                          tilesBefore});
        tilesBefore += std::uint64_t{levels.back().columns} * levels.back().rows;
    };
    const bool ripmap = header.levelMode == kRipmap;
    const std::uint32_t longer = ripmap ? width : std::max(width, height);
    const std::uint32_t columns =
        header.levelMode == kOneLevel ? 1 : levelCount(longer, header.roundsUp);
    const std::uint32_t rows = ripmap ? levelCount(height, header.roundsUp) : 1;
    for (std::uint32_t y = 0; y < rows; ++y) {
        for (std::uint32_t x = 0; x < columns; ++x)
            add(x, ripmap ? y : x);
    }
    return levels;
}

// The data of the chunk that starts at `offset` with these numbers. Nothing when there is no such
// chunk or it leaves the file.
std::optional<Bytes> chunkAt(Bytes file, std::uint64_t offset,
                             std::initializer_list<std::uint32_t> place) {
    if (offset > file.size) return {};
    for (const std::uint32_t number : place) {
        if (file.le32(offset) != number) return {};
        offset += 4;
    }
    const std::uint64_t bytes = file.le32(offset);
    offset += 4;
    if (file.overran || bytes > INT32_MAX || !file.holds(offset, bytes, 1)) return {};
    return Bytes{file.data + offset, static_cast<std::size_t>(bytes)};
}

std::uint64_t offsetAt(Bytes& file, std::uint64_t at) {
    return file.le32(at) | std::uint64_t{file.le32(at + 4)} << 32;
}

// A writer fills in the table of chunk offsets last: one that was interrupted leaves zeros there.
// Its chunks follow the table one after the other, and each has its place in the picture, from which
// the table is rebuilt.
//
//   placeBytes  of the numbers that a chunk starts with, before its length
//   entryOf     the position in the table of the chunk at an offset
template <typename EntryOf>
void completeTable(std::span<std::uint8_t> bytes, std::uint64_t table, std::uint64_t chunks,
                   std::uint64_t placeBytes, EntryOf entryOf) {
    Bytes file{bytes.data(), bytes.size()};
    bool complete = true;
    for (std::uint64_t i = 0; i < chunks && complete; ++i)
        complete = offsetAt(file, table + 8 * i) != 0;
    std::uint64_t offset = table + 8 * chunks;
    for (std::uint64_t i = 0; i < chunks && !complete; ++i) {
        const std::uint64_t entry = entryOf(file, offset);
        const std::uint32_t length = file.le32(offset + placeBytes);
        if (file.overran || entry >= chunks) return;
        storeLe64(&bytes[static_cast<std::size_t>(table + 8 * entry)], offset);
        offset += placeBytes + 4 + length;
    }
}

std::uint32_t rowsPerChunk(int compression) {
    if (compression == kZip) return 16;
    return compression == kPiz ? 32 : 1;
}

// Whether a chunk of so many pixels can be decoded. One that compression would not shrink is stored
// as it is.
bool isSound(const std::optional<Bytes>& chunk, const Header& header, std::uint64_t pixels) {
    const std::uint64_t raw = pixels * header.pixelBytes();
    if (!chunk || chunk->size < 2) return false;
    if (header.compression == kNone) return chunk->size >= raw;
    return header.compression != kPiz || chunk->size == raw || isSoundPizBlock(*chunk);
}

bool checkRows(std::span<std::uint8_t> bytes, const Header& header, std::uint32_t width,
               std::uint32_t height) {
    Bytes file{bytes.data(), bytes.size()};
    const std::uint32_t step = rowsPerChunk(header.compression);
    const std::uint32_t chunks = (height + step - 1) / step;
    const bool countIsRight =
        header.chunkCount <= 0 || static_cast<std::uint32_t>(header.chunkCount) == chunks;
    if (!countIsRight || !file.holds(header.end, chunks, 8)) return false;
    completeTable(bytes, header.end, chunks, 4, [&](Bytes& chunk, std::uint64_t at) {
        return (chunk.le32(at) - static_cast<std::uint32_t>(header.top)) / step;
    });
    for (std::uint32_t chunk = 0; chunk < chunks; ++chunk) {
        const std::uint32_t first = chunk * step;
        const std::uint64_t rows = std::min(step, height - first);
        const auto row = static_cast<std::uint32_t>(header.top) + first;
        const std::uint64_t offset = offsetAt(file, header.end + 8 * std::uint64_t{chunk});
        if (!isSound(chunkAt(file, offset, {row}), header, rows * width)) return false;
    }
    return true;
}

// Edge tiles hold only what is in the picture.
std::uint64_t tilePixels(const Header& header, const Level& level, std::uint32_t column,
                         std::uint32_t row, std::uint32_t width, std::uint32_t height) {
    const std::uint64_t levelWidth = levelSize(width, level.x, header.roundsUp);
    const std::uint64_t levelHeight = levelSize(height, level.y, header.roundsUp);
    return std::min<std::uint64_t>(header.tileWidth,
                                   levelWidth - std::uint64_t{column} * header.tileWidth) *
           std::min<std::uint64_t>(header.tileHeight,
                                   levelHeight - std::uint64_t{row} * header.tileHeight);
}

// The position in the table of the tile that the chunk at an offset holds; beyond the table when
// there is no such tile.
std::uint64_t tileEntry(Bytes& chunk, std::uint64_t at, const std::vector<Level>& levels) {
    const std::uint32_t column = chunk.le32(at);
    const std::uint32_t row = chunk.le32(at + 4);
    const std::uint32_t x = chunk.le32(at + 8);
    const std::uint32_t y = chunk.le32(at + 12);
    const auto level = std::find_if(levels.begin(), levels.end(), [&](const Level& candidate) {
        return candidate.x == x && candidate.y == y;
    });
    if (level == levels.end() || column >= level->columns || row >= level->rows) return UINT64_MAX;
    return level->firstTile + std::uint64_t{row} * level->columns + column;
}

bool checkTiles(std::span<std::uint8_t> bytes, const Header& header, std::uint32_t width,
                std::uint32_t height) {
    Bytes file{bytes.data(), bytes.size()};
    const std::vector<Level> levels = levelsOf(header, width, height);
    const Level& last = levels.back();
    const std::uint64_t tiles = last.firstTile + std::uint64_t{last.columns} * last.rows;
    const std::uint64_t tileBytes =
        std::uint64_t{header.tileWidth} * header.tileHeight * 4 * header.pixelTypes.size();
    const std::uint64_t maxBytes = kMaxExpansion * file.size + kMaxExtraBytes;
    if (!file.holds(header.end, tiles, 8) || tiles > maxBytes / tileBytes) return false;

    completeTable(bytes, header.end, tiles, 16,
                  [&](Bytes& chunk, std::uint64_t at) { return tileEntry(chunk, at, levels); });
    std::uint64_t entry = header.end;
    for (const Level& level : levels) {
        for (std::uint32_t row = 0; row < level.rows; ++row) {
            for (std::uint32_t column = 0; column < level.columns; ++column, entry += 8) {
                const std::uint64_t pixels = tilePixels(header, level, column, row, width, height);
                const auto chunk =
                    chunkAt(file, offsetAt(file, entry), {column, row, level.x, level.y});
                if (!isSound(chunk, header, pixels)) return false;
            }
        }
    }
    return true;
}

}  // namespace

int checkExr(std::span<std::uint8_t> bytes, ExrLayout& layout) {
    Bytes file{bytes.data(), bytes.size()};
    layout = {};
    layout.tiled = (file.u8(5) & kTiledFlag) != 0;
    Header header;
    const int status = readHeader(bytes, header, layout);
    if (status != kOk) return status;

    const auto width = static_cast<std::uint32_t>(header.right - header.left + 1);
    const auto height = static_cast<std::uint32_t>(header.bottom - header.top + 1);
    const std::uint64_t samples = std::uint64_t{width} * height * header.pixelTypes.size();
    if (samples > (kMaxExpansion * file.size + kMaxExtraBytes) / 4) return kBadData;
    const bool whole = layout.tiled ? checkTiles(bytes, header, width, height)
                                    : checkRows(bytes, header, width, height);
    if (!whole) return kBadData;

    layout.width = static_cast<std::int32_t>(width);
    layout.height = static_cast<std::int32_t>(height);
    layout.tileWidth = static_cast<std::int32_t>(header.tileWidth);
    layout.tileHeight = static_cast<std::int32_t>(header.tileHeight);
    layout.chunkRows = static_cast<std::int32_t>(rowsPerChunk(header.compression));
    layout.firstPixelType = header.pixelTypes.front();
    return kOk;
}
