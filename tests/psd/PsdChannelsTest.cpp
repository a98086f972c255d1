#include <gmock/gmock.h>

#include <array>
#include <limits>

#include "psd/PsdOps.h"
#include "support/PsdFile.h"

namespace {

using testing::ElementsAre;

const ByteList kPlanes = {1, 2, 11, 12, 21, 22};  // red, green, blue of two pixels

PsdFile twoPixels() {
    return PsdFile(2, 1).planes(kPlanes);
}

TEST(SwapChannelsPsd, EachModeReordersThePlanes) {
    struct Mode {
        int mode;
        ByteList planes;
    };
    for (const auto& [mode, planes] :
         {Mode{1, {1, 2, 21, 22, 11, 12}}, Mode{2, {21, 22, 1, 2, 11, 12}},
          Mode{3, {11, 12, 21, 22, 1, 2}}}) {
        const TempDir dir;
        const std::string map = dir.write("map.psd", twoPixels());
        EXPECT_EQ(swapChannelsPSD(map.c_str(), mode), 0.0f);
        EXPECT_EQ(readBytes(map), PsdFile(2, 1).planes(planes).bytes()) << mode;
    }
}

TEST(SwapChannelsPsd, OtherModesWriteTheHeaderAlone) {
    for (const int mode : {0, 4, -1}) {
        const TempDir dir;
        const std::string map = dir.write("map.psd", twoPixels().resources(5));
        EXPECT_EQ(swapChannelsPSD(map.c_str(), mode), 0.0f);
        EXPECT_EQ(readBytes(map), PsdFile(2, 1).resources(5).bytes()) << mode;
    }
}

TEST(SwapChannelsPsd, TheseModesInARowRestoreTheFile) {
    for (const std::vector<int>& modes :
         {std::vector{1, 1}, {2, 2, 2}, {3, 3, 3}, {2, 3}, {3, 2}}) {
        const TempDir dir;
        const std::string map = dir.write("map.psd", twoPixels());
        for (const int mode : modes)
            EXPECT_EQ(swapChannelsPSD(map.c_str(), mode), 0.0f);
        EXPECT_EQ(readBytes(map), twoPixels().bytes()) << testing::PrintToString(modes);
    }
}

TEST(SwapChannelsPsd, AllOfALongHeaderIsKept) {
    for (const std::size_t layers : {59u, 60u, 61u, 300'000u}) {
        const TempDir dir;
        const std::string map = dir.write("map.psd", twoPixels().layers(layers));
        EXPECT_EQ(swapChannelsPSD(map.c_str(), 1), 0.0f);
        const ByteList expected = PsdFile(2, 1).layers(layers).planes({1, 2, 21, 22, 11, 12});
        EXPECT_TRUE(readBytes(map) == expected) << layers;
    }
}

TEST(SwapChannelsPsd, BytesBehindThePlanesAreLeftOut) {
    const TempDir dir;
    const std::string map = dir.write("map.psd", PsdFile(1, 1).planes({1, 2, 3, 99}));
    EXPECT_EQ(swapChannelsPSD(map.c_str(), 3), 0.0f);
    EXPECT_THAT(imageData(map), ElementsAre(2, 3, 1));
}

TEST(SwapChannelsPsd, OnlyThreeChannelsOf8BitsAreSwapped) {
    struct Kind {
        std::uint16_t channels, depth;
        float status;
    };
    for (const auto& [channels, depth, status] :
         {Kind{4, 8, -56.0f}, Kind{3, 16, -56.0f}, Kind{1, 8, -56.0f}, Kind{0, 0, -56.0f},
          Kind{0xFFFF, 0x7FFF, -56.0f}, Kind{1, 24, 0.0f}}) {
        const TempDir dir;
        const ByteList bytes = PsdFile(1, 1).channels(channels).depth(depth).filled(12, 1);
        const std::string map = dir.write("map.psd", bytes);
        EXPECT_EQ(swapChannelsPSD(map.c_str(), 1), status) << channels << " of " << depth;
        if (status != 0.0f) {
            EXPECT_EQ(readBytes(map), bytes);
        }
    }
}

// The grey of one pixel, written over the file itself.
ByteList greyOf(int red, int green, int blue, std::int32_t level) {
    const TempDir dir;
    const auto byte = [](int value) { return static_cast<std::uint8_t>(value); };
    const std::string map =
        dir.write("map.psd", PsdFile(1, 1).planes({byte(red), byte(green), byte(blue)}));
    EXPECT_EQ(GrayscalePSD(map.c_str(), map.c_str(), level), 0.0f);
    return imageData(map);
}

TEST(GrayscalePsd, GreyIs333ThousandthsOfEachRoundedHalfUp) {
    EXPECT_THAT(greyOf(0, 0, 0, 0), ElementsAre(0));
    EXPECT_THAT(greyOf(1, 0, 0, 0), ElementsAre(0));
    EXPECT_THAT(greyOf(1, 1, 0, 0), ElementsAre(1));
    EXPECT_THAT(greyOf(255, 0, 0, 0), ElementsAre(85));
    EXPECT_THAT(greyOf(254, 254, 254, 0), ElementsAre(254));
    EXPECT_THAT(greyOf(255, 255, 255, 0), ElementsAre(255));
}

// A sum of 500 lies right on 166.5 where the order of the sums decides; grey by CPython.
TEST(GrayscalePsd, TheSumsAreTakenFromRedToBlue) {
    EXPECT_THAT(greyOf(0, 245, 255, 0), ElementsAre(167));
    EXPECT_THAT(greyOf(198, 225, 77, 0), ElementsAre(166));
}

TEST(GrayscalePsd, TheLevelIsTheBlackPoint) {
    struct Tone {
        int grey;
        std::int32_t level;
        std::uint8_t tone;
    };
    for (const auto& [grey, level, tone] :
         {Tone{1, 0, 1}, Tone{128, 0, 128}, Tone{254, 0, 254}, Tone{100, 100, 0}, Tone{101, 100, 3},
          Tone{200, 100, 165}, Tone{254, 100, 254}, Tone{255, 100, 255}, Tone{254, 254, 0},
          Tone{255, 254, 255}, Tone{254, 300, 0}, Tone{255, 300, 255}, Tone{100, -100, 144},
          Tone{0, -100, 72}, Tone{254, 2147483647, 0}}) {
        EXPECT_THAT(greyOf(grey, grey, grey, level), ElementsAre(tone)) << grey << ", " << level;
    }
}

// 255 x -10000001 wraps to 1744967041; by 10000255 that is 174, which leaves less than 0.
TEST(GrayscalePsd, FarLevelsWrapAround) {
    EXPECT_THAT(greyOf(0, 0, 0, -10'000'000), ElementsAre(0));
    EXPECT_THAT(greyOf(254, 254, 254, std::numeric_limits<std::int32_t>::min()), ElementsAre(255));
}

TEST(GrayscalePsd, OnePlaneFollowsTheHeaderOfTheInput) {
    const TempDir dir;
    const ByteList input =
        PsdFile(2, 1).resources(3).layers(2).reserved(5).planes({10, 0, 10, 0, 10, 90, 8});
    const std::string map = dir.write("map.psd", input);
    const std::string grey = dir.path("grey.psd");
    EXPECT_EQ(GrayscalePSD(map.c_str(), grey.c_str(), 0), 0.0f);
    EXPECT_EQ(readBytes(grey), PsdFile(2, 1)
                                   .channels(1)
                                   .colourMode(1)
                                   .resources(3)
                                   .layers(2)
                                   .reserved(5)
                                   .planes({10, 30})
                                   .bytes());
    EXPECT_EQ(readBytes(map), input);
}

TEST(GrayscalePsd, DepthStaysAndSamplesCountAsBytes) {
    const TempDir dir;
    const std::string map =
        dir.write("map.psd", PsdFile(1, 1).depth(16).planes({30, 40, 50, 0, 0, 0}));
    EXPECT_EQ(GrayscalePSD(map.c_str(), map.c_str(), 0), 0.0f);
    EXPECT_EQ(readBytes(map),
              PsdFile(1, 1).channels(1).depth(16).colourMode(1).planes({40}).bytes());
}

TEST(GrayscalePsd, OtherColourModesAreRefused) {
    const TempDir dir;
    for (const std::uint16_t mode : std::array<std::uint16_t, 3>{1, 4, 0}) {
        const std::string map = dir.write("map", PsdFile(1, 1).colourMode(mode).planes({1, 2, 3}));
        EXPECT_EQ(GrayscalePSD(map.c_str(), dir.path("grey").c_str(), 0), -3.0f) << mode;
    }
    EXPECT_THAT(dir.names(), ElementsAre("map"));
}

// Four pixels: black, nearly black, 1-2-3 and white; alpha 50 to 53.
const ByteList kFourPixels = {0, 0, 1, 255, 0, 0, 2, 255, 0, 9, 3, 255, 50, 51, 52, 53};

ByteList converted(float from, float to, bool invert) {
    const TempDir dir;
    const std::string map = dir.write("map.psd", PsdFile(4, 1).channels(4).planes(kFourPixels));
    EXPECT_EQ(convertPSD(map.c_str(), from, to, invert), 0.0f);
    return imageData(map);
}

TEST(ConvertPsd, TheExactColourIsReplaced) {
    EXPECT_THAT(converted(0.0f, 16777215.0f, false),
                ElementsAre(255, 0, 1, 255, 255, 0, 2, 255, 255, 9, 3, 255, 50, 51, 52, 53));
}

TEST(ConvertPsd, InvertedEveryOtherColourIsReplaced) {
    EXPECT_THAT(converted(0.0f, 16777215.0f, true),
                ElementsAre(0, 255, 255, 255, 0, 255, 255, 255, 0, 255, 255, 255, 50, 51, 52, 53));
}

// 66051 is 1 x 65536 + 2 x 256 + 3; 660510 is 10, 20, 30.
TEST(ConvertPsd, ColoursArePackedRedHighest) {
    EXPECT_THAT(converted(66051.0f, 660510.0f, false),
                ElementsAre(0, 0, 10, 255, 0, 0, 20, 255, 0, 9, 30, 255, 50, 51, 52, 53));
}

TEST(ConvertPsd, NumbersThatAreNoColoursDoNotHurt) {
    EXPECT_THAT(converted(std::numeric_limits<float>::quiet_NaN(), 9.9f, false),
                ElementsAre(0, 0, 1, 255, 0, 0, 2, 255, 9, 9, 3, 255, 50, 51, 52, 53));
    EXPECT_THAT(converted(0.0f, -1.0f, false),
                ElementsAre(0, 0, 1, 255, 0, 0, 2, 255, 255, 9, 3, 255, 50, 51, 52, 53));
    EXPECT_THAT(converted(0.0f, std::numeric_limits<float>::infinity(), false)[0], 255);
}

TEST(ConvertPsd, AColourThatIsNotThereRewritesTheSameBytes) {
    const TempDir dir;
    const ByteList bytes = PsdFile(2, 1).resources(3).layers(2).planes({1, 2, 3, 4, 5, 6, 99});
    const std::string map = dir.write("map.psd", bytes);
    EXPECT_EQ(convertPSD(map.c_str(), 0.0f, 255.0f, false), 0.0f);
    EXPECT_EQ(readBytes(map), bytes);
}

// A block of the work is 4096 pixels.
TEST(ConvertPsd, EveryPixelOfALargeMapIsLookedAt) {
    const TempDir dir;
    const std::string map = dir.write("map.psd", PsdFile(9001, 1).filled(27003, 4));
    EXPECT_EQ(convertPSD(map.c_str(), 263172.0f, 0.0f, false), 0.0f);
    EXPECT_TRUE(readBytes(map) == PsdFile(9001, 1).filled(27003, 0).bytes());
}

TEST(PsdChannels, EachHeaderGivesItsStatusAndStays) {
    struct Refused {
        ByteList file;
        float status;
    };
    for (const auto& [file, status] :
         {Refused{twoPixels().signature("8BPX"), -1.0f}, Refused{twoPixels().version(2), -2.0f},
          Refused{twoPixels().colourTable(768), -3.0f},
          Refused{twoPixels().compression(1), -4.0f}}) {
        const TempDir dir;
        const std::string map = dir.write("map", file);
        EXPECT_EQ(swapChannelsPSD(map.c_str(), 1), status);
        EXPECT_EQ(GrayscalePSD(map.c_str(), dir.path("grey").c_str(), 0), status);
        EXPECT_EQ(convertPSD(map.c_str(), 0, 0, true), status);
        EXPECT_EQ(readBytes(map), file);
        EXPECT_THAT(dir.names(), ElementsAre("map"));
    }
}

TEST(PsdChannels, MissingFilesAreRefusedAndNotCreated) {
    const TempDir dir;
    const std::string map = dir.path("map");
    EXPECT_EQ(swapChannelsPSD(map.c_str(), 1), -1.0f);
    EXPECT_EQ(GrayscalePSD(map.c_str(), map.c_str(), 0), -1.0f);
    EXPECT_EQ(convertPSD(map.c_str(), 0, 0, true), -1.0f);
    EXPECT_THAT(dir.names(), ElementsAre());
}

}  // namespace
