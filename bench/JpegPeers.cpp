#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <vector>

#include <jpeglib.h>

#include "MapPeers.h"
#include "files/BmpWriter.h"
#include "files/DiskFile.h"
#include "terminal/Failure.h"

namespace {

constexpr std::size_t kHeadBytes = 54;

void encode(jpeg_compress_struct& encoder, const MappedFile& bmp, std::uint32_t side,
            J_DCT_METHOD dct) {
    encoder.image_width = side;
    encoder.image_height = side;
    encoder.input_components = 3;
    encoder.in_color_space = JCS_EXT_BGR;
    ::jpeg_set_defaults(&encoder);
    ::jpeg_set_quality(&encoder, 75, TRUE);
    encoder.dct_method = dct;
    encoder.comp_info[0].h_samp_factor = 1;
    encoder.comp_info[0].v_samp_factor = 1;

    std::vector<JSAMPROW> rows;
    for (std::size_t row = side; row-- > 0;)
        rows.push_back(bmp.data() + kHeadBytes + row * bmpRowBytes(side));
    ::jpeg_start_compress(&encoder, TRUE);
    while (encoder.next_scanline < side)
        ::jpeg_write_scanlines(&encoder, &rows[encoder.next_scanline],
                               side - encoder.next_scanline);
    ::jpeg_finish_compress(&encoder);
}

float jpegByTurbo(const Maps& maps, J_DCT_METHOD dct) {
    const MappedFile in(maps.map, Access::kRead);
    const FilePointer out(std::fopen(maps.made.c_str(), "wb"));
    if (out == nullptr) throw Failure("cannot create " + maps.made);
    jpeg_compress_struct encoder{};
    jpeg_error_mgr errors{};
    encoder.err = ::jpeg_std_error(&errors);
    jpeg_create_compress(&encoder);
    ::jpeg_stdio_dest(&encoder, out.get());
    encode(encoder, in, maps.side, dct);
    ::jpeg_destroy_compress(&encoder);
    return 0.0f;
}

}  // namespace

float jpegByFastDct(const Maps& maps) {
    return jpegByTurbo(maps, JDCT_IFAST);
}

float jpegByFloatDct(const Maps& maps) {
    return jpegByTurbo(maps, JDCT_FLOAT);
}
