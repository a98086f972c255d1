#pragma once
// LevelSet: which of the 65,536 levels the samples of a map have.

#include <array>
#include <cstddef>
#include <cstdint>

// Samples that are looked at together: flat parts of a map repeat themselves at this distance, be it
// with one channel or with three.
inline constexpr std::size_t kPeriod = 24;

// A range of values for each sample of a period: from `from` on, less than `below`.
struct PeriodRanges {
    std::array<float, kPeriod> from;
    std::array<float, kPeriod> below;
};

// Counts the samples at the start that lie in their ranges or repeat those a period before bit by
// bit, in whole periods. A NaN lies in no range.
//
//   hasPrevious  whether a period lies before `samples`
using PassOver = std::size_t(const float* samples, std::size_t count, const PeriodRanges& ranges,
                             bool hasPrevious);
PassOver passOver;

// A set of levels, and what samples need not be added to it again.
class LevelSet {
public:
    // Adds the levels of samples, see levelOf in Samples.h.
    void addSamples(const float* samples, std::size_t count);

    bool test(std::uint16_t level) const { return seen_[level] != 0; }
    std::size_t count() const;

private:
    static constexpr std::size_t kLevels = 65536;

    // Levels from `first` on and before `end` that are all in the set. None at first.
    struct Run {
        std::size_t first = 1;
        std::size_t end = 1;
    };

    void addPeriod(const float* samples);
    void follow(const float* pixel);
    Run& runAround(std::size_t level);
    Run extended(Run run) const;
    PeriodRanges knownRanges() const;

    std::array<std::uint8_t, kLevels> seen_{};  // a byte each: adding one is a single store
    std::array<Run, 8> runs_;                   // found so far
    std::size_t nextRun_ = 0;                   // to be given up for another one
    std::array<Run, 3> known_;                  // the run that each of three channels is in
};
