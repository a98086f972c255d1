#include "mesh/VemoFile.h"

#include <algorithm>
#include <bit>

#include "bytes/Bytes.h"
#include "files/LargeMemory.h"
#include "mesh/VemoOps.h"

namespace {

// Chunks are long, so little more than a header is read at each; but a damaged file may have a
// header at every byte.
constexpr std::size_t kHeaderPieceBytes = 4096;
static_assert(kHeaderPieceBytes <= kPieceBytes);

std::uint8_t unsignedByte(char b) {
    return static_cast<std::uint8_t>(b);
}

}  // namespace

std::uint32_t readUnInt(char b0, char b1, char b2, char b3) {
    const std::uint8_t bytes[] = {unsignedByte(b0), unsignedByte(b1), unsignedByte(b2),
                                  unsignedByte(b3)};
    return loadLe32(bytes);
}

float readaFloat(char b0, char b1, char b2, char b3) {
    return std::bit_cast<float>(readUnInt(b0, b1, b2, b3));
}

int readShort(char b0, char b1) {
    const std::uint8_t bytes[] = {unsignedByte(b0), unsignedByte(b1)};
    return static_cast<std::int16_t>(loadLe16(bytes));
}

int readanInt(char b) {
    return unsignedByte(b);
}

VemoFile::VemoFile(const char* path) : file_(File::openForReading(path)) {
    if (!file_.isOpen()) return;
    const std::uint64_t bytes = file_.size();
    failed_ = bytes > 0 && file_.readAt(bytes - 1, &last_, 1) == 0;
    size_ = static_cast<std::size_t>(bytes) + 1;
}

bool VemoFile::keep() {
    if (!isGood()) return false;
    kept_ = largeMemory(size_);
    failed_ = kept_ == nullptr || file_.readAt(0, kept_.get(), size_ - 1) < size_ - 1;
    if (!failed_) kept_[size_ - 1] = last_;
    return !failed_;
}

std::uint32_t VemoFile::le32(std::uint64_t at) {
    if (kept_ != nullptr) return Bytes{kept_.get(), size_}.le32(at);
    const bool isHeld = at >= piece_.offset() && at + 4 <= piece_.offset() + piece_.size();
    if (!isHeld && at < size_) {
        const std::uint64_t left = size_ - at;
        read(at, static_cast<std::size_t>(std::min<std::uint64_t>(kHeaderPieceBytes, left)));
    }
    return at < size_ ? Bytes{piece_.data(), piece_.size()}.le32(at - piece_.offset()) : 0;
}

std::optional<std::uint32_t> VemoFile::findChunk(std::uint32_t id, std::uint32_t start,
                                                 ZeroLength zeroLength) {
    std::uint64_t position = start;
    while (position < size_ && position <= UINT32_MAX) {
        if (le32(position) == id) return static_cast<std::uint32_t>(position);
        std::uint32_t length = le32(position + 4);
        if (length == 0) {
            if (zeroLength == ZeroLength::kEndsSearch) return {};
            length = kChunkHeaderBytes;
        }
        position += length;
    }
    return {};
}

std::optional<ChunkElements> VemoFile::elementsOf(std::uint64_t chunk, std::size_t elementBytes) {
    if (chunk + kChunkHeaderBytes > size_) return {};
    const ChunkElements elements{chunk + kChunkHeaderBytes, le32(chunk + 8)};
    if (!Bytes{nullptr, size_}.holds(elements.offset, elements.count, elementBytes)) return {};
    return elements;
}

std::optional<ChunkElements> VemoFile::findElements(std::uint32_t id, ZeroLength zeroLength,
                                                    std::size_t elementBytes) {
    const auto chunk = findChunk(id, kFirstChunk, zeroLength);
    if (!chunk) return {};
    return elementsOf(*chunk, elementBytes);
}

const std::uint8_t* VemoFile::bytesAt(std::uint64_t at, std::size_t count) {
    if (kept_ != nullptr) return kept_.get() + at;
    return read(at, count) ? piece_.data() : nullptr;
}

// The bytes are there, with the last one repeated.
bool VemoFile::read(std::uint64_t at, std::size_t count) {
    std::uint8_t* const bytes = piece_.moveTo(at, count);
    const bool repeatsLast = at + count == size_;
    const std::size_t stored = repeatsLast ? count - 1 : count;
    if (repeatsLast) bytes[stored] = last_;
    if (file_.readAt(at, bytes, stored) == stored) return true;
    piece_.moveTo(at, 0);
    failed_ = true;
    return false;
}

float whyMissing(const VemoFile& vemo, float notOpened) {
    return vemo.isGood() ? vemo_status::kChunkMissing : notOpened;
}
