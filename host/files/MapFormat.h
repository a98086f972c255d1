#pragma once
// The kinds of image file in which the host writes maps, and the exports that work on each.

#include <optional>
#include <string>
#include <string_view>
#include <vector>

enum class MapFormat { kTiff, kPsd, kBmp };

struct MapFormatInfo {
    const char* name;            // on the command line
    const char* title;           // in sentences
    std::string_view extension;  // of the files that are written
    std::string_view merge;      // the exports
    std::string_view swap;
    bool swapRotates;  // swap exchanges two channels with 1, and rotates all three with 2 and 3;
                       // otherwise it exchanges two with each number
    int heightBits;    // of a sample of a height map; 0: the format is too coarse for heights
};

const MapFormatInfo& infoOf(MapFormat format);

// Returns the names of all formats.
std::vector<std::string> formatNames();

// Returns the extensions of all formats, in the same order.
std::vector<std::string> mapExtensions();

// Returns the format with that name, or nothing.
std::optional<MapFormat> formatNamed(std::string_view name);

// Returns the format by the extension of a path, in upper or lower case, or nothing.
std::optional<MapFormat> formatOfPath(const std::string& path);

// Returns the numbers for the export that swaps channels, one per call, which turn red, green, blue
// into `order`: "rbg", "bgr" or "grb". Where swap rotates, two of the orders take two calls.
std::vector<int> swapsFor(MapFormat format, std::string_view order);
