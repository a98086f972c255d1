#include "mesh/VemoFile.h"

#include <new>

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

VemoFile loadVemo(const char* path) {
    VemoFile vemo{loadFile(path, 1)};
    if (vemo.file.size > 0) vemo.file.data[vemo.file.size] = vemo.file.data[vemo.file.size - 1];
    return vemo;
}

VemoPieces::VemoPieces(const char* path) : file_(File::openForReading(path)) {
    if (!file_.isOpen()) return;
    const std::uint64_t bytes = file_.size();
    failed_ = bytes > 0 && file_.readAt(bytes - 1, &last_, 1) == 0;
    size = static_cast<std::size_t>(bytes) + 1;
}

std::uint32_t VemoPieces::le32(std::uint64_t at) {
    const bool held = at >= pieceStart_ && at - pieceStart_ + 4 <= pieceBytes_;
    if (!held) {
        const auto left = static_cast<std::size_t>(at < size ? size - at : 0);
        read(at, std::min(kHeaderPieceBytes, left));
    }
    return Bytes{piece_, pieceBytes_}.le32(at - pieceStart_);
}

bool VemoPieces::keep() {
    const std::size_t count = size - 1;
    kept_.reset(new (std::nothrow) std::uint8_t[count]);
    if (kept_ == nullptr || file_.readAt(0, kept_.get(), count) < count) failed_ = true;
    return !failed_;
}

bool VemoPieces::read(std::uint64_t at, std::size_t count) {
    piece_ = buffer_.placeFor(at);
    pieceStart_ = at;
    pieceBytes_ = readAt(at, count);
    if (pieceBytes_ < count && at + pieceBytes_ + 1 == size) piece_[pieceBytes_++] = last_;
    if (pieceBytes_ < count) failed_ = true;
    return !failed_;
}

// Puts bytes at the piece's start. Returns how many there were.
std::size_t VemoPieces::readAt(std::uint64_t at, std::size_t count) {
    if (kept_ == nullptr) return file_.readAt(at, piece_, count);
    const std::size_t start = std::min(static_cast<std::size_t>(at), size - 1);
    const std::size_t held = std::min(count, size - 1 - start);
    std::copy_n(kept_.get() + start, held, piece_);
    return held;
}
