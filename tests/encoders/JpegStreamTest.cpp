// How codes become bytes. JpegTest and JpegGoldenTest show the rest of a stream in whole files.

#include "encoders/jpeg/JpegStream.h"

#include <gmock/gmock.h>

#include "encoders/jpeg/JpegTables.h"
#include "support/TempDir.h"

namespace {

using testing::ElementsAre;

ByteList stuffedBytes(const ByteList& coded) {
    ByteList memory(2 * coded.size());
    std::uint8_t* const end = stuffed(coded.data(), coded.size(), memory.data());
    memory.resize(static_cast<std::size_t>(end - memory.data()));
    return memory;
}

TEST(JpegBits, AreWrittenHighestFirst) {
    ByteList memory(16);
    BitWriter bits(memory.data());
    bits.writebits(0b101, 3);
    bits.writebits(bitstring{5, 0b00110});
    bits.writebits(0x12345, 20);
    bits.writebits(bitstring{});
    bits.writebits(0x678, 12);
    bits.writebits(0xFEDCBA98, 32);
    memory.resize(static_cast<std::size_t>(bits.next() - memory.data()));
    EXPECT_THAT(memory, ElementsAre(0xA6, 0x12, 0x34, 0x56, 0x78, 0xFE, 0xDC, 0xBA, 0x98));
}

// As many bits as the magnitude has, and 16 for a sign.
TEST(JpegTables, HaveACategoryForEachValueThatAPictureCanHave) {
    EXPECT_EQ(lookUpSignedCategory(0), 0);
    EXPECT_EQ(lookUpSignedCategory(1), 1);
    EXPECT_EQ(lookUpSignedCategory(-1), 17);
    EXPECT_EQ(lookUpSignedCategory(1024), 11);
    EXPECT_EQ(lookUpSignedCategory(2047), 11);
    EXPECT_EQ(lookUpSignedCategory(-2047), 27);
}

TEST(JpegBits, AZeroFollowsEveryByteOfOnes) {
    EXPECT_THAT(stuffedBytes({0x12, 0xFF, 0xFF, 0xFE, 0x0F, 0xF0, 0x7F}),
                ElementsAre(0x12, 0xFF, 0x00, 0xFF, 0x00, 0xFE, 0x0F, 0xF0, 0x7F));
}

TEST(JpegBits, AreStuffedAtEveryPlaceOfEveryLength) {
    for (std::size_t length = 0; length <= 40; ++length) {
        EXPECT_EQ(stuffedBytes(ByteList(length, 0xFE)), ByteList(length, 0xFE));
        for (std::size_t place = 0; place < length; ++place) {
            ByteList coded(length, 0x80);
            coded[place] = 0xFF;
            ByteList expected = coded;
            expected.insert(expected.begin() + static_cast<std::ptrdiff_t>(place) + 1, 0x00);
            EXPECT_EQ(stuffedBytes(coded), expected) << place << " of " << length;
        }
    }
}

}  // namespace
