// Files that are cut short, headers that lie, and disks that do not take the result.

#include <gmock/gmock.h>
#include <sys/stat.h>

#include <filesystem>
#include <functional>

#include "psd/PsdImage.h"
#include "psd/PsdOps.h"
#include "support/Faults.h"
#include "support/PsdFile.h"

namespace {

using testing::ElementsAre;

// Each operation on a map at `path`, with all that it needs besides.
struct Operation {
    const char* name;
    std::function<float(const char* path, const char* good)> run;
};

const std::vector<Operation> kOperations = {
    {"target of a merge", [](auto path, auto good) { return mergePSD(good, path); }},
    {"source of a merge", [](auto path, auto good) { return mergePSD(path, good); }},
    {"swap", [](auto path, auto) { return swapChannelsPSD(path, 1); }},
    {"swap that drops the planes", [](auto path, auto) { return swapChannelsPSD(path, 0); }},
    {"grey", [](auto path, auto) { return GrayscalePSD(path, path, 0); }},
    {"convert", [](auto path, auto) { return convertPSD(path, 0, 255, true); }},
    {"thumbnail", [](auto path, auto) { return createThumb(path, 4); }},
};

void expectRefused(const ByteList& file, const ByteList& good, const std::string& what) {
    const TempDir dir;
    const std::string path = dir.write("map", file);
    const std::string goodPath = dir.write("good", good);
    for (const Operation& operation : kOperations) {
        std::vector<std::uint8_t>().swap(img);  // so that nothing lies behind the loaded bytes
        EXPECT_EQ(operation.run(path.c_str(), goodPath.c_str()), -1.0f)
            << operation.name << ": " << what;
        EXPECT_TRUE(readBytes(path) == file) << operation.name << ": " << what;
        EXPECT_TRUE(readBytes(goodPath) == good) << operation.name << ": " << what;
    }
}

void expectEveryTruncationRefused(const ByteList& whole) {
    for (std::size_t length = 0; length < whole.size(); ++length) {
        const auto end = whole.begin() + static_cast<std::ptrdiff_t>(length);
        expectRefused(ByteList(whole.begin(), end), whole, std::to_string(length) + " bytes");
    }
}

TEST(PsdDamage, EveryTruncatedRgbMapIsRefused) {
    expectEveryTruncationRefused(PsdFile(3, 2).resources(5).layers(3).filled(18, 9));
}

// Operations work on the three colour planes; what the header announces beyond them may be missing.
TEST(PsdDamage, OnlyThePlanesThatAreWorkedOnMustBeThere) {
    const TempDir dir;
    const ByteList noAlpha = PsdFile(3, 2).channels(4).filled(18, 9);
    const std::string map = dir.write("map", noAlpha);
    const std::string good = dir.write("good", PsdFile(3, 2).channels(4).filled(24, 9));
    EXPECT_EQ(mergePSD(good.c_str(), map.c_str()), 0.0f);
    EXPECT_EQ(mergePSD(map.c_str(), good.c_str()), 0.0f);
    EXPECT_EQ(convertPSD(map.c_str(), 0, 0, false), 0.0f);
    EXPECT_EQ(GrayscalePSD(map.c_str(), dir.path("grey").c_str(), 0), 0.0f);
    EXPECT_EQ(readBytes(map), noAlpha);
    EXPECT_EQ(createThumb(map.c_str(), 2), 0.0f);
}

// A thumbnail keeps the four channels of its map in the header and has three planes.
TEST(PsdDamage, TheThumbnailOfAFourChannelMapIsTakenAgain) {
    const TempDir dir;
    const std::string map = dir.write("map", PsdFile(8, 8).channels(4).filled(256, 9));
    EXPECT_EQ(createThumb(map.c_str(), 4), 0.0f);
    EXPECT_EQ(imageData(map).size(), 48u);
    EXPECT_EQ(createThumb(map.c_str(), 2), 0.0f);
    EXPECT_EQ(convertPSD(map.c_str(), 0x090909, 0x010203, false), 0.0f);
    EXPECT_EQ(imageData(map), (ByteList{1, 1, 1, 1, 2, 2, 2, 2, 3, 3, 3, 3}));
    EXPECT_EQ(GrayscalePSD(map.c_str(), map.c_str(), 0), 0.0f);
    EXPECT_EQ(imageData(map), (ByteList{2, 2, 2, 2}));
}

TEST(PsdDamage, EveryTruncatedGreyMapIsNotMerged) {
    const ByteList whole = PsdFile(2, 2).grey16().filled(8, 9);
    for (std::size_t length = 0; length < whole.size(); ++length) {
        const TempDir dir;
        const ByteList cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length));
        const std::string path = dir.write("map", cut);
        const std::string good = dir.write("good", whole);
        std::vector<std::uint8_t>().swap(img);
        EXPECT_EQ(mergePSD(good.c_str(), path.c_str()), -1.0f) << length;
        EXPECT_EQ(mergePSD(path.c_str(), good.c_str()), -1.0f) << length;
        EXPECT_EQ(readBytes(path), cut);
        EXPECT_EQ(readBytes(good), whole);
    }
}

// Planes that a well-formed grey map does not have: operations that take them as 8-bit RGB.
TEST(PsdDamage, PlanesThatTheMapDoesNotHaveAreRefused) {
    const TempDir dir;
    const ByteList grey = PsdFile(2, 2).channels(1).colourMode(1).filled(4, 9);
    const std::string path = dir.write("map", grey);
    EXPECT_EQ(convertPSD(path.c_str(), 0, 0, true), -1.0f);
    EXPECT_EQ(createThumb(path.c_str(), 2), -1.0f);
    EXPECT_EQ(readBytes(path), grey);
}

TEST(PsdDamage, SourceAndTargetMustBothReachThePlacesOfTheOther) {
    const TempDir dir;
    const ByteList late = PsdFile(1, 1).resources(1).planes({1, 2, 3});
    const std::string source = dir.write("source", PsdFile(1, 1).planes({1, 2, 3}));
    const std::string target = dir.write("target", late);
    EXPECT_EQ(mergePSD(source.c_str(), target.c_str()), -1.0f);
    EXPECT_EQ(readBytes(target), late);
}

// A map of 8-bit RGB by its mode, whose only plane is there.
TEST(PsdDamage, ATargetWithoutThreePlanesIsNotMerged) {
    const TempDir dir;
    const ByteList onePlane = PsdFile(2, 2).channels(1).filled(4, 9);
    const std::string source = dir.write("source", PsdFile(2, 2).filled(12, 1));
    const std::string target = dir.write("target", onePlane);
    EXPECT_EQ(mergePSD(source.c_str(), target.c_str()), -1.0f);
    EXPECT_EQ(readBytes(target), onePlane);
}

// Products of these wrap to 0 or to a small number in 32 or in 64 bits.
TEST(PsdDamage, SizesThatWouldWrapAreRefused) {
    struct Size {
        std::uint32_t width, height;
    };
    for (const auto& [width, height] :
         {Size{0x10000, 0x10000}, Size{0x80000000, 0x80000000}, Size{0xFFFFFFFF, 0xFFFFFFFF},
          Size{0x80000000, 2}, Size{2, 0x80000000}, Size{0x55555556, 1}, Size{0x10001, 0xFFFF}}) {
        const ByteList file = PsdFile(width, height).filled(100, 9);
        expectRefused(file, file, std::to_string(width) + " x " + std::to_string(height));
    }
    const ByteList four = PsdFile(0x80000000, 0x80000000).channels(4).filled(100, 9);
    const TempDir dir;
    const std::string map = dir.write("map", four);
    EXPECT_EQ(convertPSD(map.c_str(), 0, 0, true), -1.0f);
    EXPECT_EQ(createThumb(map.c_str(), 2), -1.0f);
    EXPECT_EQ(readBytes(map), four);
}

// Planes count as bytes whatever the depth: 9 bits a sample do not ask for nine bits of planes.
TEST(PsdDamage, DepthAndChannelsDoNotChangeHowManyPlanesAreAskedFor) {
    const TempDir dir;
    struct Kind {
        std::uint16_t channels, depth;
    };
    for (const auto& [channels, depth] :
         {Kind{0xFFFF, 0x7FFF}, Kind{0xFFFF, 8}, Kind{3, 0x7FFF}, Kind{3, 9}, Kind{3, 0x8000},
          Kind{3, 0}, Kind{0, 8}, Kind{24, 1}, Kind{25, 1}}) {
        const ByteList file = PsdFile(8, 1).channels(channels).depth(depth).filled(24, 9);
        const std::string map = dir.write("map", file);
        EXPECT_EQ(convertPSD(map.c_str(), 0, 0, false), 0.0f) << channels << " x " << depth;
        EXPECT_EQ(readBytes(map), file);
    }
}

TEST(PsdDamage, AFileThatMayNotBeWrittenStays) {
    const TempDir dir;
    const ByteList bytes = PsdFile(100, 100).filled(30000, 9);
    const std::string map = dir.write("map", bytes);
    const std::string other = dir.write("other", bytes);
    ASSERT_EQ(::chmod(dir.path().c_str(), 0755), 0);
    ASSERT_EQ(::chmod(map.c_str(), 0444), 0);
    ASSERT_EQ(::chmod(other.c_str(), 0444), 0);
    {
        const WithoutRoot unprivileged;
        EXPECT_EQ(mergePSD(other.c_str(), map.c_str()), -5.0f);
        EXPECT_EQ(mergeSeamlessPSD(map.c_str(), other.c_str(), true), -5.0f);
        EXPECT_EQ(swapChannelsPSD(map.c_str(), 1), -5.0f);
        EXPECT_EQ(GrayscalePSD(map.c_str(), map.c_str(), 0), -5.0f);
        EXPECT_EQ(GrayscalePSD(map.c_str(), dir.path("new").c_str(), 0), -5.0f);
        EXPECT_EQ(convertPSD(map.c_str(), 0, 0, true), -5.0f);
        EXPECT_EQ(createThumb(map.c_str(), 2), -5.0f);
    }
    EXPECT_TRUE(readBytes(map) == bytes);
    EXPECT_THAT(dir.names(), ElementsAre("map", "other"));
}

TEST(PsdDamage, AFullDiskIsNotReportedAndLeavesNoHandleOpen) {
    const TempDir dir;
    const ByteList bytes = PsdFile(100, 100).filled(30000, 9);
    const std::string other = dir.write("other", bytes);
    std::vector<Operation> operations = kOperations;
    operations.push_back(
        {"seams", [](auto path, auto good) { return mergeSeamlessPSD(path, good, true); }});
    operations.erase(operations.begin() + 1);  // it writes to the other file
    const std::ptrdiff_t handles = openFiles();
    for (const Operation& operation : operations) {
        const std::string map = dir.write("map", bytes);
        {
            const FullDisk full(100);
            EXPECT_EQ(operation.run(map.c_str(), other.c_str()), 0.0f) << operation.name;
        }
        EXPECT_LE(readBytes(map).size(), 100u) << operation.name;
    }
    EXPECT_EQ(openFiles(), handles);
}

TEST(PsdDamage, FoldersAndPipesAreNotMaps) {
    const TempDir dir;
    const std::string pipe = dir.path("pipe");
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    const std::string map = dir.write("map", PsdFile(1, 1).planes({1, 2, 3}));
    EXPECT_EQ(convertPSD(dir.path().c_str(), 0, 0, true), -1.0f);
    EXPECT_EQ(convertPSD(pipe.c_str(), 0, 0, true), -1.0f);
    EXPECT_EQ(GrayscalePSD(map.c_str(), pipe.c_str(), 0), -5.0f);
    EXPECT_EQ(GrayscalePSD(map.c_str(), dir.path().c_str(), 0), -5.0f);
}

// What one operation leaves behind does not show in the next.
TEST(PsdDamage, OperationsDoNotSeeEachOthersFiles) {
    const TempDir dir;
    const ByteList bytes = PsdFile(1, 1).planes({1, 2, 3});
    const std::string map = dir.write("map", bytes);
    const std::string large = dir.write("large", PsdFile(50, 50).resources(9).filled(7500, 1));
    const std::string broken = dir.write("broken", PsdFile(9, 9).compression(1));
    for (int round = 0; round < 2; ++round) {
        EXPECT_EQ(swapChannelsPSD(map.c_str(), 1), 0.0f);
        EXPECT_EQ(swapChannelsPSD(large.c_str(), 1), 0.0f);
        EXPECT_EQ(swapChannelsPSD(broken.c_str(), 1), -4.0f);
    }
    EXPECT_EQ(readBytes(map), bytes);
}

}  // namespace
