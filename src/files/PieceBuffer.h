#pragma once
// PieceBuffer: memory for a piece of a large file, placed where the system copies it fast.
//
// Processors take two or three times as long to copy a block where, counted within pages of 4096
// bytes, its new place lies 1 to 15 bytes behind its old one: it looks as if the two overlapped. The
// system copies page by page, so a buffer that happens to lie so makes the whole file slow. Half a
// page apart neither reading nor writing ever meets that.

#include <cstddef>
#include <cstdint>
#include <memory>
#include <utility>

#include "files/File.h"

class PieceBuffer {
public:
    explicit PieceBuffer(std::size_t capacity = kPieceBytes);

    // A buffer without memory where there is none left.
    static PieceBuffer ifThereIsMemory(std::size_t capacity = kPieceBytes);
    bool hasMemory() const { return memory_ != nullptr; }

    // The place for up to `capacity` bytes that are read from a file's `offset` on, or written there:
    // a multiple of 16, and the same for every offset whose place in its page is. What lies there
    // stays as it is.
    std::uint8_t* placeFor(std::uint64_t offset) const;

private:
    explicit PieceBuffer(std::unique_ptr<std::uint8_t[]> memory) : memory_(std::move(memory)) {}

    std::unique_ptr<std::uint8_t[]> memory_;
};
