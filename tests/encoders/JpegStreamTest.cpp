#include "encoders/jpeg/JpegStream.h"

#include <gmock/gmock.h>

#include <functional>

#include "support/Faults.h"
#include "support/TempDir.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

ByteList stuffedBytes(const ByteList& coded) {
    ByteList memory(2 * coded.size());
    std::uint8_t* const end = stuffed(coded.data(), coded.size(), memory.data());
    memory.resize(static_cast<std::size_t>(end - memory.data()));
    return memory;
}

// What bits become in a file.
ByteList written(const std::function<void(BitWriter&)>& write) {
    ByteList memory(64);
    BitWriter bits(memory.data());
    write(bits);
    memory.resize(static_cast<std::size_t>(bits.next() - memory.data()));
    return stuffedBytes(memory);
}

TEST(JpegBits, AreWrittenHighestFirst) {
    EXPECT_THAT(written([](BitWriter& bits) {
                    bits.writebits(0b101, 3);
                    bits.writebits(bitstring{5, 0b00110});
                    bits.writebits(0x1234, 16);
                    bits.writebits(0x56, 8);
                }),
                ElementsAre(0xA6, 0x12, 0x34, 0x56));
}

TEST(JpegBits, OfNoLengthWriteNothing) {
    EXPECT_THAT(written([](BitWriter& bits) { bits.writebits(bitstring{}); }), IsEmpty());
    EXPECT_THAT(written([](BitWriter& bits) {
                    bits.writebits(0x12345, 20);
                    bits.writebits(bitstring{});
                    bits.writebits(0x678, 12);
                }),
                ElementsAre(0x12, 0x34, 0x56, 0x78));
}

TEST(JpegBits, AZeroFollowsEveryByteOfOnes) {
    EXPECT_THAT(written([](BitWriter& bits) { bits.writebits(0x12FF34FF, 32); }),
                ElementsAre(0x12, 0xFF, 0x00, 0x34, 0xFF, 0x00));
    EXPECT_THAT(written([](BitWriter& bits) { bits.writebits(0xFFFFFFFF, 32); }),
                ElementsAre(0xFF, 0x00, 0xFF, 0x00, 0xFF, 0x00, 0xFF, 0x00));
}

TEST(JpegBits, NoOtherByteIsFollowedByAZero) {
    EXPECT_THAT(written([](BitWriter& bits) { bits.writebits(0xFE7FFEFE, 32); }),
                ElementsAre(0xFE, 0x7F, 0xFE, 0xFE));
    EXPECT_THAT(written([](BitWriter& bits) { bits.writebits(0x0FF00FF0, 32); }),
                ElementsAre(0x0F, 0xF0, 0x0F, 0xF0));
}

TEST(JpegBits, ContinueAtAnotherPlace) {
    ByteList first(16);
    ByteList second(16);
    BitWriter bits(first.data());
    bits.writebits(0x123, 12);
    EXPECT_EQ(bits.next(), first.data() + 1);
    bits.continueAt(second.data());
    bits.writebits(0x4, 4);
    EXPECT_EQ(first[0], 0x12);
    EXPECT_EQ(second[0], 0x34);
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

TEST(JpegBits, TheLastByteIsFilledWithOnes) {
    EXPECT_THAT(written([](BitWriter& bits) {
                    bits.writebits(0b101, 3);
                    bits.fillLastByte();
                }),
                ElementsAre(0xBF));
    EXPECT_THAT(written([](BitWriter& bits) {
                    bits.writebits(0x7FFFFFFF, 31);
                    bits.fillLastByte();
                }),
                ElementsAre(0x7F + 0x80, 0x00, 0xFF, 0x00, 0xFF, 0x00, 0xFF, 0x00));
}

TEST(JpegBits, ThatEndOnAByteTakeAWholeByteOfOnes) {
    EXPECT_THAT(written([](BitWriter& bits) { bits.fillLastByte(); }), ElementsAre(0xFF, 0x00));
    EXPECT_THAT(written([](BitWriter& bits) {
                    bits.writebits(0x1234, 16);
                    bits.fillLastByte();
                }),
                ElementsAre(0x12, 0x34, 0xFF, 0x00));
    EXPECT_THAT(written([](BitWriter& bits) {
                    bits.writebits(0x12345678, 32);
                    bits.fillLastByte();
                }),
                ElementsAre(0x12, 0x34, 0x56, 0x78, 0xFF, 0x00));
}

TEST(JpegStream, BytesAndBitsFollowEachOther) {
    const TempDir dir;
    {
        JpegStream stream(dir.path("a").c_str());
        stream.append({0xFF, 0xDA});
        stream.bits().writebits(0xFF0, 12);
        stream.bits().fillLastByte();
        stream.append({0xFF, 0xD9});
        stream.flush();
    }
    EXPECT_THAT(readBytes(dir.path("a")), ElementsAre(0xFF, 0xDA, 0xFF, 0x00, 0x0F, 0xFF, 0xD9));
}

TEST(JpegStream, LongFilesAreWrittenWhole) {
    const TempDir dir;
    {
        JpegStream stream(dir.path("a").c_str());
        for (std::uint32_t i = 0; i < 300000; ++i) {
            stream.makeRoom();
            stream.bits().writebits(i, 24);
        }
        stream.bits().fillLastByte();
        stream.flush();
    }
    ByteList expected;
    for (std::uint32_t i = 0; i < 300000; ++i) {
        for (const std::uint32_t byte : {i >> 16, i >> 8 & 0xFF, i & 0xFF}) {
            expected.push_back(static_cast<std::uint8_t>(byte));
            if (byte == 0xFF) expected.push_back(0x00);
        }
    }
    expected.insert(expected.end(), {0xFF, 0x00});
    EXPECT_EQ(readBytes(dir.path("a")), expected);
}

TEST(JpegStream, AFullDiskGetsNothingMore) {
    const TempDir dir;
    const FullDisk full(3);
    JpegStream stream(dir.path("a").c_str());
    stream.append({1, 2, 3, 4});
    stream.flush();
    stream.append({5});
    stream.flush();
    EXPECT_THAT(readBytes(dir.path("a")), ElementsAre(1, 2, 3));
}

}  // namespace
