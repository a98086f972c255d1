// Files of every length, each in the exact memory that it needs, so that the sanitizers see a step
// past the end.

#include <gtest/gtest.h>

#include "bmp/BmpOps.h"
#include "support/BmpFile.h"

namespace {

class TruncatedBmp : public testing::TestWithParam<std::size_t> {
protected:
    const TempDir dir_;
    const ByteList file_ = BmpFile(4, 5).cut(GetParam());
    const std::string path_ = dir_.write("cut.bmp", file_);
    const std::string whole_ = dir_.write("whole.bmp", BmpFile(4, 5));
    const std::string out_ = dir_.path("out.bmp");
};

TEST_P(TruncatedBmp, IsRefusedByEachOperation) {
    const char* const path = path_.c_str();
    EXPECT_EQ(mergeBMP(path, whole_.c_str()), -7.0f);
    EXPECT_EQ(mergeBMP(whole_.c_str(), path), -7.0f);
    EXPECT_EQ(swapChannelsBMP(path, 1), -7.0f);
    EXPECT_EQ(cropBMP(path, out_.c_str(), 0, 2), -7.0f);
    EXPECT_EQ(createBMPthumb(path, 2), GetParam() < 2 ? -2.0f : -7.0f);
    EXPECT_EQ(readBytes(path_), file_);
    EXPECT_EQ(readBytes(whole_), ByteList(BmpFile(4, 5)));
    EXPECT_FALSE(dir_.has("out.bmp"));
}

INSTANTIATE_TEST_SUITE_P(EveryHeaderByte, TruncatedBmp, testing::Range<std::size_t>(0, 54));

// 4 x 5 pixels, rows of 12 bytes from byte 54 on. The crop takes the first two pixels of the second
// and third row; the thumbnail of 1 x 2 takes the first pixel of the first and third row.
class ShortOfRows : public TruncatedBmp {
protected:
    // The byte at an offset of the file, as the builder counts them; 0 from `end` on.
    static std::uint8_t byteAt(std::size_t offset, std::size_t end) {
        return offset < end ? static_cast<std::uint8_t>(offset - 54 + 1) : std::uint8_t{0};
    }
};

TEST_P(ShortOfRows, IsCroppedWithBlack) {
    ByteList expected;
    for (const std::size_t row : {66u, 78u}) {
        for (std::size_t i = 0; i < 6; ++i)
            expected.push_back(byteAt(row + i, GetParam()));
    }
    EXPECT_EQ(cropBMP(path_.c_str(), out_.c_str(), 0, 2), 0.0f);
    EXPECT_EQ(bmpPixelsOf(out_), expected);
    EXPECT_EQ(readBytes(path_), file_);
}

TEST_P(ShortOfRows, IsShrunkWithBlack) {
    ByteList expected;
    for (const std::size_t row : {54u, 78u}) {
        const bool isThere = row + 3 < GetParam();
        for (std::size_t i = 0; i < 3; ++i)
            expected.push_back(isThere ? byteAt(row + i, GetParam()) : std::uint8_t{0});
    }
    EXPECT_EQ(createBMPthumb(path_.c_str(), 2), 0.0f);
    EXPECT_EQ(bmpPixelsOf(path_), expected);
}

INSTANTIATE_TEST_SUITE_P(EveryPixelByte, ShortOfRows, testing::Range<std::size_t>(54, 115));

}  // namespace
