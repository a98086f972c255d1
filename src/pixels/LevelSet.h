#pragma once
// LevelSet: which of the 65,536 levels the samples of a map have.

#include <array>
#include <cstddef>
#include <cstdint>

// Levels from `first` on and before `end` that are all in a set. None at first.
struct LevelRun {
    std::size_t first = 1;
    std::size_t end = 1;
};

// A set of levels, and which samples need not be added to it again.
class LevelSet {
public:
    // Adds the levels of samples, see levelOf in Samples.h.
    void addSamples(const float* samples, std::size_t count);

    bool test(std::uint16_t level) const { return seen_[level] != 0; }
    std::size_t count() const;

private:
    static constexpr std::size_t kLevels = 65536;

    void addPeriod(const float* samples);
    void follow(const float* pixel);
    LevelRun& runAround(std::size_t level);
    LevelRun extended(LevelRun run) const;

    std::array<std::uint8_t, kLevels> seen_{};  // a byte each: adding one is a single store
    std::array<LevelRun, 8> runs_;              // found so far
    std::size_t nextRun_ = 0;                   // the next to be replaced
    std::array<LevelRun, 3> known_;             // the run that each of three channels is in
};
