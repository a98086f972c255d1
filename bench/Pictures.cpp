#include "Pictures.h"

#include <ImfChannelList.h>
#include <ImfFrameBuffer.h>
#include <ImfHeader.h>
#include <ImfOutputFile.h>
#include <half.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <span>
#include <vector>

#include "Files.h"
#include "files/BmpWriter.h"
#include "files/PsdWriter.h"
#include "files/TiffWriter.h"

namespace {

// Where the pixels start in a file of the writers.
constexpr std::uint64_t kBmpPixelOffset = 54;
constexpr std::uint64_t kPsdPixelOffset = 40;

constexpr std::uint32_t kCell = 512;  // pixels between the centres of two islands
constexpr double kReach = 0.5 * kCell;

// Flat blue, as a normal map has it, and a displacement of nothing.
template <typename Sample>
constexpr std::array<Sample, 3> kBackground = {128, 128, 255};
template <>
constexpr std::array<float, 3> kBackground<float> = {0.5f, 0.5f, 0.5f};

// The same bits for the same pixel on every machine.
std::uint32_t noise(std::uint32_t x, std::uint32_t y) {
    std::uint32_t bits = x * 0x9E3779B1u ^ y * 0x85EBCA77u;
    bits ^= bits >> 15;
    bits *= 0x2C1B3C6Du;
    return bits ^ bits >> 13;
}

void paint(std::uint8_t* pixel, std::uint32_t x, std::uint32_t y) {
    const std::uint32_t bits = noise(x, y);
    pixel[0] = static_cast<std::uint8_t>(40 + x / 8 % 128 + (bits & 7));
    pixel[1] = static_cast<std::uint8_t>(60 + y / 8 % 128 + (bits >> 3 & 7));
    pixel[2] = static_cast<std::uint8_t>(20 + (x + y) / 16 % 128 + (bits >> 6 & 7));
}

void paint(float* pixel, std::uint32_t x, std::uint32_t y) {
    const std::uint32_t bits = noise(x, y);
    const auto grain = [&](int shift) { return static_cast<float>(bits >> shift & 255) * 1e-5f; };
    pixel[0] = 0.3f + static_cast<float>(x % 4096) * 1e-4f + grain(0);
    pixel[1] = 0.1f + static_cast<float>(y % 4096) * 2e-4f + grain(8);
    pixel[2] = static_cast<float>((x + y) % 8192) * 1.2e-4f - 0.01f + grain(16);
}

// Paints one row's part of the island around (cx, cy), a rounded square with a ragged edge.
template <typename Sample>
void paintIsland(std::span<Sample> row, std::uint32_t y, double cx, double cy) {
    const double dy = std::abs(y - cy) / kReach;
    if (dy >= 1.0) return;
    const double half = kReach * std::sqrt(std::sqrt(1.0 - dy * dy * dy * dy));
    const double width = static_cast<double>(row.size() / 3);
    const auto first =
        static_cast<std::uint32_t>(std::clamp(cx - half + noise(1, y) % 8, 1.0, width));
    const auto last =
        static_cast<std::uint32_t>(std::clamp(cx + half - noise(2, y) % 8, 0.0, width));
    for (std::uint32_t x = first; x < last; ++x)
        paint(&row[std::size_t{3} * x], x, y);
}

template <typename Sample>
void paintIslands(std::span<Sample> row, std::uint32_t y, std::uint32_t firstCell) {
    const std::uint32_t cells = static_cast<std::uint32_t>(row.size() / 3) / kCell + 1;
    const std::uint32_t cellY = y / kCell;
    for (std::uint32_t cellX = (cellY + firstCell) % 2; cellX < cells; cellX += 2)
        paintIsland(row, y, (cellX + 0.5) * kCell, (cellY + 0.5) * kCell);
}

template <typename Sample>
void paintArea(std::span<Sample> row, std::uint32_t y, const Area& area) {
    if (y < area.top || y >= area.bottom) return;
    const auto width = static_cast<std::uint32_t>(row.size() / 3);
    const std::uint32_t first = area.left == 0 ? (y == 0 ? 1 : 0) : area.left + noise(1, y) % 8;
    const std::uint32_t last = area.right == width ? width : area.right - noise(2, y) % 8;
    for (std::uint32_t x = first; x < last; ++x)
        paint(&row[std::size_t{3} * x], x, y);
}

template <typename Sample>
std::vector<Sample> backgroundRow(std::uint32_t side) {
    std::vector<Sample> row(std::size_t{3} * side);
    for (std::size_t i = 0; i < row.size(); i += 3)
        std::copy(kBackground<Sample>.begin(), kBackground<Sample>.end(), &row[i]);
    return row;
}

template <typename Sample>
void paintRow(std::span<Sample> row, std::uint32_t y, const Painting& painting) {
    switch (painting.shape) {
        case Painting::Shape::kNothing:
            return;
        case Painting::Shape::kIslands:
            return paintIslands(row, y, 0);
        case Painting::Shape::kIslandsBetween:
            return paintIslands(row, y, 1);
        case Painting::Shape::kArea:
            return paintArea(row, y, painting.area);
    }
}

// Passes an area's part of each row to `use`, from the top one on.
template <typename Sample, typename Use>
void forEachRow(std::uint32_t side, const Area& area, const Painting& painting, Use use) {
    const std::vector<Sample> background = backgroundRow<Sample>(side);
    std::vector<Sample> row(background.size());
    for (std::uint32_t y = area.top; y < area.bottom; ++y) {
        std::copy(background.begin(), background.end(), row.begin());
        paintRow(std::span<Sample>(row), y, painting);
        use(y, std::span<const Sample>(&row[std::size_t{3} * area.left],
                                       std::size_t{3} * (area.right - area.left)));
    }
}

template <typename Sample>
std::span<const std::uint8_t> bytesOf(std::span<const Sample> samples) {
    return {reinterpret_cast<const std::uint8_t*>(samples.data()), samples.size_bytes()};
}

std::span<const std::uint8_t> planeOf(std::span<const std::uint8_t> row, std::size_t channel,
                                      std::vector<std::uint8_t>& plane) {
    plane.resize(row.size() / 3);
    for (std::size_t x = 0; x < plane.size(); ++x)
        plane[x] = row[3 * x + channel];
    return plane;
}

template <typename Sample>
void writeTiff(const std::string& path, std::uint32_t side, const Painting& painting) {
    TiffWriter file(path, {side, side, 3, 8 * sizeof(Sample)});
    forEachRow<Sample>(
        side, {0, 0, side, side}, painting,
        [&](std::uint32_t, std::span<const Sample> row) { file.append(bytesOf(row)); });
    file.finish();
}

void writePsd(const std::string& path, std::uint32_t side, const Painting& painting) {
    PsdWriter file(path, {side, side, 3, 8});
    std::vector<std::uint8_t> plane;
    for (std::size_t channel = 0; channel < 3; ++channel) {
        forEachRow<std::uint8_t>(side, {0, 0, side, side}, painting,
                                 [&](std::uint32_t, std::span<const std::uint8_t> row) {
                                     file.append(planeOf(row, channel, plane));
                                 });
    }
    file.finish();
}

void writeGreyTiff(const std::string& path, std::uint32_t side, const Painting& painting) {
    TiffWriter file(path, {side, side, 1, 32});
    std::vector<float> greys(side);
    forEachRow<float>(side, {0, 0, side, side}, painting,
                      [&](std::uint32_t, std::span<const float> row) {
                          for (std::size_t x = 0; x < greys.size(); ++x)
                              greys[x] = row[3 * x];
                          file.append(bytesOf(std::span<const float>(greys)));
                      });
    file.finish();
}

// Two of the three colours are the bytes of a sample.
void writeGreyPsd(const std::string& path, std::uint32_t side, const Painting& painting) {
    PsdWriter file(path, {side, side, 1, 16});
    std::vector<std::uint8_t> greys(std::size_t{2} * side);
    forEachRow<std::uint8_t>(side, {0, 0, side, side}, painting,
                             [&](std::uint32_t, std::span<const std::uint8_t> row) {
                                 for (std::size_t x = 0; x < side; ++x)
                                     std::copy_n(&row[3 * x], 2, &greys[2 * x]);
                                 file.append(greys);
                             });
    file.finish();
}

// Sides are multiples of four, so rows have no padding.
void writeBmp(const std::string& path, std::uint32_t side, const Painting& painting) {
    BmpWriter file(path, side, side);
    forEachRow<std::uint8_t>(
        side, {0, 0, side, side}, painting,
        [&](std::uint32_t, std::span<const std::uint8_t> row) { file.append(row); });
    file.finish();
}

template <typename Sample, std::uint64_t kPixelOffset>
void repaintInterleaved(const std::string& path, std::uint32_t side, const Area& area,
                        const Painting& painting) {
    const OpenFile file(path, Access::kRewrite);
    forEachRow<Sample>(side, area, painting, [&](std::uint32_t y, std::span<const Sample> row) {
        const std::uint64_t pixel = std::uint64_t{y} * side + area.left;
        file.writeAt(kPixelOffset + pixel * 3 * sizeof(Sample), bytesOf(row));
    });
}

void repaintPsd(const std::string& path, std::uint32_t side, const Area& area,
                const Painting& painting) {
    const OpenFile file(path, Access::kRewrite);
    std::vector<std::uint8_t> plane;
    forEachRow<std::uint8_t>(
        side, area, painting, [&](std::uint32_t y, std::span<const std::uint8_t> row) {
            for (std::uint64_t channel = 0; channel < 3; ++channel) {
                const std::uint64_t pixel = (channel * side + y) * side + area.left;
                file.writeAt(kPsdPixelOffset + pixel, planeOf(row, channel, plane));
            }
        });
}

template <typename Sample>
void writeExr(const std::string& path, std::uint32_t side, const Painting& painting) {
    constexpr Imf::PixelType kType = sizeof(Sample) == 2 ? Imf::HALF : Imf::FLOAT;
    Imf::Header header(static_cast<int>(side), static_cast<int>(side));
    header.compression() = Imf::ZIP_COMPRESSION;
    std::vector<Sample> samples(std::size_t{3} * side);
    Imf::FrameBuffer pixels;
    std::size_t channel = 0;
    for (const char* name : {"R", "G", "B"}) {
        header.channels().insert(name, Imf::Channel(kType));
        // Each call below writes one row; a row step of 0 makes every row the one in memory.
        auto* const first = reinterpret_cast<char*>(&samples[channel++]);
        pixels.insert(name, Imf::Slice(kType, first, 3 * sizeof(Sample), 0));
    }
    Imf::OutputFile file(path.c_str(), header);
    file.setFrameBuffer(pixels);
    forEachRow<float>(side, {0, 0, side, side}, painting,
                      [&](std::uint32_t, std::span<const float> row) {
                          std::copy(row.begin(), row.end(), samples.begin());
                          file.writePixels(1);
                      });
}

}  // namespace

const MapType kTiff8{".tif", 3, writeTiff<std::uint8_t>,
                     repaintInterleaved<std::uint8_t, kTiffPixelOffset>};
const MapType kTiffFloat{".tif", 12, writeTiff<float>, repaintInterleaved<float, kTiffPixelOffset>};
const MapType kTiffFloatGrey{".tif", 4, writeGreyTiff, nullptr};
const MapType kPsd{".psd", 3, writePsd, repaintPsd};
const MapType kPsdGrey16{".psd", 2, writeGreyPsd, nullptr};
const MapType kBmp{".bmp", 3, writeBmp, repaintInterleaved<std::uint8_t, kBmpPixelOffset>};
const MapType kExrHalf{".exr", 6, writeExr<half>, nullptr};
const MapType kExrFloat{".exr", 12, writeExr<float>, nullptr};
