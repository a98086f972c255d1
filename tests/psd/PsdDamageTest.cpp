// Files that are cut short, headers with wrong sizes, and disks that do not take the result.

#include <gmock/gmock.h>
#include <sys/stat.h>

#include <functional>
#include <span>
#include <utility>

#include "psd/PsdImage.h"
#include "psd/PsdOps.h"
#include "support/Faults.h"
#include "support/PsdFile.h"

namespace {

using testing::ElementsAre;

// Each operation on a map at `path`, with a good one where it needs a second.
struct Operation {
    const char* name;
    std::function<float(const char* path, const char* good)> run;
};
using Operations = std::span<const Operation>;

const Operation kOperations[] = {
    {"source of a merge", [](auto path, auto good) { return mergePSD(path, good); }},
    {"target of a merge", [](auto path, auto good) { return mergePSD(good, path); }},
    {"swap", [](auto path, auto) { return swapChannelsPSD(path, 1); }},
    {"swap that drops the planes", [](auto path, auto) { return swapChannelsPSD(path, 0); }},
    {"grey", [](auto path, auto) { return GrayscalePSD(path, path, 0); }},
    {"convert", [](auto path, auto) { return convertPSD(path, 0, 255, true); }},
    {"thumbnail", [](auto path, auto) { return createThumb(path, 4); }},
};
const Operations kMerges = Operations(kOperations).first(2);
const Operations kConvertAndThumbnail = Operations(kOperations).last(2);

void expectRefused(Operations operations, const ByteList& file, const ByteList& good,
                   float status = -1.0f) {
    const TempDir dir;
    const std::string path = dir.write("map", file);
    const std::string goodPath = dir.write("good", good);
    for (const Operation& operation : operations) {
        std::vector<std::uint8_t>().swap(img);  // so that the memory ends with the loaded bytes
        EXPECT_EQ(operation.run(path.c_str(), goodPath.c_str()), status) << operation.name;
        EXPECT_EQ(readBytes(path), file) << operation.name;
        EXPECT_EQ(readBytes(goodPath), good) << operation.name;
    }
}

void expectEveryTruncationRefused(Operations operations, const ByteList& whole) {
    for (std::size_t length = 0; length < whole.size(); ++length) {
        SCOPED_TRACE(length);
        expectRefused(operations, firstBytes(whole, length), whole);
    }
}

TEST(PsdDamage, EveryTruncatedRgbMapIsRefused) {
    expectEveryTruncationRefused(kOperations, PsdFile(3, 2).resources(5).layers(3).filled(18, 9));
}

TEST(PsdDamage, EveryTruncatedGreyMapIsNotMerged) {
    expectEveryTruncationRefused(kMerges, PsdFile(2, 2).grey16().filled(8, 9));
}

TEST(PsdDamage, AHeaderIsRefusedWithItsStatusTheTargetsFirst) {
    const ByteList good = PsdFile(1, 1).planes({1, 2, 3});
    expectRefused(kOperations, PsdFile(1, 1).signature("8BPX").filled(3, 1), good, -1.0f);
    expectRefused(kOperations, PsdFile(1, 1).version(2).filled(3, 1), good, -2.0f);
    expectRefused(kOperations, PsdFile(1, 1).colourTable(768).filled(3, 1), good, -3.0f);
    expectRefused(kOperations, PsdFile(1, 1).compression(1).filled(3, 1), good, -4.0f);
    const TempDir dir;
    const std::string packed = dir.write("packed", PsdFile(1, 1).compression(1));
    const std::string large = dir.write("large", PsdFile(1, 1).version(2));
    EXPECT_EQ(mergePSD(packed.c_str(), large.c_str()), -2.0f);
}

TEST(PsdDamage, AMissingFileIsRefusedAndNotCreated) {
    const TempDir dir;
    const std::string good = dir.write("good", PsdFile(1, 1).planes({1, 2, 3}));
    for (const Operation& operation : kOperations)
        EXPECT_EQ(operation.run(dir.path("map").c_str(), good.c_str()), -1.0f) << operation.name;
    EXPECT_THAT(dir.names(), ElementsAre("good"));
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

// A grey map of the format has one plane; here operations take it as 8-bit RGB.
TEST(PsdDamage, PlanesThatTheMapDoesNotHaveAreRefused) {
    const ByteList grey = PsdFile(2, 2).channels(1).colourMode(1).filled(4, 9);
    expectRefused(kConvertAndThumbnail, grey, grey);
    // A map of 8-bit RGB by its mode, which has only one plane.
    expectRefused(kMerges, PsdFile(2, 2).channels(1).filled(4, 9), PsdFile(2, 2).filled(12, 1));
}

TEST(PsdDamage, SourceAndTargetMustBothReachThePlacesOfTheOther) {
    const TempDir dir;
    const ByteList late = PsdFile(1, 1).resources(1).planes({1, 2, 3});
    const std::string source = dir.write("source", PsdFile(1, 1).planes({1, 2, 3}));
    const std::string target = dir.write("target", late);
    EXPECT_EQ(mergePSD(source.c_str(), target.c_str()), -1.0f);
    EXPECT_EQ(readBytes(target), late);
}

// Products of these wrap to 0 or to a small number in 32 or in 64 bits.
TEST(PsdDamage, SizesThatWouldWrapAreRefused) {
    const std::pair<std::uint32_t, std::uint32_t> sizes[] = {
        {0x10000, 0x10000}, {0x80000000, 0x80000000}, {0xFFFFFFFF, 0xFFFFFFFF}, {0x80000000, 2},
        {2, 0x80000000},    {0x55555556, 1},          {0x10001, 0xFFFF}};
    for (const auto& [width, height] : sizes) {
        SCOPED_TRACE(testing::Message() << width << " x " << height);
        const ByteList file = PsdFile(width, height).filled(100, 9);
        expectRefused(kOperations, file, file);
    }
    const ByteList four = PsdFile(0x80000000, 0x80000000).channels(4).filled(100, 9);
    expectRefused(kConvertAndThumbnail, four, four);
}

// Planes count as bytes whatever the depth: 9 bits a sample do not ask for nine bits of planes.
TEST(PsdDamage, DepthAndChannelsDoNotChangeHowManyPlanesAreNeeded) {
    const TempDir dir;
    const std::pair<std::uint16_t, std::uint16_t> kinds[] = {
        {0xFFFF, 0x7FFF}, {0xFFFF, 8}, {3, 9}, {3, 0x8000}, {3, 0}, {0, 8}, {25, 1}};
    for (const auto& [channels, depth] : kinds) {
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

// All but the first operation, which writes to the other file.
TEST(PsdDamage, AFullDiskIsNotReportedAndLeavesNoHandleOpen) {
    const TempDir dir;
    const ByteList bytes = PsdFile(100, 100).filled(30000, 9);
    const std::string other = dir.write("other", PsdFile(100, 100).filled(30000, 7));
    std::vector<Operation> operations(std::begin(kOperations) + 1, std::end(kOperations));
    operations.push_back(
        {"seams", [](auto path, auto good) { return mergeSeamlessPSD(path, good, true); }});
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

// What one operation has loaded does not affect the next.
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
