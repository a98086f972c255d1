#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <numeric>
#include <string>

#include "mesh/VemoOps.h"
#include "support/Append.h"
#include "support/TempDir.h"
#include "support/VemoBuilder.h"

namespace {

using testing::ElementsAre;

// Bytes that tell their place.
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

TEST_F(MergeFiles, TwoFilesOf100BytesBecome172) {
    EXPECT_EQ(merge(counting(100, 0), counting(100, 100)), 0.0f);
    ByteList expected = counting(86, 100);
    append(expected, counting(86, 0));
    EXPECT_EQ(expected.size(), 172u);
    EXPECT_EQ(merged(), expected);
    EXPECT_EQ(readBytes(dir.path("first.Vemo")), counting(100, 0));
}

TEST_F(MergeFiles, OfEachClosingTwoBytesStay) {
    const VemoBuilder creases = VemoBuilder().groups({7});
    const VemoBuilder body = VemoBuilder().vertices({{1, 2, 3}});
    EXPECT_EQ(merge(VemoBuilder(creases).closing().bytes(), VemoBuilder(body).closing().bytes()),
              0.0f);
    ByteList expected = body.bytes();
    append(expected, {0, 0});
    append(expected, creases.bytes());
    append(expected, {0, 0});
    EXPECT_EQ(merged(), expected);
}

TEST_F(MergeFiles, AShorterResultLeavesNothingOfTheFileBefore) {
    EXPECT_EQ(merge(counting(14, 0), counting(100, 0)), 0.0f);
    EXPECT_EQ(merged(), counting(86, 0));
}

// 14 bytes are all that a file loses.
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

TEST_F(MergeFiles, AMissingFirstFileLeavesTheSecondAsItWas) {
    const std::string second = dir.write("second.Vemo", counting(100, 0));
    EXPECT_EQ(merge(dir.path("none"), second), -1760.0f);
    EXPECT_EQ(merged(), counting(100, 0));
}

TEST_F(MergeFiles, AMissingSecondFileIsNotCreated) {
    const std::string first = dir.write("first.Vemo", counting(100, 0));
    EXPECT_EQ(merge(first, dir.path("second.Vemo")), -2760.0f);
    EXPECT_EQ(merge(dir.path("none"), dir.path("second.Vemo")), -2760.0f);
    EXPECT_THAT(dir.names(), ElementsAre("first.Vemo"));
}

TEST_F(MergeFiles, AFolderIsNoMeshFile) {
    const std::string file = dir.write("second.Vemo", counting(100, 0));
    EXPECT_EQ(merge(dir.path(), file), -1760.0f);
    EXPECT_EQ(merge(file, dir.path()), -2760.0f);
}

TEST_F(MergeFiles, AFileMergedWithItselfIsDoubled) {
    const std::string both = dir.write("second.Vemo", counting(100, 0));
    EXPECT_EQ(merge(both, both), 0.0f);
    ByteList expected = counting(86, 0);
    append(expected, counting(86, 0));
    EXPECT_EQ(merged(), expected);
}

TEST_F(MergeFiles, ASecondFileThatMayOnlyBeReadStaysAsItWas) {
    const std::string first = dir.write("first.Vemo", counting(100, 0));
    const std::string second = dir.write("second.Vemo", counting(100, 0));
    ASSERT_EQ(::chmod(dir.path().c_str(), 0755), 0);
    ASSERT_EQ(::chmod(second.c_str(), 0444), 0);
    const uid_t user = ::geteuid();
    if (user == 0) {
        ASSERT_EQ(::seteuid(65534), 0);  // root may write anything
    }
    const float status = merge(first, second);
    if (user == 0) {
        ASSERT_EQ(::seteuid(0), 0);
    }
    EXPECT_EQ(status, -3760.0f);
    EXPECT_EQ(merged(), counting(100, 0));
}

}  // namespace
