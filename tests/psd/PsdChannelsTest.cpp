#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <limits>
#include <utility>

#include "export/Quillon.h"
#include "psd/PsdOps.h"
#include "support/Faults.h"
#include "support/PsdFile.h"

namespace {

using testing::ElementsAre;

// A map in a folder of its own.
class PsdMap : public testing::Test {
protected:
    const char* write(const ByteList& bytes) {
        path_ = dir.write("map.psd", bytes);
        return path_.c_str();
    }
    ByteList bytes() const { return readBytes(path_); }

    const TempDir dir;

private:
    std::string path_;
};

class SwapChannelsPsd : public PsdMap {};
class GrayscalePsd : public PsdMap {
protected:
    // The grey of one pixel, written over the file itself.
    ByteList greyOf(std::uint8_t red, std::uint8_t green, std::uint8_t blue, std::int32_t level) {
        const char* const map = write(PsdFile(1, 1).planes({red, green, blue}));
        EXPECT_EQ(GrayscalePSD(map, map, level), 0.0f);
        return imageData(map);
    }
};
class ConvertPsd : public PsdMap {
protected:
    // Four pixels: black, nearly black, 1-2-3 and white; alpha 50 to 53.
    ByteList converted(float from, float to, bool invert) {
        const char* const map = write(PsdFile(4, 1).channels(4).planes(
            {0, 0, 1, 255, 0, 0, 2, 255, 0, 9, 3, 255, 50, 51, 52, 53}));
        EXPECT_EQ(convertPSD(map, from, to, invert), 0.0f);
        return imageData(map);
    }
};

PsdFile twoPixels() {
    return PsdFile(2, 1).planes({1, 2, 11, 12, 21, 22});  // red, green, blue
}

TEST_F(SwapChannelsPsd, EachModeReordersThePlanesAndAnyOtherDropsThem) {
    const std::pair<int, ByteList> rows[] = {
        {1, {1, 2, 21, 22, 11, 12}},
        {2, {21, 22, 1, 2, 11, 12}},
        {3, {11, 12, 21, 22, 1, 2}},
        {0, {}},
        {4, {}},
        {-1, {}},
    };
    for (const auto& [mode, planes] : rows) {
        EXPECT_EQ(swapChannelsPSD(write(twoPixels().resources(5)), mode), 0.0f);
        EXPECT_EQ(bytes(), PsdFile(2, 1).resources(5).planes(planes).bytes()) << mode;
    }
}

// The export truncates its value: 0.5 is mode 0.
TEST_F(SwapChannelsPsd, TheModeIsTheTruncatedValue) {
    const std::pair<double, ByteList> rows[] = {
        {0.5, {}}, {1.0, {1, 3, 2}}, {2.0, {3, 1, 2}}, {3.9, {2, 3, 1}}};
    for (const auto& [value, planes] : rows) {
        const char* const map = write(PsdFile(1, 1).planes({1, 2, 3}));
        EXPECT_EQ(swapRGBPSD(map, value, nullptr, 0, nullptr, 0, nullptr), 0.0f) << value;
        EXPECT_EQ(imageData(map), planes) << value;
    }
}

// A piece holds 65536 bytes of each plane. The header is longer than one.
TEST_F(SwapChannelsPsd, AMapOfManyPiecesIsSwappedWhole) {
    ByteList planes, expected(270000);
    for (std::size_t i = 0; i < 270000; ++i)
        planes.push_back(static_cast<std::uint8_t>(i % 251));
    const auto plane = [](ByteList& all, int which) { return all.begin() + 90000 * which; };
    std::copy_n(plane(planes, 2), 90000, plane(expected, 0));
    std::copy_n(plane(planes, 0), 180000, plane(expected, 1));
    const auto map = [](const ByteList& data) {
        return PsdFile(300, 300).layers(300000).planes(data).bytes();
    };
    EXPECT_EQ(swapChannelsPSD(write(map(planes)), 2), 0.0f);
    EXPECT_EQ(bytes(), map(expected));
}

TEST_F(SwapChannelsPsd, BytesAfterThePlanesAreLeftOut) {
    const char* const map = write(PsdFile(1, 1).planes({1, 2, 3, 99}));
    EXPECT_EQ(swapChannelsPSD(map, 3), 0.0f);
    EXPECT_THAT(imageData(map), ElementsAre(2, 3, 1));
}

TEST_F(SwapChannelsPsd, OnlyThreeChannelsOf8BitsAreSwapped) {
    const std::pair<std::uint16_t, std::uint16_t> refused[] = {
        {4, 8}, {3, 16}, {1, 8}, {0, 0}, {0xFFFF, 0x7FFF}};
    for (const auto& [channels, depth] : refused) {
        const ByteList before = PsdFile(1, 1).channels(channels).depth(depth).filled(12, 1);
        EXPECT_EQ(swapChannelsPSD(write(before), 1), -56.0f) << channels << " of " << depth;
        EXPECT_EQ(bytes(), before);
    }
    EXPECT_EQ(swapChannelsPSD(write(PsdFile(1, 1).channels(1).depth(24).filled(12, 1)), 1), 0.0f);
}

TEST_F(GrayscalePsd, GreyIs333ThousandthsOfEachRoundedHalfUp) {
    EXPECT_THAT(greyOf(0, 0, 0, 0), ElementsAre(0));
    EXPECT_THAT(greyOf(1, 0, 0, 0), ElementsAre(0));
    EXPECT_THAT(greyOf(1, 1, 0, 0), ElementsAre(1));
    EXPECT_THAT(greyOf(255, 0, 0, 0), ElementsAre(85));
    EXPECT_THAT(greyOf(254, 254, 254, 0), ElementsAre(254));
    EXPECT_THAT(greyOf(255, 255, 255, 0), ElementsAre(255));
}

// A sum of 500 is right on 166.5 where the order of the sums decides; grey by CPython.
TEST_F(GrayscalePsd, TheSumsAreTakenFromRedToBlue) {
    EXPECT_THAT(greyOf(0, 245, 255, 0), ElementsAre(167));
    EXPECT_THAT(greyOf(198, 225, 77, 0), ElementsAre(166));
}

// Far levels wrap around: 255 x -10000001 wraps to 1744967041; by 10000255 that is 174, which
// leaves less than 0.
TEST_F(GrayscalePsd, TheLevelIsTheBlackPoint) {
    struct Tone {
        std::uint8_t grey;
        std::int32_t level;
        std::uint8_t tone;
    };
    constexpr std::int32_t kLowest = std::numeric_limits<std::int32_t>::min();
    for (const auto& [grey, level, tone] :
         {Tone{1, 0, 1}, Tone{128, 0, 128}, Tone{254, 0, 254}, Tone{100, 100, 0}, Tone{101, 100, 3},
          Tone{200, 100, 165}, Tone{254, 100, 254}, Tone{255, 100, 255}, Tone{254, 254, 0},
          Tone{255, 254, 255}, Tone{254, 300, 0}, Tone{255, 300, 255}, Tone{100, -100, 144},
          Tone{0, -100, 72}, Tone{254, 2147483647, 0}, Tone{0, -10'000'000, 0},
          Tone{254, kLowest, 255}}) {
        EXPECT_THAT(greyOf(grey, grey, grey, level), ElementsAre(tone)) << +grey << ", " << level;
    }
}

// The depth stays, yet samples count as bytes.
TEST_F(GrayscalePsd, OnePlaneFollowsTheHeaderOfTheInput) {
    const auto file = [](PsdFile map) {
        return map.depth(16).resources(3).layers(2).reserved(5).bytes();
    };
    const ByteList input = file(PsdFile(2, 1).planes({10, 0, 10, 0, 10, 90, 8}));
    const std::string grey = dir.path("grey.psd");
    EXPECT_EQ(GrayscalePSD(write(input), grey.c_str(), 0), 0.0f);
    EXPECT_EQ(readBytes(grey), file(PsdFile(2, 1).channels(1).colourMode(1).planes({10, 30})));
    EXPECT_EQ(bytes(), input);
}

// A piece holds 65536 bytes of each plane. The output is longer before, and then the map itself, by
// its name and by a link.
TEST_F(GrayscalePsd, AMapOfManyPiecesIsWrittenWholeAndMayReplaceItself) {
    constexpr std::size_t kPixels = 200000;
    ByteList planes(3 * kPixels);
    ByteList greys(kPixels);
    for (std::size_t i = 0; i < kPixels; ++i) {
        const auto grey = static_cast<std::uint8_t>(i % 251);
        planes[i] = planes[kPixels + i] = planes[2 * kPixels + i] = greys[i] = grey;
    }
    const ByteList input = PsdFile(500, 400).planes(planes);
    const ByteList expected = PsdFile(500, 400).channels(1).colourMode(1).planes(greys);
    const std::string grey = dir.write("grey.psd", ByteList(700000, 9));
    const std::string map = write(input);
    EXPECT_EQ(GrayscalePSD(map.c_str(), grey.c_str(), 0), 0.0f);
    EXPECT_TRUE(readBytes(grey) == expected);
    EXPECT_TRUE(bytes() == input);
    EXPECT_EQ(GrayscalePSD(map.c_str(), map.c_str(), 0), 0.0f);
    EXPECT_TRUE(bytes() == expected);
    const std::string link = dir.path("link.psd");
    std::filesystem::create_symlink(write(input), link);
    EXPECT_EQ(GrayscalePSD(link.c_str(), map.c_str(), 0), 0.0f);
    EXPECT_TRUE(bytes() == expected);
}

// A full disk is not reported: the grey map ends at its header or within its plane.
TEST_F(GrayscalePsd, EndsWhereTheDiskIsFull) {
    const std::string map = write(PsdFile(300, 300).filled(270000, 9));
    const std::string grey = dir.path("grey.psd");
    for (const std::size_t room : {10u, 1000u, 70000u}) {
        std::filesystem::remove(grey);
        {
            const FullDisk disk(room);
            EXPECT_EQ(GrayscalePSD(map.c_str(), grey.c_str(), 0), 0.0f);
        }
        EXPECT_EQ(readBytes(grey).size(), room);
    }
}

TEST_F(GrayscalePsd, OtherColourModesAreRefused) {
    for (const std::uint16_t mode : {std::uint16_t{1}, std::uint16_t{4}, std::uint16_t{0}}) {
        const char* const map = write(PsdFile(1, 1).colourMode(mode).planes({1, 2, 3}));
        EXPECT_EQ(GrayscalePSD(map, dir.path("grey").c_str(), 0), -3.0f) << mode;
    }
    EXPECT_THAT(dir.names(), ElementsAre("map.psd"));
}

TEST_F(ConvertPsd, TheExactColourIsReplaced) {
    EXPECT_THAT(converted(0.0f, 16777215.0f, false),
                ElementsAre(255, 0, 1, 255, 255, 0, 2, 255, 255, 9, 3, 255, 50, 51, 52, 53));
}

TEST_F(ConvertPsd, InvertedEveryOtherColourIsReplaced) {
    EXPECT_THAT(converted(0.0f, 16777215.0f, true),
                ElementsAre(0, 255, 255, 255, 0, 255, 255, 255, 0, 255, 255, 255, 50, 51, 52, 53));
}

// 66051 is 1 x 65536 + 2 x 256 + 3; 660510 is 10, 20, 30.
TEST_F(ConvertPsd, ColoursArePackedRedHighest) {
    EXPECT_THAT(converted(66051.0f, 660510.0f, false),
                ElementsAre(0, 0, 10, 255, 0, 0, 20, 255, 0, 9, 30, 255, 50, 51, 52, 53));
}

TEST_F(ConvertPsd, NumbersThatAreNoColoursDoNotHurt) {
    EXPECT_THAT(converted(std::numeric_limits<float>::quiet_NaN(), 9.9f, false),
                ElementsAre(0, 0, 1, 255, 0, 0, 2, 255, 9, 9, 3, 255, 50, 51, 52, 53));
    EXPECT_THAT(converted(0.0f, -1.0f, false),
                ElementsAre(0, 0, 1, 255, 0, 0, 2, 255, 255, 9, 3, 255, 50, 51, 52, 53));
    EXPECT_THAT(converted(0.0f, std::numeric_limits<float>::infinity(), false)[0], 255);
}

// A map counts as rewritten even where no pixel changes.
TEST_F(ConvertPsd, AColourThatIsNotThereChangesNothingButTheTime) {
    const ByteList before = PsdFile(2, 1).resources(3).layers(2).planes({1, 2, 3, 4, 5, 6, 99});
    const char* const map = write(before);
    makeOld(map);
    EXPECT_EQ(convertPSD(map, 0.0f, 255.0f, false), 0.0f);
    EXPECT_EQ(bytes(), before);
    EXPECT_FALSE(isOld(map));
}

// A piece holds 65536 bytes of each plane. One pixel of another colour is replaced, or left, at
// the first and the last place of each, and at none of one.
TEST_F(ConvertPsd, AMapOfManyPiecesIsConvertedWhole) {
    constexpr std::size_t kPixels = 200000;
    const std::size_t others[] = {0, 65535, 65536, 196608, 199999};
    ByteList planes(3 * kPixels, 4);
    ByteList whitened = planes;
    ByteList blackened(3 * kPixels, 0);
    for (const std::size_t pixel : others) {
        planes[pixel] = 5;
        for (std::size_t plane = 0; plane < 3; ++plane) {
            whitened[plane * kPixels + pixel] = 255;
            blackened[plane * kPixels + pixel] = planes[plane * kPixels + pixel];
        }
    }
    const auto map = [](const ByteList& data) { return PsdFile(500, 400).planes(data).bytes(); };
    EXPECT_EQ(convertPSD(write(map(planes)), 0x040404, 0xFFFFFF, true), 0.0f);
    EXPECT_TRUE(bytes() == map(whitened));
    EXPECT_EQ(convertPSD(write(map(planes)), 0x040404, 0, false), 0.0f);
    EXPECT_TRUE(bytes() == map(blackened));
}

}  // namespace
