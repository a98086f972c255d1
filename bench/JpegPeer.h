#pragma once
// The same JPEG by libjpeg-turbo: baseline, no subsampling, the quantisation of quality 75, which is
// what the export's 50 stands for.

#include <string>

enum class JpegDct { kFast, kFloat };
float jpegByTurbo(const std::string& bmp, const std::string& jpeg, JpegDct dct);
