#pragma once
// JpegBlocks: from pixels to coded blocks. A block of a picture is three data units, luminance, Cb
// and Cr.

#include <array>
#include <cstddef>
#include <cstdint>

#include "encoders/jpeg/JpegStream.h"
#include "encoders/jpeg/JpegTransform.h"

// The DC coefficients of a block, from which those of the next one are predicted; 0 before the first.
using DcPredictors = std::array<std::int32_t, 3>;

// Codes a row of blocks, or a part of one.
//
//   pixels, rowStep, fdtbl  as for TransformBlock
//   blocks        how many
//   dcPredictors  of the block before; receives those of the last one
//   bits          has room for kMaxBlockBytes a block
void codeBlocks(const std::uint8_t* pixels, std::ptrdiff_t rowStep, std::size_t blocks,
                const Divisors& fdtbl, DcPredictors& dcPredictors, BitWriter& bits);
inline constexpr std::size_t kMaxBlockBytes = 3 * (64 * 27 + 7) / 8;

// Codes a block that equals the one before and is all one colour.
void codeUnchangedBlock(BitWriter& bits);
