// Whole files, byte for byte. The digests are CRC-32 sums of files that an independent encoder made
// of the same pictures: a plain one in Python, every float rounded to single precision by itself.

#include <gtest/gtest.h>
#include <zlib.h>

#include "encoders/JpegOps.h"
#include "support/BmpFile.h"
#include "support/Pictures.h"

namespace {

struct Golden {
    ByteList (*make)(std::uint32_t width, std::uint32_t height);
    std::uint32_t width;
    std::uint32_t height;
    int scale;
    unsigned long digest;
};

constexpr Golden kGolden[] = {
    {gradientPicture, 64, 48, 0, 0x6536327E},     {gradientPicture, 64, 48, 10, 0x5AA94458},
    {gradientPicture, 64, 48, 50, 0xEBDC248A},    {gradientPicture, 64, 48, 100, 0xA86D5C64},
    {noisePicture, 64, 48, 0, 0x3D53454E},        {noisePicture, 64, 48, 10, 0x07664196},
    {noisePicture, 64, 48, 50, 0x5C476A26},       {noisePicture, 64, 48, 100, 0x975E7084},
    {textPicture, 64, 48, 0, 0x051C8A5B},         {textPicture, 64, 48, 10, 0x8946EC83},
    {textPicture, 64, 48, 50, 0x11F3D5DB},        {textPicture, 64, 48, 100, 0x82864B30},
    {noisePicture, 1, 1, 0, 0xAD7BBF72},          {noisePicture, 1, 1, 50, 0x4F4F72CE},
    {noisePicture, 8, 8, 0, 0x75590DCA},          {noisePicture, 8, 8, 50, 0x57F7D767},
    {textPicture, 8, 8, 50, 0x6728FCAA},          {gradientPicture, 13, 9, 0, 0xC691CBB8},
    {noisePicture, 13, 9, 50, 0xEE4366E8},        {textPicture, 13, 9, 50, 0x733B193E},
    {noisePicture, 13, 9, 100, 0x6E32C230},       {noisePicture, 701, 503, 0, 0x45D73724},
    {gradientPicture, 701, 503, 25, 0xF1F0E9F7},  {textPicture, 701, 503, 75, 0xB2F759D6},
    {gradientPicture, 65528, 1, 50, 0xE2DC9514},  {noisePicture, 65528, 3, 75, 0xDA64FD59},
    {textPicture, 65528, 17, 50, 0xFC2C985D},     {noisePicture, 3, 65528, 50, 0xDF104CC2},
    {gradientPicture, 21848, 20, 50, 0x8697472C}, {noisePicture, 21848, 9, 30, 0x210C5E34},
    {gradientPicture, 43697, 12, 50, 0xFB30D688}, {noisePicture, 43697, 3, 50, 0xB2742DE1},
};

class JpegGolden : public testing::TestWithParam<Golden> {};

TEST_P(JpegGolden, IsWhatTheIndependentEncoderWrites) {
    const Golden& golden = GetParam();
    const TempDir dir;
    const std::string in = dir.write(
        "map.bmp",
        BmpFile(static_cast<std::int32_t>(golden.width), static_cast<std::int32_t>(golden.height))
            .pixels(golden.make(golden.width, golden.height)));
    ASSERT_EQ(convertToJPEG(in.c_str(), dir.path("map.jpg").c_str(), golden.scale), 0.0f);
    const ByteList file = readBytes(dir.path("map.jpg"));
    EXPECT_EQ(crc32(0, file.data(), static_cast<uInt>(file.size())), golden.digest)
        << golden.width << " x " << golden.height << " at " << golden.scale;
}

INSTANTIATE_TEST_SUITE_P(Pictures, JpegGolden, testing::ValuesIn(kGolden));

}  // namespace
