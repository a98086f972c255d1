#pragma once
// PSD maps as Morvane writes them: one flat uncompressed picture without resources or layers. The
// layout of the file stands in the library's PsdOps.h.

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
    // Throws Failure when the file cannot be created; the two below when it cannot be written.
    PsdWriter(const std::string& path, const PsdFormat& format);

    // Whole rows of one plane, from the top one on, plane after plane; 16 bits high byte first.
    void append(std::span<const std::uint8_t> rows) { file_.write(rows); }
    void finish() { file_.finish(); }

private:
    OutputFile file_;
};
