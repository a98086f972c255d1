#pragma once
// Piece: a run of a file's bytes in memory. Large files are moved in pieces: read, worked on, written.
//
// A piece's bytes are put half a page (counted within pages of 4096 bytes) away from their place in
// the file. Processors take two or three times as long to copy a block whose new place is 1 to 15
// bytes behind its old one within the page: it looks as if the two overlapped. The system copies page
// by page, so a buffer that happens to be there makes the whole file slow.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>

#include "files/File.h"

class Piece {
public:
    // Has memory for `capacity` bytes. The second form has none where there is none left.
    explicit Piece(std::size_t capacity = kPieceBytes);
    Piece(std::nothrow_t, std::size_t capacity);
    bool hasMemory() const { return memory_ != nullptr; }

    // Becomes the `count` bytes from `offset` on, which the caller fills in.
    std::uint8_t* moveTo(std::uint64_t offset, std::size_t count);

    // Becomes what the file has there. False when it has fewer bytes; size() then says how many.
    bool read(const File& file, std::uint64_t offset, std::size_t count);

    // Writes the bytes to their place in a file. False when the disk took fewer.
    bool write(const File& file) const { return file.writeAt(offset_, data_, size_); }

    std::uint8_t* data() const { return data_; }
    std::size_t size() const { return size_; }
    std::uint64_t offset() const { return offset_; }

private:
    std::unique_ptr<std::uint8_t[]> memory_;
    std::uint8_t* data_ = nullptr;
    std::size_t size_ = 0;
    std::uint64_t offset_ = 0;
};

// Calls `use(offset, count)` for runs of whole units, of at most `pieceBytes` or else a single unit,
// that together are the `units` from `offset` on, in order, as long as it returns true. Returns
// whether all did.
template <typename Use>
bool forEachPiece(std::uint64_t offset, std::uint64_t units, std::size_t unitBytes, Use use,
                  std::size_t pieceBytes = kPieceBytes) {
    if (units == 0) return true;
    const std::uint64_t most = std::max<std::size_t>(pieceBytes / unitBytes, 1);
    for (std::uint64_t done = 0; done < units;) {
        const std::uint64_t count = std::min(most, units - done);
        if (!use(offset + done * unitBytes, static_cast<std::size_t>(count))) return false;
        done += count;
    }
    return true;
}
