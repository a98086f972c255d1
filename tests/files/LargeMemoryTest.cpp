#include "files/LargeMemory.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

// Below and above the size from which large pages are asked for, and no whole number of pages.
TEST(LargeMemory, HoldsAllItsBytes) {
    for (const std::size_t bytes : {0u, 1u, 4194303u, 4194304u, 9000001u}) {
        const auto memory = largeMemory(bytes);
        ASSERT_NE(memory, nullptr);
        std::fill_n(memory.get(), bytes, std::uint8_t{7});
        EXPECT_EQ(std::count(memory.get(), memory.get() + bytes, 7),
                  static_cast<std::ptrdiff_t>(bytes));
    }
}

}  // namespace
