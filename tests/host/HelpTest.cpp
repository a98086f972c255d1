#include <gtest/gtest.h>

#include <cstdlib>

namespace {

TEST(Host, HelpSucceeds) {
    EXPECT_EQ(std::system(QUILLON_HOST " --help > /dev/null"), 0);
}

}  // namespace
