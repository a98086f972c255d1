#pragma once
// The plainest implementations: rows read and written one at a time through the C library, pixels
// and bytes handled one after the other. Sizes are taken as known.

#include <cstdint>
#include <string>

// Where the rows of a map lie in its file.
struct RowLayout {
    std::uint32_t offset;
    std::uint32_t rowBytes;
    std::uint32_t rows;
    std::uint32_t pixels;  // in a row
};

float literalMerge(const std::string& source, const std::string& target, const RowLayout& layout,
                   std::size_t pixelBytes);
float literalSwap(const std::string& path, const RowLayout& layout);

float literalConvert(const std::string& in, const std::string& out, const RowLayout& layout);
float literalFirstChannel(const std::string& in, const std::string& out, const RowLayout& layout);
float literalScale(const std::string& path, const RowLayout& layout);
float literalTarga(const std::string& in, const std::string& out, const RowLayout& layout);

float literalMergePlanes(const std::string& source, const std::string& target, std::uint32_t offset,
                         std::size_t pixels);
float literalRotatePlanes(const std::string& path, std::uint32_t offset, std::size_t pixels);

float literalThumbnail(const std::string& path, const RowLayout& layout, std::uint32_t size);
