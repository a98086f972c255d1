#pragma once
// The kinds of image file in which Morvane writes maps, and the exports that work on each.

#include <optional>
#include <string>
#include <string_view>
#include <vector>

enum class MapFormat { kTiff, kPsd, kBmp };

struct MapFormatInfo {
    const char* name;            // as the command line has it
    const char* title;           // as people have it
    std::string_view extension;  // of the files that are written
    std::string_view merge;      // the exports
    std::string_view swap;
};

const MapFormatInfo& infoOf(MapFormat format);

// The names, in the order of MapFormat.
std::vector<std::string> formatNames();

// By its name; nothing for a name that none has.
std::optional<MapFormat> formatNamed(std::string_view name);

// By the extension of a path, whatever the case; nothing for any other.
std::optional<MapFormat> formatOfPath(const std::string& path);

// The numbers for the export that swaps channels, a call each, which turn red, green, blue into
// `order`: "rbg", "bgr" or "grb". TIFF and BMP exchange two channels with each number; PSD rotates
// all three with 2 and 3, so that two of its orders take two calls.
std::vector<int> swapsFor(MapFormat format, std::string_view order);
