#pragma once
// JpegBlocks: from pixels to coded blocks. A block of a picture is three data units, luminance, Cb
// and Cr.

#include <array>
#include <cstddef>
#include <cstdint>

#include "encoders/jpeg/JpegStream.h"
#include "encoders/jpeg/JpegTransform.h"

// What goes from one block of a picture to the next: the mean of each component, 0 before the first.
using Means = std::array<std::int32_t, 3>;

// Codes a row of blocks, or a part of one.
//
//   pixels, rowStep, divisors  as for `TransformPixels`
//   blocks   how many
//   means    those of the block before; receives those of the last one
//   bits     has room for kMostBlockBytes a block
void codeBlocks(const std::uint8_t* pixels, std::ptrdiff_t rowStep, std::size_t blocks,
                const Divisors& divisors, Means& means, BitWriter& bits);
inline constexpr std::size_t kMostBlockBytes = 3 * (64 * 27 + 7) / 8;

// Codes a block that is like the one before, all of it one colour.
void codeUnchangedBlock(BitWriter& bits);
