#pragma once
// A map as a picture: every so many pixels, one of the file's own.

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

// A part of a TIFF, PSD or BMP map of the kinds that an export leaves, its longer side at most
// `longest` pixels. Samples of 16 bits and floats from 0 to 1 become 0 to 255. Throws Failure when
// the file is none of these, or cannot be read.
Picture pictureOfMap(const std::string& path, const MapPart& part, std::uint32_t longest);

// The same of the whole map.
Picture pictureOfMap(const std::string& path, std::uint32_t longest);
