#pragma once
// The TIFF tags and field types that Quillon reads and writes.

#include <cstdint>

namespace tiff_tag {
inline constexpr std::uint16_t kNewSubfileType = 254;
inline constexpr std::uint16_t kImageWidth = 256;
inline constexpr std::uint16_t kImageLength = 257;
inline constexpr std::uint16_t kBitsPerSample = 258;
inline constexpr std::uint16_t kCompression = 259;
inline constexpr std::uint16_t kPhotometric = 262;
inline constexpr std::uint16_t kStripOffsets = 273;
inline constexpr std::uint16_t kSamplesPerPixel = 277;
inline constexpr std::uint16_t kRowsPerStrip = 278;
inline constexpr std::uint16_t kStripByteCounts = 279;
inline constexpr std::uint16_t kXResolution = 282;
inline constexpr std::uint16_t kYResolution = 283;
inline constexpr std::uint16_t kPlanarConfiguration = 284;
inline constexpr std::uint16_t kResolutionUnit = 296;
inline constexpr std::uint16_t kSampleFormat = 339;
}

namespace tiff_type {
inline constexpr std::uint16_t kShort = 3;
inline constexpr std::uint16_t kLong = 4;
inline constexpr std::uint16_t kRational = 5;
inline constexpr std::uint16_t kFloat = 11;
}
