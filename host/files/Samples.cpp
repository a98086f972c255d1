#include "files/Samples.h"

#include <bit>

#include "bytes/Bytes.h"

namespace {

// Exact: a half becomes the float of the same value, subnormal or not, or the same infinity or NaN.
float floatOfHalf(std::uint16_t half) {
    constexpr std::uint32_t kSpecial = 0x7F800000;  // the exponent of infinity and NaN
    const std::uint32_t sign = std::uint32_t{half & 0x8000u} << 16;
    const std::uint32_t magnitude = std::uint32_t{half & 0x7FFFu} << 13;
    if ((half & 0x7C00u) == 0x7C00u) return std::bit_cast<float>(sign | kSpecial | magnitude);
    const float value = std::bit_cast<float>(magnitude) * 0x1p112f;  // the exponents' difference
    return std::bit_cast<float>(sign | std::bit_cast<std::uint32_t>(value));
}

// A sample as the bits of a float.
std::uint32_t floatBits(const std::uint8_t* sample, SampleKind kind) {
    switch (kind) {
        case SampleKind::kByte:
            return std::bit_cast<std::uint32_t>(static_cast<float>(*sample) / 255.0f);
        case SampleKind::kShort:
            return std::bit_cast<std::uint32_t>(static_cast<float>(loadLe16(sample)) / 65535.0f);
        case SampleKind::kLong:
            return std::bit_cast<std::uint32_t>(
                static_cast<float>(static_cast<double>(loadLe32(sample)) / 4294967295.0));
        case SampleKind::kHalf:
            return std::bit_cast<std::uint32_t>(floatOfHalf(loadLe16(sample)));
        case SampleKind::kFloat:
            return loadLe32(sample);
        case SampleKind::kDouble:
            return std::bit_cast<std::uint32_t>(
                static_cast<float>(std::bit_cast<double>(loadLe64(sample))));
    }
    return 0;
}

// Stores a sample of another kind than the result's.
void convert(const std::uint8_t* sample, SampleKind kind, unsigned bits, std::uint8_t* result) {
    if (bits == 32)
        storeLe32(result, floatBits(sample, kind));
    else if (bits == 16)
        storeLe16(result, static_cast<std::uint16_t>(*sample * 257));
    else
        *result = byteOfShort(loadLe16(sample));
}

SampleKind kindOf(unsigned bits) {
    if (bits == 32) return SampleKind::kFloat;
    return bits == 16 ? SampleKind::kShort : SampleKind::kByte;
}

}  // namespace

std::size_t bytesOf(SampleKind kind) {
    switch (kind) {
        case SampleKind::kByte:
            return 1;
        case SampleKind::kShort:
        case SampleKind::kHalf:
            return 2;
        case SampleKind::kLong:
        case SampleKind::kFloat:
            return 4;
        case SampleKind::kDouble:
            return 8;
    }
    return 1;
}

void unpackBits(std::span<const std::uint8_t> packed, unsigned bits,
                std::span<std::uint8_t> values) {
    const unsigned mask = (1u << bits) - 1;
    for (std::size_t i = 0; i < values.size(); ++i) {
        const std::size_t bit = i * bits;
        values[i] = static_cast<std::uint8_t>(packed[bit / 8] >> (8 - bits - bit % 8) & mask);
    }
}

std::uint8_t byteOfShort(std::uint16_t level) {
    return byteOfLevel(level, 65535);
}

std::uint8_t byteOfLevel(std::uint32_t level, std::uint32_t max) {
    if (max == 0) return 0;
    return static_cast<std::uint8_t>((std::uint64_t{level} * 255 + max / 2) / max);
}

std::span<const std::uint8_t> convertSamples(std::span<const std::uint8_t> samples, SampleKind kind,
                                             unsigned bits, std::vector<std::uint8_t>& converted) {
    if (kind == kindOf(bits)) return samples;
    const std::size_t count = samples.size() / bytesOf(kind);
    converted.resize(count * bits / 8);
    for (std::size_t i = 0; i < count; ++i)
        convert(&samples[i * bytesOf(kind)], kind, bits, &converted[i * bits / 8]);
    return converted;
}
