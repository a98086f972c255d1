#include "pixels/Planes.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <random>
#include <vector>

#include "support/TempDir.h"

namespace {

using testing::ElementsAre;

// Lays one picture over another; the planes of each are one behind the other, from byte `first` on.
void layOver(ByteList& planes, const ByteList& source, const Rgb& background, std::size_t pixels,
             std::size_t first = 0) {
    std::uint8_t* const to = planes.data() + first;
    const std::uint8_t* const from = source.data() + first;
    layOverPlanes({to, to + pixels, to + 2 * pixels}, {from, from + pixels, from + 2 * pixels},
                  background, pixels);
}

PaintedRun replace(ByteList& planes, const Rgb& from, const Rgb& to, bool invert,
                   std::size_t pixels) {
    std::uint8_t* const red = planes.data();
    return replaceInPlanes({red, red + pixels, red + 2 * pixels}, from, to, invert, pixels);
}

TEST(Planes, PaintedPixelsAreLaidOver) {
    ByteList planes = {5, 5, 5, 6, 6, 6, 7, 7, 7};
    const ByteList source = {1, 9, 9, 1, 9, 8, 1, 9, 9};
    layOver(planes, source, {9, 9, 9}, 3);
    EXPECT_THAT(planes, ElementsAre(1, 5, 9, 1, 6, 8, 1, 7, 9));
}

// Sixteen pixels are handled at a time, and the rest one by one.
TEST(Planes, NoPixelIsLeftOutAndNoneBeyondTheLastIsTouched) {
    for (const std::size_t pixels : {0u, 1u, 15u, 16u, 17u, 33u}) {
        ByteList planes(3 * pixels + 1, 5);
        const ByteList source(3 * pixels + 1, 1);
        layOver(planes, source, {9, 9, 9}, pixels);
        ByteList expected(3 * pixels, 1);
        expected.push_back(5);
        EXPECT_TRUE(planes == expected) << pixels;

        replace(planes, {1, 1, 1}, {2, 2, 2}, false, pixels);
        expected.assign(3 * pixels, 2);
        expected.push_back(5);
        EXPECT_TRUE(planes == expected) << pixels;
    }
}

// Sixteen pixels at a time must give what one at a time gives, at every length and place.
TEST(Planes, AreLaidOverAlikeWhereverTheyStartAndEnd) {
    std::mt19937 random(1);
    for (std::size_t pixels = 0; pixels < 70; ++pixels) {
        for (std::size_t first = 0; first < 17; ++first) {
            ByteList planes(3 * pixels + first);
            ByteList source(3 * pixels + first);
            for (std::uint8_t& byte : planes)
                byte = static_cast<std::uint8_t>(random());
            for (std::uint8_t& byte : source)
                byte = random() % 3 == 0 ? 10 : 9;
            ByteList expected = planes;
            for (std::size_t red = first; red < first + pixels; ++red) {
                const std::size_t green = red + pixels;
                const std::size_t blue = green + pixels;
                if (source[red] == 9 && source[green] == 10 && source[blue] == 9) continue;
                for (const std::size_t i : {red, green, blue})
                    expected[i] = source[i];
            }
            layOver(planes, source, {9, 10, 9}, pixels, first);
            ASSERT_TRUE(planes == expected) << pixels << " pixels from byte " << first;
        }
    }
}

TEST(Planes, ShortsThatDifferInEitherByteAreLaidOver) {
    ByteList plane = {1, 2, 5, 5, 6, 6, 7, 7};
    const ByteList source = {1, 3, 1, 2, 0, 2, 1, 2};
    const ByteList background = {1, 2};
    layOverShorts(plane.data(), source.data(), background.data(), 4);
    EXPECT_THAT(plane, ElementsAre(1, 3, 5, 5, 0, 2, 7, 7));
}

TEST(Planes, InvertedAllOtherColoursAreReplaced) {
    ByteList planes = {1, 1, 2, 2, 3, 0};
    replace(planes, {1, 2, 3}, {7, 8, 9}, true, 2);
    EXPECT_THAT(planes, ElementsAre(1, 7, 2, 8, 3, 9));
}

// Every length, and one pixel of another colour at every place.
TEST(Planes, AreReplacedAlikeWhereverTheyStartAndEnd) {
    for (std::size_t pixels = 1; pixels < 40; ++pixels) {
        for (std::size_t other = 0; other < pixels; ++other) {
            for (const bool invert : {false, true}) {
                ByteList planes(3 * pixels, 4);
                planes[other + (other % 3) * pixels] = 5;
                ByteList expected = planes;
                for (std::size_t i = 0; i < pixels; ++i) {
                    if ((i == other) != invert) continue;
                    expected[i] = 1;
                    expected[i + pixels] = 2;
                    expected[i + 2 * pixels] = 3;
                }
                replace(planes, {4, 4, 4}, {1, 2, 3}, invert, pixels);
                ASSERT_TRUE(planes == expected) << other << " of " << pixels;
            }
        }
    }
}

TEST(Planes, TheRunOfWhatWasReplacedIsReturned) {
    ByteList planes(3 * 90, 4);
    EXPECT_TRUE(replace(planes, {7, 7, 7}, {1, 2, 3}, false, 90).isEmpty());
    for (const std::size_t changed : {20u, 50u, 250u})  // the pixels 20, 50 and 70
        planes[changed] = 5;
    const PaintedRun lanes = replace(planes, {4, 4, 4}, {4, 4, 4}, true, 90);
    EXPECT_EQ(lanes.start, 16u);
    EXPECT_EQ(lanes.end, 80u);
    planes[2 * 90 + 85] = 5;  // after the last whole lanes
    const PaintedRun rest = replace(planes, {4, 4, 4}, {4, 4, 4}, true, 90);
    EXPECT_EQ(rest.start, 85u);
    EXPECT_EQ(rest.end, 86u);
}

void makeGrey(ByteList& planes, const std::array<std::uint8_t, 256>& tones, std::size_t pixels) {
    std::uint8_t* const red = planes.data();
    Greys(tones).replaceRed({red, red + pixels, red + 2 * pixels}, pixels);
}

TEST(Planes, GreyIsLookedUpAndTheOtherPlanesStay) {
    std::array<std::uint8_t, 256> tones{};
    tones[20] = 77;
    tones[255] = 88;
    ByteList planes = {10, 255, 20, 255, 30, 255};
    makeGrey(planes, tones, 2);
    EXPECT_THAT(planes, ElementsAre(77, 88, 20, 255, 30, 255));
}

// Sixteen pixels at a time, and those of the sum 500 one at a time, must give what the formula gives.
// The blue is that which brings the sum nearest to the one wanted.
TEST(Planes, GreyIsThatOfTheFormulaForEveryRedAndGreen) {
    const auto toneOf = [](std::size_t grey) { return static_cast<std::uint8_t>(7 * grey + 3); };
    std::array<std::uint8_t, 256> tones{};  // each another one
    for (std::size_t grey = 0; grey < 256; ++grey)
        tones[grey] = toneOf(grey);
    constexpr std::size_t kPixels = 65536 + 7;
    for (const std::size_t wanted : {100u, 500u, 501u, 700u}) {
        ByteList planes(3 * kPixels);
        ByteList expected(kPixels);
        for (std::size_t i = 0; i < kPixels; ++i) {
            const std::size_t red = i % 256;
            const std::size_t green = i / 256 % 256;
            const std::size_t sum = std::clamp(wanted, red + green, red + green + 255);
            const std::size_t blue = sum - red - green;
            planes[i] = static_cast<std::uint8_t>(red);
            planes[kPixels + i] = static_cast<std::uint8_t>(green);
            planes[2 * kPixels + i] = static_cast<std::uint8_t>(blue);
            const auto part = [](std::size_t colour) { return static_cast<int>(colour) * 0.333; };
            const double grey = part(red) + part(green) + part(blue) + 0.5;
            expected[i] = toneOf(static_cast<std::size_t>(grey));
        }
        makeGrey(planes, tones, kPixels);
        planes.resize(kPixels);
        EXPECT_TRUE(planes == expected) << wanted;
    }
}

TEST(Planes, BytesAreGatheredInAnyOrder) {
    const ByteList from = {10, 11, 12};
    const std::vector<std::size_t> indices = {2, 0, 0};
    ByteList to(4, 1);
    gatherBytes(to.data(), from.data(), indices.data(), 3);
    EXPECT_THAT(to, ElementsAre(12, 10, 10, 1));
}

}  // namespace
