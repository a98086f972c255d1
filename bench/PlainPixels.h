#pragma once
// The arithmetic of peers, as one writes it without a second thought, and left to the compiler.

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <span>
#include <string>
#include <vector>

// Replaces pixels of `map` that equal `background` by those of `tile`.
void plainMerge(std::uint8_t* map, const std::uint8_t* tile, const std::uint8_t* background,
                std::size_t pixels, std::size_t pixelBytes);

// Exchanges two of the three bytes of each pixel.
void plainSwap(std::uint8_t* pixels, std::size_t count, std::size_t first, std::size_t second);

// Copies pixels of three bytes from last to first byte.
void plainReverse(std::uint8_t* to, const std::uint8_t* from, std::size_t pixels);

// The 16-bit levels of float samples.
void plainLevels(std::uint8_t* to, const std::uint8_t* samples, std::size_t count);
void plainMark(std::uint8_t* seen, const std::uint8_t* samples, std::size_t count);
float plainScale(const std::vector<std::uint8_t>& seen);

std::array<std::uint8_t, 18> plainTargaHead(std::uint32_t width, std::uint32_t height);

// Makes a BMP's header say that the picture is a square of `side` pixels, a multiple of four.
void plainBmpSize(std::uint8_t* head, std::uint32_t side);

// A new file, written from start to end through the C library with a large buffer.
class PlainWriter {
public:
    PlainWriter(const std::string& path, std::span<const std::uint8_t> head);
    void append(std::span<const std::uint8_t> bytes);

private:
    std::unique_ptr<std::FILE, int (*)(std::FILE*)> file_;
};
