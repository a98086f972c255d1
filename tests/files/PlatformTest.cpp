#include <gtest/gtest.h>

#include "files/CocoaFileBrowser.h"

namespace {

TEST(OpenFileBrowser, ReturnsNothingWhereThereIsNoAppKit) {
    EXPECT_EQ(runCocoaOpenFileBrowser("Choose a mesh"), nullptr);
    EXPECT_EQ(runCocoaOpenFileBrowser(nullptr), nullptr);
}

}  // namespace
