// mergeCrease as a script calls it: `text` is appended to `buffer1`.

#include <gmock/gmock.h>

#include <algorithm>
#include <string>

#include "support/Plugin.h"
#include "support/TempDir.h"

namespace {

class MergeCrease : public testing::Test {
protected:
    float merge(const std::string& text, const std::string& buffer1) const {
        Block block(buffer1);
        return plugin.call("mergeCrease", {.text = text.c_str(), .buffer1 = block});
    }

    const Plugin plugin;
    const TempDir dir;
    const std::string creases = dir.write("creases.Vemo", ByteList(100, 1));
    const std::string body = dir.write("body.Vemo", ByteList(50, 2));
};

TEST_F(MergeCrease, AppendsTheTextsFileToTheBuffers) {
    EXPECT_EQ(merge(creases, body), 0.0f);
    ByteList expected(36 + 86, 1);
    std::fill_n(expected.begin(), 36, std::uint8_t{2});
    EXPECT_EQ(readBytes(body), expected);
    EXPECT_EQ(readBytes(creases), ByteList(100, 1));
}

TEST_F(MergeCrease, TellsWhichFileIsMissing) {
    EXPECT_EQ(merge(dir.path("none"), body), -1760.0f);
    EXPECT_EQ(merge(creases, dir.path("none")), -2760.0f);
    EXPECT_EQ(readBytes(body), ByteList(50, 2));
}

TEST_F(MergeCrease, RefusesAFileWithoutAClosing) {
    EXPECT_EQ(merge(dir.write("short.Vemo", ByteList(13)), body), -18.0f);
    EXPECT_EQ(readBytes(body), ByteList(50, 2));
}

}  // namespace
