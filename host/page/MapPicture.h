#pragma once
// A map as a picture, made of every n-th pixel.

#include <cstdint>
#include <string>

#include "page/Picture.h"

// In pixels from the map's upper left; at least one pixel.
struct MapPart {
    std::uint32_t left;
    std::uint32_t top;
    std::uint32_t width;
    std::uint32_t height;
};

// Returns a part of a map of a kind that exports write, its longer side at most `longest` pixels.
// Samples of 16 bits and floats from 0 to 1 become 0 to 255. Throws Failure if the file is not such a
// map or cannot be read.
Picture pictureOfMap(const std::string& path, const MapPart& part, std::uint32_t longest);

// Returns the same of the whole map.
Picture pictureOfMap(const std::string& path, std::uint32_t longest);
