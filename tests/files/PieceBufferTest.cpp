#include "files/PieceBuffer.h"

#include <gmock/gmock.h>

#include <cstdint>
#include <cstring>

namespace {

using testing::AllOf;
using testing::Ge;
using testing::Le;

constexpr std::uint64_t kPage = 4096;

// How far behind a file's byte, within their pages, its place in memory lies.
std::uint64_t distance(const std::uint8_t* place, std::uint64_t offset) {
    return (reinterpret_cast<std::uintptr_t>(place) - offset) % kPage;
}

// Copying is slow where the target lies 1 to 15 bytes behind the source: reading at a distance of 1
// to 15, writing at one of 4081 to 4095.
TEST(PieceBuffer, EveryPlaceIsHalfAPageFromTheFiles) {
    const PieceBuffer buffer(64);
    for (std::uint64_t offset = 0; offset < 3 * kPage; ++offset)
        ASSERT_THAT(distance(buffer.placeFor(offset), offset), AllOf(Ge(2033), Le(2048))) << offset;
}

TEST(PieceBuffer, PlacesAreMultiplesOfSixteen) {
    const PieceBuffer buffer(64);
    for (std::uint64_t offset = 0; offset < kPage; ++offset)
        ASSERT_EQ(reinterpret_cast<std::uintptr_t>(buffer.placeFor(offset)) % 16, 0u) << offset;
}

TEST(PieceBuffer, TheSamePlaceInAnyPageIsTheSameInMemory) {
    const PieceBuffer buffer(64);
    EXPECT_EQ(buffer.placeFor(224), buffer.placeFor(224 + 64 * kPage));
}

// The sanitizer sees a byte that lies outside.
TEST(PieceBuffer, EveryPlaceHasRoomForThePiece) {
    const PieceBuffer buffer(5000);
    for (std::uint64_t offset = 0; offset < 2 * kPage; ++offset)
        std::memset(buffer.placeFor(offset), 0, 5000);
    EXPECT_EQ(buffer.placeFor(0)[4999], 0);
}

TEST(PieceBuffer, OffsetsBeyondAnyFileHaveAPlaceToo) {
    const PieceBuffer buffer(64);
    EXPECT_EQ(buffer.placeFor(UINT64_MAX), buffer.placeFor(kPage - 1));
}

}  // namespace
