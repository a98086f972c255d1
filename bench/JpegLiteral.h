#pragma once
// The plainest JPEG encoder: block by block, bit by bit, byte by byte. It writes the picture's codes
// only, without the tables in front of them.

#include <cstdint>
#include <string>

float literalJpeg(const std::string& bmp, const std::string& jpeg);

// Digest of a JPEG file's coded picture.
std::uint64_t digestOfScan(const std::string& path);
