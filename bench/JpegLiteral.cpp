#include "JpegLiteral.h"

#include <array>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <vector>

#include <jpeglib.h>

#include "Files.h"
#include "bytes/Bytes.h"
#include "files/BmpWriter.h"
#include "files/DiskFile.h"
#include "terminal/Failure.h"

namespace {

constexpr std::size_t kHeadBytes = 54;
constexpr std::size_t kBlock = 64;
constexpr std::size_t kSide = 8;

// For each place in the zig-zag sequence, the coefficient that stands there.
constexpr std::array<std::uint8_t, kBlock> kNatural = {
    0,  1,  8,  16, 9,  2,  3,  10, 17, 24, 32, 25, 18, 11, 4,  5,  12, 19, 26, 33, 40, 48,
    41, 34, 27, 20, 13, 6,  7,  14, 21, 28, 35, 42, 49, 56, 57, 50, 43, 36, 29, 22, 15, 23,
    30, 37, 44, 51, 58, 59, 52, 45, 38, 31, 39, 46, 53, 60, 61, 54, 47, 55, 62, 63};

struct Code {
    int length = 0;
    int bits = 0;
};
using Codes = std::array<Code, 256>;

struct Component {
    std::array<float, kBlock> divisors;
    Codes dc;
    Codes ac;
    int lastDc = 0;
};

Codes codesOf(const JHUFF_TBL& table) {
    Codes codes;
    int next = 0;
    std::size_t symbol = 0;
    for (int length = 1; length <= 16; ++length, next *= 2) {
        for (int i = 0; i < table.bits[length]; ++i)
            codes[table.huffval[symbol++]] = {length, next++};
    }
    return codes;
}

// The standard's tables, quantisation halved; 0 is luminance, 1 chrominance.
Component componentOf(const jpeg_compress_struct& tables, std::size_t which) {
    constexpr std::array<double, kSide> kScale = {1.0, 1.387039845, 1.306562965, 1.175875602,
                                                  1.0, 0.785694958, 0.541196100, 0.275899379};
    Component component{
        {}, codesOf(*tables.dc_huff_tbl_ptrs[which]), codesOf(*tables.ac_huff_tbl_ptrs[which])};
    for (std::size_t i = 0; i < kBlock; ++i)
        component.divisors[i] =
            static_cast<float>(1.0 / (tables.quant_tbl_ptrs[which]->quantval[i] *
                                      kScale[i / kSide] * kScale[i % kSide] * 8.0));
    return component;
}

std::array<Component, 3> components() {
    jpeg_compress_struct tables{};
    jpeg_error_mgr errors{};
    tables.err = ::jpeg_std_error(&errors);
    jpeg_create_compress(&tables);
    tables.in_color_space = JCS_RGB;
    ::jpeg_set_defaults(&tables);
    ::jpeg_set_quality(&tables, 75, TRUE);
    const Component chrominance = componentOf(tables, 1);
    const std::array<Component, 3> all = {componentOf(tables, 0), chrominance, chrominance};
    ::jpeg_destroy_compress(&tables);
    return all;
}

class BitWriter {
public:
    explicit BitWriter(std::FILE* file) : file_(file) {}

    void put(Code code) {
        for (int bit = code.length; bit-- > 0;) {
            byte_ |= (code.bits >> bit & 1) << position_;
            if (--position_ < 0) flush();
        }
    }

    void fill() { put({position_ + 1, (2 << position_) - 1}); }

private:
    void flush() {
        std::putc(byte_, file_);
        if (byte_ == 0xFF) std::putc(0, file_);
        byte_ = 0;
        position_ = 7;
    }

    std::FILE* file_;
    int byte_ = 0;
    int position_ = 7;
};

void transform(float* s, std::size_t step) {
    const auto at = [&](std::size_t i) -> float& { return s[i * step]; };
    const float t0 = at(0) + at(7), t7 = at(0) - at(7);
    const float t1 = at(1) + at(6), t6 = at(1) - at(6);
    const float t2 = at(2) + at(5), t5 = at(2) - at(5);
    const float t3 = at(3) + at(4), t4 = at(3) - at(4);
    const float t10 = t0 + t3, t13 = t0 - t3, t11 = t1 + t2, t12 = t1 - t2;
    at(0) = t10 + t11;
    at(4) = t10 - t11;
    const float z1 = (t12 + t13) * 0.707106781f;
    at(2) = t13 + z1;
    at(6) = t13 - z1;
    const float u10 = t4 + t5, u11 = t5 + t6, u12 = t6 + t7;
    const float z5 = (u10 - u12) * 0.382683433f;
    const float z2 = 0.541196100f * u10 + z5;
    const float z4 = 1.306562965f * u12 + z5;
    const float z3 = u11 * 0.707106781f;
    const float z11 = t7 + z3, z13 = t7 - z3;
    at(5) = z13 + z2;
    at(3) = z13 - z2;
    at(1) = z11 + z4;
    at(7) = z11 - z4;
}

Code extraBits(int value) {
    const auto length = static_cast<int>(std::bit_width(static_cast<unsigned>(std::abs(value))));
    return {length, value > 0 ? value : value + (1 << length) - 1};
}

void encodeBlock(std::array<float, kBlock>& samples, Component& component, BitWriter& out) {
    for (std::size_t row = 0; row < kSide; ++row)
        transform(&samples[row * kSide], 1);
    for (std::size_t column = 0; column < kSide; ++column)
        transform(&samples[column], kSide);
    std::array<int, kBlock> coefficients{};
    for (std::size_t i = 0; i < kBlock; ++i) {
        const float scaled = samples[kNatural[i]] * component.divisors[kNatural[i]];
        coefficients[i] = static_cast<int>(static_cast<double>(scaled) + 16384.5) - 16384;
    }

    const Code difference = extraBits(coefficients[0] - component.lastDc);
    component.lastDc = coefficients[0];
    out.put(component.dc[static_cast<std::size_t>(difference.length)]);
    out.put(difference);
    std::size_t zeros = 0;
    for (std::size_t i = 1; i < kBlock; ++i) {
        if (coefficients[i] == 0) {
            ++zeros;
            continue;
        }
        for (; zeros >= 16; zeros -= 16)
            out.put(component.ac[0xF0]);
        const Code bits = extraBits(coefficients[i]);
        out.put(component.ac[zeros * 16 + static_cast<std::size_t>(bits.length)]);
        out.put(bits);
        zeros = 0;
    }
    if (zeros > 0) out.put(component.ac[0]);
}

float colourOf(const std::uint8_t* bgr, std::size_t component) {
    constexpr std::array<std::array<int, 3>, 3> kBgr = {
        {{7471, 38470, 19595}, {32768, -21708, -11058}, {-5328, -27438, 32768}}};
    const auto& factors = kBgr[component];
    const int sum = factors[0] * bgr[0] + factors[1] * bgr[1] + factors[2] * bgr[2];
    const int value = component == 0 ? (sum >> 16) - 128 : sum >> 16;
    return static_cast<float>(static_cast<std::int8_t>(value));
}

}  // namespace

float literalJpeg(const std::string& bmp, const std::string& jpeg) {
    const std::vector<std::uint8_t> in = readWholeFile(bmp, "picture");
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> out(std::fopen(jpeg.c_str(), "wb"),
                                                              std::fclose);
    if (out == nullptr) throw Failure("cannot create " + jpeg);
    constexpr std::array<std::uint8_t, 6> kStart = {0xFF, 0xD8, 0xFF, 0xDA, 0, 2};
    constexpr std::array<std::uint8_t, 2> kEnd = {0xFF, 0xD9};
    std::fwrite(kStart.data(), 1, kStart.size(), out.get());

    const std::size_t width = loadLe32(&in[18]);
    const std::size_t height = loadLe32(&in[22]);
    const std::size_t rowBytes = bmpRowBytes(loadLe32(&in[18]));
    std::array<Component, 3> parts = components();
    BitWriter bits(out.get());
    for (std::size_t top = 0; top < height; top += kSide) {
        for (std::size_t left = 0; left < width; left += kSide) {
            for (std::size_t component = 0; component < parts.size(); ++component) {
                std::array<float, kBlock> samples{};
                for (std::size_t i = 0; i < kBlock; ++i) {
                    const std::size_t row = height - 1 - top - i / kSide;
                    const std::size_t column = left + i % kSide;
                    samples[i] = colourOf(&in[kHeadBytes + row * rowBytes + 3 * column], component);
                }
                encodeBlock(samples, parts[component], bits);
            }
        }
    }
    bits.fill();
    std::fwrite(kEnd.data(), 1, kEnd.size(), out.get());
    return 0.0f;
}

std::uint64_t digestOfScan(const std::string& path) {
    const MappedFile file = MappedFile::forReading(path);
    std::size_t marker = 2;
    const auto segmentEnd = [&] { return marker + 2 + loadBe16(file.data() + marker + 2); };
    while (file.data()[marker + 1] != 0xDA)
        marker = segmentEnd();
    return digestOf(path, segmentEnd());
}
