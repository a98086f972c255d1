// Every byte of the headers that conversions write, entry by entry: tag, type, count, value.
#include "tiff/TiffTemplates.h"

#include <gtest/gtest.h>

#include "bytes/Bytes.h"
#include "support/Append.h"

namespace {

// "II", 42, the directory at byte 8.
const ByteList kStart = {0x49, 0x49, 0x2A, 0x00, 0x08, 0x00, 0x00, 0x00};
// 720000/10000, twice.
const ByteList kResolutions = {0x80, 0xFC, 0x0A, 0x00, 0x10, 0x27, 0x00, 0x00,
                               0x80, 0xFC, 0x0A, 0x00, 0x10, 0x27, 0x00, 0x00};

// A header of these entries, and the lists of values after the resolutions.
ByteList headerOf(const ByteList& entries, const ByteList& lists = {}) {
    ByteList header = kStart;
    append(header, entries);
    append(header, kResolutions);
    append(header, lists);
    return header;
}

TEST(TiffTemplates, AGreySixteenBitMapHasAHeaderOf198Bytes) {
    const ByteList entries = {
        14,   0,                                               //
        0xFE, 0x00, 4, 0, 1, 0, 0, 0, 0x00, 0x00, 0x00, 0x00,  // 254 LONG 0
        0x00, 0x01, 3, 0, 1, 0, 0, 0, 0x00, 0x01, 0x00, 0x00,  // 256 SHORT 256
        0x01, 0x01, 3, 0, 1, 0, 0, 0, 0x00, 0x01, 0x00, 0x00,  // 257 SHORT 256
        0x02, 0x01, 3, 0, 1, 0, 0, 0, 0x10, 0x00, 0x00, 0x00,  // 258 SHORT 16
        0x03, 0x01, 3, 0, 1, 0, 0, 0, 0x01, 0x00, 0x00, 0x00,  // 259 SHORT 1
        0x06, 0x01, 3, 0, 1, 0, 0, 0, 0x01, 0x00, 0x00, 0x00,  // 262 SHORT 1: 0 is black
        0x11, 0x01, 4, 0, 1, 0, 0, 0, 0xC6, 0x00, 0x00, 0x00,  // 273 LONG 198
        0x15, 0x01, 3, 0, 1, 0, 0, 0, 0x01, 0x00, 0x00, 0x00,  // 277 SHORT 1
        0x16, 0x01, 3, 0, 1, 0, 0, 0, 0x00, 0x01, 0x00, 0x00,  // 278 SHORT 256
        0x17, 0x01, 4, 0, 1, 0, 0, 0, 0x00, 0x00, 0x02, 0x00,  // 279 LONG 131072
        0x1A, 0x01, 5, 0, 1, 0, 0, 0, 0xB6, 0x00, 0x00, 0x00,  // 282 RATIONAL at 182
        0x1B, 0x01, 5, 0, 1, 0, 0, 0, 0xBE, 0x00, 0x00, 0x00,  // 283 RATIONAL at 190
        0x1C, 0x01, 3, 0, 1, 0, 0, 0, 0x01, 0x00, 0x00, 0x00,  // 284 SHORT 1
        0x28, 0x01, 3, 0, 1, 0, 0, 0, 0x02, 0x00, 0x00, 0x00,  // 296 SHORT 2
        0,    0,    0, 0,                                      // no further directory
    };
    const ByteList header = greyTiffHeader16();
    EXPECT_EQ(header.size(), 198u);
    EXPECT_EQ(header, headerOf(entries));
}

TEST(TiffTemplates, AColourSixteenBitMapHasAHeaderOf234Bytes) {
    const ByteList entries = {
        16,   0,                                                //
        0xFE, 0x00, 4,  0, 1, 0, 0, 0, 0x00, 0x00, 0x00, 0x00,  // 254 LONG 0
        0x00, 0x01, 3,  0, 1, 0, 0, 0, 0x00, 0x04, 0x00, 0x00,  // 256 SHORT 1024
        0x01, 0x01, 3,  0, 1, 0, 0, 0, 0x00, 0x04, 0x00, 0x00,  // 257 SHORT 1024
        0x02, 0x01, 3,  0, 3, 0, 0, 0, 0xDE, 0x00, 0x00, 0x00,  // 258 SHORT, three at 222
        0x03, 0x01, 3,  0, 1, 0, 0, 0, 0x01, 0x00, 0x00, 0x00,  // 259 SHORT 1
        0x06, 0x01, 3,  0, 1, 0, 0, 0, 0x02, 0x00, 0x00, 0x00,  // 262 SHORT 2
        0x11, 0x01, 4,  0, 1, 0, 0, 0, 0xEA, 0x00, 0x00, 0x00,  // 273 LONG 234
        0x15, 0x01, 3,  0, 1, 0, 0, 0, 0x03, 0x00, 0x00, 0x00,  // 277 SHORT 3
        0x16, 0x01, 3,  0, 1, 0, 0, 0, 0x00, 0x04, 0x00, 0x00,  // 278 SHORT 1024
        0x17, 0x01, 4,  0, 1, 0, 0, 0, 0x00, 0x00, 0x60, 0x00,  // 279 LONG 6291456
        0x1A, 0x01, 5,  0, 1, 0, 0, 0, 0xCE, 0x00, 0x00, 0x00,  // 282 RATIONAL at 206
        0x1B, 0x01, 5,  0, 1, 0, 0, 0, 0xD6, 0x00, 0x00, 0x00,  // 283 RATIONAL at 214
        0x1C, 0x01, 3,  0, 1, 0, 0, 0, 0x01, 0x00, 0x00, 0x00,  // 284 SHORT 1
        0x28, 0x01, 3,  0, 1, 0, 0, 0, 0x01, 0x00, 0x00, 0x00,  // 296 SHORT 1
        0x53, 0x01, 3,  0, 3, 0, 0, 0, 0xE4, 0x00, 0x00, 0x00,  // 339 SHORT, three at 228
        0x12, 0x00, 11, 0, 1, 0, 0, 0, 0x01, 0x00, 0x00, 0x00,  // 18 FLOAT, bytes 1 0 0 0
        0,    0,    0,  0,                                      // no further directory
    };
    const ByteList lists = {16, 0, 16, 0, 16, 0, 1, 0, 1, 0, 1, 0};
    const ByteList header = rgbTiffHeader16();
    EXPECT_EQ(header.size(), 234u);
    EXPECT_EQ(header, headerOf(entries, lists));
}

TEST(TiffTemplates, AGreyPsdHasAHeaderOf40Bytes) {
    EXPECT_EQ(greyPsdHeader16(),
              (ByteList{0x38, 0x42, 0x50, 0x53, 0, 1, 0, 0, 0, 0, 0, 0, 0, 1, 0, 0, 0, 128, 0, 0,
                        0,    128,  0,    16,   0, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0,   0, 0}));
}

TEST(TiffTemplates, AGreyFloatMapHasAHeaderOf222Bytes) {
    const ByteList entries = {
        15,   0,                                               //
        0xFE, 0x00, 4, 0, 1, 0, 0, 0, 0x00, 0x00, 0x00, 0x00,  // 254 LONG 0
        0x00, 0x01, 3, 0, 1, 0, 0, 0, 0x00, 0x10, 0x00, 0x00,  // 256 SHORT 4096
        0x01, 0x01, 3, 0, 1, 0, 0, 0, 0x00, 0x10, 0x00, 0x00,  // 257 SHORT 4096
        0x02, 0x01, 3, 0, 1, 0, 0, 0, 0x20, 0x00, 0x00, 0x00,  // 258 SHORT 32
        0x03, 0x01, 3, 0, 1, 0, 0, 0, 0x01, 0x00, 0x00, 0x00,  // 259 SHORT 1
        0x06, 0x01, 3, 0, 1, 0, 0, 0, 0x01, 0x00, 0x00, 0x00,  // 262 SHORT 1
        0x11, 0x01, 4, 0, 1, 0, 0, 0, 0xDE, 0x00, 0x00, 0x00,  // 273 LONG 222
        0x15, 0x01, 3, 0, 1, 0, 0, 0, 0x01, 0x00, 0x00, 0x00,  // 277 SHORT 1
        0x16, 0x01, 3, 0, 1, 0, 0, 0, 0x00, 0x10, 0x00, 0x00,  // 278 SHORT 4096
        0x17, 0x01, 4, 0, 1, 0, 0, 0, 0x00, 0x00, 0x00, 0x04,  // 279 LONG 67108864
        0x1A, 0x01, 5, 0, 1, 0, 0, 0, 0xC2, 0x00, 0x00, 0x00,  // 282 RATIONAL at 194
        0x1B, 0x01, 5, 0, 1, 0, 0, 0, 0xCA, 0x00, 0x00, 0x00,  // 283 RATIONAL at 202
        0x1C, 0x01, 3, 0, 1, 0, 0, 0, 0x01, 0x00, 0x00, 0x00,  // 284 SHORT 1
        0x28, 0x01, 3, 0, 1, 0, 0, 0, 0x01, 0x00, 0x00, 0x00,  // 296 SHORT 1
        0x53, 0x01, 3, 0, 1, 0, 0, 0, 0x03, 0x00, 0x00, 0x00,  // 339 SHORT 3
        0,    0,    0, 0,                                      // no further directory
    };
    const ByteList halves = {0, 0, 0, 0x3F, 0, 0, 0, 0x3F, 0, 0, 0, 0x3F};
    const ByteList header = greyTiffHeaderFloat(4096, 4096, 67108864);
    EXPECT_EQ(header.size(), 222u);
    EXPECT_EQ(header, headerOf(entries, halves));
}

TEST(TiffTemplates, AFloatMapsSizesAreItsOwn) {
    ByteList expected = greyTiffHeaderFloat(4096, 4096, 67108864);
    storeLe16(&expected[30], 300);    // width
    storeLe16(&expected[42], 2);      // length
    storeLe16(&expected[114], 2);     // rows per strip
    storeLe32(&expected[126], 2400);  // bytes
    EXPECT_EQ(greyTiffHeaderFloat(300, 2, 2400), expected);
}

TEST(TiffTemplates, ASizeBeyond65535TakesALong) {
    const ByteList header = greyTiffHeaderFloat(70000, 1, 280000);
    EXPECT_EQ(ByteList(header.begin() + 22, header.begin() + 34),
              (ByteList{0x00, 0x01, 4, 0, 1, 0, 0, 0, 0x70, 0x11, 0x01, 0x00}));
}

}  // namespace
