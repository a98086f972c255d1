#pragma once
// The range of the first channel's values, by other loaders.

#include <string>

// The OpenEXR library on one thread, which converts the first channel only.
float rangeByOpenExr(const std::string& path);
