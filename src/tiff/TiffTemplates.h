#pragma once
// TiffTemplates: the headers of the maps that Quillon writes from float maps. Pixels follow at
// once.

#include <cstdint>
#include <vector>

// 198 bytes: a TIFF of 256 x 256 grey 16-bit pixels.
std::vector<std::uint8_t> greyTiffHeader16();

// 234 bytes: a TIFF of 1024 x 1024 RGB 16-bit pixels.
std::vector<std::uint8_t> rgbTiffHeader16();

// 40 bytes: a PSD of 128 x 128 grey 16-bit pixels. Height at byte 14, width at byte 18, big-endian.
std::vector<std::uint8_t> greyPsdHeader16();

// 222 bytes: a TIFF of `width` x `length` grey float pixels, `pixelBytes` in all.
std::vector<std::uint8_t> greyTiffHeaderFloat(std::uint32_t width, std::uint32_t length,
                                              std::uint32_t pixelBytes);
