#pragma once
// The maps that the host would render for a tile, always the same: islands of painted pixels,
// smooth colours with a little noise, on a flat background that covers about half.

#include <cstdint>
#include <string>

// Islands of the one kind lie between those of the other, so that tiles do not overlap.
enum class Tile { kFirst, kSecond };

// Each writes a square map of `side` pixels. The first pixel is background.
void writeTiff8(const std::string& path, std::uint32_t side, Tile tile);
void writeTiffFloat(const std::string& path, std::uint32_t side, Tile tile);
void writePsd8(const std::string& path, std::uint32_t side, Tile tile);
void writeBmp(const std::string& path, std::uint32_t side, Tile tile);

enum class ExrSamples { kHalf, kFloat };
void writeExr(const std::string& path, std::uint32_t side, ExrSamples samples);
