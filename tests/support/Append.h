#pragma once
// Appends values to a list of bytes, for the builders of test files.

#include <bit>
#include <cstdint>

#include "support/TempDir.h"

inline void append(ByteList& bytes, const ByteList& more) {
    bytes.insert(bytes.end(), more.begin(), more.end());
}

inline void appendLe16(ByteList& bytes, std::uint32_t value) {
    bytes.push_back(static_cast<std::uint8_t>(value & 0xFF));
    bytes.push_back(static_cast<std::uint8_t>(value >> 8 & 0xFF));
}

inline void appendLe32(ByteList& bytes, std::uint32_t value) {
    appendLe16(bytes, value & 0xFFFF);
    appendLe16(bytes, value >> 16);
}

inline void appendLeFloat(ByteList& bytes, float value) {
    appendLe32(bytes, std::bit_cast<std::uint32_t>(value));
}

inline void appendBe16(ByteList& bytes, std::uint32_t value) {
    bytes.push_back(static_cast<std::uint8_t>(value >> 8 & 0xFF));
    bytes.push_back(static_cast<std::uint8_t>(value & 0xFF));
}

inline void appendBe32(ByteList& bytes, std::uint32_t value) {
    appendBe16(bytes, value >> 16);
    appendBe16(bytes, value & 0xFFFF);
}
