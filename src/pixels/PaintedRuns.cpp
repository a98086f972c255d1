#include "pixels/PaintedRuns.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr std::size_t kManyBlocks = 4;
constexpr std::size_t kManyBytes = kManyBlocks * kBlockBytes;

// A block filled with one sample. Its size is a multiple of every sample's.
Block<std::uint8_t> repeated(const std::uint8_t* sample, std::size_t sampleBytes) {
    Block<std::uint8_t> block;
    for (std::size_t at = 0; at < kBlockBytes; at += sampleBytes)
        std::memcpy(reinterpret_cast<std::uint8_t*>(&block) + at, sample, sampleBytes);
    return block;
}

}  // namespace

template <std::size_t kPlanes>
PaintedRuns<kPlanes>::PaintedRuns(const Places& background, std::size_t sampleBytes)
    : sampleBytes_(sampleBytes) {
    for (std::size_t plane = 0; plane < kPlanes; ++plane)
        background_[plane] = repeated(background[plane], sampleBytes);
}

template <std::size_t kPlanes>
template <std::size_t kBlocks>
bool PaintedRuns<kPlanes>::areBackground(const Places& row, std::size_t at) const {
    Lanes<std::uint8_t> differing = {};
    for (std::size_t plane = 0; plane < kPlanes; ++plane) {
        for (std::size_t i = 0; i < 3 * kBlocks; ++i) {
            const std::uint8_t* const here = row[plane] + at + i * kLanesBytes;
            differing |= loadLanes<std::uint8_t>(here) ^ background_[plane].lanes[i % 3];
        }
    }
    return everyBitIs<std::uint8_t>(0, differing);
}

// The same for a block, or what there is of it before `end`.
template <std::size_t kPlanes>
bool PaintedRuns<kPlanes>::isBackground(const Places& row, std::size_t at, std::size_t end) const {
    if (end - at >= kBlockBytes) return areBackground<1>(row, at);
    for (std::size_t plane = 0; plane < kPlanes; ++plane) {
        if (std::memcmp(row[plane] + at, &background_[plane], end - at) != 0) return false;
    }
    return true;
}

// Returns where the first block is, from `from` on, that is not all background; `end` if there is none.
template <std::size_t kPlanes>
std::size_t PaintedRuns<kPlanes>::skipBackground(const Places& row, std::size_t from,
                                                 std::size_t end) const {
    while (end - from >= kManyBytes && areBackground<kManyBlocks>(row, from))
        from += kManyBytes;
    while (from < end && isBackground(row, from, end))
        from += std::min(kBlockBytes, end - from);
    return from;
}

// Returns where the last such block ends; `from` if there is none.
template <std::size_t kPlanes>
std::size_t PaintedRuns<kPlanes>::dropBackground(const Places& row, std::size_t from,
                                                 std::size_t end) const {
    const std::size_t part = (end - from) % kBlockBytes;
    if (part > 0 && !isBackground(row, end - part, end)) return end;
    end -= part;
    while (end - from >= kManyBytes && areBackground<kManyBlocks>(row, end - kManyBytes))
        end -= kManyBytes;
    while (end > from && areBackground<1>(row, end - kBlockBytes))
        end -= kBlockBytes;
    return end;
}

// Looks for a run's end from behind, so that of a part that is painted all over it sees one block in
// each stretch of kShortestGap.
template <std::size_t kPlanes>
PaintedRun PaintedRuns<kPlanes>::next(const Places& row, std::size_t from,
                                      std::size_t bytes) const {
    PaintedRun run = {skipBackground(row, from, bytes), 0};
    run.end = run.start + std::min(kBlockBytes, bytes - run.start);
    while (run.end < bytes) {
        const std::size_t ahead = std::min(run.end + kShortestGap, bytes);
        const std::size_t painted = dropBackground(row, run.end, ahead);
        if (painted == run.end) break;
        run.end = painted;
    }
    return run;
}

template <std::size_t kPlanes>
bool PaintedRuns<kPlanes>::isBackgroundPixel(const Places& row, std::size_t at) const {
    for (std::size_t plane = 0; plane < kPlanes; ++plane) {
        if (std::memcmp(row[plane] + at, &background_[plane], sampleBytes_) != 0) return false;
    }
    return true;
}

template <std::size_t kPlanes>
PaintedRun PaintedRuns<kPlanes>::trimmed(const Places& row, PaintedRun run) const {
    while (isBackgroundPixel(row, run.start))
        run.start += sampleBytes_;
    while (isBackgroundPixel(row, run.end - sampleBytes_))
        run.end -= sampleBytes_;
    return run;
}

// Whether one of the pixels is background whose samples are in the 16 bytes at `at`.
template <std::size_t kPlanes>
template <typename Sample>
bool PaintedRuns<kPlanes>::lanesShowBackground(const Places& row, std::size_t at) const {
    auto isEqual = Lanes<Sample>{} == Lanes<Sample>{};
    for (std::size_t plane = 0; plane < kPlanes; ++plane) {
        const auto* const background = reinterpret_cast<const std::uint8_t*>(&background_[plane]);
        isEqual &= loadLanes<Sample>(row[plane] + at) == loadLanes<Sample>(background);
    }
    return !everyBitIs<Sample>(0, reinterpret_cast<Lanes<Sample>>(isEqual));
}

template <std::size_t kPlanes>
bool PaintedRuns<kPlanes>::isSolid(const Places& row, const PaintedRun& run) const {
    std::size_t at = run.start;
    for (; run.end - at >= kLanesBytes; at += kLanesBytes) {
        if (sampleBytes_ == 1 ? lanesShowBackground<std::uint8_t>(row, at)
                              : lanesShowBackground<std::uint16_t>(row, at))
            return false;
    }
    for (; at < run.end; at += sampleBytes_) {
        if (isBackgroundPixel(row, at)) return false;
    }
    return true;
}

template class PaintedRuns<1>;
template class PaintedRuns<3>;
