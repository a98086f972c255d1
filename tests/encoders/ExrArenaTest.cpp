#include "encoders/exr/ExrArena.h"

#include <gmock/gmock.h>

#include <cstdint>
#include <vector>

namespace {

// The loader frees some blocks twice, and some that it never took.
TEST(ExrArena, GivingABlockBackTwiceDoesNothing) {
    ExrArena arena;
    void* const block = arena.take(16);
    arena.give(block);
    arena.give(block);
    arena.give(nullptr);
    ExrArena other;
    char* const text = other.takeCopy("other");
    arena.give(text);
    EXPECT_STREQ(text, "other");
}

TEST(ExrArena, NothingIsABlockOfItsOwn) {
    ExrArena arena;
    void* const first = arena.take(0);
    void* const second = arena.takeZeroed(0, 4);
    void* const third = arena.takeZeroed(4, 0);
    EXPECT_NE(first, nullptr);
    EXPECT_NE(second, first);
    EXPECT_NE(third, second);
}

TEST(ExrArena, ZeroedBlocksAreZero) {
    ExrArena arena;
    const auto* const bytes = static_cast<const std::uint8_t*>(arena.takeZeroed(3, 5));
    EXPECT_THAT(std::vector<std::uint8_t>(bytes, bytes + 15), testing::Each(0));
}

TEST(ExrArena, ACopyEndsWhereItsTextEnds) {
    ExrArena arena;
    EXPECT_STREQ(arena.takeCopy("half"), "half");
    EXPECT_STREQ(arena.takeCopy(""), "");
}

}  // namespace
