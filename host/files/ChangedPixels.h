#pragma once
// How many pixels of a map each of several changes touched.

#include <cstdint>
#include <string>
#include <vector>

#include "files/PixelLayout.h"

class ChangedPixels {
public:
    // Remembers the map as it is now, which takes as much memory as the file.
    explicit ChangedPixels(std::string path);

    // Returns the number of pixels that differ from the map as it was last remembered, and remembers
    // it as it is now. Nothing for a map whose samples are not laid out plainly.
    std::optional<std::uint64_t> count();

private:
    std::string path_;
    std::vector<std::uint8_t> bytes_;
};
