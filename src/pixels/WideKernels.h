#pragma once
// WideKernels: loops of Pixels.cpp, Samples.cpp and LevelSet.cpp once more, with vectors of 32 bytes.
// Each works from the start on, as far as whole vectors go, and returns how many pixels or samples
// that were: none where the processor lacks such vectors. The plain loop does the rest, with the same
// result.

#include <cstddef>
#include <cstdint>

#include "pixels/LevelSet.h"
#include "pixels/Pixels.h"
#include "pixels/Samples.h"

// Copies pixels of three bytes with two bytes of each exchanged. `to` may be `from`.
std::size_t copyExchangedWide(std::uint8_t* to, const std::uint8_t* from, std::size_t pixels,
                              const Exchange& exchange);

// Writes the level of each sample.
std::size_t quantiseWide(std::uint8_t* to, const float* from, std::size_t count, ByteOrder order);

// passOver with such vectors; null where the processor lacks them.
PassOver* widePassOver();
