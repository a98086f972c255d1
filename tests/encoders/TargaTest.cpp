#include <gmock/gmock.h>

#include <ctime>

#include "encoders/TargaOps.h"
#include "support/Faults.h"
#include "support/FullDevice.h"
#include "support/TempDir.h"
#include "support/TiffFile.h"

namespace {

using testing::ElementsAre;

class Targa : public testing::Test {
protected:
    float save(const TiffFile& map) const { return save(map.bytes()); }
    float save(const ByteList& map) const {
        return convertToTarga(dir.write("map.tif", map).c_str(), dir.path("map.tga").c_str());
    }
    ByteList written() const { return readBytes(dir.path("map.tga")); }
    ByteList pixels() const {
        const ByteList bytes = written();
        return {bytes.begin() + 18, bytes.end()};
    }

    const TempDir dir;
};

// The pixels end the file, as in the host's maps.
TiffFile map(std::uint32_t width, std::uint32_t length) {
    return TiffFile(width, length, TiffFile::Order::kDirectoryFirst);
}

TEST_F(Targa, IsAHeaderOf18BytesAndBlueGreenRedPixels) {
    EXPECT_EQ(save(map(2, 1).rgb8({1, 2, 3, 4, 5, 6})), 0.0f);
    EXPECT_EQ(written(), (ByteList{0, 0, 2, 0, 0,  0, 0, 0, 0, 0, 0, 0,  //
                                   2, 0, 1, 0, 24, 0, 3, 2, 1, 6, 5, 4}));
}

TEST_F(Targa, StartsWithTheBottomRow) {
    EXPECT_EQ(save(map(1, 2).rgb8({1, 2, 3, 4, 5, 6})), 0.0f);
    EXPECT_THAT(pixels(), ElementsAre(6, 5, 4, 3, 2, 1));
}

TEST_F(Targa, AGreyMapGivesGreyPixels) {
    EXPECT_EQ(save(map(2, 2).grey8({1, 2, 3, 4})), 0.0f);
    EXPECT_THAT(pixels(), ElementsAre(3, 3, 3, 4, 4, 4, 1, 1, 1, 2, 2, 2));
}

TEST_F(Targa, TakesTheLastBytesOfTheFileWhateverTheStripSays) {
    ByteList bytes = map(1, 2).rgb8({1, 2, 3, 4, 5, 6}).entry(273, 1, 4711).bytes();
    bytes.push_back(9);
    EXPECT_EQ(save(bytes), 0.0f);
    EXPECT_THAT(pixels(), ElementsAre(9, 6, 5, 4, 3, 2));
}

TEST_F(Targa, AMapOfManyPiecesIsWrittenWhole) {
    constexpr std::size_t kLength = 900;
    constexpr std::size_t kRowBytes = 3 * 301;
    ByteList rgb(kRowBytes * kLength);
    for (std::size_t i = 0; i < rgb.size(); ++i)
        rgb[i] = static_cast<std::uint8_t>(i * 7 + i / 256);
    EXPECT_EQ(save(map(301, kLength).rgb8(rgb)), 0.0f);
    const ByteList out = pixels();
    ASSERT_EQ(out.size(), rgb.size());
    for (std::size_t i = 0; i < out.size(); ++i) {
        const std::size_t row = kLength - 1 - i / kRowBytes;
        const std::size_t x = i % kRowBytes / 3 * 3 + 2 - i % 3;  // red and blue change places
        ASSERT_EQ(out[i], rgb[row * kRowBytes + x]) << i;
    }
}

TEST_F(Targa, TheHeaderKeepsTheLow16BitsOfASize) {
    EXPECT_EQ(save(map(70000, 1).rgb8(ByteList(210000, 7))), 0.0f);
    const ByteList out = written();
    EXPECT_EQ(out.size(), 18u + 210000);
    EXPECT_EQ(ByteList(out.begin() + 12, out.begin() + 16), (ByteList{0x70, 0x11, 1, 0}));
}

TEST_F(Targa, MissingRowsRepeatTheRowBelow) {
    // 150 bytes before the pixels: 33 rows of 6 bytes in all.
    ByteList bytes = map(2, 1).rgb8({1, 2, 3, 4, 5, 6}).entry(257, 1, 28).bytes();
    ASSERT_EQ(bytes.size(), 164u);
    EXPECT_EQ(save(bytes), 0.0f);
    const ByteList out = pixels();
    ASSERT_EQ(out.size(), 6u * 28);
    EXPECT_EQ(ByteList(out.begin(), out.begin() + 6), (ByteList{3, 2, 1, 6, 5, 4}));
    const ByteList top(out.end() - 6, out.end());
    EXPECT_EQ(top, ByteList(out.end() - 12, out.end() - 6));
    // The topmost row that exists starts at byte 2 of the file.
    EXPECT_EQ(top, (ByteList{8, 0, 42, 0, 0, 0}));
}

// A file of some hundred bytes: a call to the system for each row would take ten seconds.
TEST_F(Targa, TwentyMillionMissingRowsTakeLittleTime) {
    const std::clock_t start = std::clock();
    EXPECT_EQ(save(map(1, 4).grey8({1, 2, 3, 4}).entry(257, 1, 20000000)), 0.0f);
    EXPECT_LT(std::clock() - start, 2 * CLOCKS_PER_SEC);
    EXPECT_EQ(std::filesystem::file_size(dir.path("map.tga")), 60000018u);
}

TEST_F(Targa, AMapWithoutASingleWholeRowIsBlack) {
    EXPECT_EQ(save(map(60, 2).rgb8({1, 2, 3})), 0.0f);
    EXPECT_EQ(pixels(), ByteList(360, 0));
}

TEST_F(Targa, AnInventedSizeIsRefused) {
    const TiffFile tiny = map(1, 1).rgb8({1, 2, 3});
    EXPECT_EQ(save(TiffFile(tiny).entry(256, 1, 0x7FFFFFFF)), -279.0f);
    EXPECT_EQ(save(TiffFile(tiny).entry(257, 1, 0x7FFFFFFF)), -279.0f);
    EXPECT_EQ(save(TiffFile(tiny).entry(256, 1, 0x7FFFFFFF).entry(257, 1, 0x7FFFFFFF)), -279.0f);
    EXPECT_FALSE(dir.has("map.tga"));
}

TEST_F(Targa, AMapOfMissingRowsMayTake64MiBAnd16TimesItsFile) {
    const auto tiny = [](std::uint32_t rows) {
        ByteList bytes = map(1, 1).grey8({1}).entry(257, 1, rows).bytes();
        while (bytes.size() % 3 != 2)  // so that whole rows of 3 bytes reach the limit
            bytes.push_back(0);
        return bytes;
    };
    const auto most = static_cast<std::uint32_t>((67108864 + 16 * tiny(1).size()) / 3);
    EXPECT_EQ(3 * most, 67108864 + 16 * tiny(1).size());
    EXPECT_EQ(save(tiny(most)), 0.0f);
    EXPECT_EQ(std::filesystem::file_size(dir.path("map.tga")), 18 + 3u * most);
    EXPECT_EQ(save(tiny(most + 1)), -279.0f);
}

TEST_F(Targa, SizesBelowOneGiveAHeaderOnly) {
    using Entry = std::pair<std::uint16_t, std::uint32_t>;
    for (const auto& [tag, side] : {Entry{256, 0}, {256, 0xFFFFFFFF}, {257, 0}}) {
        EXPECT_EQ(save(map(1, 1).rgb8({1, 2, 3}).entry(tag, 1, side)), 0.0f);
        EXPECT_EQ(written().size(), 18u);
    }
}

// A width that the directory does not have is taken for -1.
TEST_F(Targa, AMapWithoutAWidthGivesAHeaderOnly) {
    EXPECT_EQ(save(map(1, 1).rgb8({1, 2, 3}).without(256)), 0.0f);
    EXPECT_EQ(written(), (ByteList{0, 0, 2, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xFF, 0xFF, 1, 0, 24, 0}));
}

TEST_F(Targa, RefusalsComeBeforeTheOutputIsCreated) {
    const TiffFile good = map(1, 1).rgb8({1, 2, 3});
    EXPECT_EQ(save(TiffFile(good).entry(258, 4, 8)), 258.0f);
    EXPECT_EQ(save(TiffFile(good).entry(259, 1, 5)), -259.0f);
    EXPECT_EQ(save(TiffFile(good).entry(262, 1, 3)), -262.0f);
    EXPECT_EQ(save(TiffFile(good).entry(273, 2, 8)), -273.0f);
    EXPECT_EQ(save(TiffFile(good).entry(339, 4, 1)), -339.0f);
    EXPECT_EQ(save(TiffFile(good).without(257)), -257.0f);
    EXPECT_EQ(save(TiffFile(good).without(258)), -257.0f);
    EXPECT_EQ(save(TiffFile(good).claimEntries(0)), -257.0f);
    EXPECT_EQ(convertToTarga(dir.path("missing").c_str(), dir.path("map.tga").c_str()), -10.0f);
    EXPECT_FALSE(dir.has("map.tga"));
}

TEST_F(Targa, TheDepthIsIgnored) {
    EXPECT_EQ(save(map(1, 1).rgb16({0x0201, 0x0403, 0x0605})), 0.0f);
    EXPECT_THAT(pixels(), ElementsAre(6, 5, 4));
}

TEST_F(Targa, AnOutputThatCannotBeWrittenIsReported) {
    const std::string in = dir.write("map.tif", map(1, 1).rgb8({1, 2, 3}).bytes());
    EXPECT_EQ(convertToTarga(in.c_str(), dir.path("no/map.tga").c_str()), -5.0f);
    NEEDS_FULL_DEVICE();
    EXPECT_EQ(convertToTarga(in.c_str(), "/dev/full"), -5.0f);
}

TEST_F(Targa, AMapIsNotWrittenOntoItself) {
    const ByteList bytes = map(1, 1).rgb8({1, 2, 3}).bytes();
    const std::string in = dir.write("map.tif", bytes);
    EXPECT_EQ(convertToTarga(in.c_str(), in.c_str()), -5.0f);
    EXPECT_EQ(readBytes(in), bytes);
}

TEST_F(Targa, ATruncatedMapIsNeverReadPastItsEnd) {
    const ByteList whole = map(2, 2).rgb8({1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12}).bytes();
    for (std::size_t length = 0; length <= whole.size(); ++length) {
        const ByteList bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length));
        save(bytes);
        EXPECT_EQ(readBytes(dir.path("map.tif")), bytes) << length;
    }
}

TEST_F(Targa, ADiskThatIsFullBeforeTheMissingRowsIsReported) {
    const FullDisk disk(1000);
    EXPECT_EQ(save(map(60, 20).rgb8({1, 2, 3})), -5.0f);
    EXPECT_EQ(written().size(), 1000u);
}

}  // namespace
