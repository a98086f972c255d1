#pragma once
// Avx2Kernels: loops of Pixels.cpp and Samples.cpp once more, for processors with AVX2. Each works on
// the pixels or samples from the start on, as far as whole vectors go, and returns how many that were:
// none on other processors. The plain loop does the rest, with the same result.

#include <cstddef>
#include <cstdint>

#include "pixels/Pixels.h"
#include "pixels/Samples.h"

// Copies pixels of three bytes with two bytes of each exchanged. `to` may be `from`.
std::size_t copyExchangedAvx2(std::uint8_t* to, const std::uint8_t* from, std::size_t pixels,
                              const Exchange& exchange);

// Writes the level of each sample.
std::size_t quantiseAvx2(std::uint8_t* to, const float* from, std::size_t count, ByteOrder order);
