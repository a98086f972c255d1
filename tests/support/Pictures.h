#pragma once
// Pictures for encoders, made by arithmetic alone, so that they are the same everywhere. Pixels
// are in BmpFile's order: bottom row first, each blue, green, red.

#include <cstdint>

#include "support/TempDir.h"

ByteList gradientPicture(std::uint32_t width, std::uint32_t height);  // smooth in all channels
ByteList noisePicture(std::uint32_t width, std::uint32_t height);     // every byte at random
ByteList textPicture(std::uint32_t width, std::uint32_t height);      // black strokes on white
