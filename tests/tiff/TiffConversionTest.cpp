#include <gmock/gmock.h>

#include <filesystem>
#include <limits>

#include "bytes/Bytes.h"
#include "support/Append.h"
#include "support/CaptureStdout.h"
#include "support/FullDevice.h"
#include "support/TempDir.h"
#include "support/TiffFile.h"
#include "tiff/TiffOps.h"
#include "tiff/TiffTemplates.h"

namespace {

using testing::ElementsAre;

// A map as the host writes it: the directory at byte 8, with tag 254 first.
TiffFile hostMap(std::uint32_t width, std::uint32_t length) {
    return TiffFile(width, length, TiffFile::Order::kDirectoryFirst).entry(254, 1, 0);
}

class Conversion : public testing::Test {
protected:
    float convert(const ByteList& map, int mode, int isPsd) const {
        return convertTiff(dir.write("map.tif", map).c_str(), out().c_str(), mode, isPsd);
    }
    float single(const ByteList& map) const {
        return singleChannelTiff(dir.write("map.tif", map).c_str(), out().c_str());
    }
    std::string out() const { return dir.path("out"); }
    ByteList written(std::size_t from = 0) const { return readBytes(out(), from); }

    const TempDir dir;
};

// The header of a 16-bit TIFF whose map has these sizes, and its pixels.
ByteList tiffOf(ByteList header, std::uint16_t width, std::uint16_t length,
                const ByteList& pixels) {
    storeLe16(&header[30], width);
    storeLe16(&header[42], length);
    storeLe16(&header[114], length);  // rows per strip
    storeLe32(&header[126], static_cast<std::uint32_t>(pixels.size()));
    append(header, pixels);
    return header;
}

TEST_F(Conversion, GreySamplesBecomeLittleEndianLevels) {
    EXPECT_EQ(convert(hostMap(3, 2).grey32({1.5f, -0.2f, 0.5f, 0, 0, 1}), 1, 0), 0.0f);
    EXPECT_EQ(written(), tiffOf(greyTiffHeader16(), 3, 2,
                                {0xFF, 0xFF, 0, 0, 0x00, 0x80, 0, 0, 0, 0, 0xFF, 0xFF}));
}

TEST_F(Conversion, ColourSamplesBecomeLittleEndianLevels) {
    EXPECT_EQ(convert(hostMap(1, 2).rgb32({0, 1, 0.5f, 1, 0, 0.25f}), 3, 0), 0.0f);
    EXPECT_EQ(written(), tiffOf(rgbTiffHeader16(), 1, 2,
                                {0, 0, 0xFF, 0xFF, 0, 0x80, 0xFF, 0xFF, 0, 0, 0, 0x40}));
}

TEST_F(Conversion, ModeFourKeepsTheFirstChannel) {
    const TiffFile map = hostMap(2, 1).rgb32({1, 0.5f, 0.5f, 0.25f, 1, 1});
    EXPECT_EQ(convert(map, 4, 0), 0.0f);
    EXPECT_EQ(written(198), (ByteList{0xFF, 0xFF, 0, 0x40}));
    EXPECT_EQ(convert(map, 4, 1), 0.0f);
    EXPECT_EQ(written(40), (ByteList{0xFF, 0xFF, 0x40, 0}));
}

TEST_F(Conversion, APsdsSamplesAreBigEndianAndItsHeightIsTheMapsWidth) {
    EXPECT_EQ(convert(hostMap(512, 1).grey32(std::vector<float>(512, 0.5f)), 1, 1), 0.0f);
    ByteList expected = greyPsdHeader16();
    storeBe32(&expected[14], 512);
    storeBe32(&expected[18], 1);
    for (int i = 0; i < 512; ++i)
        append(expected, {0x80, 0x00});
    EXPECT_EQ(written(), expected);
}

TEST_F(Conversion, AColourMapIsATiffEvenWhenAPsdIsWanted) {
    EXPECT_EQ(convert(hostMap(1, 1).rgb32({0, 0, 0}), 3, 1), 0.0f);
    EXPECT_EQ(written(), tiffOf(rgbTiffHeader16(), 1, 1, ByteList(6, 0)));
}

TEST_F(Conversion, AMapOfManyPiecesIsConvertedWhole) {
    std::vector<float> samples;
    ByteList expected;
    for (std::uint32_t level = 0; level < 65536; ++level) {
        samples.push_back(static_cast<float>(level) / 65535.0f);
        samples.insert(samples.end(), {9.0f, 9.0f});
        appendLe16(expected, level);
    }
    EXPECT_EQ(convert(hostMap(1024, 64).rgb32(samples), 4, 0), 0.0f);
    EXPECT_TRUE(written(198) == expected);
}

TEST_F(Conversion, ADirectoryBehindThePixelsHasNoPlaceForTheSizes) {
    const TiffFile map = TiffFile(9, 6).grey32(std::vector<float>(54, 0.5f));
    EXPECT_EQ(convert(map, 1, 0), -257.0f);
    EXPECT_FALSE(dir.has("out"));
    EXPECT_EQ(convert(map, 1, 1), 0.0f) << "a PSD has its own places";
}

// Without tag 254 each entry is one place further up: the host's order is taken for granted.
TEST_F(Conversion, SizesTakeThePlacesThatTheyHaveInTheMap) {
    const TiffFile map = TiffFile(2, 1, TiffFile::Order::kDirectoryFirst).grey32({0, 0});
    EXPECT_EQ(convert(map, 1, 0), 0.0f);
    EXPECT_EQ(written()[18], 2) << "the width, where tag 254's value is";
    EXPECT_EQ(written()[30], 1) << "the length, where the width is";
}

// The last value place of 198 bytes: a size takes two bytes of it, a byte count four.
TEST_F(Conversion, ASizeNeedsTwoBytesOfTheNewHeaderAndTheByteCountFour) {
    // A directory of one entry, whose value is at `place`.
    const auto mapWithValueAt = [](std::size_t place, std::uint16_t tag) {
        ByteList map(place + 4, 0);
        map[4] = static_cast<std::uint8_t>(place - 10);
        storeLe16(&map[place - 10], 1);
        storeLe16(&map[place - 8], tag);
        storeLe16(&map[place], 7);
        return map;
    };
    EXPECT_EQ(convert(mapWithValueAt(196, 256), 1, 0), 0.0f);
    EXPECT_EQ(written()[196], 7);
    EXPECT_EQ(convert(mapWithValueAt(197, 256), 1, 0), -257.0f);
    EXPECT_EQ(convert(mapWithValueAt(194, 279), 1, 0), 0.0f);
    EXPECT_EQ(convert(mapWithValueAt(195, 279), 1, 0), -257.0f);
}

// Entry 254 becomes a second 279: its place keeps what the new header has there, a LONG of 0.
TEST_F(Conversion, OfTwoByteCountsOnlyTheLastOnesPlaceIsWritten) {
    ByteList map = hostMap(2, 1).grey32({0, 0});
    storeLe16(&map[10], 279);
    EXPECT_EQ(convert(map, 1, 0), 0.0f);
    EXPECT_EQ(written(), tiffOf(greyTiffHeader16(), 2, 1, {0, 0, 0, 0}));
}

// The header of a map without pixels keeps what no entry of the map replaces.
TEST_F(Conversion, AMapWithoutPixelsBecomesAHeaderAlone) {
    EXPECT_EQ(convert(hostMap(5, 1).grey32({}).entry(257, 1, 0), 1, 0), 0.0f);
    ByteList expected = tiffOf(greyTiffHeader16(), 5, 0, {});
    storeLe16(&expected[114], 1);  // rows per strip
    EXPECT_EQ(written(), expected);

    EXPECT_EQ(convert(hostMap(1, 1).rgb32({}).claimEntries(0), 3, 0), 0.0f);
    EXPECT_EQ(written(), rgbTiffHeader16());

    EXPECT_EQ(convert(hostMap(1, 3).grey32({}).entry(256, 1, 0xFFFFFFFF), 1, 1), 0.0f);
    expected = greyPsdHeader16();
    storeBe32(&expected[14], 0xFFFFFFFF);
    storeBe32(&expected[18], 3);
    EXPECT_EQ(written(), expected);
}

TEST_F(Conversion, TheSingleChannelOfAMapWithoutPixelsIsAHeaderAlone) {
    EXPECT_EQ(single(hostMap(5, 1).rgb32({}).entry(257, 1, 0)), 0.0f);
    EXPECT_EQ(written(), greyTiffHeaderFloat(5, 0, 0));
    EXPECT_EQ(single(hostMap(5, 1).rgb32({}).entry(256, 1, 0xFFFFFFFF)), 0.0f);
    EXPECT_EQ(written(), greyTiffHeaderFloat(0xFFFFFFFF, 1, 0));
    EXPECT_EQ(single(hostMap(5, 1).rgb32({}).claimEntries(0)), 0.0f);
    EXPECT_EQ(written(), greyTiffHeaderFloat(0, 0, 0));
}

// Nothing is read where there are no pixels, so the strip may start anywhere.
TEST_F(Conversion, TheStripOfAMapWithoutPixelsIsIgnored) {
    EXPECT_EQ(single(hostMap(0, 1).rgb32({}).entry(273, 1, 0xFFFFFFFF)), 0.0f);
    EXPECT_EQ(convert(hostMap(0, 1).rgb32({}).entry(273, 1, 0xFFFFFFFF), 3, 0), 0.0f);
}

TEST_F(Conversion, RefusalsComeBeforeTheOutputIsCreated) {
    const TiffFile map = hostMap(2, 2).rgb32(std::vector<float>(12, 0.5f));
    const struct {
        const char* what;
        TiffFile map;
        float status;
    } cases[] = {
        {"four samples", TiffFile(map).entry(258, 4, 32), -258.0f},
        {"16 bits", hostMap(2, 2).rgb16(std::vector<std::uint16_t>(12)), -32.0f},
        {"compressed", TiffFile(map).entry(259, 1, 5), -259.0f},
        {"palette", TiffFile(map).entry(262, 1, 3), -262.0f},
        {"two strips", TiffFile(map).entry(273, 2, 8), -273.0f},
        {"two sample formats", TiffFile(map).entry(339, 2, 3), -339.0f},
        {"a row too many", TiffFile(map).entry(257, 1, 3), -279.0f},
        {"a size beyond any file",
         TiffFile(map).entry(256, 1, 0x7FFFFFFF).entry(257, 1, 0x7FFFFFFF), -279.0f},
        {"a strip past the file", TiffFile(map).entry(273, 1, 0x7FFFFFFF), -279.0f},
        {"a strip from 2 GiB on", TiffFile(map).entry(273, 1, 0x80000000), -274.0f},
    };
    for (const auto& test : cases) {
        EXPECT_EQ(convert(test.map, 3, 0), test.status) << test.what;
        EXPECT_EQ(convert(test.map, 4, 1), test.status) << test.what;
        EXPECT_EQ(single(test.map), test.status) << test.what;
    }
    EXPECT_FALSE(dir.has("out"));
}

TEST_F(Conversion, AMissingMapAndAnOutputThatCannotBeWrittenHaveTheirStatuses) {
    NEEDS_FULL_DEVICE();
    const CaptureStdout captured;
    const std::string map = dir.write("map.tif", hostMap(1, 1).rgb32({1, 2, 3}));
    const std::string missing = dir.path("missing");
    EXPECT_EQ(convertTiff(missing.c_str(), out().c_str(), 3, 0), -10.0f);
    EXPECT_EQ(singleChannelTiff(missing.c_str(), out().c_str()), -10.0f);
    for (const std::string& target : {dir.path("no/out"), std::string("/dev/full")}) {
        EXPECT_EQ(convertTiff(map.c_str(), target.c_str(), 3, 0), -201.0f) << target;
        EXPECT_EQ(singleChannelTiff(map.c_str(), target.c_str()), -201.0f) << target;
    }
    EXPECT_THAT(dir.names(), ElementsAre("map.tif"));
    EXPECT_EQ(captured.text(), "");
}

TEST_F(Conversion, ASingleChannelIsTheFirstOfEachPixel) {
    const float nan = std::numeric_limits<float>::quiet_NaN();
    EXPECT_EQ(single(hostMap(2, 2).rgb32({-0.0f, 1, 1, nan, 2, 2, 1024.0f, 3, 3, 0.5f, 4, 4})),
              0.0f);
    ByteList expected = greyTiffHeaderFloat(2, 2, 16);
    append(expected, {0, 0, 0, 0x80, 0, 0, 0xC0, 0x7F, 0, 0, 0x80, 0x44, 0, 0, 0, 0x3F});
    EXPECT_EQ(written(), expected);
}

TEST_F(Conversion, ASingleChannelOfManyPiecesIsWhole) {
    std::vector<float> samples;
    ByteList expected;
    for (int i = 0; i < 300 * 200; ++i) {
        samples.insert(samples.end(), {static_cast<float>(i), -1.0f, -2.0f});
        appendLeFloat(expected, static_cast<float>(i));
    }
    EXPECT_EQ(single(hostMap(300, 200).rgb32(samples)), 0.0f);
    EXPECT_TRUE(written(222) == expected);
}

// A map cut off before its sizes has no pixels and becomes a header alone.
TEST_F(Conversion, ATruncatedMapIsRefusedOrHasNoPixels) {
    const ByteList whole = hostMap(2, 2).rgb32(std::vector<float>(12, 0.5f));
    for (std::size_t length = 0; length < whole.size(); ++length) {
        SCOPED_TRACE(length);
        const ByteList bytes = firstBytes(whole, length);
        const auto expectHeaderOrNothing = [&](float status, std::size_t headerBytes) {
            EXPECT_LE(status, 0.0f);
            EXPECT_EQ(dir.has("out"), status == 0.0f);
            if (status == 0.0f) {
                EXPECT_EQ(written().size(), headerBytes);
            }
            std::filesystem::remove(out());
        };
        expectHeaderOrNothing(convert(bytes, 3, 0), 234);
        expectHeaderOrNothing(single(bytes), 222);
        EXPECT_EQ(readBytes(dir.path("map.tif")), bytes);
    }
}

}  // namespace
