#include "encoders/exr/PizBlock.h"

#include <gtest/gtest.h>

#include <initializer_list>

#include "support/Append.h"

namespace {

// The code lengths of a Huffman code, 6 bits each, the first in the highest bits.
class Lengths {
public:
    Lengths& add(std::uint32_t number, int bits = 6) {
        for (int bit = bits - 1; bit >= 0; --bit) {
            if (used_ % 8 == 0) bytes_.push_back(0);
            bytes_.back() =
                static_cast<std::uint8_t>(bytes_.back() | (number >> bit & 1) << (7 - used_ % 8));
            ++used_;
        }
        return *this;
    }
    // As many unused symbols, 6 to 261.
    Lengths& skip(std::uint32_t symbols) { return add(63).add(symbols - 6, 8); }

    const ByteList& bytes() const { return bytes_; }

private:
    ByteList bytes_;
    int used_ = 0;
};

// A block in the making. Unless a setter says otherwise: no bitmap, the symbols 0 and 1 with codes
// of one bit, and eight bits of samples.
class Block {
public:
    Block& bitmap(std::uint16_t first, std::uint16_t last, std::size_t bytes) {
        return firstByte_ = first, lastByte_ = last, bitmapBytes_ = bytes, *this;
    }
    Block& symbols(std::uint32_t lowest, std::uint32_t highest) {
        return lowest_ = lowest, highest_ = highest, *this;
    }
    Block& sampleBits(std::uint32_t bits) { return sampleBits_ = bits, *this; }
    Block& code(const Lengths& lengths) { return code_ = lengths.bytes(), *this; }
    Block& samples(std::size_t bytes) { return samples_ = bytes, *this; }
    Block& announce(std::uint32_t length) { return announced_ = length, *this; }

    ByteList bytes() const {
        ByteList rest;
        appendLe32(rest, lowest_);
        appendLe32(rest, highest_);
        appendLe32(rest, 0);
        appendLe32(rest, sampleBits_);
        appendLe32(rest, 0);
        append(rest, code_);
        append(rest, ByteList(samples_, 0x55));

        ByteList all;
        appendLe16(all, firstByte_);
        appendLe16(all, lastByte_);
        append(all, ByteList(bitmapBytes_, 0xFF));
        appendLe32(all, announced_ > 0 ? announced_ : static_cast<std::uint32_t>(rest.size()));
        append(all, rest);
        return all;
    }

private:
    std::uint16_t firstByte_ = 8191;
    std::uint16_t lastByte_ = 0;
    std::size_t bitmapBytes_ = 0;
    std::uint32_t lowest_ = 0;
    std::uint32_t highest_ = 1;
    std::uint32_t sampleBits_ = 8;
    ByteList code_ = Lengths().add(1).add(1).bytes();
    std::size_t samples_ = 1;
    std::uint32_t announced_ = 0;
};

bool isSound(const ByteList& bytes) {
    return isSoundPizBlock({bytes.data(), bytes.size()});
}
bool isSound(const Block& block) {
    return isSound(block.bytes());
}

TEST(PizBlock, IsSoundWithOrWithoutABitmap) {
    EXPECT_TRUE(isSound(Block()));
    EXPECT_TRUE(isSound(Block().bitmap(3, 3, 1)));
    EXPECT_TRUE(isSound(Block().bitmap(0, 8191, 8192)));
}

TEST(PizBlock, ABitmapOfMoreThan8192BytesIsRefused) {
    EXPECT_FALSE(isSound(Block().bitmap(0, 8192, 8193)));
    EXPECT_FALSE(isSound(Block().bitmap(9000, 8192, 0)));
}

TEST(PizBlock, EveryTruncatedLengthIsRefused) {
    const ByteList whole = Block().bitmap(2, 4, 3).bytes();
    for (std::size_t length = 0; length < whole.size(); ++length) {
        const ByteList cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length));
        EXPECT_FALSE(isSound(cut)) << length;
    }
}

TEST(PizBlock, TheRestHasAtLeastItsHeader) {
    EXPECT_FALSE(isSound(Block().announce(19)));
    EXPECT_FALSE(isSound(Block().announce(20)));  // no code
    EXPECT_FALSE(isSound(Block().announce(24)));  // one byte more than there is
}

// The loader counts bits in an int. Nothing after the length of such a block is read.
TEST(PizBlock, MoreBitsThanAnIntCountsAreRefused) {
    const ByteList head = Block().announce(1u << 28).bytes();
    EXPECT_FALSE(isSoundPizBlock({head.data(), std::size_t{1} << 29}));
}

TEST(PizBlock, SymbolsAreInOrderAndAtMost65536) {
    EXPECT_FALSE(isSound(Block().symbols(1, 0)));
    EXPECT_FALSE(isSound(Block().symbols(65536, 65537)));
    EXPECT_TRUE(isSound(Block().symbols(65535, 65536)));
    const Lengths twoOfThree = Lengths().add(1).add(1).add(0);
    EXPECT_FALSE(isSound(Block().symbols(65535, 65537).code(twoOfThree)));
}

TEST(PizBlock, SamplesHaveBitsAndTheBytesForThem) {
    EXPECT_FALSE(isSound(Block().sampleBits(0)));
    EXPECT_TRUE(isSound(Block().sampleBits(1)));
    EXPECT_FALSE(isSound(Block().sampleBits(9)));
    EXPECT_TRUE(isSound(Block().sampleBits(9).samples(2)));
}

TEST(PizBlock, RunsOfUnusedSymbolsEndWithTheLast) {
    // A run of 2 to 5, then one code.
    for (std::uint32_t run = 2; run <= 5; ++run) {
        const Lengths code = Lengths().add(57 + run).add(1).add(1);
        EXPECT_TRUE(isSound(Block().symbols(0, run + 1).code(code))) << run;
        EXPECT_FALSE(isSound(Block().symbols(0, run - 2).code(code))) << run;
    }
    const Lengths longRun = Lengths().add(1).add(1).skip(261);
    EXPECT_TRUE(isSound(Block().symbols(0, 262).code(longRun)));
    EXPECT_FALSE(isSound(Block().symbols(0, 261).code(longRun)));
    EXPECT_TRUE(isSound(Block().symbols(0, 7).code(Lengths().add(1).add(1).skip(6))));
}

TEST(PizBlock, CodesOfUnlikeLengthsArePrefixFree) {
    const auto code = [](std::initializer_list<std::uint32_t> lengths) {
        Lengths all;
        for (const std::uint32_t length : lengths)
            all.add(length);
        return Block().symbols(0, static_cast<std::uint32_t>(lengths.size()) - 1).code(all);
    };
    EXPECT_TRUE(isSound(code({1, 2, 3, 3})));
    EXPECT_TRUE(isSound(code({3, 1, 3, 2})));
    EXPECT_TRUE(isSound(code({0, 0})));         // no symbol is used
    EXPECT_FALSE(isSound(code({1, 2, 3, 4})));  // no code ends the tree
    EXPECT_FALSE(isSound(code({1, 1, 1, 1})));  // more codes than one bit has
    EXPECT_FALSE(isSound(code({1, 1, 2, 2})));
}

TEST(PizBlock, CodesHaveUpTo58Bits) {
    Lengths code;
    for (std::uint32_t length = 1; length <= 58; ++length)
        code.add(length);
    EXPECT_TRUE(isSound(Block().symbols(0, 58).code(code.add(58))));
}

// 2^k codes of 14 + k bits fill one slot, and one code of each length from 14 down to 1 the rest.
Block oneSlotOf(std::uint32_t bitsBeyondTheSlot) {
    Lengths code;
    const std::uint32_t codes = std::uint32_t{1} << bitsBeyondTheSlot;
    for (std::uint32_t i = 0; i < codes; ++i)
        code.add(14 + bitsBeyondTheSlot);
    for (std::uint32_t length = 1; length <= 14; ++length)
        code.add(length);
    return Block().symbols(0, codes + 13).code(code);
}

TEST(PizBlock, MoreThan4096CodesThatBeginAlikeAreRefused) {
    EXPECT_TRUE(isSound(oneSlotOf(12)));
    EXPECT_FALSE(isSound(oneSlotOf(13)));
}

TEST(PizBlock, LongCodesThatBeginUnlikeMayBeMore) {
    Lengths code;
    code.add(1);  // half of all codes; the others are two to a slot
    for (int i = 0; i < 16384; ++i)
        code.add(15);
    EXPECT_TRUE(isSound(Block().symbols(0, 16384).code(code)));
}

}  // namespace
