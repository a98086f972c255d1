#include "pixels/Planes.h"

#include <cstring>

#include "pixels/Lanes.h"

namespace {

using ByteLanes = Lanes<std::uint8_t>;
using ShortLanes = Lanes<std::uint16_t>;

// 16 pixels.
struct PixelLanes {
    ByteLanes red;
    ByteLanes green;
    ByteLanes blue;
};

PixelLanes repeated(const Rgb& colour) {
    return {ByteLanes{} + colour.red, ByteLanes{} + colour.green, ByteLanes{} + colour.blue};
}

template <typename Byte>
PixelLanes loadPixels(const std::array<Byte*, 3>& planes, std::size_t at) {
    return {loadLanes<std::uint8_t>(planes[0] + at), loadLanes<std::uint8_t>(planes[1] + at),
            loadLanes<std::uint8_t>(planes[2] + at)};
}

// All bits of a pixel are set where the two are equal.
ByteLanes areEqual(const PixelLanes& a, const PixelLanes& b) {
    return reinterpret_cast<ByteLanes>((a.red == b.red) & (a.green == b.green) &
                                       (a.blue == b.blue));
}

// Stores bytes, except where all bits of `kept` are set.
void storeMixed(std::uint8_t* to, const ByteLanes& bytes, const ByteLanes& kept) {
    storeLanes<std::uint8_t>(to, (loadLanes<std::uint8_t>(to) & kept) | (bytes & ~kept));
}

void storeMixed(const std::array<std::uint8_t*, 3>& planes, std::size_t at,
                const PixelLanes& pixels, const ByteLanes& kept) {
    storeMixed(planes[0] + at, pixels.red, kept);
    storeMixed(planes[1] + at, pixels.green, kept);
    storeMixed(planes[2] + at, pixels.blue, kept);
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

// 333 thousandths of this sum of three colours are a half above a whole number, of any other sum at
// least one thousandth away from that: there the sum alone decides the grey.
constexpr std::uint16_t kSumOnHalf = 500;

// What a pixel of 16 has in its lane of one of these: the sum of its colours.
struct PixelSums {
    ShortLanes even;
    ShortLanes odd;
};

PixelSums sumsOf(const PixelLanes& pixels) {
    const auto red = reinterpret_cast<ShortLanes>(pixels.red);
    const auto green = reinterpret_cast<ShortLanes>(pixels.green);
    const auto blue = reinterpret_cast<ShortLanes>(pixels.blue);
    const ShortLanes low = ShortLanes{} + 0xFF;
    return {(red & low) + (green & low) + (blue & low), (red >> 8) + (green >> 8) + (blue >> 8)};
}

bool isAnyOnHalf(const PixelSums& sums) {
    return !everyBitIs<std::uint16_t>(
        0, reinterpret_cast<ShortLanes>((sums.even == kSumOnHalf) | (sums.odd == kSumOnHalf)));
}

void extend(PaintedRun& run, std::size_t start, std::size_t end) {
    if (run.isEmpty()) run.start = start;
    run.end = end;
}

// What replaceInPlanes does, from pixel `first` on.
void replacePlain(const std::array<std::uint8_t*, 3>& planes, const Rgb& from, const Rgb& to,
                  bool invert, std::size_t first, std::size_t pixels, PaintedRun& replaced) {
    for (std::size_t i = first; i < pixels; ++i) {
        const bool differs =
            planes[0][i] != from.red || planes[1][i] != from.green || planes[2][i] != from.blue;
        if (differs != invert) continue;
        planes[0][i] = to.red;
        planes[1][i] = to.green;
        planes[2][i] = to.blue;
        extend(replaced, i, i + 1);
    }
}

}  // namespace

void layOverPlanes(const std::array<std::uint8_t*, 3>& planes,
                   const std::array<const std::uint8_t*, 3>& source, const Rgb& background,
                   std::size_t pixels) {
    // Lane by lane, and not as PixelLanes: GCC would put those into memory here, for a tenth of a merge.
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

PaintedRun replaceInPlanes(const std::array<std::uint8_t*, 3>& planes, const Rgb& from,
                           const Rgb& to, bool invert, std::size_t pixels) {
    const PixelLanes old = repeated(from);
    const PixelLanes replacement = repeated(to);
    const ByteLanes flipped = invert ? ~ByteLanes{} : ByteLanes{};
    PaintedRun replaced;
    std::size_t i = 0;
    for (; i + kLanesBytes <= pixels; i += kLanesBytes) {
        const ByteLanes changing = areEqual(loadPixels(planes, i), old) ^ flipped;
        if (everyBitIs<std::uint8_t>(0, changing)) continue;
        storeMixed(planes, i, replacement, ~changing);
        extend(replaced, i, i + kLanesBytes);
    }
    replacePlain(planes, from, to, invert, i, pixels, replaced);
    return replaced;
}

Greys::Greys(const std::array<std::uint8_t, 256>& tones) : tones_(tones) {
    for (std::size_t sum = 0; sum < toneOfSum_.size(); ++sum)
        toneOfSum_[sum] = tones[(333 * sum + 500) / 1000];
}

void Greys::replaceRed(const std::array<std::uint8_t*, 3>& planes, std::size_t pixels) const {
    std::size_t i = 0;
    for (; i + kLanesBytes <= pixels; i += kLanesBytes) {
        const PixelSums sums = sumsOf(loadPixels(planes, i));
        if (isAnyOnHalf(sums))
            replacePlain(planes, i, i + kLanesBytes);
        else
            storeTones(planes[0] + i, sums.even, sums.odd);
    }
    replacePlain(planes, i, pixels);
}

// Of 16 pixels, by the sums of their colours: the even ones, counted from 0, and the odd ones.
void Greys::storeTones(std::uint8_t* to, const ShortLanes& even, const ShortLanes& odd) const {
    for (std::size_t first = 0; first < kLanesBytes; first += 8) {
        std::uint64_t tones = 0;
        for (std::size_t i = 4; i-- > 0;) {
            tones = tones << 8 | toneOfSum_[odd[first / 2 + i]];
            tones = tones << 8 | toneOfSum_[even[first / 2 + i]];
        }
        std::memcpy(to + first, &tones, sizeof tones);
    }
}

void Greys::replacePlain(const std::array<std::uint8_t*, 3>& planes, std::size_t first,
                         std::size_t end) const {
    for (std::size_t i = first; i < end; ++i)
        planes[0][i] = toneOf(planes, i);
}

// The tone of one pixel. The order of the sums decides where it lies right on a half.
std::uint8_t Greys::toneOf(const std::array<std::uint8_t*, 3>& planes, std::size_t at) const {
    constexpr double kWeight = 0.333;
    const double grey =
        planes[0][at] * kWeight + planes[1][at] * kWeight + planes[2][at] * kWeight + 0.5;
    return tones_[static_cast<std::size_t>(static_cast<int>(grey))];  // at most 255.245
}

void gatherBytes(std::uint8_t* to, const std::uint8_t* from, const std::size_t* indices,
                 std::size_t count) {
    for (std::size_t i = 0; i < count; ++i)
        to[i] = from[indices[i]];
}
