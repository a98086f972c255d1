#include "pixels/Pixels.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "pixels/Avx2Kernels.h"
#include "pixels/Lanes.h"

namespace {

// Copies blocks of pixels of three bytes with two bytes of each exchanged. `to` may be `from`.
class Exchanger {
public:
    explicit Exchanger(const Exchange& exchange)
        : firsts_(maskOf(std::min(exchange.first, exchange.second))),
          seconds_(maskOf(std::max(exchange.first, exchange.second))),
          distance_(std::max(exchange.first, exchange.second) -
                    std::min(exchange.first, exchange.second)) {}

    // Reads two bytes behind the block, too.
    void copyBlock(std::uint8_t* to, const std::uint8_t* from) const {
        Block<std::uint8_t> block;
        for (std::size_t i = 0; i < 3; ++i) {
            const std::size_t at = i * kLanesBytes;
            const Lanes<std::uint8_t> firsts = firsts_.at(at);
            const Lanes<std::uint8_t> seconds = seconds_.at(at);
            block.lanes[i] = (firsts & loadLanes<std::uint8_t>(from + at + distance_)) |
                             (seconds & before(from, at)) |
                             (~(firsts | seconds) & loadLanes<std::uint8_t>(from + at));
        }
        for (std::size_t i = 0; i < 3; ++i)
            storeLanes<std::uint8_t>(to + i * kLanesBytes, block.lanes[i]);
    }

private:
    static Triplets<std::uint8_t> maskOf(std::size_t channel) {
        const auto mask = [&](std::size_t other) -> std::uint8_t {
            return channel == other ? 255 : 0;
        };
        return {mask(0), mask(1), mask(2)};
    }

    // The bytes that lie `distance_` before those at `at`.
    Lanes<std::uint8_t> before(const std::uint8_t* from, std::size_t at) const {
        if (at > 0) return loadLanes<std::uint8_t>(from + at - distance_);
        const Lanes<std::uint8_t> oneBefore = movedUp<std::uint8_t>(loadLanes<std::uint8_t>(from));
        return distance_ == 1 ? oneBefore : movedUp<std::uint8_t>(oneBefore);
    }

    Triplets<std::uint8_t> firsts_;
    Triplets<std::uint8_t> seconds_;
    std::size_t distance_;  // 1 or 2
};

void copyExchanged(std::uint8_t* to, const std::uint8_t* from, std::size_t pixels,
                   const Exchange& exchange) {
    constexpr std::size_t kBlockPixels = kBlockBytes / 3;
    const Exchanger exchanger(exchange);
    std::size_t done = copyExchangedAvx2(to, from, pixels, exchange);
    for (; pixels - done > kBlockPixels; done += kBlockPixels)
        exchanger.copyBlock(to + 3 * done, from + 3 * done);
    for (; done < pixels; ++done) {
        std::uint8_t pixel[3];
        std::memcpy(pixel, from + 3 * done, sizeof pixel);
        std::swap(pixel[exchange.first], pixel[exchange.second]);
        std::memcpy(to + 3 * done, pixel, sizeof pixel);
    }
}

}  // namespace

void exchangeSamples(std::uint8_t* row, std::size_t pixels, const Exchange& exchange) {
    if (exchange.first != exchange.second) copyExchanged(row, row, pixels, exchange);
}

void copyReversed(std::uint8_t* to, const std::uint8_t* from, std::size_t pixels) {
    copyExchanged(to, from, pixels, {0, 2});
}

void greyToColour(std::uint8_t* to, const std::uint8_t* from, std::size_t pixels) {
    for (std::size_t i = 0; i < pixels; ++i, to += 3)
        to[0] = to[1] = to[2] = from[i];
}
