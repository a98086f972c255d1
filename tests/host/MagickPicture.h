#pragma once
// Pictures as ImageMagick reads them.

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

#include "host/ExportedQuads.h"

// The samples of a picture, top row first, as ImageMagick reads them; `as` is one of its raw kinds.
inline ByteList samplesOf(const TempDir& dir, const std::string& path,
                          std::vector<std::string> as) {
    const std::string raw = dir.path("samples.raw");
    std::vector<std::string> arguments = {"/usr/bin/env", "convert", path + "[0]"};
    as.back() += raw;
    arguments.insert(arguments.end(), as.begin(), as.end());
    const Ended ended = run(arguments);
    EXPECT_EQ(ended.exitStatus, 0) << ended.err;
    ByteList samples = readBytes(raw);
    std::filesystem::remove(raw);
    return samples;
}

// A picture of 8-bit RGB.
struct Picture {
    Picture(const TempDir& dir, const std::string& path, std::size_t pixelsInARow)
        : width(pixelsInARow), samples(samplesOf(dir, path, {"-depth", "8", "rgb:"})) {}

    Rgb at(std::size_t x, std::size_t y) const {
        const std::size_t first = 3 * (y * width + x);
        return {samples.at(first), samples.at(first + 1), samples.at(first + 2)};
    }

    std::size_t width;
    ByteList samples;
};
