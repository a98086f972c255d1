#include "psd/PsdImage.h"

#include <bit>
#include <limits>
#include <utility>

#include "bytes/Bytes.h"
#include "files/File.h"
#include "psd/PsdOps.h"

using namespace psd_status;

std::vector<std::uint8_t> img;
std::int32_t offst = 0;
PsdHeader fHeader;

namespace {

constexpr std::uint32_t kSignature = 0x53504238;  // "8BPS", the first character lowest
constexpr std::uint16_t kVersion = 1;

constexpr std::size_t kVersionEnd = 6;
constexpr std::size_t kColourTableLengthEnd = 30;
constexpr std::size_t kResourceLength = 30;

// Memory that `img` keeps while it is empty.
constexpr std::size_t kMostKeptBytes = kPieceBytes;

Bytes bytesOfImg() {
    return {img.data(), img.size()};
}

// Steps over a block: a length of four bytes, then that many bytes. Moves `offst` to its end.
// False, and `offst` as it was, when the file ends before or `offst` cannot say the place.
bool stepOverBlock(std::size_t block, std::uint32_t& length) {
    constexpr std::uint64_t kLargestOffset = std::numeric_limits<std::int32_t>::max() - 2;
    if (img.size() - block < 4) return false;
    length = readLong(block);
    const std::uint64_t end = std::uint64_t{block} + 4 + length;
    if (end > img.size() || end > kLargestOffset) return false;
    offst = static_cast<std::int32_t>(end);
    return true;
}

}  // namespace

ImgInUse::~ImgInUse() {
    emptyImg();
}

void emptyImg() {
    img.clear();
    if (img.capacity() > kMostKeptBytes) img.shrink_to_fit();
}

bool loadImg(const char* path) {
    const File file = File::openForReading(path);
    if (!file.isOpen()) return false;
    emptyImg();
    img.resize(static_cast<std::size_t>(file.size()));
    return file.readAt(0, img.data(), img.size()) == img.size();
}

float readPSDHeader() {
    fHeader = {};
    offst = 0;

    fHeader.signature = bytesOfImg().le32(0);
    if (fHeader.signature != kSignature) return kNotOpened;
    if (img.size() < kVersionEnd) return kNotOpened;
    fHeader.version = static_cast<std::uint16_t>(readShort(4));
    if (fHeader.version != kVersion) return kBadVersion;

    if (img.size() < kColourTableLengthEnd) return kNotOpened;
    fHeader.channels = static_cast<std::uint16_t>(readShort(12));
    fHeader.height = readLong(14);
    fHeader.width = readLong(18);
    fHeader.depth = readShort(22);
    fHeader.colourMode = readShort(24);
    fHeader.colourTableBytes = readLong(26);
    if (fHeader.colourTableBytes != 0) return kHasColourTable;

    if (!stepOverBlock(kResourceLength, fHeader.resourceBytes)) return kNotOpened;
    const auto layers = static_cast<std::size_t>(offst);
    if (!stepOverBlock(layers, fHeader.layerBytes)) return kNotOpened;

    const auto compression = static_cast<std::size_t>(offst);
    if (img.size() - compression < 2) return kNotOpened;
    fHeader.compression = static_cast<std::uint16_t>(readShort(compression));
    if (fHeader.compression != 0) return kCompressed;
    offst += 2;
    return kOk;
}

float loadPSD(const char* path) {
    return loadImg(path) ? readPSDHeader() : kNotOpened;
}

std::int16_t readShort(std::size_t position) {
    return static_cast<std::int16_t>(bytesOfImg().be16(position));
}

std::uint32_t readLong(std::size_t position) {
    return bytesOfImg().be32(position);
}

float readFloat(std::size_t position) {
    return std::bit_cast<float>(bytesOfImg().le32(position));
}

float readFloatLE(std::size_t position) {
    return std::bit_cast<float>(bytesOfImg().be32(position));
}

int writeShort(std::size_t position, int value) {
    if (bytesOfImg().holds(position, 1, 2))
        storeBe16(&img[position], static_cast<std::uint16_t>(value));
    return value;
}

std::uint32_t writeLong(std::size_t position, std::uint32_t value) {
    if (bytesOfImg().holds(position, 1, 4)) storeBe32(&img[position], value);
    return value;
}

bool bigEndian() {
    return false;
}

bool littleEndian() {
    return true;
}

bool PsdView::holdsAnnouncedPlanes() const {
    if (header.depth <= 0 || header.width == 0) return true;
    const auto depth = static_cast<std::uint64_t>(header.depth);
    const std::uint64_t rowBytes = (header.width * depth + 7) / 8;
    const std::uint64_t rows = std::uint64_t{header.height} * header.channels;
    return Bytes{bytes.data(), bytes.size()}.holds(dataOffset, rows, rowBytes);
}

bool PsdView::holds(std::size_t offset, std::size_t bytesPerPixel) const {
    return Bytes{bytes.data(), bytes.size()}.holds(offset, pixels(), bytesPerPixel);
}

PsdView viewOfImg() {
    return {img, fHeader, static_cast<std::size_t>(offst)};
}

PsdImage takeImg() {
    return {std::exchange(img, {}), fHeader, static_cast<std::size_t>(offst)};
}

float writePSD(const char* path, std::initializer_list<std::span<const std::uint8_t>> parts) {
    FileWriter file(File::create(path));
    if (!file.isOpen()) return kNotWritten;
    for (const std::span<const std::uint8_t> part : parts) {
        if (!file.append(part.data(), part.size())) break;
    }
    return kOk;
}
