#include "encoders/exr/ExrCheck.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <initializer_list>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "support/Append.h"

namespace {

ByteList numbers(std::initializer_list<std::int32_t> values) {
    ByteList bytes;
    for (const std::int32_t value : values)
        appendLe32(bytes, static_cast<std::uint32_t>(value));
    return bytes;
}

ByteList tiles(std::int32_t width, std::int32_t height) {
    ByteList value = numbers({width, height});
    value.push_back(0);
    return value;
}

int check(ByteList bytes) {
    ExrLayout layout;
    return checkExr(bytes, layout);
}

// A file in the making. Unless it is changed: 1 x 2 pixels, uncompressed, a row a chunk, with one
// channel of floats named "Y" and only the attributes that a picture needs.
struct ExrFile {
    bool tiled = false;
    std::vector<std::pair<std::string, ByteList>> attributes = {
        {"channels", {'Y', 0, 2, 0, 0, 0, 0, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 0}},
        {"compression", {0}},
        {"dataWindow", numbers({0, 0, 0, 1})},
        {"lineOrder", {0}},
    };
    std::vector<ByteList> places = {numbers({0}), numbers({1})};  // of the chunks
    std::uint32_t chunkBytes = 4;  // as claimed: each chunk has 4 bytes

    ExrFile& add(const std::string& name, const ByteList& value) {
        attributes.emplace_back(name, value);
        return *this;
    }
    ExrFile& without(const std::string& name) {
        std::erase_if(attributes, [&](const auto& attribute) { return attribute.first == name; });
        return *this;
    }

    ByteList bytes() const {
        ByteList file = {0x76, 0x2F, 0x31, 0x01, 2, static_cast<std::uint8_t>(tiled ? 2 : 0), 0, 0};
        for (const auto& [name, value] : attributes) {
            append(file, {name.begin(), name.end()});
            append(file, {0, 't', 'y', 'p', 'e', 0});
            appendLe32(file, static_cast<std::uint32_t>(value.size()));
            append(file, value);
        }
        file.push_back(0);
        std::size_t offset = file.size() + 8 * places.size();
        for (const ByteList& place : places) {
            appendLe32(file, static_cast<std::uint32_t>(offset));
            appendLe32(file, 0);
            offset += place.size() + 4 + 4;
        }
        for (const ByteList& place : places) {
            append(file, place);
            appendLe32(file, chunkBytes);
            appendLe32(file, 0);
        }
        return file;
    }
    int check() const { return ::check(bytes()); }
};

TEST(ExrCheck, AFileOfTwoRowsIsSound) {
    ByteList file = ExrFile().bytes();
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
    const ByteList whole = ExrFile().bytes();
    for (std::size_t length = 8; length < whole.size(); ++length) {
        const ByteList cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length));
        EXPECT_LT(check(cut), 0) << length;
    }
}

// What the file ends with: the table, 8 bytes a row, and two rows of 12 bytes.
constexpr std::size_t kTableAndRows = 2 * 8 + 2 * 12;

TEST(ExrCheck, ATableWithZerosIsFilledIn) {
    const ByteList whole = ExrFile().bytes();
    const std::size_t table = whole.size() - kTableAndRows;
    ExrLayout layout;
    for (const std::size_t zeroed : {table, table + 8}) {
        ByteList file = whole;
        std::fill_n(&file[zeroed], 8, std::uint8_t{0});
        EXPECT_EQ(checkExr(file, layout), 0);
        EXPECT_EQ(file, whole);
    }
}

// A row that the picture does not have, one that comes twice, and one that leaves the file.
TEST(ExrCheck, ATableIsNotFilledInFromChunksThatAreNotThere) {
    ByteList zeros = ExrFile().bytes();
    const std::size_t table = zeros.size() - kTableAndRows;
    std::fill_n(&zeros[table], 16, std::uint8_t{0});
    const std::size_t firstRow = table + 16;
    for (const auto& [at, value] : {std::pair<std::size_t, int>{firstRow, 2},
                                    {firstRow, 1},
                                    {firstRow + 4, 5},
                                    {firstRow + 7, 0x7F},
                                    {firstRow + 3, 0x80}}) {
        ByteList bent = zeros;
        bent[at] = static_cast<std::uint8_t>(value);
        EXPECT_EQ(check(bent), -4) << at << ' ' << value;
    }
}

// The loader would join the two lists.
TEST(ExrCheck, ASecondListOfChannelsIsRefused) {
    const auto channels = ExrFile().attributes.front();
    EXPECT_EQ(ExrFile().add(channels.first, channels.second).check(), -4);
}

TEST(ExrCheck, TilesOfAFileWithoutTilesAreNotLookedAt) {
    EXPECT_EQ(ExrFile().add("tiles", tiles(0, 0)).check(), 0);
}

TEST(ExrCheck, TheChunkCountIsRightOrMissing) {
    const auto counting = [](std::int32_t count) {
        return ExrFile().add("chunkCount", numbers({count})).check();
    };
    EXPECT_EQ(counting(2), 0);
    EXPECT_EQ(counting(1), -4);
    EXPECT_EQ(counting(3), -4);
    EXPECT_EQ(counting(0), 0);
    EXPECT_EQ(counting(-1), 0);
}

// Which kind of picture it is, the flags say. The loader must not see a type that says otherwise.
TEST(ExrCheck, TheTypeIsEmptiedForTheLoader) {
    ExrLayout layout;
    ByteList file =
        ExrFile().add("type", {'t', 'i', 'l', 'e', 'd', 'i', 'm', 'a', 'g', 'e'}).bytes();
    const ByteList emptied =
        ExrFile().add("type", {0, 'i', 'l', 'e', 'd', 'i', 'm', 'a', 'g', 'e'}).bytes();
    EXPECT_EQ(checkExr(file, layout), 0);
    EXPECT_EQ(file, emptied);

    file = ExrFile().add("type", {}).bytes();
    const ByteList without = file;
    EXPECT_EQ(checkExr(file, layout), 0);
    EXPECT_EQ(file, without);
}

TEST(ExrCheck, AnAttributeMayBeMostOfTheFile) {
    EXPECT_EQ(ExrFile().add("comment", ByteList(5000, 1)).check(), 0);
}

TEST(ExrCheck, MoreThan1000AttributesAreRefused) {
    ExrFile file;
    while (file.attributes.size() < 1000)
        file.add("comment", {1});
    EXPECT_EQ(file.check(), 0);
    EXPECT_EQ(file.add("comment", {1}).check(), -4);
}

TEST(ExrCheck, EachAttributeThatAPictureNeedsIsThere) {
    for (const char* name : {"channels", "compression", "dataWindow", "lineOrder"})
        EXPECT_EQ(ExrFile().without(name).check(), -9) << name;
    ExrFile withoutTiles;
    withoutTiles.tiled = true;
    EXPECT_EQ(withoutTiles.check(), -9);
}

// The loader would read a byte beyond it.
TEST(ExrCheck, ACompressionWithoutAValueIsRefused) {
    EXPECT_EQ(ExrFile().without("compression").add("compression", {}).check(), -4);
}

TEST(ExrCheck, AChunkHasTheBytesOfItsRow) {
    for (const std::uint32_t bytes : {1u, 3u, 0x80000004u}) {
        ExrFile file;
        file.chunkBytes = bytes;
        EXPECT_EQ(file.check(), -4) << bytes;
    }
    ExrFile otherRow;
    otherRow.places[1] = numbers({2});
    EXPECT_EQ(otherRow.check(), -4);
}

TEST(ExrCheck, APictureBeyondItsFileIsRefused) {
    const auto ending = [](std::int32_t right, std::int32_t bottom) {
        return ExrFile().without("dataWindow").add("dataWindow", numbers({0, 0, right, bottom}));
    };
    EXPECT_EQ(ending(0, 1).check(), 0);
    EXPECT_EQ(ending(1 << 21, 1 << 21).check(), -4);
    EXPECT_EQ(ending((1 << 21) + 1, 1).check(), -4);
}

TEST(ExrCheck, TilesBeyondTheirFileAreRefused) {
    const auto tiled = [](std::int32_t width, std::int32_t height) {
        ExrFile file;
        file.tiled = true;
        file.places = {numbers({0, 0, 0, 0})};
        file.chunkBytes = 8;
        return file.add("tiles", tiles(width, height)).bytes();
    };
    ByteList bytes = tiled(1, 2);
    EXPECT_EQ(check(bytes), -4);  // the last 4 bytes are missing
    append(bytes, {0, 0, 0, 0});
    EXPECT_EQ(check(bytes), 0);

    // A tile may take 64 MiB, and 2200 times the file's bytes.
    for (const auto& [width, height, status] :
         {std::tuple(4096, 4096, 0), {4096, 8192, -4}, {1 << 20, 1 << 20, -4}}) {
        bytes = tiled(width, height);
        append(bytes, {0, 0, 0, 0});
        EXPECT_EQ(check(bytes), status) << width;
    }
    bytes = tiled(4096, 8192);  // 128 MiB
    bytes.resize(30504);
    EXPECT_EQ(check(bytes), -4);
    bytes.resize(30505);
    EXPECT_EQ(check(bytes), 0);
}

// ZIP, 16 rows a chunk: what a chunk of a few bytes becomes is not known before.
TEST(ExrCheck, APictureMayTake64MiBAnd2200TimesItsFile) {
    const auto ofWidth = [](std::int32_t width, std::size_t commentBytes) {
        ExrFile file;
        file.without("compression").add("compression", {3});
        file.without("dataWindow").add("dataWindow", numbers({0, 0, width - 1, 15}));
        file.places = {numbers({0})};
        return file.add("comment", ByteList(commentBytes, 1)).bytes();
    };
    std::size_t commentBytes = 0;
    while (ofWidth(1, commentBytes).size() % 8 != 0)  // so that whole columns reach the limit
        ++commentBytes;
    const std::size_t samples = (67108864 + 2200 * ofWidth(1, commentBytes).size()) / 4;
    ASSERT_EQ(samples % 16, 0u);
    const auto most = static_cast<std::int32_t>(samples / 16);
    EXPECT_EQ(check(ofWidth(most, commentBytes)), 0);
    EXPECT_EQ(check(ofWidth(most + 1, commentBytes)), -4);
}

// Three tiles, one above the other, of which the table lacks the first. Before them is a chunk that
// would be the second, if tiles beside the picture were counted on.
TEST(ExrCheck, ATableIsNotFilledInFromTilesBesideThePicture) {
    ExrFile file;
    file.tiled = true;
    file.without("dataWindow").add("dataWindow", numbers({0, 0, 0, 2})).add("tiles", tiles(1, 1));
    file.places = {numbers({0, 0, 0, 0}), numbers({0, 1, 0, 0}), numbers({0, 2, 0, 0})};
    ByteList bytes = file.bytes();
    constexpr std::size_t kChunkBytes = 16 + 4 + 4;
    const auto chunks = bytes.end() - 3 * kChunkBytes;
    const auto table = chunks - 3 * 8;
    EXPECT_EQ(check(bytes), 0);
    table[8] = static_cast<std::uint8_t>(table[8] + kChunkBytes);
    table[16] = static_cast<std::uint8_t>(table[16] + kChunkBytes);
    ByteList beside = numbers({1, 0, 0, 0, 4, 0});
    std::fill_n(table, 8, std::uint8_t{0});
    bytes.insert(chunks, beside.begin(), beside.end());
    EXPECT_EQ(check(bytes), -4);
}

}  // namespace
