// Compared with libjpeg: its tables, the loss of its encoder, and that it decodes every file
// without a warning.

#include <gmock/gmock.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>

#include <jpeglib.h>

#include "encoders/JpegOps.h"
#include "encoders/jpeg/JpegQuantisation.h"
#include "support/BmpFile.h"
#include "support/Pictures.h"

namespace {

// Prints libjpeg's message and ends the program: libjpeg must not continue after an error.
void endWithMessage(j_common_ptr info) {
    char message[JMSG_LENGTH_MAX];
    info->err->format_message(info, message);
    std::fprintf(stderr, "%s\n", message);
    std::abort();
}

class Compressor {
public:
    Compressor() {
        info.err = jpeg_std_error(&errors_);
        errors_.error_exit = endWithMessage;
        jpeg_create_compress(&info);
        info.in_color_space = JCS_RGB;
        info.input_components = 3;
        jpeg_set_defaults(&info);
    }
    Compressor(const Compressor&) = delete;
    Compressor& operator=(const Compressor&) = delete;
    ~Compressor() { jpeg_destroy_compress(&info); }

    jpeg_compress_struct info{};

private:
    jpeg_error_mgr errors_{};
};

// Pixels from the top row down, each red, green, blue.
struct Decoded {
    std::size_t width = 0;
    std::size_t height = 0;
    ByteList pixels;
    long warnings = 0;

    ByteList pixel(std::size_t x, std::size_t y) const {
        const auto at = pixels.begin() + static_cast<std::ptrdiff_t>(3 * (y * width + x));
        return {at, at + 3};
    }
};

Decoded decoded(const ByteList& file) {
    jpeg_decompress_struct info{};
    jpeg_error_mgr errors{};
    info.err = jpeg_std_error(&errors);
    errors.error_exit = endWithMessage;
    jpeg_create_decompress(&info);
    jpeg_mem_src(&info, file.data(), file.size());
    jpeg_read_header(&info, TRUE);
    info.dct_method = JDCT_FLOAT;
    jpeg_start_decompress(&info);
    Decoded result{info.output_width, info.output_height, {}, 0};
    result.pixels.resize(3 * result.width * result.height);
    while (info.output_scanline < info.output_height) {
        JSAMPROW row = &result.pixels[3 * result.width * info.output_scanline];
        jpeg_read_scanlines(&info, &row, 1);
    }
    jpeg_finish_decompress(&info);
    result.warnings = errors.num_warnings;
    jpeg_destroy_decompress(&info);
    return result;
}

// What libjpeg's own encoder makes of pixels from the top row down, with the same tables and
// without subsampling.
ByteList encodedByPeer(const ByteList& rgb, std::size_t width, std::size_t height, int scale) {
    Compressor peer;
    peer.info.image_width = static_cast<JDIMENSION>(width);
    peer.info.image_height = static_cast<JDIMENSION>(height);
    jpeg_set_linear_quality(&peer.info, scale, TRUE);
    peer.info.comp_info[0].h_samp_factor = peer.info.comp_info[0].v_samp_factor = 1;
    peer.info.dct_method = JDCT_FLOAT;
    unsigned char* memory = nullptr;
    unsigned long size = 0;
    jpeg_mem_dest(&peer.info, &memory, &size);
    jpeg_start_compress(&peer.info, TRUE);
    ByteList rows = rgb;
    while (peer.info.next_scanline < peer.info.image_height) {
        JSAMPROW row = &rows[3 * width * peer.info.next_scanline];
        jpeg_write_scanlines(&peer.info, &row, 1);
    }
    jpeg_finish_compress(&peer.info);
    ByteList file(memory, memory + size);
    std::free(memory);
    return file;
}

ByteList encoded(const TempDir& dir, const ByteList& bmp, int scale) {
    EXPECT_EQ(convertToJPEG(dir.write("map.bmp", bmp).c_str(), dir.path("map.jpg").c_str(), scale),
              0.0f);
    return readBytes(dir.path("map.jpg"));
}

// A BMP's pixels as a decoder gives them.
ByteList topDownRgb(const ByteList& pixels, std::size_t width, std::size_t height) {
    ByteList rgb;
    for (std::size_t row = height; row-- > 0;) {
        for (std::size_t x = 0; x < width; ++x) {
            for (std::size_t channel = 3; channel-- > 0;)
                rgb.push_back(pixels[3 * (row * width + x) + channel]);
        }
    }
    return rgb;
}

struct Loss {
    int largest = 0;
    double meanSquare = 0;
};

Loss lossBetween(const ByteList& one, const ByteList& other) {
    Loss loss;
    for (std::size_t i = 0; i < one.size(); ++i) {
        const int difference = std::abs(one[i] - other[i]);
        loss.largest = std::max(loss.largest, difference);
        loss.meanSquare += difference * difference / static_cast<double>(one.size());
    }
    return loss;
}

struct Picture {
    const char* name;
    ByteList (*make)(std::uint32_t width, std::uint32_t height);
    std::uint32_t width;
    std::uint32_t height;

    ByteList pixels() const { return make(width, height); }
    ByteList bmp() const {
        return BmpFile(static_cast<std::int32_t>(width), static_cast<std::int32_t>(height))
            .pixels(pixels());
    }
    ByteList rgb() const { return topDownRgb(pixels(), width, height); }
};

const Picture kPictures[] = {
    {"gradient", gradientPicture, 64, 48},
    {"noise", noisePicture, 64, 48},
    {"text", textPicture, 64, 48},
    {"odd gradient", gradientPicture, 13, 9},
    {"odd noise", noisePicture, 13, 9},
    {"odd text", textPicture, 51, 33},
    {"noise", noisePicture, 8, 8},
    {"noise", noisePicture, 1, 1},
    {"wide gradient", gradientPicture, 500, 7},
};

// On a line from 0 to 1 each code starts where the one before it ends, and one of L bits takes the
// 2^L-th part.
void expectCodes(const HuffmanTable& codes, const JHUFF_TBL& table) {
    std::uint32_t taken = 0;  // in 65536ths
    std::ptrdiff_t used = 0;
    for (std::uint32_t length = 1; length <= 16; ++length) {
        for (int i = 0; i < table.bits[length]; ++i) {
            const bitstring& code = codes[table.huffval[used++]];
            EXPECT_EQ(code.length, length);
            EXPECT_EQ(code.value, taken >> (16 - length));
            taken += 65536u >> length;
        }
    }
    const auto hasCode = [](const bitstring& code) { return code.length > 0; };
    EXPECT_EQ(std::count_if(codes.begin(), codes.end(), hasCode), used);
}

TEST(JpegPeer, HuffmanCodesAreThoseOfTheStandardTables) {
    const Compressor peer;
    expectCodes(kHuffman.YDC_HT, *peer.info.dc_huff_tbl_ptrs[0]);
    expectCodes(kHuffman.CbDC_HT, *peer.info.dc_huff_tbl_ptrs[1]);
    expectCodes(kHuffman.YAC_HT, *peer.info.ac_huff_tbl_ptrs[0]);
    expectCodes(kHuffman.CbAC_HT, *peer.info.ac_huff_tbl_ptrs[1]);
}

TEST(JpegPeer, TheHuffmanSegmentHoldsTheStandardTables) {
    const TempDir dir;
    const ByteList file = encoded(dir, BmpFile(8, 8), 50);
    const Compressor peer;
    ByteList expected = {0xFF, 0xC4, 0x01, 0xA2};
    const auto add = [&expected](std::uint8_t id, const JHUFF_TBL& table, std::size_t symbols) {
        expected.push_back(id);
        expected.insert(expected.end(), table.bits + 1, table.bits + 17);
        expected.insert(expected.end(), table.huffval, table.huffval + symbols);
    };
    add(0x00, *peer.info.dc_huff_tbl_ptrs[0], 12);
    add(0x10, *peer.info.ac_huff_tbl_ptrs[0], 162);
    add(0x01, *peer.info.dc_huff_tbl_ptrs[1], 12);
    add(0x11, *peer.info.ac_huff_tbl_ptrs[1], 162);
    EXPECT_EQ(ByteList(file.begin() + 191, file.begin() + 611), expected);
}

TEST(JpegPeer, QuantisationIsScaledAlike) {
    Compressor peer;
    for (int scale = 0; scale <= 255; ++scale) {
        jpeg_set_linear_quality(&peer.info, scale, TRUE);
        const QuantSegment segment = set_DQTinfo(scale);
        for (std::size_t i = 0; i < 64; ++i) {
            const std::size_t place = zigzag[i];
            EXPECT_EQ(segment[5 + place], peer.info.quant_tbl_ptrs[0]->quantval[i]);
            EXPECT_EQ(segment[70 + place], peer.info.quant_tbl_ptrs[1]->quantval[i]);
        }
    }
}

TEST(JpegPeer, DecodesEveryFileWithoutAWarning) {
    const TempDir dir;
    for (const Picture& picture : kPictures) {
        for (const int scale : {0, 1, 10, 50, 90, 100}) {
            const Decoded out = decoded(encoded(dir, picture.bmp(), scale));
            EXPECT_EQ(out.warnings, 0) << picture.name << " at " << scale;
            EXPECT_EQ(out.width, picture.width);
            EXPECT_EQ(out.height, picture.height);
        }
    }
}

TEST(JpegPeer, DecodesAFileThatEndsInAByteOfOnes) {
    const TempDir dir;
    const Decoded out = decoded(encoded(dir, BmpFile(32, 8).plain(128, 128, 128), 50));
    EXPECT_EQ(out.warnings, 0);
    EXPECT_THAT(out.pixels, testing::Each(128));
}

// Rounded twice on each way through the colours and once in the transform.
TEST(JpegPeer, TheFinestFilesMatchTheOriginal) {
    const TempDir dir;
    for (const Picture& picture : kPictures) {
        const Decoded out = decoded(encoded(dir, picture.bmp(), 0));
        EXPECT_LE(lossBetween(out.pixels, picture.rgb()).largest, 4) << picture.name;
    }
}

// Colours are rounded down here and to the nearest there, which costs ours a little more.
TEST(JpegPeer, FilesMatchTheOriginalAsWellAsItsOwnDo) {
    const TempDir dir;
    for (const Picture& picture : kPictures) {
        for (const int scale : {10, 50, 100}) {
            const ByteList rgb = picture.rgb();
            const Decoded ours = decoded(encoded(dir, picture.bmp(), scale));
            const Decoded peers = decoded(encodedByPeer(rgb, picture.width, picture.height, scale));
            EXPECT_LE(lossBetween(ours.pixels, rgb).meanSquare,
                      1.05 * lossBetween(peers.pixels, rgb).meanSquare + 3)
                << picture.name << " at " << scale;
        }
    }
}

// Of two rows, white above black, the pixels before `flipped` come out in that order, those from
// `kept` on in the order of the file, which has the bottom row first.
void expectFlipped(std::int32_t width, std::size_t flipped, std::size_t kept) {
    BmpFile bmp = BmpFile(width, 2).plain(0, 0, 0);
    for (std::int32_t x = 0; x < width; ++x)
        bmp.pixel(x, 1, 255, 255, 255);
    const TempDir dir;
    const Decoded out = decoded(encoded(dir, bmp, 0));
    for (std::size_t x = 0; x < out.width; ++x) {
        if (x >= flipped && x < kept) continue;
        ASSERT_EQ(out.pixel(x, 0)[1] > 127, x < flipped) << x;
        ASSERT_EQ(out.pixel(x, 1)[1] > 127, x >= kept) << x;
    }
}

// Beyond 21840 pixels only as many bytes of a row as the low 16 bits of its length are flipped: of
// 21848 pixels 8 bytes, two pixels and two bytes.
TEST(JpegPeer, OfAVeryWidePictureOnlyTheLeftEndIsFlipped) {
    expectFlipped(21840, 21840, 21840);
    expectFlipped(21848, 2, 3);
}

}  // namespace
