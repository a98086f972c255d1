#include "Literals.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <memory>
#include <set>
#include <vector>

#include "PlainPixels.h"
#include "files/TiffWriter.h"
#include "terminal/Failure.h"

namespace {

using Stream = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;
using ByteList = std::vector<std::uint8_t>;

Stream openStream(const std::string& path, const char* mode) {
    Stream stream(std::fopen(path.c_str(), mode), std::fclose);
    if (stream == nullptr) throw Failure("cannot open " + path);
    return stream;
}

void seek(const Stream& stream, std::uint64_t offset) {
    std::fseek(stream.get(), static_cast<long>(offset), SEEK_SET);
}

void read(const Stream& stream, ByteList& bytes) {
    if (std::fread(bytes.data(), 1, bytes.size(), stream.get()) != bytes.size())
        throw Failure("a file is too short");
}

void write(const Stream& stream, const ByteList& bytes) {
    if (std::fwrite(bytes.data(), 1, bytes.size(), stream.get()) != bytes.size())
        throw Failure("cannot write a file");
}

std::uint64_t offsetOf(const RowLayout& layout, std::uint32_t row) {
    return layout.offset + std::uint64_t{row} * layout.rowBytes;
}

ByteList readAll(const std::string& path) {
    const Stream stream = openStream(path, "rb");
    std::fseek(stream.get(), 0, SEEK_END);
    ByteList bytes(static_cast<std::size_t>(std::ftell(stream.get())));
    seek(stream, 0);
    read(stream, bytes);
    return bytes;
}

int levelOf(const ByteList& row, std::size_t sample) {
    float value = 0.0f;
    std::memcpy(&value, &row[4 * sample], sizeof(value));
    float q = value * 65535.0f;
    if (!(q >= 0.0f)) q = 0.0f;
    if (q > 65535.0f) q = 65535.0f;
    return static_cast<int>(q + 0.5f);
}

// Reads rows of a map, makes other rows of them and appends those to a file that has its head.
template <typename Make>
void makeRows(const std::string& in, const std::string& out, const RowLayout& layout,
              std::size_t outRowBytes, Make make) {
    const Stream source = openStream(in, "rb");
    const Stream target = openStream(out, "ab");
    ByteList row(layout.rowBytes);
    ByteList made(outRowBytes);
    for (std::uint32_t y = 0; y < layout.rows; ++y) {
        seek(source, offsetOf(layout, y));
        read(source, row);
        make(made, row);
        write(target, made);
    }
}

void writeTiffHead(const std::string& path, const RowLayout& layout, std::uint16_t channels,
                   std::uint16_t bits) {
    TiffWriter(path, {layout.pixels, layout.rows, channels, bits}).finish();
}

}  // namespace

float literalMerge(const std::string& source, const std::string& target, const RowLayout& layout,
                   std::size_t pixelBytes) {
    const Stream tileFile = openStream(source, "rb");
    const Stream mapFile = openStream(target, "r+b");
    ByteList key(pixelBytes);
    seek(tileFile, layout.offset);
    read(tileFile, key);
    ByteList tile(layout.rowBytes);
    ByteList map(layout.rowBytes);
    for (std::uint32_t y = 0; y < layout.rows; ++y) {
        seek(tileFile, offsetOf(layout, y));
        read(tileFile, tile);
        seek(mapFile, offsetOf(layout, y));
        read(mapFile, map);
        for (std::size_t x = 0; x < layout.pixels; ++x) {
            bool background = true;
            for (std::size_t i = 0; i < pixelBytes; ++i)
                background = background && map[x * pixelBytes + i] == key[i];
            for (std::size_t i = 0; background && i < pixelBytes; ++i)
                map[x * pixelBytes + i] = tile[x * pixelBytes + i];
        }
        seek(mapFile, offsetOf(layout, y));
        write(mapFile, map);
    }
    return 0.0f;
}

float literalSwap(const std::string& path, const RowLayout& layout) {
    const Stream file = openStream(path, "r+b");
    ByteList row(layout.rowBytes);
    for (std::uint32_t y = 0; y < layout.rows; ++y) {
        seek(file, offsetOf(layout, y));
        read(file, row);
        for (std::size_t x = 0; x < layout.pixels; ++x)
            std::swap(row[3 * x], row[3 * x + 2]);
        seek(file, offsetOf(layout, y));
        write(file, row);
    }
    return 0.0f;
}

float literalConvert(const std::string& in, const std::string& out, const RowLayout& layout) {
    writeTiffHead(out, layout, 3, 16);
    makeRows(in, out, layout, layout.rowBytes / 2, [](ByteList& made, const ByteList& row) {
        for (std::size_t i = 0; i < made.size() / 2; ++i) {
            const int level = levelOf(row, i);
            made[2 * i] = static_cast<std::uint8_t>(level);
            made[2 * i + 1] = static_cast<std::uint8_t>(level >> 8);
        }
    });
    return 0.0f;
}

float literalFirstChannel(const std::string& in, const std::string& out, const RowLayout& layout) {
    writeTiffHead(out, layout, 1, 32);
    makeRows(in, out, layout, layout.rowBytes / 3, [](ByteList& made, const ByteList& row) {
        for (std::size_t i = 0; i < made.size(); ++i)
            made[i] = row[i / 4 * 12 + i % 4];
    });
    return 0.0f;
}

float literalScale(const std::string& path, const RowLayout& layout) {
    const Stream file = openStream(path, "rb");
    seek(file, layout.offset);
    ByteList row(layout.rowBytes);
    std::set<std::uint32_t> levels;
    for (std::uint32_t y = 0; y < layout.rows; ++y) {
        read(file, row);
        for (std::size_t i = 0; i < row.size() / 4; ++i)
            levels.insert(static_cast<std::uint32_t>(levelOf(row, i)));
    }
    const auto count = static_cast<float>(levels.size());
    return 18.49f * std::exp(1049.0f / count + count * -7.071e-05f);
}

float literalTarga(const std::string& in, const std::string& out, const RowLayout& layout) {
    const auto head = plainTargaHead(layout.pixels, layout.rows);
    const Stream source = openStream(in, "rb");
    const Stream target = openStream(out, "wb");
    write(target, {head.begin(), head.end()});
    ByteList row(layout.rowBytes);
    for (std::uint32_t y = layout.rows; y-- > 0;) {
        seek(source, offsetOf(layout, y));
        read(source, row);
        for (std::size_t x = 0; x < layout.pixels; ++x) {
            for (std::size_t i = 3; i-- > 0;)
                std::putc(row[3 * x + i], target.get());
        }
    }
    return 0.0f;
}

float literalMergePlanes(const std::string& source, const std::string& target, std::uint32_t offset,
                         std::size_t pixels) {
    ByteList map = readAll(target);
    const ByteList tile = readAll(source);
    const std::uint8_t background[] = {map[offset], map[offset + pixels], map[offset + 2 * pixels]};
    for (std::size_t i = offset; i < offset + pixels; ++i) {
        if (tile[i] == background[0] && tile[i + pixels] == background[1] &&
            tile[i + 2 * pixels] == background[2])
            continue;
        for (std::size_t plane = 0; plane < 3; ++plane)
            map[i + plane * pixels] = tile[i + plane * pixels];
    }
    write(openStream(target, "wb"), map);
    return 0.0f;
}

float literalRotatePlanes(const std::string& path, std::uint32_t offset, std::size_t pixels) {
    const ByteList map = readAll(path);
    const auto planeAt = [&](std::size_t plane) {
        const auto first = map.begin() + static_cast<std::ptrdiff_t>(offset + plane * pixels);
        return ByteList(first, first + static_cast<std::ptrdiff_t>(pixels));
    };
    const ByteList red = planeAt(0);
    const ByteList green = planeAt(1);
    const ByteList blue = planeAt(2);
    const Stream file = openStream(path, "wb");
    write(file, {map.begin(), map.begin() + offset});
    for (const ByteList* plane : {&blue, &red, &green})
        write(file, *plane);
    return 0.0f;
}

float literalThumbnail(const std::string& path, const RowLayout& layout, std::uint32_t size) {
    ByteList map = readAll(path);
    const std::uint32_t step = layout.rows / size;
    ByteList thumb(map.begin(), map.begin() + layout.offset);
    for (std::uint32_t y = 0; y < size; ++y) {
        for (std::uint32_t x = 0; x < size; ++x) {
            const std::uint64_t pixel = offsetOf(layout, y * step) + std::uint64_t{3} * x * step;
            for (std::uint64_t i = 0; i < 3; ++i)
                thumb.push_back(map[static_cast<std::size_t>(pixel + i)]);
        }
    }
    plainBmpSize(thumb.data(), size);
    write(openStream(path, "wb"), thumb);
    return 0.0f;
}
