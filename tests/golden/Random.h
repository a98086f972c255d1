#pragma once
// Pseudo-random numbers, the same with every compiler, library and processor. Since arguments are
// evaluated in any order, a call takes at most one from here.

#include <bit>
#include <cstddef>
#include <cstdint>
#include <initializer_list>

class Random {
public:
    explicit Random(std::uint64_t seed) : state_(seed) {}

    std::uint64_t next() {
        state_ += 0x9E3779B97F4A7C15u;
        std::uint64_t mixed = state_;
        mixed = (mixed ^ mixed >> 30) * 0xBF58476D1CE4E5B9u;
        mixed = (mixed ^ mixed >> 27) * 0x94D049BB133111EBu;
        return mixed ^ mixed >> 31;
    }

    // 0 to `end` - 1.
    std::uint32_t below(std::uint32_t end) { return static_cast<std::uint32_t>(next() % end); }
    // Both ends included.
    std::int32_t between(std::int32_t first, std::int32_t last) {
        return first +
               static_cast<std::int32_t>(below(static_cast<std::uint32_t>(last - first) + 1));
    }
    bool oneIn(std::uint32_t count) { return below(count) == 0; }
    std::uint8_t byte() { return static_cast<std::uint8_t>(next()); }
    std::uint32_t word() { return static_cast<std::uint32_t>(next()); }

    template <typename Value>
    Value pick(std::initializer_list<Value> values) {
        return values.begin()[below(static_cast<std::uint32_t>(values.size()))];
    }

    // A sample between 0 and 1, both included.
    float unit() { return static_cast<float>(below(65536)) / 65535.0f; }

    // Any float: mostly a small fraction, otherwise any bits or an edge case.
    float number() {
        if (!oneIn(4)) return static_cast<float>(between(-4096, 4096)) / 512.0f;
        if (oneIn(2)) return std::bit_cast<float>(word());
        return std::bit_cast<float>(pick<std::uint32_t>({
            0x00000000, 0x80000000,                          // zeros
            0x3F800000, 0xBF800000, 0x3F7FFFFF,              // around 1
            0x7F800000, 0xFF800000,                          // infinities
            0x7FC00000, 0xFFC00000, 0x7FC12345, 0xFF912345,  // NaNs, quiet and signalling
            0x00000001, 0x807FFFFF, 0x00800000,              // the smallest
            0x7F7FFFFF, 0xFF7FFFFF,                          // the largest
            0x4F000000, 0xCF000000, 0xCF000001, 0x4EFFFFFF,  // the ends of 32-bit integers
            0x5F000000, 0x4B000000, 0x4B800000, 0x477FFF00,  // 2^63, 2^23, 2^24, 65535
        }));
    }

    // What a script may pass as the number of a call.
    double scriptNumber() {
        if (oneIn(3)) return between(-3, 12);
        if (oneIn(3)) return between(-10, 1100) / 10.0;
        if (oneIn(3)) return static_cast<double>(number());
        return pick<double>({0.0, 0.5, 1.0, 2.0, 2.9, 3.0, 3.9, 4.0, 10.0, 11.0, 50.0, 100.0, 100.5,
                             101.0, -0.5, -1.0, 1e10, -1e10, 1e300});
    }

private:
    std::uint64_t state_;
};
