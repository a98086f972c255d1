#pragma once
// The maps that the host would render for a tile, always the same: islands of painted pixels,
// smooth colours with a little noise, on a flat background that covers about half.

#include <cstdint>
#include <string>

// Islands of the one kind lie between those of the other, so that tiles do not overlap.
enum class Tile { kFirst, kSecond };

struct MapSpec {
    std::uint32_t side;  // in pixels; maps are square
    bool sparse;         // only the head is written, the pixels are a hole and read as 0
};

// Each writes a map. Unless it is sparse, its first pixel is background.
void writeTiff8(const std::string& path, const MapSpec& map, Tile tile);
void writeTiffFloat(const std::string& path, const MapSpec& map, Tile tile);
void writePsd8(const std::string& path, const MapSpec& map, Tile tile);
void writeBmp(const std::string& path, const MapSpec& map, Tile tile);

enum class ExrSamples { kHalf, kFloat };
void writeExr(const std::string& path, std::uint32_t side, ExrSamples samples);
