#include "psd/PsdImage.h"

#include <gmock/gmock.h>

#include "psd/PsdOps.h"
#include "support/PsdFile.h"

namespace {

float headerStatus(const ByteList& file) {
    img = file;
    return readPSDHeader();
}

TEST(PsdHeader, FieldsAreBigEndian) {
    EXPECT_EQ(headerStatus(PsdFile(0x01020304, 0x05060708)
                               .channels(0x1122)
                               .depth(0xFFF8)
                               .colourMode(0x0103)
                               .resources(2)
                               .layers(3)),
              0.0f);
    EXPECT_EQ(fHeader.signature, 0x53504238u);
    EXPECT_EQ(fHeader.version, 1);
    EXPECT_EQ(fHeader.channels, 0x1122);
    EXPECT_EQ(fHeader.height, 0x05060708u);
    EXPECT_EQ(fHeader.width, 0x01020304u);
    EXPECT_EQ(fHeader.depth, -8);
    EXPECT_EQ(fHeader.colourMode, 259);
    EXPECT_EQ(fHeader.colourTableBytes, 0u);
    EXPECT_EQ(fHeader.resourceBytes, 2u);
    EXPECT_EQ(fHeader.layerBytes, 3u);
    EXPECT_EQ(fHeader.compression, 0);
}

TEST(PsdHeader, FirstRefusedFieldGivesTheStatus) {
    EXPECT_EQ(headerStatus(PsdFile(1, 1).signature("8bps").version(2)), -1.0f);
    EXPECT_EQ(headerStatus(PsdFile(1, 1).version(0x0100).colourTable(768)), -2.0f);
    EXPECT_EQ(headerStatus(PsdFile(1, 1).colourTable(768).compression(1)), -3.0f);
    EXPECT_EQ(headerStatus(PsdFile(1, 1).compression(0x0100)), -4.0f);
    EXPECT_EQ(headerStatus({'8', 'B', 'P', 'S', 0, 2}), -2.0f);
    EXPECT_EQ(headerStatus({'8', 'B', 'P', 'S', 0}), -1.0f);
}

TEST(PsdHeader, OffsetIsThatOfTheImageDataOrWhereTheReadingStopped) {
    headerStatus(PsdFile(1, 1));
    EXPECT_EQ(offst, 40);
    headerStatus(PsdFile(1, 1).resources(12).layers(200));
    EXPECT_EQ(offst, 252);
    headerStatus(PsdFile(1, 1).version(2));
    EXPECT_EQ(offst, 0);
    headerStatus(PsdFile(1, 1).colourTable(768));
    EXPECT_EQ(offst, 0);
    headerStatus(PsdFile(1, 1).resources(12).announceLayers(9000));
    EXPECT_EQ(offst, 46);
    headerStatus(PsdFile(1, 1).resources(12).layers(5).compression(1));
    EXPECT_EQ(offst, 55);
}

TEST(PsdHeader, FieldsBeforeTheRefusedOneAreStoredAndTheOthersKept) {
    headerStatus(PsdFile(3, 2).colourTable(768));
    EXPECT_EQ(fHeader.width, 3u);
    EXPECT_EQ(fHeader.colourTableBytes, 768u);
    headerStatus(PsdFile(7, 6).version(2));
    EXPECT_EQ(fHeader.version, 2);
    EXPECT_EQ(fHeader.width, 3u) << "of the file before";
}

TEST(PsdHeader, BlocksLongerThanTheFileAreRefused) {
    for (const std::uint32_t length : {1u, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFD0u, 0xFFFFFFFFu}) {
        EXPECT_EQ(headerStatus(PsdFile(1, 1).announceResources(length + 5)), -1.0f) << length;
        EXPECT_EQ(headerStatus(PsdFile(1, 1).announceLayers(length + 2)), -1.0f) << length;
    }
}

TEST(PsdReaders, NumbersAreBigEndianAndZeroPastTheEnd) {
    img = {0xFF, 0xFE, 0x01, 0x02};
    EXPECT_EQ(readShort(0), -2);
    EXPECT_EQ(readShort(2), 258);
    EXPECT_EQ(readShort(4), 0);
    EXPECT_EQ(readLong(0), 0xFFFE0102u);
    EXPECT_EQ(readLong(2), 0x01020000u);
}

TEST(PsdReaders, FloatsHaveTheOtherByteOrderThanTheirNames) {
    img = {0x3F, 0x80, 0x00, 0x00, 0x00, 0x00, 0x20, 0xC1};
    EXPECT_EQ(readFloatLE(0), 1.0f);
    EXPECT_EQ(readFloat(4), -10.0f);
}

TEST(PsdReaders, WritersStoreTheHighByteFirstAndNothingThatDoesNotFit) {
    std::vector<std::uint8_t>(6, 9).swap(img);
    EXPECT_EQ(writeShort(0, 0x12345), 0x12345);
    EXPECT_EQ(writeLong(2, 0x01020304), 0x01020304u);
    writeLong(3, 0xFFFFFFFF);
    writeShort(5, -1);
    writeShort(SIZE_MAX, -1);
    EXPECT_THAT(img, testing::ElementsAre(0x23, 0x45, 1, 2, 3, 4));
}

TEST(PsdReaders, TheProcessorIsLittleEndian) {
    EXPECT_FALSE(bigEndian());
    EXPECT_TRUE(littleEndian());
}

// Whatever the status: done, planes missing, output not writable.
TEST(PsdState, NothingStaysLoadedAfterAnOperation) {
    const TempDir dir;
    const std::string good = dir.write("good", PsdFile(1, 1).pixels({{1, 2, 3}}));
    const std::string cut = dir.write("cut", PsdFile(1, 1));
    const std::string nowhere = dir.path("missing/out");

    const auto expectNothingLoaded = [](float status, float expected) {
        EXPECT_EQ(status, expected);
        EXPECT_TRUE(img.empty()) << expected;
    };
    emptyImg();
    expectNothingLoaded(GrayscalePSD(good.c_str(), dir.path("grey").c_str(), 0), 0.0f);
    expectNothingLoaded(GrayscalePSD(cut.c_str(), nowhere.c_str(), 0), -1.0f);
    expectNothingLoaded(GrayscalePSD(good.c_str(), nowhere.c_str(), 0), -5.0f);
    expectNothingLoaded(GrayscalePSD(good.c_str(), good.c_str(), 0), 0.0f);
    const std::string map = dir.write("map", PsdFile(1, 1).pixels({{1, 2, 3}}));
    expectNothingLoaded(createThumb(map.c_str(), 1), 0.0f);
    expectNothingLoaded(createThumb(cut.c_str(), 1), -1.0f);
}

TEST(PsdState, ALargeFilesMemoryIsGivenBack) {
    const TempDir dir;
    const std::string large = dir.write("large", PsdFile(1, 1).layers(3'000'000).filled(3, 7));
    EXPECT_EQ(createThumb(large.c_str(), 2), 0.0f);
    EXPECT_LE(img.capacity(), 262144u);
}

}  // namespace
