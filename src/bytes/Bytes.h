#pragma once
// Byte order and bounds. Every file format here is read and written through these functions, so a
// value is the same on every processor and no reader steps outside what was loaded.

#include <bit>
#include <cstddef>
#include <cstdint>

static_assert(sizeof(float) == 4 && sizeof(double) == 8, "IEEE 754 floats");

// Loads and stores at an address that the caller has checked. Compilers turn each into one
// instruction.
inline std::uint16_t loadLe16(const std::uint8_t* p) {
    return static_cast<std::uint16_t>(p[0] | p[1] << 8);
}
inline std::uint32_t loadLe32(const std::uint8_t* p) {
    return std::uint32_t{p[0]} | std::uint32_t{p[1]} << 8 | std::uint32_t{p[2]} << 16 |
           std::uint32_t{p[3]} << 24;
}
inline std::uint64_t loadLe64(const std::uint8_t* p) {
    return loadLe32(p) | std::uint64_t{loadLe32(p + 4)} << 32;
}
inline std::uint16_t loadBe16(const std::uint8_t* p) {
    return static_cast<std::uint16_t>(p[0] << 8 | p[1]);
}
inline std::uint32_t loadBe32(const std::uint8_t* p) {
    return std::uint32_t{p[0]} << 24 | std::uint32_t{p[1]} << 16 | std::uint32_t{p[2]} << 8 |
           std::uint32_t{p[3]};
}
inline float loadLeFloat(const std::uint8_t* p) {
    return std::bit_cast<float>(loadLe32(p));
}

inline void storeLe16(std::uint8_t* p, std::uint16_t value) {
    p[0] = static_cast<std::uint8_t>(value);
    p[1] = static_cast<std::uint8_t>(value >> 8);
}
inline void storeBe16(std::uint8_t* p, std::uint16_t value) {
    p[0] = static_cast<std::uint8_t>(value >> 8);
    p[1] = static_cast<std::uint8_t>(value);
}
inline void storeLe32(std::uint8_t* p, std::uint32_t value) {
    p[0] = static_cast<std::uint8_t>(value);
    p[1] = static_cast<std::uint8_t>(value >> 8);
    p[2] = static_cast<std::uint8_t>(value >> 16);
    p[3] = static_cast<std::uint8_t>(value >> 24);
}
inline void storeLe64(std::uint8_t* p, std::uint64_t value) {
    storeLe32(p, static_cast<std::uint32_t>(value));
    storeLe32(p + 4, static_cast<std::uint32_t>(value >> 32));
}
inline void storeBe32(std::uint8_t* p, std::uint32_t value) {
    p[0] = static_cast<std::uint8_t>(value >> 24);
    p[1] = static_cast<std::uint8_t>(value >> 16);
    p[2] = static_cast<std::uint8_t>(value >> 8);
    p[3] = static_cast<std::uint8_t>(value);
}
inline void storeBe64(std::uint8_t* p, std::uint64_t value) {
    storeBe32(p, static_cast<std::uint32_t>(value >> 32));
    storeBe32(p + 4, static_cast<std::uint32_t>(value));
}
inline void storeLeFloat(std::uint8_t* p, float value) {
    storeLe32(p, std::bit_cast<std::uint32_t>(value));
}

// Bytes that somebody else owns, read at offsets that a file names and nobody has checked. A byte
// past the end reads as 0 and sets `overran`: a reader takes all its fields, then asks once.
struct Bytes {
    const std::uint8_t* data = nullptr;
    std::size_t size = 0;
    bool overran = false;

    std::uint8_t u8(std::uint64_t at) {
        if (at < size) return data[at];
        overran = true;
        return 0;
    }
    std::uint16_t le16(std::uint64_t at) {
        const std::uint8_t bytes[] = {u8(at), u8(at + 1)};
        return loadLe16(bytes);
    }
    std::uint32_t le32(std::uint64_t at) {
        const std::uint8_t bytes[] = {u8(at), u8(at + 1), u8(at + 2), u8(at + 3)};
        return loadLe32(bytes);
    }
    std::uint16_t be16(std::uint64_t at) {
        const std::uint8_t bytes[] = {u8(at), u8(at + 1)};
        return loadBe16(bytes);
    }
    std::uint32_t be32(std::uint64_t at) {
        const std::uint8_t bytes[] = {u8(at), u8(at + 1), u8(at + 2), u8(at + 3)};
        return loadBe32(bytes);
    }

    // True when `count` elements of `elementSize` bytes lie inside, from `at` on. The product is
    // never formed, so no count can wrap it.
    bool holds(std::uint64_t at, std::uint64_t count, std::uint64_t elementSize) const {
        if (count == 0) return true;
        return at <= size && count <= (size - at) / elementSize;
    }
};
