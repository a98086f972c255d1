#pragma once
// The maps that the host would render for a tile, always the same: islands of painted pixels,
// smooth colours with a little noise, on a flat background that covers about half.

#include <cstdint>
#include <string>

// Islands of the second tile are between those of the first, so that they do not overlap.
enum class Tile { kFirst, kSecond };

struct MapType {
    const char* extension;
    double bytesPerPixel;

    // Writes a square map of `side` pixels a side, whose first pixel is background.
    void (*write)(const std::string& path, std::uint32_t side, Tile tile);
};

extern const MapType kTiff8;
extern const MapType kTiffFloat;
extern const MapType kPsd;
extern const MapType kBmp;
extern const MapType kExrHalf;
extern const MapType kExrFloat;
