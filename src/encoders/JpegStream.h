#pragma once
// JpegStream: the JPEG file that is being written, its segments byte by byte and its picture bit by
// bit, through a buffer.

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <memory>
#include <span>

#include "bytes/Bytes.h"
#include "encoders/JpegTables.h"
#include "files/File.h"

// Packs codes into bytes, the highest bit first. A byte of 0xFF is followed by 0x00, since 0xFF
// alone starts a marker.
//
// A copy goes on where its original was: the coder of a block works on one of its own, which a
// compiler keeps in registers.
class BitWriter {
public:
    // Writes to memory that the caller keeps large enough: a byte can take two.
    explicit BitWriter(std::uint8_t* to) : next_(to) {}

    // Appends up to 32 bits; those of `value` above `length` are 0.
    void put(std::uint32_t value, std::uint32_t length) {
        bits_ = bits_ << length | value;
        pending_ += length;
        if (pending_ >= 32) storeFour();
    }
    void put(bitstring code) { put(code.value, code.length); }

    // Completes the last byte with ones. Bits that end on a byte take a whole byte of ones, which
    // is stuffed like any other.
    void fillLastByte() {
        const std::uint32_t missing = 8 - pending_ % 8;
        put((1u << missing) - 1, missing);
        while (pending_ > 0) {
            pending_ -= 8;
            store(static_cast<std::uint8_t>(bits_ >> pending_));
        }
    }

    std::uint8_t* next() const { return next_; }
    void goOnAt(std::uint8_t* to) { next_ = to; }

private:
    void store(std::uint8_t byte) {
        *next_++ = byte;
        if (byte == 0xFF) *next_++ = 0x00;
    }

    void storeFour() {
        pending_ -= 32;
        const auto word = static_cast<std::uint32_t>(bits_ >> pending_);
        if (hasByteOfOnes(word)) {
            for (std::uint32_t shift = 32; shift > 0; shift -= 8)
                store(static_cast<std::uint8_t>(word >> (shift - 8)));
            return;
        }
        storeBe32(next_, word);
        next_ += 4;
    }

    // A byte of ones is one of zeros in the complement, the only one that borrows when it loses 1
    // and does not have its high bit set.
    static bool hasByteOfOnes(std::uint32_t word) {
        return ((~word - 0x01010101u) & word & 0x80808080u) != 0;
    }

    std::uint8_t* next_;
    std::uint64_t bits_ = 0;     // the lowest `pending_` are still to be written
    std::uint32_t pending_ = 0;  // below 32
};

class JpegStream {
public:
    // Creates the file, or empties the one that is there.
    explicit JpegStream(const char* path);

    bool isOpen() const { return file_.isOpen(); }

    // Writes bytes as they are.
    void append(std::span<const std::uint8_t> bytes);
    void append(std::initializer_list<std::uint8_t> bytes) {
        append(std::span(bytes.begin(), bytes.size()));
    }

    // The writer of coded bits. Between two calls of makeRoom it may write kRoom bytes.
    BitWriter& bits() { return bits_; }
    void makeRoom() {
        if (bits_.next() >= buffer_.get() + kPieceBytes) flush();
    }
    static constexpr std::size_t kRoom = 4096;

    // Writes to the file what is still in memory. A file that once took fewer bytes gets no more.
    // Returns whether it has taken all bytes so far.
    bool flush();

private:
    // In this order: the memory is there before the file is emptied, and the bits go to it.
    std::unique_ptr<std::uint8_t[]> buffer_;
    FileWriter file_;
    BitWriter bits_;
    bool failed_ = false;
};
