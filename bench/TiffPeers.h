#pragma once
// What a competent program on libtiff does for each job.

#include <string>

float mergeByLibtiff(const std::string& source, const std::string& target);
float swapByLibtiff(const std::string& path);
float convertByLibtiff(const std::string& in, const std::string& out);
float scaleByLibtiff(const std::string& path);
float targaByLibtiff(const std::string& in, const std::string& out);

// Digest of the pixels, whatever the layout of the file.
std::uint64_t digestOfPixels(const std::string& path);
