#include "encoders/ExrRange.h"

#include <algorithm>
#include <array>

#include "encoders/exr/ExrLoader.h"

namespace {

// The maximum and the minimum of all samples. Each lane has its own, so that a sample does not wait
// for the one before. NaN is neither larger nor smaller than anything.
class Extremes {
public:
    Extremes() {
        maximum_.fill(-65535.0f);
        minimum_.fill(65535.0f);
    }

    void add(std::span<const float> samples) {
        const std::size_t whole = samples.size() - samples.size() % kLanes;
        for (std::size_t i = 0; i < whole; i += kLanes) {
            for (std::size_t lane = 0; lane < kLanes; ++lane)
                add(lane, samples[i + lane]);
        }
        for (const float sample : samples.subspan(whole))
            add(0, sample);
    }

    float range() const {
        return *std::max_element(maximum_.begin(), maximum_.end()) -
               *std::min_element(minimum_.begin(), minimum_.end());
    }

private:
    static constexpr std::size_t kLanes = 16;

    void add(std::size_t lane, float sample) {
        maximum_[lane] = sample > maximum_[lane] ? sample : maximum_[lane];
        minimum_[lane] = sample < minimum_[lane] ? sample : minimum_[lane];
    }

    std::array<float, kLanes> maximum_;
    std::array<float, kLanes> minimum_;
};

}  // namespace

float OpenEXR(const char* path) {
    ExrSize size;
    Extremes extremes;
    const int status = LoadMultiChannelEXRFromFile(
        path, size, [&](std::span<const float> samples) { extremes.add(samples); });
    if (status != exr_status::kOk) return static_cast<float>(status);
    if (size.height < 1 || size.width < 1) return exr_range::kNoPixels;
    return extremes.range();
}
