#include "encoders/exr/ExrArena.h"

#include <gmock/gmock.h>

#include <cstdint>
#include <vector>

namespace {

// The loader frees some blocks twice, and some that it never allocated.
TEST(ExrArena, ReleasingABlockTwiceDoesNothing) {
    ExrArena arena;
    void* const block = arena.allocate(16);
    arena.release(block);
    arena.release(block);
    arena.release(nullptr);
    ExrArena other;
    char* const text = other.copyOf("other");
    arena.release(text);
    EXPECT_STREQ(text, "other");
}

TEST(ExrArena, ABlockOfNoBytesIsABlockOfItsOwn) {
    ExrArena arena;
    void* const first = arena.allocate(0);
    void* const second = arena.allocateZeroed(0, 4);
    void* const third = arena.allocateZeroed(4, 0);
    EXPECT_NE(first, nullptr);
    EXPECT_NE(second, first);
    EXPECT_NE(third, second);
}

TEST(ExrArena, ZeroedBlocksAreZero) {
    ExrArena arena;
    const auto* const bytes = static_cast<const std::uint8_t*>(arena.allocateZeroed(3, 5));
    EXPECT_THAT(std::vector<std::uint8_t>(bytes, bytes + 15), testing::Each(0));
}

TEST(ExrArena, ACopyEndsWhereItsTextEnds) {
    ExrArena arena;
    EXPECT_STREQ(arena.copyOf("half"), "half");
    EXPECT_STREQ(arena.copyOf(""), "");
}

}  // namespace
