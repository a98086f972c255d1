// Each operation that handles many bytes at a time, against a plain loop, at every length
// from none to several times its step and at odd addresses. Buffers end with the last pixel, so the
// address sanitizer sees a step beyond it.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <iterator>
#include <random>
#include <vector>

#include "pixels/Pixels.h"
#include "pixels/Samples.h"
#include "support/SomeSamples.h"

namespace {

using ByteList = std::vector<std::uint8_t>;

constexpr std::size_t kMaxPixels = 70;
constexpr std::size_t kStarts[] = {0, 1, 2, 7, 15};

// Bytes with few values, so that many pixels equal one another in some of their bytes.
ByteList fewValues(std::mt19937& random, std::size_t count, unsigned values) {
    ByteList bytes(count);
    for (std::uint8_t& byte : bytes)
        byte = static_cast<std::uint8_t>(128 + random() % values);
    return bytes;
}

// Runs of whole pixels of the background between others, as maps have them.
ByteList withRuns(std::mt19937& random, ByteList row, const ByteList& background) {
    for (std::size_t at = 0; at + background.size() <= row.size(); at += background.size()) {
        if (random() % 32 < 29 && at > 0)
            std::copy_n(&row[at - background.size()], background.size(), &row[at]);
        else if (random() % 2 == 0)
            std::copy(background.begin(), background.end(), &row[at]);
    }
    return row;
}

ByteList behind(std::size_t zeros, const ByteList& bytes) {
    ByteList all(zeros + bytes.size(), 0);
    std::copy(bytes.begin(), bytes.end(), all.begin() + static_cast<std::ptrdiff_t>(zeros));
    return all;
}

ByteList filledPlainly(ByteList row, const ByteList& source, const ByteList& background) {
    const std::size_t pixelBytes = background.size();
    for (std::size_t at = 0; at + pixelBytes <= row.size(); at += pixelBytes) {
        bool equal = true;
        for (std::size_t i = 0; i < pixelBytes; ++i)
            equal = equal && row[at + i] == background[i];
        for (std::size_t i = 0; equal && i < pixelBytes; ++i)
            row[at + i] = source[at + i];
    }
    return row;
}

class FillKernel : public testing::TestWithParam<std::size_t> {};

TEST_P(FillKernel, IsThePlainLoop) {
    const std::size_t pixelBytes = GetParam();
    std::mt19937 random(1);
    for (std::size_t pixels = 0; pixels <= kMaxPixels; ++pixels) {
        for (const std::size_t start : kStarts) {
            for (const unsigned values : {1u, 2u, 3u, 128u}) {
                const ByteList background = fewValues(random, pixelBytes, std::min(values, 3u));
                const ByteList source = fewValues(random, pixels * pixelBytes, 128);
                const ByteList row =
                    withRuns(random, fewValues(random, pixels * pixelBytes, values), background);

                ByteList filled = behind(start, row);
                fillBackground(filled.data() + start, source.data(), background.data(), pixels,
                               pixelBytes);
                ASSERT_EQ(filled, behind(start, filledPlainly(row, source, background)))
                    << pixels << " pixels from " << start << ", " << values << " values";
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(OfAnyPixel, FillKernel, testing::Values(1, 2, 3, 4, 6, 12),
                         testing::PrintToStringParamName());

ByteList exchangedPlainly(ByteList bytes, const Exchange& exchange) {
    for (std::size_t at = 0; at + 3 <= bytes.size(); at += 3) {
        const std::uint8_t first = bytes[at + exchange.first];
        bytes[at + exchange.first] = bytes[at + exchange.second];
        bytes[at + exchange.second] = first;
    }
    return bytes;
}

class ExchangeKernel : public testing::TestWithParam<std::size_t> {};

TEST_P(ExchangeKernel, IsThePlainLoop) {
    const Exchange exchange = {GetParam() / 3, GetParam() % 3};
    std::mt19937 random(1);
    for (std::size_t pixels = 0; pixels <= kMaxPixels; ++pixels) {
        for (const std::size_t start : kStarts) {
            const ByteList row = fewValues(random, 3 * pixels, 128);
            ByteList exchanged = behind(start, row);
            exchangeSamples(exchanged.data() + start, pixels, exchange);
            ASSERT_EQ(exchanged, behind(start, exchangedPlainly(row, exchange)))
                << pixels << " pixels from " << start;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(OfAnyTwo, ExchangeKernel, testing::Range<std::size_t>(0, 9),
                         testing::PrintToStringParamName());

TEST(CopyReversedKernel, IsThePlainLoop) {
    std::mt19937 random(1);
    for (std::size_t pixels = 0; pixels <= kMaxPixels; ++pixels) {
        for (const std::size_t start : kStarts) {
            const ByteList row = fewValues(random, 3 * pixels, 128);
            ByteList reversed(start + row.size(), 0);
            copyReversed(reversed.data() + start, row.data(), pixels);
            ASSERT_EQ(reversed, behind(start, exchangedPlainly(row, {0, 2})))
                << pixels << " pixels to " << start;
        }
    }
}

TEST(Quantise16Kernel, IsTheLevelOfEachSample) {
    std::mt19937 random(1);
    for (const std::size_t step : {1u, 3u}) {
        const auto quantise = step == 1 ? quantise16 : quantiseFirst16;
        for (std::size_t count = 0; count <= kMaxPixels; ++count) {
            for (const std::size_t start : kStarts) {
                const std::vector<float> samples = someSamples(random, count * step, 1);
                ByteList little(start + 2 * count, 0);
                ByteList big = little;
                quantise(little.data() + start, samples.data(), count, ByteOrder::kLittle);
                quantise(big.data() + start, samples.data(), count, ByteOrder::kBig);
                for (std::size_t i = 0; i < count; ++i) {
                    const unsigned level = levelOf(samples[i * step]);
                    const std::size_t at = start + 2 * i;
                    ASSERT_EQ(little[at] | little[at + 1] << 8, level) << samples[i * step];
                    ASSERT_EQ(big[at] << 8 | big[at + 1], level) << samples[i * step];
                }
            }
        }
    }
}

TEST(TakeFirstSamplesKernel, IsTheFirstOfEachThree) {
    std::mt19937 random(1);
    for (std::size_t pixels = 0; pixels <= kMaxPixels; ++pixels) {
        for (const std::size_t start : kStarts) {
            const std::vector<float> samples = someSamples(random, 3 * pixels, 3);
            ByteList taken(start + 4 * pixels, 0);
            takeFirstSamples(taken.data() + start, samples.data(), pixels);
            for (std::size_t i = 0; i < pixels; ++i)
                ASSERT_EQ(std::memcmp(&taken[start + 4 * i], &samples[3 * i], 4), 0) << i;
        }
    }
}

}  // namespace
