#include "psd/PsdImage.h"

#include <algorithm>
#include <array>
#include <bit>
#include <limits>
#include <utility>

#include "bytes/Bytes.h"
#include "files/FileWriter.h"
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
constexpr std::size_t kMaxKeptBytes = kPieceBytes;

Bytes bytesOfImg() {
    return {img.data(), img.size()};
}

// Reads the header of a file of `fileBytes`, of which `bytesAt(offset, count)` gives bytes, fewer
// where there are no more. Stops as readPSDHeader does.
template <typename BytesAt>
float readHeader(std::uint64_t fileBytes, BytesAt bytesAt, PsdHeader& header, std::int32_t& end) {
    end = 0;
    Bytes head = bytesAt(0, kColourTableLengthEnd);
    header.signature = head.le32(0);
    if (header.signature != kSignature || head.size < kVersionEnd) return kNotOpened;
    header.version = head.be16(4);
    if (header.version != kVersion) return kBadVersion;

    if (head.size < kColourTableLengthEnd) return kNotOpened;
    header.channels = head.be16(12);
    header.height = head.be32(14);
    header.width = head.be32(18);
    header.depth = static_cast<std::int16_t>(head.be16(22));
    header.colourMode = static_cast<std::int16_t>(head.be16(24));
    header.colourTableBytes = head.be32(26);
    if (header.colourTableBytes != 0) return kHasColourTable;

    // Steps over a block: a length of four bytes, then that many bytes. Moves `end` to its end.
    // False, and `end` as it was, when the file ends before or `end` cannot say the place.
    const auto stepOverBlock = [&](std::uint64_t block, std::uint32_t& length) {
        constexpr std::uint64_t kLargestOffset = std::numeric_limits<std::int32_t>::max() - 2;
        Bytes field = bytesAt(block, 4);
        length = field.be32(0);
        const std::uint64_t blockEnd = block + 4 + length;
        if (field.overran || blockEnd > fileBytes || blockEnd > kLargestOffset) return false;
        end = static_cast<std::int32_t>(blockEnd);
        return true;
    };
    if (!stepOverBlock(kResourceLength, header.resourceBytes)) return kNotOpened;
    if (!stepOverBlock(static_cast<std::uint64_t>(end), header.layerBytes)) return kNotOpened;

    Bytes compression = bytesAt(static_cast<std::uint64_t>(end), 2);
    header.compression = compression.be16(0);
    if (compression.overran) return kNotOpened;
    if (header.compression != 0) return kCompressed;
    end += 2;
    return kOk;
}

}  // namespace

ImgInUse::~ImgInUse() {
    emptyImg();
}

void emptyImg() {
    img.clear();
    if (img.capacity() > kMaxKeptBytes) img.shrink_to_fit();
}

float readPSDHeader() {
    const auto bytesAt = [](std::uint64_t at, std::size_t count) {
        const std::size_t start = static_cast<std::size_t>(std::min<std::uint64_t>(at, img.size()));
        return Bytes{img.data() + start, std::min(count, img.size() - start)};
    };
    return readHeader(img.size(), bytesAt, fHeader, offst);
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

bool PsdLayout::holds(std::size_t offset, std::size_t bytesPerPixel) const {
    return Bytes{nullptr, fileBytes}.holds(offset, pixels(), bytesPerPixel);
}

float openPSD(const char* path, PsdOnDisk& psd) {
    psd.file = File::openForReading(path);
    if (!psd.file.isOpen()) return kNotOpened;
    psd.fileBytes = static_cast<std::size_t>(psd.file.size());
    std::array<std::uint8_t, kColourTableLengthEnd> field{};
    const auto bytesAt = [&](std::uint64_t at, std::size_t count) {
        return Bytes{field.data(), psd.file.readAt(at, field.data(), count)};
    };
    std::int32_t end = 0;
    const float status = readHeader(psd.fileBytes, bytesAt, psd.header, end);
    psd.dataOffset = static_cast<std::size_t>(end);
    return status;
}

float loadHead(const PsdOnDisk& psd) {
    emptyImg();
    img.resize(psd.dataOffset);
    if (psd.file.readAt(0, img.data(), img.size()) != img.size()) return kNotOpened;
    return readPSDHeader();
}

Runs::Runs(const File& file, std::size_t runBytes, std::size_t distance)
    : file_(file),
      readAhead_(distance - runBytes < kShortestGap ? std::max(runBytes, kPieceBytes) : runBytes),
      piece_(readAhead_) {}

const std::uint8_t* Runs::read(std::size_t place, std::size_t count) {
    const bool isThere = place + count <= piece_.offset() + piece_.size();
    if (!isThere && !piece_.read(file_, place, readAhead_) && piece_.size() < count) return nullptr;
    return piece_.data() + (place - piece_.offset());
}

PlanePieces::PlanePieces(const Planes& planes) : planes_(planes) {
    for (std::size_t plane = 0; plane < planes.count; ++plane)
        pieces_.emplace_back(kBytes);
}

bool PlanePieces::read(const File& file, std::size_t start, std::size_t count) {
    start_ = start;
    for (std::size_t plane = 0; plane < planes_.count; ++plane) {
        if (!pieces_[plane].read(file, planes_.placeOf(plane, start), count)) return false;
    }
    return true;
}

bool PlanePieces::write(const File& file, std::size_t to, std::size_t from) const {
    return writeRun(file, to, from, {0, pieces_[from].size()});
}

bool PlanePieces::write(const File& file, const PaintedRun& run) const {
    for (std::size_t plane = 0; plane < planes_.count; ++plane) {
        if (!writeRun(file, plane, plane, run)) return false;
    }
    return true;
}

bool PlanePieces::writeRun(const File& file, std::size_t to, std::size_t from,
                           const PaintedRun& run) const {
    const std::size_t place = planes_.placeOf(to, start_ + run.start);
    if (file.writeAt(place, pieces_[from].data() + run.start, run.size())) return true;
    file.cut(place);
    return false;
}

float writePSD(const char* path, std::span<const std::uint8_t> bytes) {
    FileWriter file(File::createOver(path));
    if (!file.isOpen()) return kNotWritten;
    file.append(bytes.data(), bytes.size());
    return kOk;
}
