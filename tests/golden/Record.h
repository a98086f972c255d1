#pragma once
// What a case of the transcript left behind, on its way into the case's line: short values as they
// are, in hexadecimal, long ones as their length and a digest.

#include <bit>
#include <concepts>
#include <cstdint>
#include <string>
#include <string_view>

#include "support/TempDir.h"

// 64 bits from any number of bytes.
class Digest {
public:
    void add(const void* bytes, std::size_t count);
    void add(std::string_view text) { add(text.data(), text.size()); }
    std::uint64_t value() const { return value_; }

private:
    std::uint64_t value_ = 0xCBF29CE484222325u;
};

std::string hexadecimal(std::uint64_t value, int digits = 16);

// All bytes as digits, or "LENGTH:DIGEST" where they are many.
std::string shown(std::string_view bytes);

class Record {
public:
    Record& add(std::integral auto value) {
        return addWord(static_cast<std::uint64_t>(value), sizeof value);
    }
    Record& add(float value) { return addWord(std::bit_cast<std::uint32_t>(value), 4); }
    Record& add(std::string_view text) {
        bytes_ += text;
        return *this;
    }
    Record& add(const ByteList& bytes) {
        bytes_.append(bytes.begin(), bytes.end());
        return *this;
    }
    const std::string& bytes() const { return bytes_; }

private:
    Record& addWord(std::uint64_t value, std::size_t bytes) {
        for (std::size_t i = 0; i < bytes; ++i)
            bytes_ += static_cast<char>(value >> 8 * i & 0xFF);
        return *this;
    }

    std::string bytes_;
};

// A digest of all that lies in a folder: names, which are files, and what they hold. Where the folder
// itself lies does not count.
std::string shownFolder(const std::string& folder);
