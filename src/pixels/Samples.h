#pragma once
// Samples: what operations do to the 32-bit float samples of maps in memory, unknown to any file
// format.

#include <array>
#include <cstddef>
#include <cstdint>

// Copies the first of each pixel's three float samples, little-endian.
void takeFirstSamples(std::uint8_t* to, const float* from, std::size_t pixels);

// The 16-bit level of a sample, where 0 to 1 becomes 0 to 65535: times 65535, held in that range
// (NaN is 0), plus 0.5, truncated; all in single precision.
std::uint16_t levelOf(float sample);

enum class ByteOrder { kLittle, kBig };

// Writes the levels of `count` samples, each `step` floats after the one before.
void quantise16(std::uint8_t* to, const float* from, std::size_t count, std::size_t step,
                ByteOrder order);

// A set of levels. A byte for each: setting one is a single store.
class LevelSet {
public:
    void add(std::uint16_t level) { seen_[level] = 1; }
    bool test(std::uint16_t level) const { return seen_[level] != 0; }
    std::size_t count() const;

private:
    friend void markLevels(LevelSet& levels, const float* samples, std::size_t count);

    // A run of levels that are all in the set. Samples of these need not be added again.
    struct Run {
        std::size_t first = 0;
        std::size_t end = 0;
    };
    Run longestRun() const;
    void extendKnown();

    std::array<std::uint8_t, 65536> seen_{};
    Run known_;
    std::size_t added_ = 0;  // samples
    std::size_t addedAtNextLook_ = 65536;
};

// Adds the levels of samples to a set of levels.
void markLevels(LevelSet& levels, const float* samples, std::size_t count);
