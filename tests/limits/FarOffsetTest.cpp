// Files beyond 2 and 4 GiB, nearly all of them a hole that takes no room on disk.

#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>
#include <limits>
#include <string>

#include "faults/Scenarios.h"
#include "support/BmpFile.h"
#include "support/PsdFile.h"
#include "support/TiffFile.h"
#include "support/VemoBuilder.h"

namespace {

using testing::ElementsAre;

constexpr std::uint64_t kTwoGiB = std::uint64_t{1} << 31;
constexpr std::uint64_t kFourGiB = std::uint64_t{1} << 32;

class FarOffsets : public testing::Test {
protected:
    float call(const char* exportName, const char* text, double value = 0.0,
               const char* buffer1 = "") {
        return stage.make({exportName, text, value, buffer1}).status;
    }

    // Puts bytes at an offset of a file, which is made if it does not exist, with zeros in between.
    void put(const char* name, std::uint64_t offset, const ByteList& bytes) const {
        const std::string path = stage.path(name);
        std::ofstream(path, std::ios::app).flush();
        std::fstream file(path, std::ios::in | std::ios::out | std::ios::binary);
        file.seekp(static_cast<std::streamoff>(offset));
        file.write(reinterpret_cast<const char*>(bytes.data()), std::ssize(bytes));
        EXPECT_TRUE(file.flush());
    }

    // One row of two pixels and two bytes of padding.
    void putBmp(const char* name, std::uint64_t pixelOffset, const ByteList& row) const {
        put(name, 0, BmpFile(2, 1).claimPixelOffset(low32(pixelOffset)).cut(54));
        put(name, pixelOffset, row);
    }

    // One row of two colour pixels of 8 bits.
    void putTiff(const char* name, std::uint64_t stripOffset, const ByteList& row) const {
        put(name, 0,
            TiffFile(2, 1, TiffFile::Order::kDirectoryFirst)
                .rgb8(ByteList(6))
                .entry(273, 1, low32(stripOffset))
                .entry(279, 1, 0x7FFFFFFF)
                .bytes());
        put(name, stripOffset, row);
    }

    // A row of two grey floats, 1 and 0.5.
    void putFloats(const char* name, std::uint64_t stripOffset) const {
        TiffFile map(2, 1, TiffFile::Order::kDirectoryFirst);
        put(name, 0, map.grey32({0, 0}).entry(254, 1, 0).entry(273, 1, low32(stripOffset)).bytes());
        put(name, stripOffset, {0, 0, 0x80, 0x3F, 0, 0, 0, 0x3F});
    }

    void endAt(const char* name, std::uint64_t size) const {
        std::filesystem::resize_file(stage.path(name), size);
    }
    ByteList bytesFrom(const char* name, std::uint64_t offset) const {
        return readBytes(stage.path(name), offset);
    }
    ByteList headOf(const char* name) const {
        ByteList head(400);
        std::ifstream(stage.path(name), std::ios::binary)
            .read(reinterpret_cast<char*>(head.data()), std::ssize(head));
        return head;
    }
    static std::uint32_t low32(std::uint64_t offset) { return static_cast<std::uint32_t>(offset); }

    Stage stage;
};

// A BMP's pixel offset has 32 bits; its rows may go on beyond what that can say.
TEST_F(FarOffsets, OfABmpAreAnyOf32Bits) {
    for (const std::uint64_t offset : {kTwoGiB - 3, kTwoGiB, kFourGiB - 3, kFourGiB - 1}) {
        SCOPED_TRACE(offset);
        stage.prepare({});
        putBmp("tile.bmp", offset, {9, 9, 9, 1, 2, 3, 0, 0});
        putBmp("map.bmp", offset, {4, 5, 6, 9, 9, 9, 7, 8});
        EXPECT_EQ(call("mergeMapsBMP", "tile.bmp", 0.0, "map.bmp"), 0.0f);
        EXPECT_THAT(bytesFrom("map.bmp", offset), ElementsAre(4, 5, 6, 1, 2, 3, 7, 8));
        EXPECT_EQ(call("swapRGBBMP", "map.bmp", 2.0), 0.0f);
        EXPECT_THAT(bytesFrom("map.bmp", offset), ElementsAre(6, 5, 4, 3, 2, 1, 7, 8));
    }
}

TEST_F(FarOffsets, OfATiffReachAcross2GiB) {
    const std::uint64_t offset = kTwoGiB - 4;
    putTiff("tile.tif", offset, {9, 9, 9, 1, 2, 3});
    putTiff("map.tif", offset, {4, 5, 6, 9, 9, 9});
    EXPECT_EQ(call("mergeMapsTIF", "tile.tif", 0.0, "map.tif"), 0.0f);
    EXPECT_THAT(bytesFrom("map.tif", offset), ElementsAre(4, 5, 6, 1, 2, 3));
    EXPECT_EQ(call("swapRGBTIF", "map.tif", 2.0), 0.0f);
    EXPECT_THAT(bytesFrom("map.tif", offset), ElementsAre(6, 5, 4, 3, 2, 1));
}

// The maps' own numbers are signed: from 2 GiB on a strip starts nowhere, and nothing is touched.
TEST_F(FarOffsets, OfATiffBeyond2GiBAreLeftAlone) {
    for (const std::uint64_t offset : {kTwoGiB, kFourGiB - 3}) {
        stage.prepare({});
        putTiff("tile.tif", offset, {9, 9, 9, 1, 2, 3});
        putTiff("map.tif", offset, {4, 5, 6, 9, 9, 9});
        const ByteList head = headOf("map.tif");
        EXPECT_EQ(call("mergeMapsTIF", "tile.tif", 0.0, "map.tif"), 0.0f);
        EXPECT_EQ(call("swapRGBTIF", "map.tif", 2.0), 0.0f);
        EXPECT_THAT(bytesFrom("map.tif", offset), ElementsAre(4, 5, 6, 9, 9, 9));
        EXPECT_EQ(headOf("map.tif"), head);
    }
}

// 1 and 0.5 become the levels 65535 and 32768.
TEST_F(FarOffsets, OfAFloatMapReachAcross2GiB) {
    putFloats("map.tif", kTwoGiB - 4);
    EXPECT_EQ(call("convertTIFF16", "map.tif", 1.0, "out.tif"), 0.0f);
    EXPECT_THAT(bytesFrom("out.tif", 198), ElementsAre(0xFF, 0xFF, 0x00, 0x80));
    EXPECT_EQ(call("getScale", "map.tif", 1.0), std::numeric_limits<float>::infinity());
}

TEST_F(FarOffsets, OfAFloatMapBeyond2GiBAreRefused) {
    putFloats("map.tif", kTwoGiB);
    EXPECT_EQ(call("convertTIFF16", "map.tif", 1.0, "out.tif"), -274.0f);
    EXPECT_EQ(call("getScale", "map.tif", 1.0), -274.0f);
    EXPECT_FALSE(std::filesystem::exists(stage.path("out.tif")));
}

// A directory beyond 4 GiB does not exist for a field of 32 bits; the last place does.
TEST_F(FarOffsets, OfADirectoryAreAnyOf32Bits) {
    put("map.tif", 0, {'I', 'I', 42, 0, 0xFE, 0xFF, 0xFF, 0xFF});
    put("map.tif", kFourGiB - 2,
        {3, 0,                                   // entries
         0, 1, 3, 0, 1, 0, 0, 0, 1,  0, 0, 0,    // width 1
         1, 1, 3, 0, 1, 0, 0, 0, 1,  0, 0, 0,    // length 1
         2, 1, 3, 0, 1, 0, 0, 0, 32, 0, 0, 0});  // 32 bits; the strip is at 0
    EXPECT_EQ(call("getScale", "map.tif", 1.0), std::numeric_limits<float>::infinity());
}

// A Targa's pixels are the last bytes of its map, wherever they are.
TEST_F(FarOffsets, OfATargasPixelsCountFromTheEnd) {
    putTiff("map.tif", 1000, {});
    put("map.tif", kFourGiB + 4, {1, 2, 3, 4, 5, 6});
    EXPECT_EQ(call("saveAsTarga", "map.tif", 0.0, "out.tga"), 0.0f);
    EXPECT_THAT(bytesFrom("out.tga", 18), ElementsAre(3, 2, 1, 6, 5, 4));
}

TEST_F(FarOffsets, BehindABmpDoNotMatterToAJpeg) {
    put("near.bmp", 0, BmpFile(8, 8));
    put("far.bmp", 0, BmpFile(8, 8));
    endAt("far.bmp", kFourGiB + 1);
    EXPECT_EQ(call("saveAsJpeg", "near.bmp", 50.0, "near.jpg"), 0.0f);
    EXPECT_EQ(call("saveAsJpeg", "far.bmp", 50.0, "far.jpg"), 0.0f);
    EXPECT_EQ(bytesFrom("far.jpg", 0), bytesFrom("near.jpg", 0));
}

// Columns are summed up in single precision. In a row of 3750000 that runs past its end, to column
// 3860187 as Python's numpy has it; the next row starts at its own start again.
TEST_F(FarOffsets, OfALongRowAreThoseOfTheSinglePrecisionSum) {
    constexpr std::uint64_t kRowBytes = 3 * std::uint64_t{3750000};
    put("map.bmp", 0, BmpFile(1, 1).claimSize(3750000, 4).cut(54));
    put("map.bmp", 54 + kRowBytes, {1, 2, 3});
    put("map.bmp", 54 + std::uint64_t{3} * 3860187, {4, 5, 6});
    endAt("map.bmp", 54 + 4 * kRowBytes);
    EXPECT_EQ(call("CreateThumbnailBMP", "map.bmp", 2000000.0), 0.0f);
    const ByteList thumb = bytesFrom("map.bmp", 54);
    ASSERT_EQ(thumb.size(), 2u * 6000000);
    const auto middle = thumb.begin() + 6000000;
    EXPECT_THAT(ByteList(middle - 6, middle + 3), ElementsAre(0, 0, 0, 4, 5, 6, 1, 2, 3));
}

// A PSD's places are signed 32-bit numbers.
TEST_F(FarOffsets, OfAPsdBeyond2GiBAreRefused) {
    const ByteList head = PsdFile(1, 1).announceResources(0x7FFFFFD8).planes({1, 2, 3});
    put("map.psd", 0, firstBytes(head, 34));
    endAt("map.psd", kTwoGiB + 100);
    EXPECT_EQ(call("swapRGBPSD", "map.psd", 1.0), -1.0f);
    EXPECT_EQ(std::filesystem::file_size(stage.path("map.psd")), kTwoGiB + 100);
}

// The length of a first chunk leads to a second one beyond 4 GiB, where no search goes.
TEST_F(FarOffsets, OfAChunkBeyond4GiBAreNotFound) {
    const ByteList uvs = VemoBuilder().flatFaceUvs({{0.5f, 0.5f}}).closing().bytes();
    const ByteList chunk(uvs.begin() + 32, uvs.end());
    put("near.vws", 0, VemoBuilder().chunk(7, 0xFFFFFFDF, 0).bytes());
    put("near.vws", kFourGiB - 1, chunk);
    EXPECT_EQ(call("getUVTile", "near.vws"), 1.0f);
    put("far.vws", 0, VemoBuilder().chunk(7, 0xFFFFFFE0, 0).bytes());
    put("far.vws", kFourGiB, chunk);
    EXPECT_EQ(call("getUVTile", "far.vws"), -18.0f);
}

}  // namespace
