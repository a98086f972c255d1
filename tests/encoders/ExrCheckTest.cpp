#include "encoders/exr/ExrCheck.h"

#include <gtest/gtest.h>

#include <string_view>
#include <vector>

namespace {

using ByteList = std::vector<std::uint8_t>;

void put(ByteList& bytes, std::uint64_t value, int count) {
    for (int i = 0; i < count; ++i)
        bytes.push_back(static_cast<std::uint8_t>(value >> 8 * i));
}

void put(ByteList& bytes, std::string_view text) {
    bytes.insert(bytes.end(), text.begin(), text.end());
    bytes.push_back(0);
}

ByteList numbers(std::initializer_list<std::int64_t> values) {
    ByteList bytes;
    for (const std::int64_t value : values)
        put(bytes, static_cast<std::uint64_t>(value), 4);
    return bytes;
}

// A file in the making, one attribute after the other.
class ExrFile {
public:
    explicit ExrFile(bool tiled) {
        put(bytes_, tiled ? 0x00000202'01312F76 : 0x00000002'01312F76, 8);
    }

    ExrFile& attribute(std::string_view name, const ByteList& value) {
        put(bytes_, name);
        put(bytes_, "type");
        put(bytes_, value.size(), 4);
        bytes_.insert(bytes_.end(), value.begin(), value.end());
        return *this;
    }
    // One channel of floats named "Y".
    ExrFile& channels() {
        return attribute("channels", {'Y', 0, 2, 0, 0, 0, 0, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 0});
    }
    ExrFile& window(std::int32_t right, std::int32_t bottom) {
        return attribute("dataWindow", numbers({0, 0, right, bottom}));
    }
    ExrFile& tiles(std::uint32_t width, std::uint32_t height) {
        ByteList value = numbers({width, height});
        value.push_back(0);
        return attribute("tiles", value);
    }
    // All that a picture needs, uncompressed: this one is 1 x 2 pixels, a row a chunk.
    ExrFile& whole() {
        return channels().attribute("compression", {0}).window(0, 1).attribute("lineOrder", {0});
    }
    // The header's end, the table, and chunks of 4 bytes, each with its place before its length.
    ExrFile& chunks(const std::vector<ByteList>& places, std::uint32_t length = 4) {
        bytes_.push_back(0);
        std::uint64_t offset = bytes_.size() + 8 * places.size();
        for (const ByteList& place : places) {
            put(bytes_, offset, 8);
            offset += place.size() + 4 + 4;
        }
        for (const ByteList& place : places) {
            bytes_.insert(bytes_.end(), place.begin(), place.end());
            put(bytes_, length, 4);
            put(bytes_, 0, 4);
        }
        return *this;
    }
    ExrFile& rows() { return chunks({numbers({0}), numbers({1})}); }

    int check() const { return check(bytes_); }
    static int check(ByteList bytes) {
        ExrLayout layout;
        return checkExr(bytes, layout);
    }
    const ByteList& bytes() const { return bytes_; }

private:
    ByteList bytes_;
};

ExrFile scanlines() {
    return ExrFile(false);
}

TEST(ExrCheck, AFileOfTwoRowsIsSound) {
    ByteList file = scanlines().whole().rows().bytes();
    ExrLayout layout;
    EXPECT_EQ(checkExr(file, layout), 0);
    EXPECT_FALSE(layout.tiled);
    EXPECT_TRUE(layout.increasingRows);
    EXPECT_EQ(layout.width, 1);
    EXPECT_EQ(layout.height, 2);
    EXPECT_EQ(layout.chunkRows, 1);
    EXPECT_EQ(layout.firstPixelType, 2u);
}

TEST(ExrCheck, EveryTruncatedLengthIsRefused) {
    const ByteList whole = scanlines().whole().rows().bytes();
    for (std::size_t length = 8; length < whole.size(); ++length) {
        const ByteList cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length));
        EXPECT_LT(ExrFile::check(cut), 0) << length;
    }
}

// Two rows of 12 bytes each end the file, and the table before them has 8 bytes for each.
TEST(ExrCheck, ATableWithZerosIsFilledIn) {
    const ByteList whole = scanlines().whole().rows().bytes();
    const std::size_t table = whole.size() - 2 * 12 - 2 * 8;
    ExrLayout layout;
    for (const std::size_t zeroed : {table, table + 8}) {
        ByteList file = whole;
        std::fill_n(file.begin() + static_cast<std::ptrdiff_t>(zeroed), 8, std::uint8_t{0});
        EXPECT_EQ(checkExr(file, layout), 0);
        EXPECT_EQ(file, whole);
    }
}

// A row that the picture does not have, one that comes twice, and one that leaves the file.
TEST(ExrCheck, ATableIsNotFilledInFromChunksThatAreNotThere) {
    const ByteList whole = scanlines().whole().rows().bytes();
    const std::size_t table = whole.size() - 2 * 12 - 2 * 8;
    ByteList zeros = whole;
    std::fill_n(zeros.begin() + static_cast<std::ptrdiff_t>(table), 16, std::uint8_t{0});
    EXPECT_EQ(ExrFile::check(zeros), 0);
    const std::size_t firstRow = table + 16;
    for (const auto& [at, value] : {std::pair<std::size_t, int>{firstRow, 2},
                                    {firstRow, 1},
                                    {firstRow + 4, 5},
                                    {firstRow + 7, 0x7F},
                                    {firstRow + 3, 0x80}}) {
        ByteList bent = zeros;
        bent[at] = static_cast<std::uint8_t>(value);
        EXPECT_EQ(ExrFile::check(bent), -4) << at << ' ' << value;
    }
}

// The loader would join the two lists.
TEST(ExrCheck, ASecondListOfChannelsIsRefused) {
    EXPECT_EQ(scanlines().channels().whole().rows().check(), -4);
}

TEST(ExrCheck, TilesOfAFileWithoutTilesAreNotLookedAt) {
    EXPECT_EQ(scanlines().tiles(0, 0).whole().rows().check(), 0);
}

TEST(ExrCheck, TheChunkCountIsRightOrNotThere) {
    const auto counting = [](std::int32_t count) {
        return scanlines().attribute("chunkCount", numbers({count})).whole().rows().check();
    };
    EXPECT_EQ(counting(2), 0);
    EXPECT_EQ(counting(1), -4);
    EXPECT_EQ(counting(3), -4);
    EXPECT_EQ(counting(0), 0);
    EXPECT_EQ(counting(-1), 0);
}

TEST(ExrCheck, MoreThan1000AttributesAreRefused) {
    ExrFile file = scanlines().whole();
    for (int i = 4; i < 1000; ++i)
        file.attribute("comment", {1});
    EXPECT_EQ(ExrFile(file).rows().check(), 0);
    EXPECT_EQ(ExrFile(file).attribute("comment", {1}).rows().check(), -4);
}

TEST(ExrCheck, EachAttributeThatAPictureNeedsIsThere) {
    const ByteList none = {0};
    EXPECT_EQ(scanlines()
                  .attribute("compression", none)
                  .window(0, 1)
                  .attribute("lineOrder", none)
                  .rows()
                  .check(),
              -9);
    EXPECT_EQ(scanlines().channels().window(0, 1).attribute("lineOrder", none).rows().check(), -9);
    EXPECT_EQ(scanlines()
                  .channels()
                  .attribute("compression", none)
                  .attribute("lineOrder", none)
                  .rows()
                  .check(),
              -9);
    EXPECT_EQ(scanlines().channels().attribute("compression", none).window(0, 1).rows().check(),
              -9);
    EXPECT_EQ(ExrFile(true).whole().chunks({numbers({0, 0, 0, 0})}).check(), -9);  // no tiles
}

TEST(ExrCheck, AChunkHasTheBytesOfItsRow) {
    EXPECT_EQ(scanlines().whole().chunks({numbers({0}), numbers({1})}, 3).check(), -4);
    EXPECT_EQ(scanlines().whole().chunks({numbers({0}), numbers({1})}, 1).check(), -4);
    EXPECT_EQ(scanlines().whole().chunks({numbers({0}), numbers({2})}).check(), -4);
}

TEST(ExrCheck, APictureBeyondItsFileIsRefused) {
    const ExrFile file =
        scanlines().channels().attribute("compression", {0}).attribute("lineOrder", {0});
    EXPECT_EQ(ExrFile(file).window(1 << 21, 1 << 21).rows().check(), -4);
    EXPECT_EQ(ExrFile(file).window((1 << 21) + 1, 1).rows().check(), -4);
}

TEST(ExrCheck, TilesBeyondTheirFileAreRefused) {
    const auto tiled = [](std::uint32_t width, std::uint32_t height) {
        return ExrFile(true).whole().tiles(width, height).chunks({numbers({0, 0, 0, 0})}, 8);
    };
    ExrFile file = tiled(1, 2);
    EXPECT_EQ(file.check(), -4);  // the last 4 bytes are missing
    ByteList bytes = file.bytes();
    bytes.insert(bytes.end(), 4, 0);
    EXPECT_EQ(ExrFile::check(bytes), 0);

    bytes = tiled(1 << 20, 1 << 20).bytes();
    bytes.insert(bytes.end(), 4, 0);
    EXPECT_EQ(ExrFile::check(bytes), -4);  // 4 TiB for a tile
}

}  // namespace
