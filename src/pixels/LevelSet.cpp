#include "pixels/LevelSet.h"

#include <algorithm>
#include <cstring>
#include <limits>

#include "pixels/Lanes.h"
#include "pixels/LevelLanes.h"
#include "pixels/Samples.h"

namespace {

// Samples that are looked at together. Flat parts of a map repeat themselves at this distance, with
// one channel and with three.
constexpr std::size_t kPeriod = 24;

// A range of values for each sample of a period: from `from` on, less than `below`.
struct PeriodRanges {
    std::array<float, kPeriod> from;
    std::array<float, kPeriod> below;
};

// Samples in these ranges have levels of the known runs. So do some more at either end of a run: the
// ranges keep clear of where rounding decides. An empty run has an empty range.
PeriodRanges rangesOf(const std::array<LevelRun, 3>& known) {
    constexpr float kInfinity = std::numeric_limits<float>::infinity();
    constexpr float kUnit = 1.0f / 65535.0f;
    PeriodRanges ranges;
    for (std::size_t channel = 0; channel < known.size(); ++channel) {
        const auto [first, end] = known[channel];
        const float from = first == 0 ? -kInfinity : kUnit * (static_cast<float>(first) - 0.25f);
        const float below = end > 65535 ? kInfinity : kUnit * (static_cast<float>(end) - 0.75f);
        for (std::size_t i = channel; i < kPeriod; i += known.size()) {
            ranges.from[i] = from;
            ranges.below[i] = below;
        }
    }
    return ranges;
}

bool liesWithin(const PeriodRanges& ranges, const float* period) {
    Lanes<std::int32_t> inside = ~Lanes<std::int32_t>{};
    for (std::size_t i = 0; i < kPeriod; i += kLanes<float>) {
        const Lanes<float> four = loadSamples(period + i);
        inside &= (four >= loadSamples(&ranges.from[i])) & (four < loadSamples(&ranges.below[i]));
    }
    return everyBitIs<std::int32_t>(~std::uint64_t{0}, inside);
}

bool repeatsTheOneBefore(const float* period) {
    Lanes<std::uint32_t> differences = {};
    for (std::size_t i = 0; i < kPeriod; i += kLanes<float>) {
        Lanes<std::uint32_t> now;
        Lanes<std::uint32_t> before;
        std::memcpy(&now, period + i, sizeof now);
        std::memcpy(&before, period + i - kPeriod, sizeof before);
        differences |= now ^ before;
    }
    return everyBitIs<std::uint32_t>(0, differences);
}

// Counts the samples at the start that lie in their ranges or repeat those a period before bit by
// bit, in whole periods. A NaN lies in no range.
//
//   hasPrevious  whether a period lies before `samples`
std::size_t skipKnown(const float* samples, std::size_t count, const PeriodRanges& ranges,
                      bool hasPrevious) {
    std::size_t done = 0;
    for (; count - done >= kPeriod; done += kPeriod) {
        const float* const period = samples + done;
        if (liesWithin(ranges, period)) continue;
        if ((done == 0 && !hasPrevious) || !repeatsTheOneBefore(period)) break;
    }
    return done;
}

bool areAllSeen(const std::uint8_t* sixteen) {
    return everyBitIs<std::uint8_t>(0, loadLanes<std::uint8_t>(sixteen) ^ 1);
}

}  // namespace

std::size_t LevelSet::count() const {
    return static_cast<std::size_t>(std::count(seen_.begin(), seen_.end(), 1));
}

void LevelSet::addPeriod(const float* samples) {
    for (std::size_t i = 0; i < kPeriod; i += kRunSamples) {
        const Lanes<std::uint16_t> run = levelsOfRun(samples + i);
        std::uint64_t halves[2];  // taken apart in registers, faster than by way of memory
        std::memcpy(halves, &run, sizeof halves);
        for (const std::uint64_t half : halves) {
            for (int shift = 0; shift < 64; shift += 16)
                seen_[static_cast<std::uint16_t>(half >> shift)] = 1;
        }
    }
}

// Most samples of a map have levels that are in the set already, and adding one costs more than
// finding it in a range of such levels. So the set follows the run of levels that each channel is in:
// it looks for the runs again after some periods that had to be added, and after more and more of them
// where that does not help. With the runs getScale takes two thirds of its time without them, with
// eight of them five sixths of its time with one a channel.
void LevelSet::addSamples(const float* samples, std::size_t count) {
    constexpr std::size_t kMinPatience = 4;
    constexpr std::size_t kMaxPatience = 256;
    constexpr std::size_t kWorthIt = 8 * kPeriod;

    PeriodRanges known = rangesOf(known_);
    std::size_t patience = kMinPatience;
    std::size_t added = 0;
    std::size_t done = 0;
    for (;; done += kPeriod) {
        const std::size_t skipped = skipKnown(samples + done, count - done, known, done > 0);
        done += skipped;
        if (count - done < kPeriod) break;
        addPeriod(samples + done);
        if (skipped >= kWorthIt) patience = kMinPatience;
        if (++added < patience) continue;
        follow(samples + done);
        known = rangesOf(known_);
        added = 0;
        patience = std::min(2 * patience, kMaxPatience);
    }
    for (; done < count; ++done)
        seen_[levelOf(samples[done])] = 1;
}

// Makes the runs that the samples of a pixel are in the known ones.
void LevelSet::follow(const float* pixel) {
    for (std::size_t channel = 0; channel < known_.size(); ++channel) {
        LevelRun& run = runAround(levelOf(pixel[channel]));
        run = extended(run);
        known_[channel] = run;
    }
}

// The run that contains a level, or else one close by: the levels of a map often continue at the end
// of a run.
LevelRun& LevelSet::runAround(std::size_t level) {
    const auto find = [&](std::size_t distance) {
        return std::find_if(runs_.begin(), runs_.end(), [&](const LevelRun& run) {
            return run.first < run.end && level + distance >= run.first &&
                   level < run.end + distance;
        });
    };
    constexpr std::size_t kClose = 256;
    if (auto* const around = find(0); around != runs_.end()) return *around;
    if (auto* const close = find(kClose); close != runs_.end()) return *close;
    LevelRun& added = runs_[nextRun_];
    nextRun_ = (nextRun_ + 1) % runs_.size();
    added = {level, level + 1};
    return added;
}

// A run, with the levels before and after it that are in the set by now.
LevelRun LevelSet::extended(LevelRun run) const {
    while (run.first >= kLanesBytes && areAllSeen(&seen_[run.first - kLanesBytes]))
        run.first -= kLanesBytes;
    while (run.first > 0 && seen_[run.first - 1] != 0)
        --run.first;
    while (run.end + kLanesBytes <= kLevels && areAllSeen(&seen_[run.end]))
        run.end += kLanesBytes;
    while (run.end < kLevels && seen_[run.end] != 0)
        ++run.end;
    return run;
}
