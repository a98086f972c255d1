#include "files/BmpWriter.h"

#include <array>

#include "bytes/Bytes.h"

namespace {

constexpr std::uint32_t kHeadBytes = 54;
constexpr std::uint32_t kInfoBytes = 40;         // of the second of the two headers
constexpr std::uint32_t kPixelsPerMetre = 2835;  // 72 to the inch

using Head = std::array<std::uint8_t, kHeadBytes>;

Head headOf(std::uint32_t width, std::uint32_t height) {
    const std::uint32_t rowsBytes = bmpRowBytes(width) * height;
    Head head{'B', 'M'};
    storeLe32(&head[2], kHeadBytes + rowsBytes);
    storeLe32(&head[10], kHeadBytes);
    storeLe32(&head[14], kInfoBytes);
    storeLe32(&head[18], width);
    storeLe32(&head[22], height);
    storeLe16(&head[26], 1);   // planes
    storeLe16(&head[28], 24);  // bits per pixel
    storeLe32(&head[34], rowsBytes);
    storeLe32(&head[38], kPixelsPerMetre);
    storeLe32(&head[42], kPixelsPerMetre);
    return head;
}

}  // namespace

BmpWriter::BmpWriter(const std::string& path, std::uint32_t width, std::uint32_t height)
    : OutputFile(path), row_(bmpRowBytes(width)) {
    append(headOf(width, height));
}

void BmpWriter::appendRgb(std::span<const std::uint8_t> row) {
    for (std::size_t i = 0; i + 2 < row.size(); i += 3) {
        row_[i] = row[i + 2];
        row_[i + 1] = row[i + 1];
        row_[i + 2] = row[i];
    }
    append(row_);
}
