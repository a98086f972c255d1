// Filling the background of a row, a block of 16 bytes times three at a time: pixels of three samples
// repeat their pattern there. Most blocks of a map are all background or none.

#include <cstring>

#include "pixels/Lanes.h"
#include "pixels/Pixels.h"

namespace {

// One sample a pixel: the compilers handle many of them at a time.
template <typename Sample>
void fillSamples(std::uint8_t* row, const std::uint8_t* source, const std::uint8_t* background,
                 std::size_t pixels) {
    Sample key = 0;
    std::memcpy(&key, background, sizeof key);
    for (std::size_t at = 0; at < pixels * sizeof key; at += sizeof key) {
        Sample below = 0;
        Sample above = 0;
        std::memcpy(&below, row + at, sizeof below);
        std::memcpy(&above, source + at, sizeof above);
        const Sample filled = below == key ? above : below;
        std::memcpy(row + at, &filled, sizeof filled);
    }
}

template <std::size_t kPixelBytes>
void fillOneByOne(std::uint8_t* row, const std::uint8_t* source, const std::uint8_t* background,
                  std::size_t pixels) {
    const std::uint8_t* const end = row + pixels * kPixelBytes;
    for (; row != end; row += kPixelBytes, source += kPixelBytes) {
        if (std::memcmp(row, background, kPixelBytes) == 0) std::memcpy(row, source, kPixelBytes);
    }
}

// Finds the pixels of one colour in blocks.
template <typename Sample>
class ColourFinder {
public:
    explicit ColourFinder(const std::uint8_t* colour)
        : colour_(sampleOf(colour, 0), sampleOf(colour, 1), sampleOf(colour, 2)) {}

    // All bits set in the samples that equal the colour's own.
    Block<Sample> equalSamples(const std::uint8_t* block) const {
        return {{equalAt(block, 0), equalAt(block, kLanes<Sample>),
                 equalAt(block, 2 * kLanes<Sample>)}};
    }

    // All bits set in the samples whose whole pixels equal the colour: beside each sample, the two
    // others of its pixel lie before or behind it. Reads two samples behind the block, too.
    Block<Sample> equalPixels(const std::uint8_t* block, const Block<Sample>& equal) const {
        Block<Sample> found;
        for (std::size_t i = 0; i < 3; ++i) {
            const std::size_t at = i * kLanes<Sample>;
            const Lanes<Sample> here = equal.lanes[i];
            const Lanes<Sample> behind1 = equalAt(block, at + 1);
            const Lanes<Sample> behind2 = equalAt(block, at + 2);
            // Nothing before the block is loaded, see movedUp: it was filled just now.
            const Lanes<Sample> before1 = i == 0 ? movedUp<Sample>(here) : equalAt(block, at - 1);
            const Lanes<Sample> before2 =
                i == 0 ? movedUp<Sample>(before1) : equalAt(block, at - 2);
            found.lanes[i] = here & ((firstOf3_.at(at) & behind1 & behind2) |
                                     (firstOf3_.at(at + 2) & before1 & behind1) |
                                     (firstOf3_.at(at + 1) & before2 & before1));
        }
        return found;
    }

private:
    static Sample sampleOf(const std::uint8_t* pixel, std::size_t channel) {
        Sample sample = 0;
        std::memcpy(&sample, pixel + channel * sizeof sample, sizeof sample);
        return sample;
    }

    // Of the samples from number `at` of the block on.
    Lanes<Sample> equalAt(const std::uint8_t* block, std::size_t at) const {
        return loadLanes<Sample>(block + at * sizeof(Sample)) == colour_.at(at);
    }

    Triplets<Sample> colour_;
    Triplets<Sample> firstOf3_ = {static_cast<Sample>(-1), 0, 0};
};

template <typename Sample>
void fillBlock(std::uint8_t* row, const std::uint8_t* source, const ColourFinder<Sample>& finder) {
    const Block<Sample> equal = finder.equalSamples(row);
    if (everyBitIs<Sample>(0, equal.lanes[0] | equal.lanes[1] | equal.lanes[2])) return;
    if (everyBitIs<Sample>(~std::uint64_t{0}, equal.lanes[0] & equal.lanes[1] & equal.lanes[2])) {
        std::memcpy(row, source, kBlockBytes);
        return;
    }
    const Block<Sample> found = finder.equalPixels(row, equal);
    for (std::size_t i = 0; i < 3; ++i, row += kLanesBytes, source += kLanesBytes)
        storeLanes<Sample>(row, (found.lanes[i] & loadLanes<Sample>(source)) |
                                    (~found.lanes[i] & loadLanes<Sample>(row)));
}

template <typename Sample>
void fillTriples(std::uint8_t* row, const std::uint8_t* source, const std::uint8_t* background,
                 std::size_t pixels) {
    constexpr std::size_t kPixelBytes = 3 * sizeof(Sample);
    constexpr std::size_t kBlockPixels = kBlockBytes / kPixelBytes;
    const ColourFinder<Sample> finder(background);

    std::size_t done = 0;
    for (; pixels - done > kBlockPixels; done += kBlockPixels)
        fillBlock<Sample>(row + done * kPixelBytes, source + done * kPixelBytes, finder);
    fillOneByOne<kPixelBytes>(row + done * kPixelBytes, source + done * kPixelBytes, background,
                              pixels - done);
}

}  // namespace

void fillBackground(std::uint8_t* row, const std::uint8_t* source, const std::uint8_t* background,
                    std::size_t pixels, std::size_t pixelBytes) {
    switch (pixelBytes) {
        case 1:
            return fillSamples<std::uint8_t>(row, source, background, pixels);
        case 2:
            return fillSamples<std::uint16_t>(row, source, background, pixels);
        case 3:
            return fillTriples<std::uint8_t>(row, source, background, pixels);
        case 4:
            return fillSamples<std::uint32_t>(row, source, background, pixels);
        case 6:
            return fillTriples<std::uint16_t>(row, source, background, pixels);
        case 12:
            return fillTriples<std::uint32_t>(row, source, background, pixels);
        default:
            return;
    }
}
