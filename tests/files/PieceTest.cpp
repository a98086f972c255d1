#include "files/Piece.h"

#include <gmock/gmock.h>

#include <cstdint>
#include <cstring>
#include <utility>
#include <vector>

#include "support/TempDir.h"

namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::Ge;
using testing::Le;

constexpr std::uint64_t kPage = 4096;

// The distance from a file's byte to its place in memory, within their pages.
std::uint64_t distance(const std::uint8_t* place, std::uint64_t offset) {
    return (reinterpret_cast<std::uintptr_t>(place) - offset) % kPage;
}

// Copying is slow where the target is 1 to 15 bytes after the source: reading at a distance of 1 to
// 15, writing at one of 4081 to 4095.
TEST(Piece, EveryPlaceIsAMultipleOfSixteenHalfAPageFromTheFiles) {
    Piece piece(64);
    for (std::uint64_t offset = 0; offset < 3 * kPage; ++offset) {
        const std::uint8_t* const place = piece.moveTo(offset, 64);
        ASSERT_THAT(distance(place, offset), AllOf(Ge(2033), Le(2048))) << offset;
        ASSERT_EQ(reinterpret_cast<std::uintptr_t>(place) % 16, 0u) << offset;
    }
}

TEST(Piece, TheSamePlaceInAnyPageIsTheSameInMemory) {
    Piece piece(64);
    EXPECT_EQ(piece.moveTo(224, 64), piece.moveTo(224 + 64 * kPage, 64));
    EXPECT_EQ(piece.moveTo(UINT64_MAX, 64), piece.moveTo(kPage - 1, 64)) << "beyond any file";
}

// The sanitizer sees a byte that is outside.
TEST(Piece, EveryPlaceHasRoomForThePiece) {
    Piece piece(5000);
    for (std::uint64_t offset = 0; offset < 2 * kPage; ++offset)
        std::memset(piece.moveTo(offset, 5000), 0, 5000);
    EXPECT_EQ(piece.moveTo(0, 5000)[4999], 0);
}

TEST(Piece, IsWhatTheFileHasThere) {
    const TempDir dir;
    const std::string path = dir.write("f", ByteList{1, 2, 3, 4, 5});
    const File file = File::openForRewriting(path.c_str());
    Piece piece(8);
    EXPECT_TRUE(piece.read(file, 1, 3));
    EXPECT_EQ(ByteList(piece.data(), piece.data() + piece.size()), (ByteList{2, 3, 4}));
    piece.data()[1] = 9;
    EXPECT_TRUE(piece.write(file));
    EXPECT_EQ(readBytes(path), (ByteList{1, 2, 9, 4, 5}));
    EXPECT_FALSE(piece.read(file, 4, 3));
    EXPECT_EQ(piece.size(), 1u);
}

TEST(ForEachPiece, RunsOfWholeUnitsCoverAll) {
    std::vector<std::pair<std::uint64_t, std::size_t>> runs;
    const auto note = [&](std::uint64_t offset, std::size_t count) {
        runs.emplace_back(offset, count);
        return true;
    };
    EXPECT_TRUE(forEachPiece(100, 7, 3, note, 10));
    EXPECT_THAT(runs, ElementsAre(std::pair(100, 3), std::pair(109, 3), std::pair(118, 1)));
    runs.clear();
    EXPECT_TRUE(forEachPiece(5, 2, 11, note, 10));
    EXPECT_THAT(runs, ElementsAre(std::pair(5, 1), std::pair(16, 1)));
    EXPECT_TRUE(forEachPiece(5, 0, 11, note, 10));
    EXPECT_EQ(runs.size(), 2u);
}

TEST(ForEachPiece, EndsWithTheFirstRunThatFails) {
    int calls = 0;
    EXPECT_FALSE(forEachPiece(
        0, 10, 1, [&](std::uint64_t, std::size_t) { return ++calls < 3; }, 2));
    EXPECT_EQ(calls, 3);
}

}  // namespace
