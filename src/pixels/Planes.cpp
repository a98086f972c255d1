#include "pixels/Planes.h"

#include <algorithm>
#include <cstring>

#include "pixels/Lanes.h"

namespace {

// Pictures are worked on in blocks: first a mark for each pixel, then plane by plane. Both loops
// handle many bytes at a time, and the block's marks stay in the cache.
constexpr std::size_t kBlockPixels = 4096;
using Marks = std::array<std::uint8_t, kBlockPixels>;

constexpr std::uint8_t kMarked = 0xFF;

// Marks the pixels of a block that differ from `colour`.
void markOthers(Marks& marks, const std::uint8_t* block, const Rgb& colour, std::size_t planeBytes,
                std::size_t count) {
    const std::uint8_t* const green = block + planeBytes;
    const std::uint8_t* const blue = green + planeBytes;
    for (std::size_t i = 0; i < count; ++i) {
        const bool differs =
            (block[i] != colour.red) | (green[i] != colour.green) | (blue[i] != colour.blue);
        marks[i] = differs ? kMarked : 0;
    }
}

// Calls `work(start, count)` for each block of the planes.
template <typename Work>
void forEachBlock(std::size_t pixels, Work work) {
    for (std::size_t start = 0; start < pixels; start += kBlockPixels)
        work(start, std::min(kBlockPixels, pixels - start));
}

// Below, a byte is read and written whatever its mark, so that the compiler may take many at a
// time.

void fillWhere(std::uint8_t mark, std::uint8_t* to, std::uint8_t value, const Marks& marks,
               std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        const std::uint8_t below = to[i];
        to[i] = marks[i] == mark ? value : below;
    }
}

using ByteLanes = Lanes<std::uint8_t>;

// Stores bytes, except where all bits of `kept` are set.
void storeMixed(std::uint8_t* to, const ByteLanes& bytes, const ByteLanes& kept) {
    storeLanes<std::uint8_t>(to, (loadLanes<std::uint8_t>(to) & kept) | (bytes & ~kept));
}

// What layOverPlanes does, from pixel `first` on.
void layOverPlain(const std::array<std::uint8_t*, 3>& planes,
                  const std::array<const std::uint8_t*, 3>& source, const Rgb& background,
                  std::size_t first, std::size_t pixels) {
    for (std::size_t i = first; i < pixels; ++i) {
        if (source[0][i] == background.red && source[1][i] == background.green &&
            source[2][i] == background.blue)
            continue;
        for (std::size_t plane = 0; plane < 3; ++plane)
            planes[plane][i] = source[plane][i];
    }
}

}  // namespace

void layOverPlanes(const std::array<std::uint8_t*, 3>& planes,
                   const std::array<const std::uint8_t*, 3>& source, const Rgb& background,
                   std::size_t pixels) {
    const ByteLanes red = ByteLanes{} + background.red;
    const ByteLanes green = ByteLanes{} + background.green;
    const ByteLanes blue = ByteLanes{} + background.blue;
    std::size_t i = 0;
    for (; i + kLanesBytes <= pixels; i += kLanesBytes) {
        const ByteLanes newRed = loadLanes<std::uint8_t>(source[0] + i);
        const ByteLanes newGreen = loadLanes<std::uint8_t>(source[1] + i);
        const ByteLanes newBlue = loadLanes<std::uint8_t>(source[2] + i);
        const auto kept =
            reinterpret_cast<ByteLanes>((newRed == red) & (newGreen == green) & (newBlue == blue));
        storeMixed(planes[0] + i, newRed, kept);
        storeMixed(planes[1] + i, newGreen, kept);
        storeMixed(planes[2] + i, newBlue, kept);
    }
    layOverPlain(planes, source, background, i, pixels);
}

void layOverShorts(std::uint8_t* plane, const std::uint8_t* source, const std::uint8_t* background,
                   std::size_t samples) {
    std::uint16_t key = 0;
    std::memcpy(&key, background, sizeof key);
    for (std::size_t i = 0; i < samples; ++i) {
        std::uint16_t below = 0;
        std::uint16_t above = 0;
        std::memcpy(&below, plane + 2 * i, sizeof below);
        std::memcpy(&above, source + 2 * i, sizeof above);
        if (above != key) below = above;
        std::memcpy(plane + 2 * i, &below, sizeof below);
    }
}

void replaceInPlanes(std::uint8_t* planes, const Rgb& from, const Rgb& to, bool invert,
                     std::size_t pixels) {
    const std::uint8_t replaced = invert ? kMarked : 0;
    Marks others;
    forEachBlock(pixels, [&](std::size_t start, std::size_t count) {
        std::uint8_t* const block = planes + start;
        markOthers(others, block, from, pixels, count);
        fillWhere(replaced, block, to.red, others, count);
        fillWhere(replaced, block + pixels, to.green, others, count);
        fillWhere(replaced, block + 2 * pixels, to.blue, others, count);
    });
}

void greyPlanes(std::uint8_t* planes, const std::array<std::uint8_t, 256>& tones,
                std::size_t pixels) {
    constexpr double kWeight = 0.333;
    const std::uint8_t* const green = planes + pixels;
    const std::uint8_t* const blue = green + pixels;
    for (std::size_t i = 0; i < pixels; ++i) {
        // At most 255.245. The order of the sums decides where it lies right on a half.
        const double grey = planes[i] * kWeight + green[i] * kWeight + blue[i] * kWeight + 0.5;
        planes[i] = tones[static_cast<std::size_t>(static_cast<int>(grey))];
    }
}

void gatherBytes(std::uint8_t* to, const std::uint8_t* from, const std::size_t* indices,
                 std::size_t count) {
    for (std::size_t i = 0; i < count; ++i)
        to[i] = from[indices[i]];
}
