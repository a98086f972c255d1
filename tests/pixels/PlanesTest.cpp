#include "pixels/Planes.h"

#include <gmock/gmock.h>

#include <vector>

namespace {

using testing::ElementsAre;
using ByteVector = std::vector<std::uint8_t>;

TEST(Planes, PaintedPixelsAreLaidOver) {
    ByteVector planes = {5, 5, 5, 6, 6, 6, 7, 7, 7};
    const ByteVector source = {1, 9, 9, 1, 9, 8, 1, 9, 9};
    layOverPlanes(planes.data(), source.data(), {9, 9, 9}, 3);
    EXPECT_THAT(planes, ElementsAre(1, 5, 9, 1, 6, 8, 1, 7, 9));
}

// Pictures are worked on in blocks of 4096 pixels: every length around their borders.
TEST(Planes, NoPixelIsLeftOutAndNoneBeyondTheLastIsTouched) {
    for (const std::size_t pixels : {0u, 1u, 4095u, 4096u, 4097u, 8193u}) {
        ByteVector planes(3 * pixels + 1, 5);
        const ByteVector source(3 * pixels + 1, 1);
        layOverPlanes(planes.data(), source.data(), {9, 9, 9}, pixels);
        ByteVector expected(3 * pixels, 1);
        expected.push_back(5);
        EXPECT_TRUE(planes == expected) << pixels;

        replaceInPlanes(planes.data(), {1, 1, 1}, {2, 2, 2}, false, pixels);
        expected.assign(3 * pixels, 2);
        expected.push_back(5);
        EXPECT_TRUE(planes == expected) << pixels;
    }
}

TEST(Planes, ShortsThatDifferInEitherByteAreLaidOver) {
    ByteVector plane = {1, 2, 5, 5, 6, 6, 7, 7};
    const ByteVector source = {1, 3, 1, 2, 0, 2, 1, 2};
    layOverShorts(plane.data(), source.data(), 4);
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
    pickBytes(to.data(), from.data(), picked.data(), 3);
    EXPECT_THAT(to, ElementsAre(12, 10, 10, 1));
}

}  // namespace
