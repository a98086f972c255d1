#include "encoders/ExrRange.h"

#include <ImfChannelList.h>
#include <ImfFrameBuffer.h>
#include <ImfHeader.h>
#include <ImfInputFile.h>
#include <ImfMultiPartOutputFile.h>
#include <ImfOutputFile.h>
#include <ImfOutputPart.h>
#include <ImfPartType.h>
#include <ImfStringAttribute.h>
#include <ImfTiledOutputFile.h>
#include <gmock/gmock.h>
#include <zlib.h>

#include <algorithm>
#include <limits>
#include <string_view>

#include "bytes/Bytes.h"
#include "encoders/exr/ExrLoader.h"
#include "support/Append.h"
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
    std::pair<const char*, const char*> text = {};  // an attribute more
};

Imf::Header headerOf(const Picture& picture) {
    const Box2i window(picture.corner, picture.corner + V2i(picture.width - 1, picture.height - 1));
    Imf::Header header(window, window);
    header.compression() = picture.compression;
    header.lineOrder() = picture.order;
    header.channels().insert("A", Imf::Channel(picture.type));
    if (picture.secondChannel) header.channels().insert("B", Imf::Channel(picture.type));
    if (picture.text.first != nullptr)
        header.insert(picture.text.first, Imf::StringAttribute(picture.text.second));
    return header;
}

// Samples as a file holds them.
ByteList samplesAs(Imf::PixelType type, const std::vector<float>& samples) {
    ByteList bytes;
    for (const float sample : samples) {
        if (type == Imf::FLOAT)
            appendLeFloat(bytes, sample);
        else if (type == Imf::HALF)
            appendLe16(bytes, half(sample).bits());
        else
            appendLe32(bytes, sample > 0 ? static_cast<std::uint32_t>(sample) : 0);
    }
    return bytes;
}

class Pixels {
public:
    explicit Pixels(const Picture& picture)
        : picture_(picture),
          samples_(samplesAs(picture.type, picture.samples)),
          others_(samplesAs(picture.type, std::vector<float>(picture.samples.size(), 99.0f))) {}

    Imf::FrameBuffer frame() {
        Imf::FrameBuffer frame;
        frame.insert("A", slice(samples_));
        if (picture_.secondChannel) frame.insert("B", slice(others_));
        return frame;
    }

private:
    // OpenEXR takes the place of the pixel (0, 0), wherever the window's corner is.
    Imf::Slice slice(ByteList& samples) const {
        const std::size_t sampleBytes = picture_.type == Imf::HALF ? 2 : 4;
        const std::size_t rowBytes = sampleBytes * static_cast<std::size_t>(picture_.width);
        char* const origin = reinterpret_cast<char*>(samples.data()) -
                             picture_.corner.x * static_cast<std::ptrdiff_t>(sampleBytes) -
                             picture_.corner.y * static_cast<std::ptrdiff_t>(rowBytes);
        return Imf::Slice(picture_.type, origin, sampleBytes, rowBytes);
    }

    const Picture& picture_;
    ByteList samples_;
    ByteList others_;
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

// The floats of channel "A" of a picture of one row.
std::vector<float> readByOpenExr(const std::string& path, std::size_t width) {
    std::vector<float> row(width);
    Imf::FrameBuffer frame;
    frame.insert("A", Imf::Slice(Imf::FLOAT, reinterpret_cast<char*>(row.data()), sizeof(float),
                                 width * sizeof(float)));
    Imf::InputFile file(path.c_str());
    file.setFrameBuffer(frame);
    file.readPixels(0);
    return row;
}

// Samples from -300 to 700, which a half float and, above 0, a whole number can also hold.
std::vector<float> ramp(int count) {
    std::vector<float> samples;
    for (int i = 0; i < count; ++i)
        samples.push_back(static_cast<float>((i * 37) % 1001 - 300));
    return samples;
}

ByteList firstOf(const ByteList& bytes, std::size_t length) {
    return {bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(length)};
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

// The place of the table of chunk offsets: behind the last attribute's value and the header's end.
std::size_t tableOf(const ByteList& bytes) {
    const bool tiled = (bytes[5] & 2) != 0;
    return tiled ? valueOf(bytes, "tiles", "tiledesc") + 9 + 1
                 : valueOf(bytes, "screenWindowWidth", "float") + 4 + 1;
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
    float rangeOfTiles(const Picture& picture, unsigned tileWidth, unsigned tileHeight) const {
        writeTiles(path(), picture, tileWidth, tileHeight);
        return OpenEXR(path().c_str());
    }
    float rangeOfBytes(const ByteList& bytes) const {
        return OpenEXR(dir.write("map.exr", bytes).c_str());
    }
    float rangeOfChunk(const ByteList& chunk) const { return rangeOfBytes(rowWithChunk(chunk)); }
    ByteList bytesOf(const Picture& picture) const {
        writeRows(path(), picture);
        return readBytes(path());
    }

    // Measures the file also with zeros in its table, as a writer leaves it that is interrupted
    // before it fills the table in.
    void expectTableRebuilt(std::size_t chunks) const {
        ByteList bytes = readBytes(path());
        const float range = rangeOfBytes(bytes);
        EXPECT_GT(range, 0.0f);
        for (const std::size_t zeros : {std::size_t{1}, chunks}) {
            std::fill_n(&bytes[tableOf(bytes)], 8 * zeros, std::uint8_t{0});
            EXPECT_EQ(rangeOfBytes(bytes), range) << zeros << " offsets";
            EXPECT_EQ(readBytes(path()), bytes) << "the file itself stays";
        }
    }

    // A row of 64 floats whose chunk holds this instead.
    ByteList rowWithChunk(const ByteList& chunk) const {
        ByteList bytes = bytesOf(Picture{.width = 64,
                                         .samples = std::vector<float>(64, 1.0f),
                                         .compression = Imf::ZIPS_COMPRESSION});
        bytes.resize(tableOf(bytes) + 8 + 4);  // behind one offset and the row's number
        appendLe32(bytes, static_cast<std::uint32_t>(chunk.size()));
        append(bytes, chunk);
        return bytes;
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

// 3233 samples step through all of 1001 values; whole numbers start at 0.
TEST_F(ExrRange, EveryCompressionTypeAndOrderIsRead) {
    for (const Imf::Compression compression : kCompressions) {
        for (const Imf::PixelType type : kTypes) {
            for (const Imf::LineOrder order :
                 {Imf::INCREASING_Y, Imf::DECREASING_Y, Imf::RANDOM_Y}) {
                const Picture picture{.width = 61,
                                      .height = 53,
                                      .samples = ramp(61 * 53),
                                      .type = type,
                                      .compression = compression,
                                      .order = order,
                                      .corner = {-7, 11},
                                      .secondChannel = true};
                SCOPED_TRACE(testing::Message() << compression << ' ' << type << ' ' << order);
                const float range = type == Imf::UINT ? 700.0f : 1000.0f;
                EXPECT_EQ(rangeOfTiles(picture, 16, 8), range);
                if (order == Imf::RANDOM_Y) continue;
                EXPECT_EQ(rangeOf(picture), range);
            }
        }
    }
}

TEST_F(ExrRange, TilesLargerThanThePictureAreRead) {
    EXPECT_EQ(rangeOfTiles(Picture{.width = 2, .samples = {-1.5f, 2.0f}}, 64, 32), 3.5f);
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

class ExrLoader : public ExrRange {};

// Long enough for several pieces, the last of which is short; rows of chunks of every height.
TEST_F(ExrLoader, PassesOnEveryRowOfALargePictureInOrder) {
    constexpr int kWidth = 700;
    constexpr int kHeight = 301;
    std::vector<float> ramp(std::size_t{kWidth} * kHeight);
    for (std::size_t i = 0; i < ramp.size(); ++i)
        ramp[i] = static_cast<float>(i);
    for (const Imf::Compression compression : kCompressions) {
        for (const bool increasing : {true, false}) {
            writeRows(path(), Picture{.width = kWidth,
                                      .height = kHeight,
                                      .samples = ramp,
                                      .compression = compression,
                                      .order = increasing ? Imf::INCREASING_Y : Imf::DECREASING_Y,
                                      .corner = {5, -9},
                                      .secondChannel = true});
            const std::vector<float> samples = samplesOf(path());
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

TEST_F(ExrLoader, LaysTilesOutAsOnePlane) {
    for (const Imf::LineOrder order : {Imf::INCREASING_Y, Imf::DECREASING_Y}) {
        const Picture picture{
            .width = 5, .height = 7, .samples = ramp(35), .type = Imf::HALF, .order = order};
        writeTiles(path(), picture, 2, 4);
        EXPECT_EQ(samplesOf(path()), ramp(35)) << order;
    }
}

TEST_F(ExrLoader, TakesTheFirstChannelOfTheHeader) {
    ByteList bytes = bytesOf(Picture{.width = 2, .samples = {1.0f, 2.0f}, .secondChannel = true});
    // Renamed to "Z" in the header's list of channels, the first one stays the first.
    std::uint8_t& name = bytes[valueOf(bytes, "channels", "chlist")];
    ASSERT_EQ(name, 'A');
    name = 'Z';
    EXPECT_THAT(samplesOf(dir.write("z.exr", bytes)), ElementsAre(1.0f, 2.0f));
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
    append(after, {1, 2, 3, 4, 5, 6, 7, 8, 9});
    EXPECT_EQ(rangeOfChunk(whole), 0.0f);
    EXPECT_EQ(rangeOfChunk(after), 0.0f);
    EXPECT_EQ(rangeOfChunk(deflatedRow(128)), 3.0039215f);  // what is missing is 0
}

TEST_F(ExrRange, ChunksThatCannotBeInflatedAreDamage) {
    EXPECT_EQ(rangeOfChunk(deflatedRow(257)), -4.0f);  // longer than the row
    const ByteList whole = deflatedRow(256);
    for (std::size_t length = 2; length < whole.size(); ++length)
        EXPECT_EQ(rangeOfChunk(firstOf(whole, length)), -4.0f) << length;
    for (std::size_t at = 0; at < 4; ++at) {
        ByteList wrongSum = whole;
        wrongSum[wrongSum.size() - 1 - at] ^= 1;
        EXPECT_EQ(rangeOfChunk(wrongSum), -4.0f) << at;
    }
    ByteList wrongMethod = whole;
    wrongMethod[0] = 0x79;
    EXPECT_EQ(rangeOfChunk(wrongMethod), -4.0f);
}

TEST_F(ExrRange, TilesThatCannotBeInflatedAreDamage) {
    writeTiles(path(),
               Picture{.width = 32,
                       .height = 32,
                       .samples = std::vector<float>(1024, 1.0f),
                       .compression = Imf::ZIP_COMPRESSION},
               16, 16, Imf::MIPMAP_LEVELS);
    const ByteList whole = readBytes(path());
    EXPECT_EQ(rangeOfBytes(whole), 0.0f);
    for (const std::size_t tile : {0u, 4u}) {  // one of the full picture, one of the next smaller
        const std::uint64_t chunk = loadLe64(&whole[tableOf(whole) + 8 * tile]);
        ByteList wrongMethod = whole;
        wrongMethod[chunk + 4 * 4 + 4] = 0x79;  // behind the tile's place and its length
        EXPECT_EQ(rangeOfBytes(wrongMethod), -4.0f) << tile;
    }
}

TEST_F(ExrRange, WaveletsThatCannotBeDecodedAreDamage) {
    ByteList bytes = bytesOf(Picture{.width = 64,
                                     .height = 32,
                                     .samples = std::vector<float>(2048, 1.0f),
                                     .type = Imf::HALF,
                                     .compression = Imf::PIZ_COMPRESSION});
    EXPECT_EQ(rangeOfBytes(bytes), 0.0f);
    const std::size_t chunk = tableOf(bytes) + 8;
    bytes[chunk + 4 + 4 + 3] = 0xFF;  // the last byte of a bitmap of more than 8192, see PizBlock.h
    EXPECT_EQ(rangeOfBytes(bytes), -4.0f);
}

TEST_F(ExrRange, OtherFilesGiveTheLoadersCode) {
    EXPECT_EQ(OpenEXR(nullptr), -3.0f);
    EXPECT_EQ(OpenEXR(dir.path("missing").c_str()), -7.0f);
    EXPECT_EQ(OpenEXR(dir.path().c_str()), -7.0f);
    EXPECT_EQ(rangeOfBytes({}), -4.0f);
    EXPECT_EQ(rangeOfBytes({1, 2, 3, 4, 2, 0, 0, 0, 0}), -1.0f);
    EXPECT_EQ(rangeOfBytes({0x76, 0x2F, 0x31, 0x01, 3, 0, 0, 0, 0}), -2.0f);
}

TEST_F(ExrRange, OtherCompressionsAreUnknown) {
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

// Rows whose type says tiles, and tiles whose type says rows, are files that OpenEXR reads, too.
TEST_F(ExrRange, TheFlagsCountWhateverTheTypeSays) {
    for (const char* type : {"scanlineimage", "tiledimage", "deepscanline", "deeptile", "none"}) {
        for (const bool tiled : {false, true}) {
            SCOPED_TRACE(testing::Message() << type << ' ' << tiled);
            const Picture picture{.width = 2, .samples = {1, 3.5f}, .text = {"tyqe", type}};
            if (tiled)
                writeTiles(path(), picture, 1, 1);
            else
                writeRows(path(), picture);
            ByteList bytes = readBytes(path());
            *std::ranges::find(bytes, 'q') = 'p';  // the writer would not take any text as the type
            EXPECT_EQ(rangeOfBytes(bytes), 2.5f);
            EXPECT_THAT(readByOpenExr(path(), 2), ElementsAre(1.0f, 3.5f));
        }
    }
}

TEST_F(ExrRange, HeadersThatTheLoaderMightNotSurviveAreRefused) {
    const Picture picture{.width = 2, .samples = {1, 2}};
    EXPECT_EQ(rangeOfTiles(picture, 16, 16), 1.0f);
    const ByteList tiled = readBytes(path());
    EXPECT_EQ(rangeOf(picture), 1.0f);
    const ByteList rows = readBytes(path());
    const std::size_t tiles = valueOf(tiled, "tiles", "tiledesc");
    const std::size_t window = valueOf(rows, "dataWindow", "box2i");
    const std::size_t channels = valueOf(rows, "channels", "chlist");
    const std::size_t ratio = valueOf(rows, "pixelAspectRatio", "float");
    const struct {
        const char* defect;
        const ByteList& file;
        std::size_t at;
        ByteList bytes;
        float status;
    } kCases[] = {
        {"tiles 0 wide", tiled, tiles, {0, 0, 0, 0}, -4.0f},
        {"tiles 0 high", tiled, tiles + 4, {0, 0, 0, 0}, -4.0f},
        {"giant tiles", tiled, tiles, {0, 0, 0, 0x40}, -4.0f},
        {"level mode 3", tiled, tiles + 8, {3}, -4.0f},
        {"a short tiles attribute", tiled, tiles - 4, {8}, -4.0f},
        {"no columns", rows, window + 8, {0xFF, 0xFF, 0xFF, 0xFF}, -4.0f},
        {"endless", rows, window + 8, {0xFF, 0xFF, 0xFF, 0x7F}, -4.0f},
        {"2 million columns", rows, window + 8, {0, 0, 0x1F, 0}, -4.0f},
        {"no rows", rows, window + 12, {0xFF, 0xFF, 0xFF, 0xFF}, -4.0f},
        {"starts too far left", rows, window, {0xFF, 0xFF, 0xDF, 0xFF}, -4.0f},
        {"starts too far up", rows, window + 4, {0xFF, 0xFF, 0xDF, 0xFF}, -4.0f},
        {"ends too far down", rows, window + 12, {1, 0, 0x20, 0}, -4.0f},
        {"a short window", rows, window - 4, {15}, -4.0f},
        {"half a channel", rows, channels - 4, {17}, -4.0f},
        {"channels without an end", rows, channels - 4, {18}, -4.0f},
        {"an unknown pixel type", rows, channels + 2, {7}, -4.0f},
        {"every second column", rows, channels + 10, {2}, -10.0f},
        {"every second row", rows, channels + 14, {2}, -10.0f},
        {"an attribute of another name", rows, ratio - 27, {'q'}, -9.0f},
    };
    for (const auto& row : kCases) {
        ByteList bent = row.file;
        std::copy(row.bytes.begin(), row.bytes.end(), &bent[row.at]);
        EXPECT_EQ(rangeOfBytes(bent), row.status) << row.defect;
    }
}

TEST_F(ExrRange, ChunksOutOfPlaceAreRefused) {
    const ByteList bytes = bytesOf(Picture{.height = 2, .samples = {1, 2}});
    const std::size_t table = tableOf(bytes);
    for (const std::size_t at : {table, table + 7, table + 16, table + 16 + 4}) {
        ByteList bent = bytes;
        bent[at] ^= 0x40;
        EXPECT_EQ(rangeOfBytes(bent), -4.0f) << at;
    }
}

TEST_F(ExrRange, AFileWhoseTableOfChunksHoldsZerosIsMeasured) {
    for (const Imf::Compression compression : kCompressions) {
        for (const Imf::LineOrder order : {Imf::INCREASING_Y, Imf::DECREASING_Y}) {
            SCOPED_TRACE(testing::Message() << compression << ' ' << order);
            writeRows(path(), Picture{.width = 9,
                                      .height = 70,
                                      .samples = ramp(630),
                                      .type = Imf::HALF,
                                      .compression = compression,
                                      .order = order,
                                      .corner = {-3, -20}});
            expectTableRebuilt(compression == Imf::ZIP_COMPRESSION   ? 5
                               : compression == Imf::PIZ_COMPRESSION ? 3
                                                                     : 70);
        }
    }
}

// Tiles of 8 x 8: 15 of them, and with smaller pictures of 20 x 12, 10 x 6, 5 x 3, 2 x 1 and 1 x 1
// 6, 2 and three times 1 more.
TEST_F(ExrRange, TilesWhoseTableHoldsZerosAreMeasured) {
    const Picture picture{.width = 40, .height = 24, .samples = ramp(960), .type = Imf::HALF};
    writeTiles(path(), picture, 8, 8);
    expectTableRebuilt(15);
    writeTiles(path(), picture, 8, 8, Imf::MIPMAP_LEVELS);
    expectTableRebuilt(26);

    // A column and a row that the full picture does not have, and a resolution that is not there.
    const ByteList zeros = readBytes(path());
    for (const auto& [at, number] : {std::pair<std::size_t, std::uint8_t>{0, 5}, {4, 3}, {12, 1}}) {
        ByteList bent = zeros;
        bent[tableOf(zeros) + 8 * 26 + at] = number;
        EXPECT_EQ(rangeOfBytes(bent), -4.0f) << at;
    }
}

TEST_F(ExrRange, TruncatedFilesAreRefused) {
    for (const Imf::Compression compression : kCompressions) {
        const Picture picture{.width = 9,
                              .height = 40,
                              .samples = ramp(360),
                              .type = Imf::HALF,
                              .compression = compression,
                              .secondChannel = true};
        const ByteList rows = bytesOf(picture);
        writeTiles(path(), picture, 8, 16, Imf::MIPMAP_LEVELS);
        for (const ByteList& whole : {rows, readBytes(path())}) {
            for (std::size_t length = 0; length < whole.size(); length += length < 450 ? 1 : 17)
                EXPECT_LT(rangeOfBytes(firstOf(whole, length)), 0.0f) << length;
        }
    }
}

}  // namespace
