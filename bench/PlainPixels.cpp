#include "PlainPixels.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "Files.h"
#include "bytes/Bytes.h"
#include "terminal/Failure.h"

namespace {

constexpr std::uint32_t kBmpHeadBytes = 54;

template <std::size_t kBytes>
void merge(std::uint8_t* map, const std::uint8_t* tile, const std::uint8_t* key,
           std::size_t pixels) {
    std::array<std::uint8_t, kBytes> background;
    std::memcpy(background.data(), key, kBytes);
    for (std::size_t i = 0; i < pixels * kBytes; i += kBytes) {
        if (std::memcmp(map + i, background.data(), kBytes) == 0)
            std::memcpy(map + i, tile + i, kBytes);
    }
}

float levelOf(const std::uint8_t* sample) {
    float value = 0.0f;
    std::memcpy(&value, sample, sizeof(value));
    const float q = value * 65535.0f;
    return (q >= 0.0f ? std::min(q, 65535.0f) : 0.0f) + 0.5f;
}

}  // namespace

void plainMerge(std::uint8_t* map, const std::uint8_t* tile, const std::uint8_t* background,
                std::size_t pixels, std::size_t pixelBytes) {
    if (pixelBytes == 3) merge<3>(map, tile, background, pixels);
    if (pixelBytes == 12) merge<12>(map, tile, background, pixels);
}

void plainSwap(std::uint8_t* pixels, std::size_t count, std::size_t first, std::size_t second) {
    for (std::size_t i = 0; i < count; ++i, pixels += 3)
        std::swap(pixels[first], pixels[second]);
}

void plainReverse(std::uint8_t* to, const std::uint8_t* from, std::size_t pixels) {
    for (std::size_t i = 0; i < pixels; ++i, to += 3, from += 3) {
        to[0] = from[2];
        to[1] = from[1];
        to[2] = from[0];
    }
}

void plainLevels(std::uint8_t* to, const std::uint8_t* samples, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        const auto level = static_cast<std::uint16_t>(static_cast<int>(levelOf(samples + 4 * i)));
        std::memcpy(to + 2 * i, &level, sizeof(level));
    }
}

void plainMark(std::uint8_t* seen, const std::uint8_t* samples, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i)
        seen[static_cast<int>(levelOf(samples + 4 * i))] = 1;
}

float plainScale(const std::vector<std::uint8_t>& seen) {
    const auto levels = static_cast<float>(std::count(seen.begin(), seen.end(), 1));
    return 18.49f * std::exp(1049.0f / levels + levels * -7.071e-05f);
}

std::array<std::uint8_t, 18> plainTargaHead(std::uint32_t width, std::uint32_t height) {
    const auto byte = [](std::uint32_t value) { return static_cast<std::uint8_t>(value); };
    return {0,
            0,
            2,
            0,
            0,
            0,
            0,
            0,
            0,
            0,
            0,
            0,
            byte(width),
            byte(width >> 8),
            byte(height),
            byte(height >> 8),
            24};
}

void plainBmpSize(std::uint8_t* head, std::uint32_t side) {
    const std::uint32_t pixelBytes = 3 * side * side;
    storeLe32(head + 2, kBmpHeadBytes + pixelBytes);
    storeLe32(head + 18, side);
    storeLe32(head + 22, side);
    storeLe32(head + 34, pixelBytes);
}

PlainWriter::PlainWriter(const std::string& path, std::span<const std::uint8_t> head)
    : file_(std::fopen(path.c_str(), "wb"), std::fclose) {
    if (file_ == nullptr) throw Failure("cannot create " + path);
    std::setvbuf(file_.get(), nullptr, _IOFBF, kPieceBytes);
    append(head);
}

void PlainWriter::append(std::span<const std::uint8_t> bytes) {
    if (std::fwrite(bytes.data(), 1, bytes.size(), file_.get()) != bytes.size())
        throw Failure("cannot write a file");
}
