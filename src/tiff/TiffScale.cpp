#include "tiff/TiffScale.h"

#include <cmath>
#include <limits>

#include "pixels/LevelSet.h"
#include "tiff/FloatMap.h"
#include "tiff/TiffOps.h"

float scaleOfLevels(std::size_t levels) {
    const auto count = static_cast<float>(levels);
    const float fewLevels = 1049.0f / count;
    const float manyLevels = count * -7.071e-05f;
    // Every system's library gives the same float: for no number of levels is the exponential
    // within 800 last digits of a double of where the float would change.
    const double exponential = std::exp(static_cast<double>(fewLevels + manyLevels));
    if (exponential > static_cast<double>(std::numeric_limits<float>::max()))
        return std::numeric_limits<float>::infinity();
    return 18.49f * static_cast<float>(exponential);
}

float getScaleTiff(const char* path, int channels) {
    const FloatMap map =
        openFloatMap(path, channels == 1 ? 1 : 3, {.floatOnly = true, .directoryAnywhere = true},
                     File::openForRewriting);
    if (map.refused != tiff_status::kOk) return map.refused;
    if (map.strip.pixels == 0) return tiff_status::kNoPixels;

    LevelSet levels;
    Piece piece;
    const bool read = forEachPiece(map.strip, [&](std::uint64_t offset, std::size_t pixels) {
        const float* const samples = readSamples(map, piece, offset, pixels);
        if (samples == nullptr) return false;
        levels.addSamples(samples, pixels * map.channels());
        return true;
    });
    return read ? scaleOfLevels(levels.count()) : tiff_status::kNotReopened;
}
