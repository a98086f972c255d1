#include <gmock/gmock.h>

#include <numeric>
#include <string>

#include "mesh/VemoOps.h"
#include "support/Append.h"
#include "support/TempDir.h"

namespace {

using testing::ElementsAre;

// Bytes that differ from place to place.
ByteList counting(std::size_t count, std::uint8_t first) {
    ByteList bytes(count);
    std::iota(bytes.begin(), bytes.end(), first);
    return bytes;
}

class MergeFiles : public testing::Test {
protected:
    float merge(const ByteList& first, const ByteList& second) const {
        return merge(dir.write("first.Vemo", first), dir.write("second.Vemo", second));
    }
    static float merge(const std::string& first, std::string second) {
        return mergeFiles(first.c_str(), second.data());
    }
    ByteList merged() const { return readBytes(dir.path("second.Vemo")); }

    const TempDir dir;
};

// Of the 16 bytes of each closing header 14 are dropped.
TEST_F(MergeFiles, TwoFilesOf100BytesBecome172) {
    EXPECT_EQ(merge(counting(100, 0), counting(100, 100)), 0.0f);
    ByteList expected = counting(86, 100);
    append(expected, counting(86, 0));
    EXPECT_EQ(expected.size(), 172u);
    EXPECT_EQ(merged(), expected);
    EXPECT_EQ(readBytes(dir.path("first.Vemo")), counting(100, 0));
}

TEST_F(MergeFiles, AFileTooShortIsRefusedBeforeAnythingIsWritten) {
    for (std::size_t length = 0; length <= 32; ++length) {
        SCOPED_TRACE(length);
        const ByteList brief = counting(length, 1);
        const ByteList other = counting(20, 50);
        const bool longEnough = length >= 14;
        EXPECT_EQ(merge(brief, other), longEnough ? 0.0f : -18.0f);
        EXPECT_EQ(merged().size(), longEnough ? length - 8 : 20u);
        EXPECT_EQ(readBytes(dir.path("first.Vemo")), brief);
        EXPECT_EQ(merge(other, brief), longEnough ? 0.0f : -18.0f);
        EXPECT_EQ(merged().size(), longEnough ? length - 8 : length);
        EXPECT_EQ(readBytes(dir.path("first.Vemo")), other);
    }
}

TEST_F(MergeFiles, EachFileThatCannotBeOpenedHasAStatusOfItsOwn) {
    const std::string file = dir.write("first.Vemo", counting(100, 0));
    EXPECT_EQ(merge(dir.path("none"), file), -1760.0f);
    EXPECT_EQ(merge(dir.path(), file), -1760.0f) << "a folder";
    EXPECT_EQ(merge(file, dir.path("none")), -2760.0f);
    EXPECT_EQ(merge(file, dir.path()), -2760.0f) << "a folder";
    EXPECT_EQ(merge(dir.path("none"), dir.path("none")), -2760.0f);
    EXPECT_THAT(dir.names(), ElementsAre("first.Vemo"));
    EXPECT_EQ(readBytes(file), counting(100, 0));
}

TEST_F(MergeFiles, AFileMergedWithItselfIsDoubled) {
    const std::string both = dir.write("second.Vemo", counting(100, 0));
    EXPECT_EQ(merge(both, both), 0.0f);
    ByteList expected = counting(86, 0);
    append(expected, counting(86, 0));
    EXPECT_EQ(merged(), expected);
}

}  // namespace
