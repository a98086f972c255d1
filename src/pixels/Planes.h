#pragma once
// Planes: what operations do to pictures in memory whose channels lie one behind the other, unknown
// to any file format.

#include <array>
#include <cstddef>
#include <cstdint>

#include "pixels/Lanes.h"
#include "pixels/PaintedRuns.h"

// A colour of one byte a channel.
struct Rgb {
    std::uint8_t red;
    std::uint8_t green;
    std::uint8_t blue;
};

// Replaces each pixel of three planes by the one at the same place in `source`, except where the
// source's equals `background`: painted pixels of the source win, the reverse of fillBackground in
// Pixels.h. No plane of one overlaps with one of the other.
void layOverPlanes(const std::array<std::uint8_t*, 3>& planes,
                   const std::array<const std::uint8_t*, 3>& source, const Rgb& background,
                   std::size_t pixels);

// The same for one plane of two-byte samples; `background` is one of them.
void layOverShorts(std::uint8_t* plane, const std::uint8_t* source, const std::uint8_t* background,
                   std::size_t samples);

// Below, `planes` are red, green and blue, of `pixels` bytes each.

// Replaces the pixels of the colour `from`, or with `invert` all pixels but those. Returns a run that
// has all of the pixels replaced; empty if there were none.
PaintedRun replaceInPlanes(const std::array<std::uint8_t*, 3>& planes, const Rgb& from,
                           const Rgb& to, bool invert, std::size_t pixels);

// The grey of pixels, 0.333 of each colour, rounded half up, then looked up in a table.
class Greys {
public:
    explicit Greys(const std::array<std::uint8_t, 256>& tones);

    // Turns the first plane into the grey of all three.
    void replaceRed(const std::array<std::uint8_t*, 3>& planes, std::size_t pixels) const;

private:
    using ShortLanes = Lanes<std::uint16_t>;

    void storeTones(std::uint8_t* to, const ShortLanes& even, const ShortLanes& odd) const;
    void replacePlain(const std::array<std::uint8_t*, 3>& planes, std::size_t first,
                      std::size_t end) const;
    std::uint8_t toneOf(const std::array<std::uint8_t*, 3>& planes, std::size_t at) const;

    std::array<std::uint8_t, 256> tones_;
    std::array<std::uint8_t, 3 * 255 + 1> toneOfSum_{};
};

// Copies the bytes at the places `indices` of `from`.
void gatherBytes(std::uint8_t* to, const std::uint8_t* from, const std::size_t* indices,
                 std::size_t count);
