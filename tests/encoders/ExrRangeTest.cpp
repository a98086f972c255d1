#include "encoders/ExrRange.h"

#include <ImfChannelList.h>
#include <ImfDeepFrameBuffer.h>
#include <ImfDeepScanLineOutputFile.h>
#include <ImfFrameBuffer.h>
#include <ImfHeader.h>
#include <ImfMultiPartOutputFile.h>
#include <ImfOutputFile.h>
#include <ImfOutputPart.h>
#include <ImfPartType.h>
#include <ImfTiledOutputFile.h>
#include <ImfVersion.h>
#include <gmock/gmock.h>
#include <zlib.h>

#include <limits>
#include <random>
#include <string_view>

#include "bytes/Bytes.h"
#include "encoders/exr/ExrLoader.h"
#include "support/Faults.h"
#include "support/TempDir.h"

namespace {

using Imath::Box2i;
using Imath::V2i;
using testing::ElementsAre;

constexpr Imf::Compression kCompressions[] = {Imf::NO_COMPRESSION, Imf::RLE_COMPRESSION,
                                              Imf::ZIPS_COMPRESSION, Imf::ZIP_COMPRESSION,
                                              Imf::PIZ_COMPRESSION};
constexpr Imf::PixelType kTypes[] = {Imf::UINT, Imf::HALF, Imf::FLOAT};

// A picture that OpenEXR's own library writes: channel "A" holds the samples, "B" only 99.
struct Picture {
    int width = 1;
    int height = 1;
    std::vector<float> samples = {0.0f};
    Imf::PixelType type = Imf::FLOAT;
    Imf::Compression compression = Imf::NO_COMPRESSION;
    Imf::LineOrder order = Imf::INCREASING_Y;
    V2i corner = {0, 0};
    bool secondChannel = false;
};

Imf::Header headerOf(const Picture& picture) {
    const Box2i window(picture.corner, picture.corner + V2i(picture.width - 1, picture.height - 1));
    Imf::Header header(window, window);
    header.compression() = picture.compression;
    header.lineOrder() = picture.order;
    header.channels().insert("A", Imf::Channel(picture.type));
    if (picture.secondChannel) header.channels().insert("B", Imf::Channel(picture.type));
    return header;
}

// The samples in the type of the file, from its window's corner on.
class Pixels {
public:
    explicit Pixels(const Picture& picture) : picture_(picture) {
        for (const float sample : picture.samples) {
            halves_.push_back(half(sample));
            wholes_.push_back(sample > 0 && sample < 1e9f ? static_cast<unsigned>(sample) : 0);
        }
        const std::size_t count = picture.samples.size();
        otherFloats_.assign(count, 99.0f);
        otherHalves_.assign(count, half(99.0f));
        otherWholes_.assign(count, 99);
    }

    Imf::FrameBuffer frame() {
        Imf::FrameBuffer frame;
        frame.insert("A", sliceOf(picture_.samples, halves_, wholes_));
        if (picture_.secondChannel)
            frame.insert("B", sliceOf(otherFloats_, otherHalves_, otherWholes_));
        return frame;
    }

private:
    Imf::Slice sliceOf(const std::vector<float>& floats, const std::vector<half>& halves,
                       const std::vector<unsigned>& wholes) const {
        if (picture_.type == Imf::FLOAT) return slice(floats);
        return picture_.type == Imf::HALF ? slice(halves) : slice(wholes);
    }
    template <typename Sample>
    Imf::Slice slice(const std::vector<Sample>& samples) const {
        const std::ptrdiff_t first =
            picture_.corner.x + std::ptrdiff_t{picture_.corner.y} * picture_.width;
        char* base = const_cast<char*>(reinterpret_cast<const char*>(samples.data())) -
                     first * static_cast<std::ptrdiff_t>(sizeof(Sample));
        return Imf::Slice(picture_.type, base, sizeof(Sample),
                          sizeof(Sample) * static_cast<std::size_t>(picture_.width));
    }

    const Picture& picture_;
    std::vector<half> halves_, otherHalves_;
    std::vector<unsigned> wholes_, otherWholes_;
    std::vector<float> otherFloats_;
};

void writeRows(const std::string& path, const Picture& picture) {
    Imf::OutputFile file(path.c_str(), headerOf(picture));
    Pixels pixels(picture);
    file.setFrameBuffer(pixels.frame());
    // The lowest row comes first in a decreasing file; the library sorts them itself.
    file.writePixels(picture.height);
}

void writeTiles(const std::string& path, const Picture& picture, unsigned tileWidth,
                unsigned tileHeight, Imf::LevelMode mode = Imf::ONE_LEVEL,
                Imf::LevelRoundingMode rounding = Imf::ROUND_DOWN) {
    Imf::Header header = headerOf(picture);
    header.setTileDescription(Imf::TileDescription(tileWidth, tileHeight, mode, rounding));
    Imf::TiledOutputFile file(path.c_str(), header);
    Pixels pixels(picture);
    file.setFrameBuffer(pixels.frame());
    for (int y = 0; y < file.numYLevels(); ++y) {
        for (int x = 0; x < file.numXLevels(); ++x) {
            if (!file.isValidLevel(x, y)) continue;
            file.writeTiles(0, file.numXTiles(x) - 1, 0, file.numYTiles(y) - 1, x, y);
        }
    }
}

// Samples from -300 to 700, which a half float and, above 0, a whole number can also hold.
std::vector<float> ramp(int count) {
    std::vector<float> samples;
    for (int i = 0; i < count; ++i)
        samples.push_back(static_cast<float>((i * 37) % 1001 - 300));
    return samples;
}

class ExrRange : public testing::Test {
protected:
    std::string path() const { return dir.path("map.exr"); }
    float rangeOf(const Picture& picture) const {
        writeRows(path(), picture);
        return OpenEXR(path().c_str());
    }
    float rangeOfRow(std::vector<float> samples) const {
        const int width = static_cast<int>(samples.size());
        return rangeOf(Picture{.width = width, .samples = std::move(samples)});
    }
    float rangeOfBytes(const ByteList& bytes) const {
        return OpenEXR(dir.write("map.exr", bytes).c_str());
    }
    ByteList bytesOf(const Picture& picture) const {
        writeRows(path(), picture);
        return readBytes(path());
    }

    const TempDir dir;
};

TEST_F(ExrRange, ASinglePixelHasNoRange) {
    EXPECT_EQ(rangeOfRow({0.25f}), 0.0f);
}

TEST_F(ExrRange, IsTheLargestMinusTheSmallestSample) {
    EXPECT_EQ(rangeOfRow({-1.5f, 2.0f}), 3.5f);
}

TEST_F(ExrRange, IsMeasuredFromTheSeedsBeyondThem) {
    EXPECT_EQ(rangeOfRow({70000.0f, 70000.0f}), 4465.0f);
    EXPECT_EQ(rangeOfRow({-70000.0f, -65536.0f}), 4465.0f);
}

TEST_F(ExrRange, NotANumberCountsAsNothing) {
    const float nan = std::numeric_limits<float>::quiet_NaN();
    EXPECT_EQ(rangeOfRow({nan, 1.0f, nan, 3.0f, nan}), 2.0f);
    EXPECT_EQ(rangeOfRow({nan}), -131070.0f);
}

TEST_F(ExrRange, InfinitiesCount) {
    const float infinity = std::numeric_limits<float>::infinity();
    EXPECT_EQ(rangeOfRow({infinity, 1.0f}), infinity);
}

TEST_F(ExrRange, EveryCompressionAndTypeIsRead) {
    for (const Imf::Compression compression : kCompressions) {
        for (const Imf::PixelType type : kTypes) {
            for (const Imf::LineOrder order : {Imf::INCREASING_Y, Imf::DECREASING_Y}) {
                const Picture picture{.width = 61,
                                      .height = 53,
                                      .samples = ramp(61 * 53),
                                      .type = type,
                                      .compression = compression,
                                      .order = order,
                                      .corner = {-7, 11},
                                      .secondChannel = true};
                // 3233 samples step through all of 1001 values; whole numbers start at 0.
                EXPECT_EQ(rangeOf(picture), type == Imf::UINT ? 700.0f : 1000.0f)
                    << compression << ' ' << type << ' ' << order;
            }
        }
    }
}

TEST_F(ExrRange, TilesAreReadInEveryOrder) {
    for (const Imf::Compression compression : kCompressions) {
        for (const Imf::PixelType type : kTypes) {
            for (const Imf::LineOrder order :
                 {Imf::INCREASING_Y, Imf::DECREASING_Y, Imf::RANDOM_Y}) {
                const Picture picture{.width = 45,
                                      .height = 37,
                                      .samples = ramp(45 * 37),
                                      .type = type,
                                      .compression = compression,
                                      .order = order,
                                      .corner = {3, -2},
                                      .secondChannel = true};
                writeTiles(path(), picture, 16, 8);
                EXPECT_EQ(OpenEXR(path().c_str()), type == Imf::UINT ? 700.0f : 1000.0f)
                    << compression << ' ' << type << ' ' << order;
            }
        }
    }
}

TEST_F(ExrRange, TilesLargerThanThePictureAreRead) {
    writeTiles(path(), Picture{.width = 2, .samples = {-1.5f, 2.0f}}, 64, 32);
    EXPECT_EQ(OpenEXR(path().c_str()), 3.5f);
}

TEST_F(ExrRange, OfSeveralResolutionsTheFullOneCounts) {
    for (const Imf::LevelMode mode : {Imf::MIPMAP_LEVELS, Imf::RIPMAP_LEVELS}) {
        for (const Imf::LevelRoundingMode rounding : {Imf::ROUND_DOWN, Imf::ROUND_UP}) {
            for (const int width : {13, 16}) {
                const Picture picture{.width = width, .height = 9, .samples = ramp(width * 9)};
                writeTiles(path(), picture, 4, 4, mode, rounding);
                EXPECT_EQ(OpenEXR(path().c_str()), 999.0f) << mode << ' ' << rounding;
            }
        }
    }
}

// All samples that the loader passes on.
std::vector<float> samplesOf(const std::string& path) {
    ExrSize size;
    std::vector<float> all;
    EXPECT_EQ(LoadMultiChannelEXRFromFile(path.c_str(), size,
                                          [&](std::span<const float> samples) {
                                              all.insert(all.end(), samples.begin(), samples.end());
                                          }),
              0);
    EXPECT_EQ(all.size(), static_cast<std::size_t>(size.width * size.height));
    return all;
}

// Long enough for several pieces, the last of which is short; rows of chunks of every height.
TEST(ExrLoader, PassesOnEveryRowOfALargePictureInOrder) {
    const TempDir dir;
    const std::string path = dir.path("map.exr");
    constexpr int kWidth = 700;
    constexpr int kHeight = 301;
    std::vector<float> ramp(std::size_t{kWidth} * kHeight);
    for (std::size_t i = 0; i < ramp.size(); ++i)
        ramp[i] = static_cast<float>(i);
    for (const Imf::Compression compression : kCompressions) {
        for (const bool increasing : {true, false}) {
            writeRows(path, Picture{.width = kWidth,
                                    .height = kHeight,
                                    .samples = ramp,
                                    .compression = compression,
                                    .order = increasing ? Imf::INCREASING_Y : Imf::DECREASING_Y,
                                    .corner = {5, -9},
                                    .secondChannel = true});
            const std::vector<float> samples = samplesOf(path);
            ASSERT_EQ(samples.size(), ramp.size());
            for (std::size_t row = 0; row < kHeight; ++row) {
                const std::size_t from = increasing ? row : kHeight - 1 - row;
                ASSERT_TRUE(std::equal(&samples[row * kWidth], &samples[row * kWidth] + kWidth,
                                       &ramp[from * kWidth]))
                    << compression << " row " << row;
            }
        }
    }
}

TEST(ExrLoader, LaysTilesOutAsOnePlane) {
    const TempDir dir;
    const std::string path = dir.path("map.exr");
    for (const Imf::LineOrder order : {Imf::INCREASING_Y, Imf::DECREASING_Y}) {
        const Picture picture{
            .width = 5, .height = 7, .samples = ramp(35), .type = Imf::HALF, .order = order};
        writeTiles(path, picture, 2, 4);
        EXPECT_EQ(samplesOf(path), ramp(35)) << order;
    }
}

TEST(ExrLoader, TakesTheFirstChannelOfTheHeader) {
    const TempDir dir;
    const std::string path = dir.path("map.exr");
    writeRows(path, Picture{.width = 2, .samples = {1.0f, 2.0f}, .secondChannel = true});
    ByteList bytes = readBytes(path);
    // Renamed to "Z" in the header's list of channels, the first one stays the first.
    constexpr std::string_view kType = "chlist";
    const auto name = std::search(bytes.begin(), bytes.end(), kType.begin(), kType.end()) + 6 + 1 +
                      4;  // the type's text, its end and the value's size
    ASSERT_EQ(*name, 'A');
    *name = 'Z';
    EXPECT_THAT(samplesOf(dir.write("z.exr", bytes)), ElementsAre(1.0f, 2.0f));
}

// A row of 64 floats whose chunk holds this instead.
ByteList rowWithChunk(const std::string& path, const ByteList& chunk) {
    writeRows(path, Picture{.width = 64,
                            .samples = std::vector<float>(64, 1.0f),
                            .compression = Imf::ZIPS_COMPRESSION});
    ByteList bytes = readBytes(path);
    constexpr std::string_view kLastAttribute = "screenWindowWidth";
    const auto last =
        std::search(bytes.begin(), bytes.end(), kLastAttribute.begin(), kLastAttribute.end());
    // Its end, type, size and value; the end of the header; one offset, the row's number.
    const auto length = last + kLastAttribute.size() + 1 + 6 + 4 + 4 + 1 + 8 + 4;
    bytes.erase(length, bytes.end());
    for (std::size_t i = 0; i < 4; ++i)
        bytes.push_back(static_cast<std::uint8_t>(chunk.size() >> 8 * i));
    bytes.insert(bytes.end(), chunk.begin(), chunk.end());
    return bytes;
}

// What becomes `count` bytes of 0x40 after the step by which a chunk stores differences; four of
// them are the float 3.0039215.
ByteList deflatedRow(std::size_t count) {
    ByteList stored(count, 128);
    stored[0] = 0x40;
    ByteList deflated(compressBound(count));
    uLongf length = deflated.size();
    EXPECT_EQ(compress(deflated.data(), &length, stored.data(), count), Z_OK);
    deflated.resize(length);
    return deflated;
}

TEST_F(ExrRange, ChunksMayInflateToLessAndHaveBytesAfterThem) {
    const ByteList whole = deflatedRow(256);
    ByteList after = whole;
    after.insert(after.end(), {1, 2, 3, 4, 5, 6, 7, 8, 9});
    const auto rangeOf = [&](const ByteList& chunk) {
        return OpenEXR(dir.write("map.exr", rowWithChunk(path(), chunk)).c_str());
    };
    EXPECT_EQ(rangeOf(whole), 0.0f);
    EXPECT_EQ(rangeOf(after), 0.0f);
    EXPECT_EQ(rangeOf(deflatedRow(128)), 3.0039215f);  // what is missing is 0
}

TEST_F(ExrRange, ChunksThatCannotBeInflatedAreDamage) {
    const auto rangeOf = [&](const ByteList& chunk) {
        return OpenEXR(dir.write("map.exr", rowWithChunk(path(), chunk)).c_str());
    };
    EXPECT_EQ(rangeOf(deflatedRow(257)), -4.0f);  // longer than the row
    const ByteList whole = deflatedRow(256);
    for (std::size_t length = 2; length < whole.size(); ++length)
        EXPECT_EQ(rangeOf({whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length)}),
                  -4.0f)
            << length;
    for (std::size_t at = 0; at < 4; ++at) {
        ByteList wrongSum = whole;
        wrongSum[wrongSum.size() - 1 - at] ^= 1;
        EXPECT_EQ(rangeOf(wrongSum), -4.0f) << at;
    }
    ByteList wrongMethod = whole;
    wrongMethod[0] = 0x79;
    EXPECT_EQ(rangeOf(wrongMethod), -4.0f);
}

TEST_F(ExrRange, WhatIsNoExrGivesTheLoadersCode) {
    EXPECT_EQ(OpenEXR(nullptr), -3.0f);
    EXPECT_EQ(OpenEXR(dir.path("missing").c_str()), -7.0f);
    EXPECT_EQ(OpenEXR(dir.path().c_str()), -7.0f);
    EXPECT_EQ(rangeOfBytes({}), -4.0f);
    EXPECT_EQ(rangeOfBytes({1, 2, 3, 4, 2, 0, 0, 0, 0}), -1.0f);
    EXPECT_EQ(rangeOfBytes({0x76, 0x2F, 0x31, 0x01, 3, 0, 0, 0, 0}), -2.0f);
}

TEST_F(ExrRange, OtherCompressionsAreNotKnown) {
    EXPECT_EQ(rangeOf(Picture{.compression = Imf::PXR24_COMPRESSION}), -8.0f);
    EXPECT_EQ(rangeOf(Picture{.compression = Imf::B44_COMPRESSION}), -8.0f);
}

TEST_F(ExrRange, FilesOfSeveralPartsAreRefused) {
    std::vector<Imf::Header> headers(2, headerOf(Picture{}));
    headers[0].setName("one");
    headers[1].setName("two");
    for (Imf::Header& header : headers)
        header.setType(Imf::SCANLINEIMAGE);
    {
        Imf::MultiPartOutputFile file(path().c_str(), headers.data(), 2);
        const Picture picture;
        Pixels pixels(picture);
        for (int part = 0; part < 2; ++part) {
            Imf::OutputPart output(file, part);
            output.setFrameBuffer(pixels.frame());
            output.writePixels(1);
        }
    }
    EXPECT_EQ(OpenEXR(path().c_str()), -4.0f);
}

TEST_F(ExrRange, DeepFilesAreRefused) {
    ByteList bytes = bytesOf(Picture{});
    bytes[5] = 8;  // the flag of a deep file
    EXPECT_EQ(rangeOfBytes(bytes), -4.0f);
}

// The place of an attribute's value in a file.
std::size_t valueOf(const ByteList& bytes, std::string_view name, std::string_view type) {
    std::string key(name);
    key += '\0';
    key += type;
    key += '\0';
    const auto found = std::search(bytes.begin(), bytes.end(), key.begin(), key.end());
    EXPECT_NE(found, bytes.end()) << name;
    return static_cast<std::size_t>(found - bytes.begin()) + key.size() + 4;
}

TEST_F(ExrRange, HeadersThatTheLoaderWouldNotSurviveAreRefused) {
    writeTiles(path(), Picture{.width = 2, .samples = {1, 2}}, 16, 16);
    const ByteList tiled = readBytes(path());
    const std::size_t tiles = valueOf(tiled, "tiles", "tiledesc");
    const auto with = [](ByteList bytes, std::size_t at, std::initializer_list<int> values) {
        for (const int value : values)
            bytes[at++] = static_cast<std::uint8_t>(value);
        return bytes;
    };
    EXPECT_EQ(rangeOfBytes(tiled), 1.0f);
    EXPECT_EQ(rangeOfBytes(with(tiled, tiles, {0, 0, 0, 0})), -4.0f) << "tiles 0 wide";
    EXPECT_EQ(rangeOfBytes(with(tiled, tiles + 4, {0, 0, 0, 0})), -4.0f) << "tiles 0 high";
    EXPECT_EQ(rangeOfBytes(with(tiled, tiles, {0, 0, 0, 0x40})), -4.0f) << "giant tiles";
    EXPECT_EQ(rangeOfBytes(with(tiled, tiles + 8, {3})), -4.0f) << "level mode 3";
    EXPECT_EQ(rangeOfBytes(with(tiled, tiles - 4, {8})), -4.0f) << "a short tiles attribute";

    const ByteList rows = bytesOf(Picture{.width = 2, .samples = {1, 2}});
    const std::size_t window = valueOf(rows, "dataWindow", "box2i");
    EXPECT_EQ(rangeOfBytes(rows), 1.0f);
    EXPECT_EQ(rangeOfBytes(with(rows, window + 8, {0xFF, 0xFF, 0xFF, 0xFF})), -4.0f)
        << "no columns";
    EXPECT_EQ(rangeOfBytes(with(rows, window + 8, {0xFF, 0xFF, 0xFF, 0x7F})), -4.0f) << "endless";
    EXPECT_EQ(rangeOfBytes(with(rows, window + 8, {0, 0, 0x1F, 0})), -4.0f) << "2 million columns";
    const std::size_t channels = valueOf(rows, "channels", "chlist");
    EXPECT_EQ(rangeOfBytes(with(rows, channels + 2, {7})), -4.0f) << "an unknown pixel type";
    EXPECT_EQ(rangeOfBytes(with(rows, channels + 10, {2})), -10.0f) << "every second column";
}

TEST_F(ExrRange, ChunksOutOfPlaceAreRefused) {
    const ByteList bytes = bytesOf(Picture{.height = 2, .samples = {1, 2}});
    const std::size_t table = bytes.size() - 2 * 8 - 2 * 12;
    for (const std::size_t at : {table, table + 7, table + 16, table + 16 + 4}) {
        ByteList bent = bytes;
        bent[at] ^= 0x40;
        EXPECT_EQ(rangeOfBytes(bent), -4.0f) << at;
    }
}

// Where a file of `chunks` chunks has the table of their offsets: its lowest offset is its own
// end.
std::size_t tableOf(const ByteList& bytes, std::size_t chunks) {
    for (std::size_t at = 8; at + 8 * chunks <= bytes.size(); ++at) {
        std::uint64_t lowest = UINT64_MAX;
        for (std::size_t i = 0; i < chunks; ++i)
            lowest = std::min(lowest, loadLe64(&bytes[at + 8 * i]));
        if (lowest == at + 8 * chunks) return at;
    }
    ADD_FAILURE() << "no table";
    return 0;
}

// As a writer leaves it that is interrupted before it fills in the table.
TEST_F(ExrRange, AFileWhoseTableOfChunksHoldsZerosIsMeasured) {
    for (const Imf::Compression compression : kCompressions) {
        for (const Imf::LineOrder order : {Imf::INCREASING_Y, Imf::DECREASING_Y}) {
            const Picture picture{.width = 9,
                                  .height = 70,
                                  .samples = ramp(630),
                                  .type = Imf::HALF,
                                  .compression = compression,
                                  .order = order,
                                  .corner = {-3, -20}};
            ByteList bytes = bytesOf(picture);
            const float range = rangeOfBytes(bytes);
            const std::size_t chunks = compression == Imf::ZIP_COMPRESSION   ? 5
                                       : compression == Imf::PIZ_COMPRESSION ? 3
                                                                             : 70;
            const std::size_t table = tableOf(bytes, chunks);
            std::fill_n(bytes.begin() + static_cast<std::ptrdiff_t>(table), 8, std::uint8_t{0});
            EXPECT_EQ(rangeOfBytes(bytes), range) << compression << ", the first offset";
            std::fill_n(bytes.begin() + static_cast<std::ptrdiff_t>(table), 8 * chunks,
                        std::uint8_t{0});
            EXPECT_EQ(rangeOfBytes(bytes), range) << compression << ", all offsets";
            EXPECT_EQ(readBytes(path()), bytes) << "the file itself stays";
        }
    }
}

TEST_F(ExrRange, TilesWhoseTableHoldsZerosAreMeasured) {
    const Picture picture{.width = 40, .height = 24, .samples = ramp(960), .type = Imf::HALF};
    // Tiles of 8 x 8: 15 of them, and with smaller pictures of 20 x 12, 10 x 6, 5 x 3, 2 x 1 and 1 x 1
    // 6, 2 and three times 1 more.
    for (const auto& [mode, chunks] : {std::pair{Imf::ONE_LEVEL, 15u}, {Imf::MIPMAP_LEVELS, 26u}}) {
        writeTiles(path(), picture, 8, 8, mode);
        ByteList bytes = readBytes(path());
        const float range = rangeOfBytes(bytes);
        const std::size_t table = tableOf(bytes, chunks);
        std::fill_n(bytes.begin() + static_cast<std::ptrdiff_t>(table), 8 * chunks,
                    std::uint8_t{0});
        EXPECT_EQ(rangeOfBytes(bytes), range) << mode;
    }
}

// Every truncated length, and bytes changed at random: a range or a negative code, never a crash,
// and the file itself stays.
TEST_F(ExrRange, DamagedFilesGiveACodeOrARange) {
    std::mt19937 random(1);
    const std::ptrdiff_t handles = openFiles();
    for (const Imf::Compression compression : kCompressions) {
        const Picture picture{.width = 9,
                              .height = 40,
                              .samples = ramp(360),
                              .type = Imf::HALF,
                              .compression = compression,
                              .secondChannel = true};
        ByteList whole = bytesOf(picture);
        for (const bool tiled : {false, true}) {
            if (tiled) {
                writeTiles(path(), picture, 8, 16, Imf::MIPMAP_LEVELS);
                whole = readBytes(path());
            }
            for (std::size_t length = 0; length < whole.size(); length += length < 450 ? 1 : 17) {
                const ByteList cut(whole.begin(),
                                   whole.begin() + static_cast<std::ptrdiff_t>(length));
                EXPECT_LT(rangeOfBytes(cut), 0.0f) << length;
            }
            for (int round = 0; round < 300; ++round) {
                ByteList bent = whole;
                for (int change = 0; change <= round % 4; ++change)
                    bent[random() % bent.size()] = static_cast<std::uint8_t>(random());
                rangeOfBytes(bent);
                ASSERT_EQ(readBytes(path()), bent);
            }
        }
    }
    EXPECT_EQ(openFiles(), handles);
}

}  // namespace
