#pragma once
// Maps of two quads exported by the command-line host, and their pixels as libtiff reads them.

#include <gtest/gtest.h>
#include <tiffio.h>

#include <algorithm>
#include <array>
#include <stdexcept>

#include "bytes/Bytes.h"
#include "host/Quillon.h"

using Rgb = std::array<int, 3>;
inline constexpr Rgb kBackground{0, 0, 0};
inline constexpr Rgb kFacesZ{128, 128, 255};
inline constexpr Rgb kFacesX{255, 128, 128};

// A map read by libtiff.
class Map {
public:
    explicit Map(const std::string& path) : file_(TIFFOpen(path.c_str(), "r")) {
        if (file_ == nullptr) throw std::runtime_error("no TIFF: " + path);
        TIFFGetField(file_, TIFFTAG_IMAGEWIDTH, &width);
        TIFFGetField(file_, TIFFTAG_IMAGELENGTH, &height);
    }
    Map(const Map&) = delete;
    Map& operator=(const Map&) = delete;
    ~Map() { TIFFClose(file_); }

    Rgb rgb(std::uint32_t x, std::uint32_t y) const {
        const ByteList row = rowAt(y);
        return {row.at(3 * x), row.at(3 * x + 1), row.at(3 * x + 2)};
    }
    int level16(std::uint32_t x, std::uint32_t y) const { return loadLe16(&rowAt(y).at(2 * x)); }
    float height32(std::uint32_t x, std::uint32_t y) const {
        return loadLeFloat(&rowAt(y).at(4 * x));
    }

    std::uint32_t width = 0;
    std::uint32_t height = 0;

private:
    ByteList rowAt(std::uint32_t y) const {
        ByteList row(static_cast<std::size_t>(TIFFScanlineSize(file_)));
        if (TIFFReadScanline(file_, row.data(), y, 0) != 1) throw std::runtime_error("no row");
        return row;
    }
    TIFF* file_;
};

// The names in a folder, sorted.
inline std::vector<std::string> namesIn(const std::string& folder) {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder))
        names.push_back(entry.path().filename().string());
    std::ranges::sort(names);
    return names;
}

// Exports of a mesh of two quads, to sheets of two cells side by side.
struct ExportedQuads : ::testing::Test {
    Words words() const { return {"export", mesh, "--out", out, "--size", size}; }
    Ended succeed(const Words& options = {}) const {
        Ended ended = quillon(words(), options);
        EXPECT_EQ(ended.exitStatus, 0) << ended.err;
        EXPECT_EQ(ended.err, "");
        return ended;
    }
    // The sentence with which an export stops, leaving nothing behind.
    std::string fail(const Words& options = {}) const {
        const auto before = dir.names();
        const Ended ended = quillon(words(), options);
        EXPECT_EQ(ended.exitStatus, 1);
        EXPECT_EQ(dir.names(), before);
        return ended.err;
    }

    TempDir dir;
    std::string mesh = dir.write("two.Vemo", twoQuads());
    std::string out = dir.path("maps");
    std::string size = "16";
};
