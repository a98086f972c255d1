#pragma once
// PaintedRuns: finds where a map is painted. The map of one tile is background nearly everywhere, and
// a merge has nothing to do there.

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

#include "pixels/Lanes.h"

// Bytes from `start` to before `end`.
struct PaintedRun {
    std::size_t start = 0;
    std::size_t end = 0;

    bool isEmpty() const { return start == end; }
    std::size_t size() const { return end - start; }
};

// Less background than this between two painted parts is not worth leaving out: reading and writing
// it costs less than two calls of the system.
inline constexpr std::size_t kShortestGap = 100 * kBlockBytes;

// The runs of a row of pixels, which is one row of bytes in memory or, as planes, several.
template <std::size_t kPlanes>
class PaintedRuns {
public:
    using Places = std::array<const std::uint8_t*, kPlanes>;

    // `background` is one pixel: in each plane 1, 2, 3, 4, 6 or 12 bytes.
    PaintedRuns(const Places& background, std::size_t sampleBytes);

    // The first run at or after `from`, a multiple of kBlockBytes, in rows of `bytes` each; empty if
    // there is none. It starts at a multiple of kBlockBytes and ends at one, or with the row. Every
    // painted pixel is in one of the runs, beside it some background.
    PaintedRun next(const Places& row, std::size_t from, std::size_t bytes) const;

    // A run, as next gives it, from its first painted pixel to its last.
    PaintedRun trimmed(const Places& row, PaintedRun run) const;

    // Whether a run has no pixel of the background. Samples are of 1 or 2 bytes here.
    bool isSolid(const Places& row, const PaintedRun& run) const;

private:
    bool isBackgroundPixel(const Places& row, std::size_t at) const;
    template <std::size_t kBlocks>
    bool areBackground(const Places& row, std::size_t at) const;
    bool isBackground(const Places& row, std::size_t at, std::size_t end) const;
    std::size_t skipBackground(const Places& row, std::size_t from, std::size_t end) const;
    std::size_t dropBackground(const Places& row, std::size_t from, std::size_t end) const;
    template <typename Sample>
    bool lanesShowBackground(const Places& row, std::size_t at) const;

    std::size_t sampleBytes_;
    std::array<Block<std::uint8_t>, kPlanes> background_;
};

// Calls `use(run)` for the runs of a row, in order, as long as it returns true. Returns whether all
// did.
template <std::size_t kPlanes, typename Use>
bool forEachRun(const PaintedRuns<kPlanes>& painted,
                const typename PaintedRuns<kPlanes>::Places& row, std::size_t bytes, Use use) {
    for (PaintedRun run = painted.next(row, 0, bytes); !run.isEmpty();) {
        if (!use(run)) return false;
        const std::size_t seen = std::min(run.end + kShortestGap, bytes);  // without paint
        run = painted.next(row, seen, bytes);
    }
    return true;
}
