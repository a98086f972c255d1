#pragma once
// Pictures as ImageMagick reads them.

#include <gtest/gtest.h>

#include <filesystem>

#include "host/ExportedQuads.h"

// The samples of a picture, top row first, the high byte first. `kind` is one of ImageMagick's raw
// ones, such as "rgb:".
inline ByteList samplesOf(const TempDir& dir, const std::string& path, const std::string& kind,
                          const std::string& depth) {
    const std::string raw = dir.path("samples.raw");
    const Ended ended = run(
        {"/usr/bin/env", "convert", path + "[0]", "-endian", "MSB", "-depth", depth, kind + raw});
    EXPECT_EQ(ended.exitStatus, 0) << ended.err;
    ByteList samples = readBytes(raw);
    std::filesystem::remove(raw);
    return samples;
}

// A picture of 8-bit RGB.
struct MagickPicture {
    MagickPicture(const TempDir& dir, const std::string& path, std::size_t pixelsInARow)
        : width(pixelsInARow), samples(samplesOf(dir, path, "rgb:", "8")) {}

    Rgb at(std::size_t x, std::size_t y) const {
        const std::size_t first = 3 * (y * width + x);
        return {samples.at(first), samples.at(first + 1), samples.at(first + 2)};
    }

    std::size_t width;
    ByteList samples;
};
