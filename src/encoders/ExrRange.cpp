#include "encoders/ExrRange.h"

#include <algorithm>
#include <array>

#include "encoders/exr/ExrLoader.h"

namespace {

// The largest and the smallest of all samples shown. Each lane has its own, so that a sample does not
// wait for the one before. NaN is neither larger nor smaller than anything.
class Extremes {
public:
    Extremes() {
        largest_.fill(-65535.0f);
        smallest_.fill(65535.0f);
    }

    void look(std::span<const float> samples) {
        const std::size_t whole = samples.size() - samples.size() % kLanes;
        for (std::size_t i = 0; i < whole; i += kLanes) {
            for (std::size_t lane = 0; lane < kLanes; ++lane)
                look(lane, samples[i + lane]);
        }
        for (const float sample : samples.subspan(whole))
            look(0, sample);
    }

    float range() const {
        return *std::max_element(largest_.begin(), largest_.end()) -
               *std::min_element(smallest_.begin(), smallest_.end());
    }

private:
    static constexpr std::size_t kLanes = 16;

    void look(std::size_t lane, float sample) {
        largest_[lane] = sample > largest_[lane] ? sample : largest_[lane];
        smallest_[lane] = sample < smallest_[lane] ? sample : smallest_[lane];
    }

    std::array<float, kLanes> largest_;
    std::array<float, kLanes> smallest_;
};

}  // namespace

float measureExrRange(const char* path) {
    ExrSize size;
    Extremes extremes;
    const int status = LoadMultiChannelEXRFromFile(
        path, size, [&](std::span<const float> samples) { extremes.look(samples); });
    if (status != exr_status::kOk) return static_cast<float>(status);
    if (size.height < 1 || size.width < 1) return exr_range::kNoPixels;
    return extremes.range();
}
