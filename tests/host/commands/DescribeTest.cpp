#include <gmock/gmock.h>

#include "host/Quillon.h"

namespace {

using ::testing::HasSubstr;
using ::testing::StartsWith;

// What the reference says is compared with docs/exports.md.
TEST(Describe, PrintsTheSectionOfTheReference) {
    const Ended section = quillon({"describe", "getUVsMask"});
    EXPECT_EQ(section.exitStatus, 0);
    EXPECT_THAT(section.out, StartsWith("### getUVsMask\n\nWrites a mesh once per tile"));
    EXPECT_THAT(section.out, HasSubstr("\nWhen it fails: "));
    EXPECT_THAT(quillon({"reference"}).out, HasSubstr(section.out));
}

}  // namespace
