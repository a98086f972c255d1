#include "render/SheetWriter.h"

#include <algorithm>

#include "bytes/Bytes.h"
#include "files/BmpWriter.h"
#include "files/PsdWriter.h"
#include "files/TiffWriter.h"
#include "render/Raster.h"
#include "terminal/Interrupt.h"

namespace {

constexpr std::uint32_t kRgbBytes = 3;
constexpr std::uint32_t kFloatBytes = 4;

using ByteList = std::vector<std::uint8_t>;

// The rows of a sheet in which one cell is painted.
class SheetRows {
public:
    SheetRows(const TileSheet& sheet, const Cell& cell, const TileMap& map)
        : sheet_(sheet), cell_(cell), map_(map) {}

    // Returns row `y` from the top, pixel after pixel; valid until the next call.
    const ByteList& at(std::uint32_t y) {
        stopIfInterrupted();
        row_.assign(std::size_t{sheet_.width()} * map_.pixelBytes, 0);
        if (y >= cell_.top && y - cell_.top < map_.size) {
            const std::size_t cellBytes = std::size_t{map_.size} * map_.pixelBytes;
            const std::uint8_t* painted = &map_.pixels[(y - cell_.top) * cellBytes];
            std::copy_n(painted, cellBytes, &row_[std::size_t{cell_.left} * map_.pixelBytes]);
        }
        if (y == 0 || y == sheet_.height() - 1)
            std::fill_n(row_.begin(), map_.pixelBytes, std::uint8_t{0});
        return row_;
    }

private:
    const TileSheet& sheet_;
    const Cell& cell_;
    const TileMap& map_;
    ByteList row_;
};

void writeTiff(const std::string& path, const TileSheet& sheet, bool rgb, SheetRows& rows) {
    const std::uint16_t channels = rgb ? 3 : 1;
    const std::uint16_t bits = rgb ? 8 : 32;
    TiffWriter file(path, {sheet.width(), sheet.height(), channels, bits});
    for (std::uint32_t y = 0; y < sheet.height(); ++y)
        file.append(rows.at(y));
    file.finish();
}

// One channel of each pixel.
void takeChannel(ByteList& samples, const ByteList& row, std::size_t channel) {
    for (std::size_t x = 0; x < samples.size(); ++x)
        samples[x] = row[kRgbBytes * x + channel];
}

void writeRgbPsd(const std::string& path, const TileSheet& sheet, SheetRows& rows) {
    PsdWriter file(path, {sheet.width(), sheet.height(), 3, 8});
    ByteList samples(sheet.width());
    for (std::size_t channel = 0; channel < 3; ++channel) {
        for (std::uint32_t y = 0; y < sheet.height(); ++y) {
            takeChannel(samples, rows.at(y), channel);
            file.append(samples);
        }
    }
    file.finish();
}

void writeHeightPsd(const std::string& path, const TileSheet& sheet, SheetRows& rows) {
    PsdWriter file(path, {sheet.width(), sheet.height(), 1, 16});
    ByteList samples(std::size_t{2} * sheet.width());
    for (std::uint32_t y = 0; y < sheet.height(); ++y) {
        const ByteList& row = rows.at(y);
        for (std::size_t x = 0; x < sheet.width(); ++x) {
            const float height = loadLeFloat(&row[kFloatBytes * x]);
            storeBe16(&samples[2 * x], rounded<std::uint16_t>(height * 65535.0f));
        }
        file.append(samples);
    }
    file.finish();
}

void writeBmp(const std::string& path, const TileSheet& sheet, SheetRows& rows) {
    BmpWriter file(path, sheet.width(), sheet.height());
    for (std::uint32_t y = sheet.height(); y-- > 0;)
        file.appendRgb(rows.at(y));
    file.finish();
}

}  // namespace

bool isMergeable(MapFormat format, const TileSheet& sheet, MapKind kind) {
    switch (format) {
        case MapFormat::kTiff: {
            const std::uint64_t pixels = std::uint64_t{sheet.width()} * sheet.height();
            return pixels * pixelBytesOf(kind) > kTiffPixelOffset;
        }
        case MapFormat::kPsd:
        case MapFormat::kBmp:
            return true;
    }
    return true;
}

void writeSheet(const std::string& path, MapFormat format, const TileSheet& sheet, const Cell& cell,
                const TileMap& map) {
    const bool rgb = map.pixelBytes == kRgbBytes;
    SheetRows rows(sheet, cell, map);
    switch (format) {
        case MapFormat::kTiff:
            return writeTiff(path, sheet, rgb, rows);
        case MapFormat::kPsd:
            return rgb ? writeRgbPsd(path, sheet, rows) : writeHeightPsd(path, sheet, rows);
        case MapFormat::kBmp:
            return writeBmp(path, sheet, rows);
    }
}
