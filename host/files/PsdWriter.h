#pragma once
// PSD maps as the host writes them: one flat uncompressed image without resources or layers. PsdOps.h
// has the layout of the file.

#include <cstdint>
#include <string>

#include "files/DiskFile.h"

struct PsdFormat {
    std::uint32_t width;
    std::uint32_t height;
    std::uint16_t channels;  // 1: grey, 3: RGB
    std::uint16_t bits;      // of a sample: 8 or 16
};

// Whole rows of one plane are appended, from the top one on, plane after plane; 16 bits high byte
// first.
class PsdWriter : public OutputFile {
public:
    PsdWriter(const std::string& path, const PsdFormat& format);
};
