#include "pixels/Planes.h"

#include <gmock/gmock.h>

#include <vector>

namespace {

using testing::ElementsAre;
using ByteVector = std::vector<std::uint8_t>;

// Planes that lie one behind the other.
void layOver(ByteVector& planes, const ByteVector& source, const Rgb& background,
             std::size_t pixels) {
    std::uint8_t* const to = planes.data();
    const std::uint8_t* const from = source.data();
    layOverPlanes({to, to + pixels, to + 2 * pixels}, {from, from + pixels, from + 2 * pixels},
                  background, pixels);
}

TEST(Planes, PaintedPixelsAreLaidOver) {
    ByteVector planes = {5, 5, 5, 6, 6, 6, 7, 7, 7};
    const ByteVector source = {1, 9, 9, 1, 9, 8, 1, 9, 9};
    layOver(planes, source, {9, 9, 9}, 3);
    EXPECT_THAT(planes, ElementsAre(1, 5, 9, 1, 6, 8, 1, 7, 9));
}

// Pictures are worked on in blocks of 4096 pixels: every length around their borders.
TEST(Planes, NoPixelIsLeftOutAndNoneBeyondTheLastIsTouched) {
    for (const std::size_t pixels : {0u, 1u, 4095u, 4096u, 4097u, 8193u}) {
        ByteVector planes(3 * pixels + 1, 5);
        const ByteVector source(3 * pixels + 1, 1);
        layOver(planes, source, {9, 9, 9}, pixels);
        ByteVector expected(3 * pixels, 1);
        expected.push_back(5);
        EXPECT_TRUE(planes == expected) << pixels;

        replaceInPlanes(planes.data(), {1, 1, 1}, {2, 2, 2}, false, pixels);
        expected.assign(3 * pixels, 2);
        expected.push_back(5);
        EXPECT_TRUE(planes == expected) << pixels;
    }
}

// Sixteen pixels at a time must give what one at a time gives, at every length and place.
TEST(Planes, AreLaidOverAlikeWhereverTheyLieAndEnd) {
    std::uint32_t state = 1;
    const auto random = [&] { return (state = state * 1664525 + 1013904223) >> 24; };
    for (std::size_t pixels = 0; pixels < 70; ++pixels) {
        for (std::size_t shift = 0; shift < 17; ++shift) {
            ByteVector planes(3 * pixels + shift);
            ByteVector source(3 * pixels + shift);
            for (std::uint8_t& byte : planes)
                byte = static_cast<std::uint8_t>(random());
            for (std::uint8_t& byte : source)
                byte = random() % 3 == 0 ? 9 : static_cast<std::uint8_t>(random() % 2 + 9);
            ByteVector expected = planes;
            for (std::size_t i = shift; i < shift + pixels; ++i) {
                const std::size_t g = i + pixels;
                const std::size_t b = g + pixels;
                if (source[i] == 9 && source[g] == 10 && source[b] == 9) continue;
                expected[i] = source[i];
                expected[g] = source[g];
                expected[b] = source[b];
            }
            std::uint8_t* const to = planes.data() + shift;
            const std::uint8_t* const from = source.data() + shift;
            layOverPlanes({to, to + pixels, to + 2 * pixels},
                          {from, from + pixels, from + 2 * pixels}, {9, 10, 9}, pixels);
            ASSERT_TRUE(planes == expected) << pixels << " pixels from byte " << shift;
        }
    }
}

TEST(Planes, ShortsThatDifferInEitherByteAreLaidOver) {
    ByteVector plane = {1, 2, 5, 5, 6, 6, 7, 7};
    const ByteVector source = {1, 3, 1, 2, 0, 2, 1, 2};
    const ByteVector background = {1, 2};
    layOverShorts(plane.data(), source.data(), background.data(), 4);
    EXPECT_THAT(plane, ElementsAre(1, 3, 5, 5, 0, 2, 7, 7));
}

TEST(Planes, InvertedAllOtherColoursAreReplaced) {
    ByteVector planes = {1, 1, 2, 2, 3, 0};
    replaceInPlanes(planes.data(), {1, 2, 3}, {7, 8, 9}, true, 2);
    EXPECT_THAT(planes, ElementsAre(1, 7, 2, 8, 3, 9));
}

TEST(Planes, GreyIsLookedUpAndTheOtherPlanesStay) {
    std::array<std::uint8_t, 256> tones{};
    tones[20] = 77;
    tones[255] = 88;
    ByteVector planes = {10, 255, 20, 255, 30, 255};
    greyPlanes(planes.data(), tones, 2);
    EXPECT_THAT(planes, ElementsAre(77, 88, 20, 255, 30, 255));
}

TEST(Planes, BytesArePickedInAnyOrder) {
    const ByteVector from = {10, 11, 12};
    const std::vector<std::size_t> picked = {2, 0, 0};
    ByteVector to(4, 1);
    gatherBytes(to.data(), from.data(), picked.data(), 3);
    EXPECT_THAT(to, ElementsAre(12, 10, 10, 1));
}

}  // namespace
