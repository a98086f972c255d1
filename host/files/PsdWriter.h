#pragma once
// PSD maps as the host writes them: one flat uncompressed image without resources or layers. PsdOps.h
// has the layout of the file.

#include <cstdint>
#include <span>
#include <string>

#include "files/DiskFile.h"

struct PsdFormat {
    std::uint32_t width;
    std::uint32_t height;
    std::uint16_t channels;  // 1: grey, 3: RGB
    std::uint16_t bits;      // of a sample: 8 or 16
};

class PsdWriter {
public:
    // Throws Failure if the file cannot be created; the two below, if it cannot be written.
    PsdWriter(const std::string& path, const PsdFormat& format);

    // Takes whole rows of one plane, from the top one on, plane after plane; 16 bits high byte first.
    void append(std::span<const std::uint8_t> rows) { file_.write(rows); }
    void finish() { file_.finish(); }

private:
    OutputFile file_;
};
