#include "encoders/TargaOps.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <vector>

#include "bytes/Bytes.h"
#include "files/FileWriter.h"
#include "files/Piece.h"
#include "pixels/Pixels.h"
#include "tiff/TiffHeader.h"
#include "tiff/TiffOps.h"
#include "tiff/TiffTags.h"

namespace {

constexpr std::size_t kHeaderBytes = 18;
constexpr std::size_t kPixelBytes = 3;

// A picture with missing rows may take this much, plus this many times its own file. Beyond that the
// header's size is taken to be invented.
constexpr std::uint64_t kMaxInventedBytes = 64 * 1024 * 1024;
constexpr std::uint64_t kMaxExpansion = 16;

std::array<std::uint8_t, kHeaderBytes> targaHeader(const TiffInfo& info) {
    std::array<std::uint8_t, kHeaderBytes> header{};
    header[2] = 2;
    storeLe16(&header[12], static_cast<std::uint16_t>(info.width));
    storeLe16(&header[14], static_cast<std::uint16_t>(info.length));
    header[16] = 8 * kPixelBytes;
    return header;
}

// A map: its rows are the last bytes of the file, the bottom row last.
struct Map {
    std::uint64_t fileBytes;
    std::size_t channels;
    std::uint64_t width;
    std::uint64_t rows;  // as claimed

    std::uint64_t rowBytes() const { return width * channels; }
    std::uint64_t existingRows() const {
        return rowBytes() == 0 ? 0 : std::min(rows, fileBytes / rowBytes());
    }
    // Rows count from the bottom one up.
    std::uint64_t offsetOf(std::uint64_t row) const { return fileBytes - (row + 1) * rowBytes(); }
    std::uint64_t targaBytes() const { return rows * width * kPixelBytes; }
};

Map mapOf(const TiffInfo& info, std::uint64_t fileBytes) {
    const auto size = [](std::int32_t value) {
        return static_cast<std::uint64_t>(std::max(value, 0));
    };
    return {fileBytes, static_cast<std::size_t>(info.channels), size(info.width),
            size(info.length)};
}

bool hasTag(const TiffHeader& header, std::uint16_t tag) {
    return std::any_of(header.entries.begin(), header.entries.end(),
                       [tag](const TiffEntry& entry) { return entry.tag == tag; });
}

bool hasInventedSize(const Map& map) {
    return map.existingRows() < map.rows &&
           map.targaBytes() > kMaxInventedBytes + kMaxExpansion * map.fileBytes;
}

void convertPixels(std::uint8_t* to, const std::uint8_t* from, std::size_t pixels,
                   std::size_t channels) {
    if (channels == 1)
        greyToColour(to, from, pixels);
    else
        copyReversed(to, from, pixels);
}

// The memory for a conversion: rows as they are read and as they are written.
struct RowPieces {
    explicit RowPieces(const Map& map)
        : lastRow(map.rows > 0 ? static_cast<std::size_t>(map.width) * kPixelBytes : 0),
          rowsAtOnce(rowsOfAPiece(map, lastRow.size())),
          rows(static_cast<std::size_t>(std::min(rowsAtOnce, map.existingRows()) * map.rowBytes())),
          targaRows(static_cast<std::size_t>(rowsAtOnce) * lastRow.size()) {}

    static std::uint64_t rowsOfAPiece(const Map& map, std::size_t targaRowBytes) {
        if (targaRowBytes == 0) return 0;
        return std::min(std::max<std::uint64_t>(kPieceBytes / targaRowBytes, 1), map.rows);
    }

    std::vector<std::uint8_t> lastRow;  // as it was written
    std::uint64_t rowsAtOnce;
    Piece rows;
    Piece targaRows;
};

// Writes the rows that the map has, the bottom one first, in pieces of several rows.
float writeExistingRows(const File& in, FileWriter& out, const Map& map, RowPieces& pieces) {
    auto& [lastRow, rowsAtOnce, rows, targaRows] = pieces;
    const auto width = static_cast<std::size_t>(map.width);
    const auto rowBytes = static_cast<std::size_t>(map.rowBytes());
    const std::uint64_t existing = map.existingRows();
    for (std::uint64_t row = 0; row < existing;) {
        const auto count = static_cast<std::size_t>(std::min(rowsAtOnce, existing - row));
        if (!rows.read(in, map.offsetOf(row + count - 1), count * rowBytes))
            return targa_status::kNotReopened;
        std::uint8_t* const to = targaRows.moveTo(out.length(), count * lastRow.size());
        for (std::size_t i = 0; i < count; ++i) {
            convertPixels(to + i * lastRow.size(), rows.data() + (count - 1 - i) * rowBytes, width,
                          map.channels);
        }
        if (!out.append(to, targaRows.size())) return targa_status::kTargetNotWritten;
        row += count;
        if (row == existing)
            std::copy_n(to + (count - 1) * lastRow.size(), lastRow.size(), lastRow.data());
    }
    return targa_status::kOk;
}

// Writes the last row again for each missing row, in pieces of several rows: a row may be a single
// pixel.
bool writeMissingRows(FileWriter& out, const Map& map, RowPieces& pieces) {
    const auto& lastRow = pieces.lastRow;
    std::uint64_t row = map.existingRows();
    if (row == map.rows) return true;
    const std::size_t pieceBytes = static_cast<std::size_t>(pieces.rowsAtOnce) * lastRow.size();
    std::uint8_t* const rows = pieces.targaRows.moveTo(out.length(), pieceBytes);
    for (std::uint64_t i = 0; i < pieces.rowsAtOnce; ++i)
        std::copy(lastRow.begin(), lastRow.end(), rows + i * lastRow.size());
    while (row < map.rows) {
        const auto count = static_cast<std::size_t>(std::min(pieces.rowsAtOnce, map.rows - row));
        if (!out.append(rows, count * lastRow.size())) return false;
        row += count;
    }
    return true;
}

float writeRows(const File& in, FileWriter& out, const Map& map, RowPieces& pieces) {
    if (map.width == 0 || map.rows == 0) return targa_status::kOk;
    const float status = writeExistingRows(in, out, map, pieces);
    if (status != targa_status::kOk) return status;
    return writeMissingRows(out, map, pieces) ? targa_status::kOk : targa_status::kTargetNotWritten;
}

}  // namespace

float convertToTarga(const char* inPath, const char* outPath) {
    TiffHeader header = readTiffHeader(inPath, targa_status::kNotOpened);
    if (header.refused != tiff_status::kOk) return header.refused;
    const File measured = File::openForReading(inPath);
    if (!measured.isOpen()) return targa_status::kNotOpened;
    const Map map = mapOf(header.info, measured.size());
    if (map.channels == 0 || !hasTag(header, tiff_tag::kImageLength)) return targa_status::kNoSize;
    if (!hasTag(header, tiff_tag::kImageWidth)) header.info.width = -1;
    if (hasInventedSize(map)) return targa_status::kPixelsMissing;
    if (measured.isSameAs(outPath)) return targa_status::kTargetNotWritten;

    RowPieces pieces(map);  // allocated before the old target is changed
    FileWriter out(File::createOver(outPath));
    const auto targa = targaHeader(header.info);
    if (!out.isOpen() || !out.append(targa.data(), targa.size()))
        return targa_status::kTargetNotWritten;
    const File in = File::openForRewriting(inPath);
    if (!in.isOpen()) return targa_status::kNotReopened;
    const float status = writeRows(in, out, map, pieces);
    if (status != targa_status::kOk) return status;
    return out.finish() ? targa_status::kOk : targa_status::kTargetNotWritten;
}
