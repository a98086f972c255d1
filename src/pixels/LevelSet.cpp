#include "pixels/LevelSet.h"

#include <algorithm>
#include <cstring>
#include <limits>

#include "pixels/Lanes.h"
#include "pixels/LevelLanes.h"
#include "pixels/Samples.h"
#include "pixels/WideKernels.h"

namespace {

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

bool areAllSeen(const std::uint8_t* sixteen) {
    return everyBitIs<std::uint8_t>(0, loadLanes<std::uint8_t>(sixteen) ^ 1);
}

}  // namespace

std::size_t passOver(const float* samples, std::size_t count, const PeriodRanges& ranges,
                     bool hasPrevious) {
    std::size_t done = 0;
    for (; count - done >= kPeriod; done += kPeriod) {
        const float* const period = samples + done;
        if (liesWithin(ranges, period)) continue;
        if ((done == 0 && !hasPrevious) || !repeatsTheOneBefore(period)) break;
    }
    return done;
}

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

// Most samples of a map have levels that are in the set already, and adding one costs more than to
// see that it lies in a range of such levels. So the runs of levels are followed that the channels
// are in: looked for again after some periods that had to be added, and, where that does not help,
// after more and more of them.
void LevelSet::addSamples(const float* samples, std::size_t count) {
    constexpr std::size_t kLeastPatience = 4;
    constexpr std::size_t kMostPatience = 256;
    constexpr std::size_t kWorthIt = 8 * kPeriod;
    PassOver* const wide = widePassOver();
    PassOver* const pass = wide != nullptr ? wide : passOver;

    PeriodRanges known = knownRanges();
    std::size_t patience = kLeastPatience;
    std::size_t added = 0;
    std::size_t done = 0;
    for (;; done += kPeriod) {
        const std::size_t passed = pass(samples + done, count - done, known, done > 0);
        done += passed;
        if (count - done < kPeriod) break;
        addPeriod(samples + done);
        if (passed >= kWorthIt) patience = kLeastPatience;
        if (++added < patience) continue;
        follow(samples + done);
        known = knownRanges();
        added = 0;
        patience = std::min(2 * patience, kMostPatience);
    }
    for (; done < count; ++done)
        seen_[levelOf(samples[done])] = 1;
}

// Takes the runs that the samples of a pixel are in for the known ones.
void LevelSet::follow(const float* pixel) {
    for (std::size_t channel = 0; channel < known_.size(); ++channel) {
        Run& run = runAround(levelOf(pixel[channel]));
        run = extended(run);
        known_[channel] = run;
    }
}

// The run that has a level. If there is none, one close by: the levels of a map often go on at the
// end of a run.
LevelSet::Run& LevelSet::runAround(std::size_t level) {
    const auto find = [&](std::size_t distance) {
        return std::find_if(runs_.begin(), runs_.end(), [&](const Run& run) {
            return run.first < run.end && level + distance >= run.first &&
                   level < run.end + distance;
        });
    };
    constexpr std::size_t kClose = 256;
    if (auto* const around = find(0); around != runs_.end()) return *around;
    if (auto* const close = find(kClose); close != runs_.end()) return *close;
    Run& added = runs_[nextRun_];
    nextRun_ = (nextRun_ + 1) % runs_.size();
    added = {level, level + 1};
    return added;
}

// A run with the levels before and behind it that have come into the set.
LevelSet::Run LevelSet::extended(Run run) const {
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

// Samples in these ranges have levels of the known runs. Some more at either end of a run have, too:
// the ranges keep clear of where rounding decides. That of no levels has no samples.
PeriodRanges LevelSet::knownRanges() const {
    constexpr float kInfinity = std::numeric_limits<float>::infinity();
    constexpr float kUnit = 1.0f / 65535.0f;
    PeriodRanges ranges;
    for (std::size_t channel = 0; channel < known_.size(); ++channel) {
        const auto [first, end] = known_[channel];
        const float from = first == 0 ? -kInfinity : kUnit * (static_cast<float>(first) - 0.25f);
        const float below = end == kLevels ? kInfinity : kUnit * (static_cast<float>(end) - 0.75f);
        for (std::size_t i = channel; i < kPeriod; i += known_.size()) {
            ranges.from[i] = from;
            ranges.below[i] = below;
        }
    }
    return ranges;
}
