#include "mesh/VemoFile.h"

#include <gmock/gmock.h>

#include "bytes/Bytes.h"
#include "support/TempDir.h"
#include "support/VemoBuilder.h"

namespace {

constexpr auto kGuarded = ZeroLength::kCountsAs16;
constexpr auto kPlain = ZeroLength::kEndsSearch;

char byte(int value) {
    return static_cast<char>(value);
}

TEST(VemoReaders, AreLittleEndianAndOnlyShortsAreSigned) {
    EXPECT_EQ(readUnInt(byte(0xFE), byte(0x80), byte(0x00), byte(0xFF)), 0xFF0080FEu);
    EXPECT_EQ(readaFloat(byte(0x00), byte(0x00), byte(0x80), byte(0xBF)), -1.0f);
    EXPECT_EQ(readanInt(byte(0xFF)), 255);
    EXPECT_EQ(readShort(byte(0xFF), byte(0x00)), 255);
    EXPECT_EQ(readShort(byte(0x00), byte(0x80)), -32768);
}

class VemoFileTest : public testing::Test {
protected:
    VemoFile fileOf(const ByteList& bytes) const {
        return VemoFile(dir.write("m.Vemo", bytes).c_str());
    }
    bool hasElements(const ByteList& mesh, std::size_t elementBytes) const {
        return fileOf(mesh).elementsOf(32, elementBytes).has_value();
    }

    const TempDir dir;
};

TEST_F(VemoFileTest, ReadsTheLastByteOnceMoreAndZeroBehindIt) {
    for (const bool kept : {false, true}) {
        VemoFile mesh = fileOf({1, 2, 3, 4, 7});
        ASSERT_TRUE(mesh.isGood());
        if (kept) {
            ASSERT_TRUE(mesh.keep());
            EXPECT_EQ(ByteList(mesh.data(), mesh.data() + 6), (ByteList{1, 2, 3, 4, 7, 7}));
        }
        EXPECT_EQ(mesh.size(), 6u);
        EXPECT_EQ(mesh.le32(0), 0x04030201u);
        EXPECT_EQ(mesh.le32(2), 0x07070403u);
        EXPECT_EQ(mesh.le32(4), 0x00000707u);
        EXPECT_EQ(mesh.le32(6), 0u);
        EXPECT_EQ(mesh.le32(1), 0x07040302u);
    }
}

// 200,000 elements of 2 bytes are more than one piece; the last one shares the repeated byte.
TEST_F(VemoFileTest, HandsOutAllElementsInOrder) {
    ByteList bytes;
    for (std::uint32_t i = 0; i < 200000; ++i) {
        bytes.push_back(static_cast<std::uint8_t>(i));
        bytes.push_back(static_cast<std::uint8_t>(i >> 8));
    }
    bytes.pop_back();
    for (const bool kept : {false, true}) {
        VemoFile mesh = fileOf(bytes);
        ASSERT_EQ(kept && !mesh.keep(), false);
        std::uint32_t next = 0;
        const auto check = [&](const std::uint8_t* element, std::size_t count) {
            for (std::size_t i = 0; i + 1 < count; ++i, ++next, element += 2)
                ASSERT_EQ(loadLe16(element), next % 65536);
            if (next == 199999) {
                EXPECT_EQ(loadLe16(element), 0x3F3F);
            }
            ++next;
        };
        EXPECT_TRUE(mesh.forEachElement({0, 200000}, 2, check));
        EXPECT_EQ(next, 200000u);
    }
}

TEST_F(VemoFileTest, FindsChunksByTheLengths) {
    const VemoBuilder none;
    const VemoBuilder twoChunks = VemoBuilder().vertices({{1, 2, 3}}).faces({{0, 0, 0, -1}});
    const VemoBuilder zeroLength = VemoBuilder().chunk(7, 0, 0).groups({1});
    const VemoBuilder backwards = VemoBuilder().chunk(7, 16, 0).chunk(8, 0xFFFFFFF0, 0);
    const struct {
        const char* what;
        const VemoBuilder& mesh;
        std::uint32_t id;
        std::uint32_t start;
        ZeroLength zeroLength;
        std::optional<std::uint32_t> found;
    } rows[] = {
        {"a first chunk, whatever its length", zeroLength, 7, 32, kPlain, 32},
        {"a later chunk", twoChunks, 20001, 32, kPlain, 60},
        {"the chunk at the start of the search", twoChunks, 20001, 60, kGuarded, 60},
        {"a chunk before the start", twoChunks, 10001, 60, kGuarded, {}},
        {"a chunk after a zero length, guarded", zeroLength, 40001, 32, kGuarded, 48},
        {"a chunk after a zero length, plain", zeroLength, 40001, 32, kPlain, {}},
        {"a length that would lead backwards", backwards, 40001, 32, kGuarded, {}},
        {"no chunk", none, 10001, 32, kGuarded, {}},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(fileOf(row.mesh.bytes()).findChunk(row.id, row.start, row.zeroLength), row.found)
            << row.what;
    }
}

TEST_F(VemoFileTest, ACountBeyondTheFileIsRefused) {
    const ByteList threeGroups = {1, 0, 2, 0, 3, 0};
    EXPECT_TRUE(hasElements(VemoBuilder().chunk(40001, 22, 3, threeGroups).bytes(), 2));
    EXPECT_FALSE(hasElements(VemoBuilder().chunk(40001, 22, 4, threeGroups).bytes(), 2));
    EXPECT_FALSE(hasElements(VemoBuilder().chunk(40001, 22, 0xFFFFFFFF, threeGroups).bytes(), 32));
}

// The repeated byte completes a header that lacks one.
TEST_F(VemoFileTest, AHeaderCutShortIsRefused) {
    const ByteList mesh = VemoBuilder().groups({}).bytes();
    EXPECT_TRUE(hasElements(firstBytes(mesh, 32 + 15), 2));
    EXPECT_FALSE(hasElements(firstBytes(mesh, 32 + 14), 2));
}

}  // namespace
