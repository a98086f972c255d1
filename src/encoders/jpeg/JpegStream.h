#pragma once
// JpegStream: the JPEG file that is being written, its segments byte by byte and its picture bit by
// bit, through a buffer.

#include <array>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <memory>
#include <span>

#include "bytes/Bytes.h"
#include "encoders/jpeg/JpegTables.h"
#include "files/FileWriter.h"

// Packs codes into bytes, the highest bit first.
//
// A copy continues where its original is: the coder of blocks works on a local copy, which a compiler
// keeps in registers.
class BitWriter {
public:
    // Writes to memory that the caller keeps large enough, with kSpare bytes after what is needed.
    explicit BitWriter(std::uint8_t* to) : next_(to) {}
    static constexpr std::size_t kSpare = 8;

    // Appends up to 32 bits; those of `value` above `length` are 0.
    void writebits(std::uint32_t value, std::uint32_t length) {
        bits_ = bits_ << length | value;
        pending_ += length;
        storeBe64(next_, bits_ << (-pending_ & 63));
        next_ += pending_ / 8;
        pending_ %= 8;
    }
    void writebits(bitstring bs) { writebits(bs.value, bs.length); }

    // Completes the last byte with ones. Bits that end on a byte take a whole byte of ones.
    void fillLastByte() {
        const std::uint32_t missing = 8 - pending_;
        writebits((1u << missing) - 1, missing);
    }

    // After the last byte that is complete.
    std::uint8_t* next() const { return next_; }

    // Continues at `to` with the bits of the byte that is not complete yet.
    void continueAt(std::uint8_t* to) { next_ = to; }

private:
    std::uint8_t* next_;
    std::uint64_t bits_ = 0;     // the lowest `pending_` are those of a byte that is not complete
    std::uint32_t pending_ = 0;  // below 8
};

// Copies coded bytes. Each of 0xFF is followed by 0x00, since 0xFF alone starts a marker.
//
//   to       room for twice as many bytes
//   returns  the end of what was written
std::uint8_t* stuffed(const std::uint8_t* coded, std::size_t count, std::uint8_t* to);

class JpegStream {
public:
    // Creates the file, or empties an existing one.
    explicit JpegStream(const char* path);

    bool isOpen() const { return file_.isOpen(); }

    // Writes bytes as they are.
    void append(std::span<const std::uint8_t> bytes);
    void append(std::initializer_list<std::uint8_t> bytes) {
        append(std::span(bytes.begin(), bytes.size()));
    }

    // The writer of coded bits. Between two calls of makeRoom it may write kRoom bytes.
    BitWriter& bits() { return bits_; }
    void makeRoom();
    static constexpr std::size_t kRoom = 8192;

    // Writes to the file what is still in memory. After a failed write nothing more is written.
    // Returns whether all bytes so far are in the file.
    bool flush();

private:
    void writeOut();

    // In this order: the memory is allocated before the file is emptied, and bits_ points to it.
    std::unique_ptr<std::uint8_t[]> buffer_;
    FileWriter file_;
    std::uint8_t* next_;
    std::array<std::uint8_t, kRoom + BitWriter::kSpare> coded_;
    BitWriter bits_;
    bool failed_ = false;
};
