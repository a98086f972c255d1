// Files beyond 2 and 4 GiB, nearly all of them a hole that takes no room on disk.

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
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

// A file with bytes at chosen offsets and zeros between them.
class SparseFile {
public:
    explicit SparseFile(const std::string& path)
        : descriptor_(::open(path.c_str(), O_RDWR | O_CREAT | O_TRUNC, 0666)) {}
    SparseFile(const SparseFile&) = delete;
    SparseFile& operator=(const SparseFile&) = delete;
    ~SparseFile() { ::close(descriptor_); }

    SparseFile& put(std::uint64_t offset, const ByteList& bytes) {
        EXPECT_EQ(::pwrite(descriptor_, bytes.data(), bytes.size(), static_cast<off_t>(offset)),
                  static_cast<ssize_t>(bytes.size()));
        return *this;
    }
    SparseFile& endAt(std::uint64_t size) {
        EXPECT_EQ(::ftruncate(descriptor_, static_cast<off_t>(size)), 0);
        return *this;
    }
    ByteList bytes(std::uint64_t offset, std::size_t count) const {
        ByteList found(count);
        const ssize_t got = ::pread(descriptor_, found.data(), count, static_cast<off_t>(offset));
        found.resize(static_cast<std::size_t>(std::max<ssize_t>(got, 0)));
        return found;
    }
    std::uint64_t size() const {
        struct stat status {};
        EXPECT_EQ(::fstat(descriptor_, &status), 0);
        return static_cast<std::uint64_t>(status.st_size);
    }

private:
    int descriptor_;
};

class FarOffsets : public testing::Test {
protected:
    float call(const char* exportName, const char* text, double value = 0.0,
               const char* buffer1 = "") {
        return stage.make({exportName, text, value, buffer1}).status;
    }

    Stage stage;
};

// One row of two pixels and two bytes of padding.
void putBmp(SparseFile& file, std::uint32_t pixelOffset, const ByteList& row) {
    file.put(0, BmpFile(2, 1).claimPixelOffset(pixelOffset).cut(54)).put(pixelOffset, row);
}

// One row of two colour pixels of 8 bits.
void putTiff(SparseFile& file, std::uint32_t stripOffset, const ByteList& row) {
    const TiffFile map = TiffFile(2, 1, TiffFile::Order::kDirectoryFirst)
                             .rgb8(ByteList(6))
                             .entry(273, 1, stripOffset)
                             .entry(279, 1, 0x7FFFFFFF);
    file.put(0, map.bytes()).put(stripOffset, row);
}

// A BMP's pixel offset has 32 bits; its rows may go on beyond what that can say.
TEST_F(FarOffsets, OfABmpAreAnyOf32Bits) {
    for (const std::uint64_t offset : {kTwoGiB - 3, kTwoGiB, kFourGiB - 3, kFourGiB - 1}) {
        SCOPED_TRACE(offset);
        SparseFile tile(stage.path("tile.bmp"));
        SparseFile map(stage.path("map.bmp"));
        putBmp(tile, static_cast<std::uint32_t>(offset), {9, 9, 9, 1, 2, 3, 0, 0});
        putBmp(map, static_cast<std::uint32_t>(offset), {4, 5, 6, 9, 9, 9, 7, 8});
        EXPECT_EQ(call("mergeMapsBMP", "tile.bmp", 0.0, "map.bmp"), 0.0f);
        EXPECT_THAT(map.bytes(offset, 9), ElementsAre(4, 5, 6, 1, 2, 3, 7, 8));
        EXPECT_EQ(call("swapRGBBMP", "map.bmp", 2.0), 0.0f);
        EXPECT_THAT(map.bytes(offset, 9), ElementsAre(6, 5, 4, 3, 2, 1, 7, 8));
        EXPECT_EQ(map.size(), offset + 8);
    }
}

TEST_F(FarOffsets, OfATiffReachAcross2GiB) {
    const auto offset = static_cast<std::uint32_t>(kTwoGiB - 4);
    SparseFile tile(stage.path("tile.tif"));
    SparseFile map(stage.path("map.tif"));
    putTiff(tile, offset, {9, 9, 9, 1, 2, 3});
    putTiff(map, offset, {4, 5, 6, 9, 9, 9});
    EXPECT_EQ(call("mergeMapsTIF", "tile.tif", 0.0, "map.tif"), 0.0f);
    EXPECT_THAT(map.bytes(offset, 7), ElementsAre(4, 5, 6, 1, 2, 3));
    EXPECT_EQ(call("swapRGBTIF", "map.tif", 2.0), 0.0f);
    EXPECT_THAT(map.bytes(offset, 7), ElementsAre(6, 5, 4, 3, 2, 1));
    EXPECT_EQ(map.size(), offset + 6u);
}

// The maps' own numbers are signed: from 2 GiB on a strip starts nowhere, and nothing is touched.
TEST_F(FarOffsets, OfATiffBeyond2GiBAreLeftAlone) {
    for (const std::uint64_t offset : {kTwoGiB, kFourGiB - 3}) {
        SparseFile tile(stage.path("tile.tif"));
        SparseFile map(stage.path("map.tif"));
        putTiff(tile, static_cast<std::uint32_t>(offset), {9, 9, 9, 1, 2, 3});
        putTiff(map, static_cast<std::uint32_t>(offset), {4, 5, 6, 9, 9, 9});
        const ByteList head = map.bytes(0, 400);
        EXPECT_EQ(call("mergeMapsTIF", "tile.tif", 0.0, "map.tif"), 0.0f);
        EXPECT_EQ(call("swapRGBTIF", "map.tif", 2.0), 0.0f);
        EXPECT_THAT(map.bytes(offset, 7), ElementsAre(4, 5, 6, 9, 9, 9));
        EXPECT_EQ(map.bytes(0, 400), head);
    }
}

// 1 and 0.5 become the levels 65535 and 32768.
TEST_F(FarOffsets, OfAFloatMapReachAcross2GiB) {
    const auto offset = static_cast<std::uint32_t>(kTwoGiB - 4);
    SparseFile map(stage.path("map.tif"));
    TiffFile built(2, 1, TiffFile::Order::kDirectoryFirst);
    built.grey32({0, 0}).entry(254, 1, 0).entry(273, 1, offset);
    map.put(0, built.bytes()).put(offset, {0, 0, 0x80, 0x3F, 0, 0, 0, 0x3F});
    EXPECT_EQ(call("convertTIFF16", "map.tif", 1.0, "out.tif"), 0.0f);
    const ByteList out = readBytes(stage.path("out.tif"));
    EXPECT_EQ(ByteList(out.begin() + 198, out.end()), (ByteList{0xFF, 0xFF, 0x00, 0x80}));
    EXPECT_EQ(call("getScale", "map.tif", 1.0), std::numeric_limits<float>::infinity());
}

TEST_F(FarOffsets, OfAFloatMapBeyond2GiBAreRefused) {
    SparseFile map(stage.path("map.tif"));
    TiffFile built(2, 1, TiffFile::Order::kDirectoryFirst);
    built.grey32({0, 0}).entry(254, 1, 0).entry(273, 1, static_cast<std::uint32_t>(kTwoGiB));
    map.put(0, built.bytes()).endAt(kTwoGiB + 8);
    EXPECT_EQ(call("convertTIFF16", "map.tif", 1.0, "out.tif"), -274.0f);
    EXPECT_EQ(call("getScale", "map.tif", 1.0), -274.0f);
    EXPECT_FALSE(std::filesystem::exists(stage.path("out.tif")));
}

// A directory beyond 4 GiB does not exist for a field of 32 bits; the last place does.
TEST_F(FarOffsets, OfADirectoryAreAnyOf32Bits) {
    SparseFile map(stage.path("map.tif"));
    map.put(0, {'I', 'I', 42, 0, 0xFE, 0xFF, 0xFF, 0xFF});
    map.put(kFourGiB - 2, {3, 0});
    map.put(kFourGiB, {0, 1, 3, 0, 1, 0, 0, 0, 1, 0, 0, 0});        // width 1
    map.put(kFourGiB + 12, {1, 1, 3, 0, 1, 0, 0, 0, 1, 0, 0, 0});   // length 1
    map.put(kFourGiB + 24, {2, 1, 3, 0, 1, 0, 0, 0, 32, 0, 0, 0});  // 32 bits; the strip is at 0
    EXPECT_EQ(call("getScale", "map.tif", 1.0), std::numeric_limits<float>::infinity());
}

// A Targa's pixels are the last bytes of its map, wherever they are.
TEST_F(FarOffsets, OfATargasPixelsCountFromTheEnd) {
    SparseFile map(stage.path("map.tif"));
    putTiff(map, 1000, {});
    map.put(kFourGiB + 4, {1, 2, 3, 4, 5, 6});
    EXPECT_EQ(call("saveAsTarga", "map.tif", 0.0, "out.tga"), 0.0f);
    const ByteList out = readBytes(stage.path("out.tga"));
    EXPECT_EQ(ByteList(out.begin() + 18, out.end()), (ByteList{3, 2, 1, 6, 5, 4}));
}

TEST_F(FarOffsets, BehindABmpDoNotMatterToAJpeg) {
    const ByteList image = BmpFile(8, 8);
    SparseFile(stage.path("near.bmp")).put(0, image);
    SparseFile(stage.path("far.bmp")).put(0, image).endAt(kFourGiB + 1);
    EXPECT_EQ(call("saveAsJpeg", "near.bmp", 50.0, "near.jpg"), 0.0f);
    EXPECT_EQ(call("saveAsJpeg", "far.bmp", 50.0, "far.jpg"), 0.0f);
    EXPECT_EQ(readBytes(stage.path("far.jpg")), readBytes(stage.path("near.jpg")));
}

// Columns are summed up in single precision. In a row of 3750000 that runs past its end, to column
// 3860187 as Python's numpy has it; the next row starts at its own start again.
TEST_F(FarOffsets, OfALongRowAreThoseOfTheSinglePrecisionSum) {
    constexpr std::uint64_t kRowBytes = 3 * std::uint64_t{3750000};
    SparseFile map(stage.path("map.bmp"));
    map.put(0, BmpFile(1, 1).claimSize(3750000, 4).cut(54)).endAt(54 + 4 * kRowBytes);
    map.put(54 + kRowBytes, {1, 2, 3}).put(54 + std::uint64_t{3} * 3860187, {4, 5, 6});
    EXPECT_EQ(call("CreateThumbnailBMP", "map.bmp", 2000000.0), 0.0f);
    EXPECT_THAT(map.bytes(54 + 6000000 - 6, 9), ElementsAre(0, 0, 0, 4, 5, 6, 1, 2, 3));
    EXPECT_EQ(map.size(), 54u + 2 * 6000000);
}

// A PSD's places are signed 32-bit numbers.
TEST_F(FarOffsets, OfAPsdBeyond2GiBAreRefused) {
    SparseFile map(stage.path("map.psd"));
    const ByteList head = PsdFile(1, 1).announceResources(0x7FFFFFD8).planes({1, 2, 3}).bytes();
    map.put(0, {head.begin(), head.begin() + 34}).endAt(kTwoGiB + 100);
    EXPECT_EQ(call("swapRGBPSD", "map.psd", 1.0), -1.0f);
    EXPECT_EQ(map.size(), kTwoGiB + 100);
}

// The length of a first chunk leads to a second one beyond 4 GiB, where no search goes.
TEST_F(FarOffsets, OfAChunkBeyond4GiBAreNotFound) {
    const ByteList near = VemoBuilder().chunk(7, 0xFFFFFFDF, 0).bytes();
    const ByteList uvs = VemoBuilder().flatFaceUvs({{0.5f, 0.5f}}).closing().bytes();
    const ByteList chunk(uvs.begin() + 32, uvs.end());
    SparseFile mesh(stage.path("mesh.vws"));
    mesh.put(0, near).put(kFourGiB - 1, chunk);
    EXPECT_EQ(call("getUVTile", "mesh.vws"), 1.0f);
    SparseFile far(stage.path("far.vws"));
    far.put(0, VemoBuilder().chunk(7, 0xFFFFFFE0, 0).bytes()).put(kFourGiB, chunk);
    EXPECT_EQ(call("getUVTile", "far.vws"), -18.0f);
}

}  // namespace
