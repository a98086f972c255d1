#pragma once
// Random float samples for the tests of kernels.

#include <cstddef>
#include <iterator>
#include <limits>
#include <random>
#include <vector>

// Samples inside and outside the range of levels, halfway between two levels, infinite and NaN,
// with runs of equal pixels between them.
inline std::vector<float> someSamples(std::mt19937& random, std::size_t count,
                                      std::size_t channels) {
    const float infinity = std::numeric_limits<float>::infinity();
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const float odd[] = {0.0f,     -0.0f,     1.0f, 1.5f, -0.2f,  3e38f,    -3e38f,
                         infinity, -infinity, nan,  -nan, 1e-45f, 65536.0f, 32768.5f};
    std::vector<float> samples(count);
    for (std::size_t i = 0; i < count; ++i) {
        const unsigned choice = random() % 64;
        if (choice < 54 && i >= channels)
            samples[i] = samples[i - channels];
        else if (choice < 58)
            samples[i] = odd[random() % std::size(odd)];
        else if (choice < 60)
            samples[i] = (static_cast<float>(random() % 65536) + 0.5f) / 65535.0f;
        else
            samples[i] = static_cast<float>(random() % 1000) / 999.0f;
    }
    return samples;
}
