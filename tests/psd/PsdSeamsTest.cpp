#include <gmock/gmock.h>

#include "psd/PsdOps.h"
#include "support/PsdFile.h"

namespace {

using testing::ElementsAre;

// The displaced render says where a pixel comes from: its column, its row, and 7.
PsdFile places(std::uint32_t width, std::uint32_t height) {
    return drawnPsd(width, height, [](auto plane, auto row, auto column) {
        return plane == 0 ? column : plane == 1 ? row : 7;
    });
}

PsdFile flat(std::uint32_t width, std::uint32_t height) {
    return drawnPsd(width, height, [](auto plane, auto, auto) { return 200 + plane; });
}

// Repairs a flat plain map of 120 x 110 from one of places.
struct Repair {
    explicit Repair(bool horizontal)
        : shifted(dir.write("shifted.psd", places(120, 110).resources(3).reserved(9))),
          plain(dir.write("plain.psd", flat(120, 110).resources(3))) {
        status = mergeSeamlessPSD(shifted.c_str(), plain.c_str(), horizontal);
        result = imageData(shifted, 43);
    }
    std::vector<int> pixel(std::size_t row, std::size_t column) const {
        const std::size_t at = row * 120 + column;
        return {result[at], result[13200 + at], result[26400 + at]};
    }

    TempDir dir;
    std::string shifted;
    std::string plain;
    ByteList result;
    float status;
};

TEST(MergeSeamlessPsd, TwoColumnsAtEachSideComeFromTheDisplacedRender) {
    const Repair repair(true);
    EXPECT_EQ(repair.status, 0.0f);
    ASSERT_EQ(repair.result.size(), 39600u);
    EXPECT_THAT(repair.pixel(60, 0), ElementsAre(50, 60, 7));
    EXPECT_THAT(repair.pixel(60, 1), ElementsAre(51, 60, 7));
    EXPECT_THAT(repair.pixel(60, 2), ElementsAre(200, 201, 202));
    EXPECT_THAT(repair.pixel(60, 117), ElementsAre(200, 201, 202));
    EXPECT_THAT(repair.pixel(60, 118), ElementsAre(48, 60, 7));
    EXPECT_THAT(repair.pixel(60, 119), ElementsAre(49, 60, 7));
}

TEST(MergeSeamlessPsd, TopTwoRowsAndBottomRowKeepTheirColumns) {
    const Repair repair(true);
    for (const std::size_t row : {0u, 1u, 109u})
        for (const std::size_t column : {0u, 1u, 118u, 119u})
            EXPECT_THAT(repair.pixel(row, column), ElementsAre(200, 201, 202)) << row;
    EXPECT_THAT(repair.pixel(2, 0), ElementsAre(50, 2, 7));
    EXPECT_THAT(repair.pixel(108, 119), ElementsAre(49, 108, 7));
}

TEST(MergeSeamlessPsd, TenRowsAtEachEndComeFromTheDisplacedRender) {
    const Repair repair(false);
    EXPECT_EQ(repair.status, 0.0f);
    EXPECT_THAT(repair.pixel(0, 0), ElementsAre(0, 50, 7));
    EXPECT_THAT(repair.pixel(9, 119), ElementsAre(119, 59, 7));
    EXPECT_THAT(repair.pixel(10, 0), ElementsAre(200, 201, 202));
    EXPECT_THAT(repair.pixel(99, 119), ElementsAre(200, 201, 202));
    EXPECT_THAT(repair.pixel(100, 0), ElementsAre(0, 40, 7));
    EXPECT_THAT(repair.pixel(109, 119), ElementsAre(119, 49, 7));
}

TEST(MergeSeamlessPsd, TheResultHasThePlainMapsHeaderAndReplacesTheDisplacedFile) {
    const Repair repair(true);
    const ByteList plain = flat(120, 110).resources(3);
    EXPECT_EQ(readBytes(repair.plain), plain);
    EXPECT_EQ(firstBytes(readBytes(repair.shifted), 43), firstBytes(plain, 43));
}

// A texture that wraps around: what the borders lost is in the displaced render.
TEST(MergeSeamlessPsd, BrokenBordersOfAWrappingTextureAreRestored) {
    const auto texel = [](auto plane, auto row, auto column) {
        return (row * 7 + column * 13 + plane * 31) % 251;
    };
    for (const bool horizontal : {true, false}) {
        const TempDir dir;
        const auto displaced = [&](auto plane, auto row, auto column) {
            return horizontal ? texel(plane, row, (column + 130 - 50) % 130)
                              : texel(plane, (row + 104 - 50) % 104, column);
        };
        const auto broken = [&](auto plane, auto row, auto column) {
            const bool border = horizontal ? (column < 2 || column > 127) && row > 1 && row < 103
                                           : row < 10 || row > 93;
            return border ? 255 : texel(plane, row, column);
        };
        const std::string shifted = dir.write("shifted", drawnPsd(130, 104, displaced));
        const std::string plain = dir.write("plain", drawnPsd(130, 104, broken));
        EXPECT_EQ(mergeSeamlessPSD(shifted.c_str(), plain.c_str(), horizontal), 0.0f);
        EXPECT_TRUE(readBytes(shifted) == drawnPsd(130, 104, texel).bytes()) << horizontal;
    }
}

TEST(MergeSeamlessPsd, RefusalsLeaveBothFilesAsTheyWere) {
    const ByteList good = flat(100, 100);
    const struct {
        const char* what;
        ByteList shifted, plain;
        float status;
    } refusals[] = {
        {"narrow", flat(99, 200), flat(99, 200), -9.0f},
        {"low", flat(200, 99), flat(200, 99), -9.0f},
        {"small before the second file is looked at", flat(99, 99), {}, -9.0f},
        {"higher", good, flat(100, 101), -6.0f},
        {"wider", good, flat(101, 100), -6.0f},
        {"empty plain map, which has no planes", good, {}, -1.0f},
        {"version", flat(100, 100).version(2), good, -2.0f},
        {"colour table", flat(100, 100).colourTable(8), good, -3.0f},
        {"compressed", flat(100, 100).compression(1), good, -4.0f},
        {"empty", {}, good, -1.0f},
        {"displaced map cut short", PsdFile(100, 100).filled(29851, 1), good, -1.0f},
        {"plain map cut short", good, PsdFile(100, 100).filled(29999, 1), -1.0f},
        {"displaced map too short for the place", good, flat(100, 100).resources(149), -1.0f},
        {"plain file of less than three planes", good, ByteList(29999, 7), -1.0f},
        {"plain map of one plane", good, PsdFile(100, 100).channels(1).filled(10000, 1), -1.0f},
    };
    for (const auto& refusal : refusals) {
        const TempDir dir;
        const std::string shifted = dir.write("shifted", refusal.shifted);
        const std::string plain = dir.write("plain", refusal.plain);
        EXPECT_EQ(mergeSeamlessPSD(shifted.c_str(), plain.c_str(), true), refusal.status)
            << refusal.what;
        EXPECT_EQ(readBytes(shifted), refusal.shifted) << refusal.what;
        EXPECT_EQ(readBytes(plain), refusal.plain) << refusal.what;
    }
}

// The last byte read is column 51 of the last row but one, in the plane of blue: 2 x 10000 + 9852.
TEST(MergeSeamlessPsd, OfTheDisplacedMapOnlyTheBytesThatAreCopiedMustBeThere) {
    const TempDir dir;
    const std::string shifted = dir.write("shifted", PsdFile(100, 100).filled(29852, 1));
    const std::string plain = dir.write("plain", flat(100, 100));
    EXPECT_EQ(mergeSeamlessPSD(shifted.c_str(), plain.c_str(), true), 0.0f);
    dir.write("shifted", PsdFile(100, 100).filled(26000, 1));
    EXPECT_EQ(mergeSeamlessPSD(shifted.c_str(), plain.c_str(), false), 0.0f);
    dir.write("shifted", PsdFile(100, 100).filled(25999, 1));
    EXPECT_EQ(mergeSeamlessPSD(shifted.c_str(), plain.c_str(), false), -1.0f);
}

// Its size then counts as that of the displaced map, and its planes as starting at byte 0: the
// plane of red takes columns 50 and 51, 48 and 49 of the displaced file's first bytes, that of blue
// starts at byte 20000.
TEST(MergeSeamlessPsd, APlainFileThatIsNoPsdCountsAsPlanesAlone) {
    const ByteList plains[] = {flat(100, 100).signature("abcd"),
                               flat(7, 9).version(2).filled(30000, 5), ByteList(30000, 7)};
    for (const ByteList& plain : plains) {
        const TempDir dir;
        const ByteList displaced = places(100, 100);
        const std::string shiftedPath = dir.write("shifted", displaced);
        const std::string plainPath = dir.write("plain", plain);
        EXPECT_EQ(mergeSeamlessPSD(shiftedPath.c_str(), plainPath.c_str(), true), 0.0f);
        const ByteList result = readBytes(shiftedPath);
        ASSERT_EQ(result.size(), plain.size());
        for (const std::size_t kept : {199u, 202u, 29999u})
            EXPECT_EQ(result[kept], plain[kept]) << kept;
        EXPECT_EQ(result[200], displaced[250]);
        EXPECT_EQ(result[201], displaced[251]);
        EXPECT_EQ(result[298], displaced[248]);
        EXPECT_EQ(result[20200], displaced[20250]);
    }
}

// The compression field counts as the first two bytes of the first plane.
TEST(MergeSeamlessPsd, OfThePlainMapOnlyTheSizeMustBeRight) {
    const TempDir dir;
    const std::string shifted = dir.write("shifted", places(100, 100));
    const std::string plain = dir.write("plain", flat(100, 100).compression(1));
    EXPECT_EQ(mergeSeamlessPSD(shifted.c_str(), plain.c_str(), true), 0.0f);
    const ByteList planes = imageData(shifted, 38);
    ASSERT_EQ(planes.size(), 30002u);
    EXPECT_EQ(planes[1], 1);
    EXPECT_EQ(planes[199], 200);
    EXPECT_EQ(planes[200], 48);  // the displaced map, too, is read two bytes before its planes
    EXPECT_EQ(planes[202], 200);
}

// The displaced map's own planes start three bytes before.
TEST(MergeSeamlessPsd, PlanesAreWhereThePlainMapHasThem) {
    const TempDir dir;
    const std::string shifted = dir.write("shifted", places(100, 100));
    const std::string plain = dir.write("plain", flat(100, 100).resources(3));
    EXPECT_EQ(mergeSeamlessPSD(shifted.c_str(), plain.c_str(), true), 0.0f);
    const ByteList planes = imageData(shifted, 43);
    EXPECT_EQ(planes[200], 53);
    EXPECT_EQ(planes[299], 52);
}

TEST(MergeSeamlessPsd, MissingFilesAreRefused) {
    const TempDir dir;
    const std::string map = dir.write("map", flat(100, 100));
    const std::string missing = dir.path("missing");
    EXPECT_EQ(mergeSeamlessPSD(missing.c_str(), map.c_str(), true), -1.0f);
    EXPECT_EQ(mergeSeamlessPSD(map.c_str(), missing.c_str(), true), -1.0f);
    EXPECT_THAT(dir.names(), ElementsAre("map"));
}

TEST(MergeSeamlessPsd, AFileMayRepairItself) {
    const TempDir dir;
    const std::string map = dir.write("map", places(100, 100));
    EXPECT_EQ(mergeSeamlessPSD(map.c_str(), map.c_str(), true), 0.0f);
    EXPECT_EQ(imageData(map)[200], 50);
}

}  // namespace
