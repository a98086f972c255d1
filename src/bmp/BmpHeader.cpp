#include "bmp/BmpHeader.h"

#include <algorithm>
#include <cmath>

#include "bmp/BmpOps.h"
#include "bytes/Bytes.h"

FileBytes bmpV;
BmpHeader bmpHdr;

namespace {

constexpr std::size_t kHeadBytes = 100;
constexpr std::size_t kHeadersBytes = 14 + 40;

void forgetLastFile() {
    bmpV = {};
    bmpHdr = {};
}

Bytes loaded() {
    return {bmpV.data.get(), bmpV.size};
}

// Where `count` bytes of bmpV can be stored, or null.
std::uint8_t* roomAt(std::uint32_t position, std::size_t count) {
    return loaded().holds(position, count, 1) ? bmpV.data.get() + position : nullptr;
}

}  // namespace

float loadBMPHead(const char* path, float notOpened) {
    forgetLastFile();
    const File file = File::openForReading(path);
    if (!file.isOpen()) return notOpened;
    bmpV.data = std::make_unique<std::uint8_t[]>(kHeadBytes);
    bmpV.size = file.readAt(0, bmpV.data.get(), kHeadBytes);
    const bool wasRead = bmpV.size == std::min<std::uint64_t>(kHeadBytes, file.size());
    return wasRead ? readBMPHeader() : notOpened;
}

float loadWholeBMP(const char* path, float notOpened) {
    forgetLastFile();
    bmpV = loadFile(path);
    return bmpV.data == nullptr ? notOpened : readBMPHeader();
}

bool loadBMPUpToPixels(const File& file) {
    const std::uint64_t wanted = std::max<std::uint64_t>(bmpHdr.pixelOffset, kHeadBytes);
    const auto count = static_cast<std::size_t>(std::min(wanted, file.size()));
    bmpV.data = std::make_unique<std::uint8_t[]>(count);
    bmpV.size = file.readAt(0, bmpV.data.get(), count);
    return bmpHdr.pixelOffset <= bmpV.size;
}

float readBMPHeader() {
    Bytes bytes = loaded();
    bmpHdr.firstByte = static_cast<char>(bytes.u8(0));
    bmpHdr.secondByte = static_cast<char>(bytes.u8(1));
    if (bmpHdr.firstByte != 'B' || bmpHdr.secondByte != 'M') return bmp_status::kNotABmp;

    bmpHdr.fileSize = readSigned(2);
    bmpHdr.pixelOffset = readSigned(10);
    bmpHdr.width = static_cast<std::int32_t>(readSigned(18));
    bmpHdr.height = static_cast<std::int32_t>(readSigned(22));
    bmpHdr.bitsPerPixel = static_cast<std::uint16_t>(readShortInt(28));
    bmpHdr.imageSize = readSigned(34);
    bmpHdr.rowStride = std::int64_t{3} * bmpHdr.width + getPadding(bmpHdr.width);
    return bmpV.size < kHeadersBytes ? bmp_status::kNotABmp : bmp_status::kOk;
}

std::uint32_t getPadding(std::int32_t width) {
    const float rest = std::fmod(3.0f * static_cast<float>(width), 4.0f);
    return rest > 0.0f ? 4 - static_cast<std::uint32_t>(rest) : 0;
}

std::uint32_t readSigned(std::uint32_t position) {
    return loaded().le32(position);
}

std::int16_t readShortInt(std::uint32_t position) {
    return static_cast<std::int16_t>(loaded().le16(position));
}

void writeSignedInt(std::uint32_t position, std::uint32_t value) {
    if (std::uint8_t* room = roomAt(position, 4)) storeLe32(room, value);
}

std::int32_t writeShortInt(std::uint32_t position, std::int32_t value) {
    if (std::uint8_t* room = roomAt(position, 2))
        storeLe16(room, static_cast<std::uint16_t>(value));
    return value;
}
