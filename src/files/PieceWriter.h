#pragma once
// PieceWriter: collects bytes and writes them to a file in pieces.

#include <cstddef>
#include <cstdint>

#include "files/Piece.h"

class PieceWriter {
public:
    // Allocates its memory, before any file is touched. Room is given for `capacity` bytes at most.
    explicit PieceWriter(std::size_t capacity = kPieceBytes)
        : piece_(capacity), capacity_(capacity) {}

    // Writes to `file` from `offset` on. Returns whether the file is open.
    bool start(File file, std::uint64_t offset = 0);
    const File& file() const { return file_; }

    // The place for the next `count` bytes. The caller fills it before the next call, or gives back
    // what it does not need of its end.
    std::uint8_t* room(std::size_t count);
    void giveBack(std::size_t count) { used_ -= count; }

    void append(const std::uint8_t* bytes, std::size_t count);

    // Leaves out the next bytes: the file keeps what it has there.
    void skip(std::uint64_t count);

    // Where in the file the next byte goes.
    std::uint64_t offset() const { return offset_ + used_; }

    // Where what the disk took ends.
    std::uint64_t written() const { return written_; }

    // Writes what was collected. Returns whether the disk took all bytes so far; once it has not, the
    // rest is only counted.
    bool flush();

private:
    Piece piece_;
    std::size_t capacity_;
    File file_;
    std::uint64_t offset_ = 0;  // of the piece in the file
    std::size_t used_ = 0;      // bytes of the piece
    std::uint64_t written_ = 0;
    bool failed_ = false;
};
