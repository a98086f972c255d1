#include "JpegPeer.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <vector>

#include <jpeglib.h>

#include "Files.h"
#include "bytes/Bytes.h"
#include "files/BmpWriter.h"
#include "terminal/Failure.h"

namespace {

constexpr std::size_t kHeadBytes = 54;

void encode(jpeg_compress_struct& encoder, const MappedFile& bmp, JpegDct dct) {
    encoder.image_width = loadLe32(bmp.data() + 18);
    encoder.image_height = loadLe32(bmp.data() + 22);
    encoder.input_components = 3;
    encoder.in_color_space = JCS_EXT_BGR;
    ::jpeg_set_defaults(&encoder);
    ::jpeg_set_quality(&encoder, 75, TRUE);
    encoder.dct_method = dct == JpegDct::kFast ? JDCT_IFAST : JDCT_FLOAT;
    encoder.comp_info[0].h_samp_factor = 1;
    encoder.comp_info[0].v_samp_factor = 1;

    std::vector<JSAMPROW> rows;
    for (std::size_t row = encoder.image_height; row-- > 0;)
        rows.push_back(bmp.data() + kHeadBytes + row * bmpRowBytes(encoder.image_width));
    ::jpeg_start_compress(&encoder, TRUE);
    while (encoder.next_scanline < encoder.image_height)
        ::jpeg_write_scanlines(&encoder, &rows[encoder.next_scanline],
                               encoder.image_height - encoder.next_scanline);
    ::jpeg_finish_compress(&encoder);
}

}  // namespace

float jpegByTurbo(const std::string& bmp, const std::string& jpeg, JpegDct dct) {
    const MappedFile in = MappedFile::forReading(bmp);
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> out(std::fopen(jpeg.c_str(), "wb"),
                                                              std::fclose);
    if (out == nullptr) throw Failure("cannot create " + jpeg);
    jpeg_compress_struct encoder{};
    jpeg_error_mgr errors{};
    encoder.err = ::jpeg_std_error(&errors);
    jpeg_create_compress(&encoder);
    ::jpeg_stdio_dest(&encoder, out.get());
    encode(encoder, in, dct);
    ::jpeg_destroy_compress(&encoder);
    return 0.0f;
}
