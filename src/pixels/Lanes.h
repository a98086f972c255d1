#pragma once
// Lanes: 16 bytes at a time, as every processor that Quillon runs on can handle them, and the one
// pattern that the pixels of three samples have in them.

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

// The order of samples in memory is their order in the lanes.
static_assert(std::endian::native == std::endian::little);

inline constexpr std::size_t kLanesBytes = 16;

// 16 bytes of samples, or `kBytes`. The compilers' own arithmetic works on them lane by lane; a
// comparison gives all bits set where it holds.
template <typename Sample, std::size_t kBytes = kLanesBytes>
using Lanes [[gnu::vector_size(kBytes)]] = Sample;

template <typename Sample>
inline constexpr std::size_t kLanes = kLanesBytes / sizeof(Sample);

template <typename Sample>
Lanes<Sample> loadLanes(const std::uint8_t* from) {
    Lanes<Sample> lanes;
    std::memcpy(&lanes, from, sizeof lanes);
    return lanes;
}

template <typename Sample>
void storeLanes(std::uint8_t* to, Lanes<Sample> lanes) {
    std::memcpy(to, &lanes, sizeof lanes);
}

// Each sample one place further on in the lanes; the first one is 0. Stands in for a load of the
// samples one before: where a part of those was stored just now, such a load waits for the store.
template <typename Sample>
Lanes<Sample> movedUp(Lanes<Sample> lanes) {
    constexpr int kBits = 8 * sizeof(Sample);
    Lanes<std::uint64_t> halves;
    std::memcpy(&halves, &lanes, sizeof halves);
    const Lanes<std::uint64_t> lowerHalf =
        __builtin_shufflevector(halves, Lanes<std::uint64_t>{}, 2, 0);
    halves = halves << kBits | lowerHalf >> (64 - kBits);
    std::memcpy(&lanes, &halves, sizeof lanes);
    return lanes;
}

// Whether all bits are as in `bits`, which is 0 or all ones.
template <typename Sample>
bool everyBitIs(std::uint64_t bits, Lanes<Sample> lanes) {
    std::uint64_t halves[2];
    std::memcpy(halves, &lanes, sizeof halves);
    return halves[0] == bits && halves[1] == bits;
}

// The shortest run of Lanes that holds whole pixels of three samples. The first of them is at its
// start.
inline constexpr std::size_t kBlockBytes = 3 * kLanesBytes;

template <typename Sample>
struct Block {
    Lanes<Sample> lanes[3];
};

// Three values that take turns, lane by lane: `at(channel)` is what Lanes hold whose first sample
// is of that channel, a number from 0 up.
template <typename Sample>
class Triplets {
public:
    Triplets(Sample first, Sample second, Sample third) {
        const Sample values[] = {first, second, third};
        for (std::size_t start = 0; start < 3; ++start) {
            for (std::size_t i = 0; i < kLanes<Sample>; ++i)
                starting_[start][i] = values[(start + i) % 3];
        }
    }

    Lanes<Sample> at(std::size_t channel) const { return starting_[channel % 3]; }

private:
    Lanes<Sample> starting_[3];
};
