#pragma once
// The maps that the host would render, always the same: smooth colours with a little noise on a flat
// background.

#include <cstdint>
#include <string>

// Pixels of a map, the right and the lower end not included.
struct Area {
    std::uint32_t left;
    std::uint32_t top;
    std::uint32_t right;
    std::uint32_t bottom;
};

// What of a map is painted. Its first pixel never is: merges take it for the background.
struct Painting {
    enum class Shape {
        kNothing,
        kIslands,         // which cover about half
        kIslandsBetween,  // the same between those, so that they do not overlap
        kArea,            // to a ragged edge, except where that is the edge of the map
    };
    Shape shape;
    Area area = {};
};

struct MapType {
    const char* extension;
    double bytesPerPixel;

    // Writes a square map of `side` pixels a side.
    void (*write)(const std::string& path, std::uint32_t side, const Painting& painting);

    // Paints an area of such a map again, now as `painting` has it. Null for types without merges.
    void (*repaint)(const std::string& path, std::uint32_t side, const Area& area,
                    const Painting& painting);
};

extern const MapType kTiff8;
extern const MapType kTiffFloat;
extern const MapType kTiffFloatGrey;
extern const MapType kPsd;
extern const MapType kPsdGrey16;
extern const MapType kBmp;
extern const MapType kExrHalf;
extern const MapType kExrFloat;
