#include "pixels/Avx2Kernels.h"

#if defined(__x86_64__)

#include <immintrin.h>

#include <array>

#include "pixels/Avx2.h"
#include "pixels/Lanes.h"

#define QUILLON_AVX2 [[gnu::target("avx2")]]

namespace {

// 16 bytes each of two blocks of pixels, one in each half of a vector: processors shuffle bytes
// within halves only.

QUILLON_AVX2 __m256i loadPair(const std::uint8_t* from) {
    const auto half = [](const std::uint8_t* at) {
        return _mm_loadu_si128(reinterpret_cast<const __m128i*>(at));
    };
    return _mm256_set_m128i(half(from + kBlockBytes), half(from));
}

QUILLON_AVX2 void storePair(std::uint8_t* to, __m256i pair) {
    const auto store = [](std::uint8_t* at, __m128i half) {
        _mm_storeu_si128(reinterpret_cast<__m128i*>(at), half);
    };
    store(to, _mm256_castsi256_si128(pair));
    store(to + kBlockBytes, _mm256_extracti128_si256(pair, 1));
}

// Picks, out of vector `from` of a block, the bytes that vector `to` of the new block has from there.
QUILLON_AVX2 __m256i shuffleFor(const Exchange& exchange, std::size_t to, std::size_t from) {
    constexpr std::uint8_t kNone = 0x80;
    alignas(kLanesBytes) std::uint8_t places[kLanesBytes];
    for (std::size_t i = 0; i < kLanesBytes; ++i) {
        const std::size_t byte = to * kLanesBytes + i;
        std::size_t channel = byte % 3;
        if (channel == exchange.first)
            channel = exchange.second;
        else if (channel == exchange.second)
            channel = exchange.first;
        const std::size_t source = byte - byte % 3 + channel;
        const bool isThere = source / kLanesBytes == from;
        places[i] = isThere ? static_cast<std::uint8_t>(source % kLanesBytes) : kNone;
    }
    return _mm256_broadcastsi128_si256(_mm_load_si128(reinterpret_cast<const __m128i*>(places)));
}

QUILLON_AVX2 std::size_t copyBlockPairs(std::uint8_t* to, const std::uint8_t* from,
                                        std::size_t pixels, const Exchange& exchange) {
    constexpr std::size_t kPairPixels = 2 * kBlockBytes / 3;
    const __m256i from0To0 = shuffleFor(exchange, 0, 0);
    const __m256i from1To0 = shuffleFor(exchange, 0, 1);
    const __m256i from0To1 = shuffleFor(exchange, 1, 0);
    const __m256i from1To1 = shuffleFor(exchange, 1, 1);
    const __m256i from2To1 = shuffleFor(exchange, 1, 2);
    const __m256i from1To2 = shuffleFor(exchange, 2, 1);
    const __m256i from2To2 = shuffleFor(exchange, 2, 2);
    std::size_t done = 0;
    for (; pixels - done >= kPairPixels; done += kPairPixels, to += 2 * kBlockBytes) {
        const __m256i pair0 = loadPair(from);
        const __m256i pair1 = loadPair(from + kLanesBytes);
        const __m256i pair2 = loadPair(from + 2 * kLanesBytes);
        from += 2 * kBlockBytes;
        storePair(to, _mm256_or_si256(_mm256_shuffle_epi8(pair0, from0To0),
                                      _mm256_shuffle_epi8(pair1, from1To0)));
        storePair(to + kLanesBytes,
                  _mm256_or_si256(_mm256_or_si256(_mm256_shuffle_epi8(pair0, from0To1),
                                                  _mm256_shuffle_epi8(pair1, from1To1)),
                                  _mm256_shuffle_epi8(pair2, from2To1)));
        storePair(to + 2 * kLanesBytes, _mm256_or_si256(_mm256_shuffle_epi8(pair1, from1To2),
                                                        _mm256_shuffle_epi8(pair2, from2To2)));
    }
    return done;
}

// The levels of eight samples, see levelOf.
QUILLON_AVX2 __m256i levelsOfEight(const float* from) {
    const __m256 lowest = _mm256_setzero_ps();
    const __m256 highest = _mm256_set1_ps(65535.0f);
    const __m256 scaled = _mm256_loadu_ps(from) * highest;
    const __m256 notBelow = scaled > lowest ? scaled : lowest;  // NaN compares false
    const __m256 held = notBelow < highest ? notBelow : highest;
    return _mm256_cvttps_epi32(held + 0.5f);
}

template <ByteOrder kOrder>
QUILLON_AVX2 std::size_t quantiseRuns(std::uint8_t* to, const float* from, std::size_t count) {
    constexpr std::size_t kRunSamples = 16;
    std::size_t done = 0;
    for (; count - done >= kRunSamples; done += kRunSamples) {
        const __m256i first = levelsOfEight(from + done);
        const __m256i second = levelsOfEight(from + done + kRunSamples / 2);
        // Packing takes turns between the two, half by half.
        const __m256i packed = _mm256_packus_epi32(first, second);
        __m256i levels = _mm256_permute4x64_epi64(packed, _MM_SHUFFLE(3, 1, 2, 0));
        if (kOrder == ByteOrder::kBig)
            levels = _mm256_or_si256(_mm256_slli_epi16(levels, 8), _mm256_srli_epi16(levels, 8));
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(to + 2 * done), levels);
    }
    return done;
}

}  // namespace

std::size_t copyExchangedAvx2(std::uint8_t* to, const std::uint8_t* from, std::size_t pixels,
                              const Exchange& exchange) {
    return hasAvx2() ? copyBlockPairs(to, from, pixels, exchange) : 0;
}

std::size_t quantiseAvx2(std::uint8_t* to, const float* from, std::size_t count, ByteOrder order) {
    if (!hasAvx2()) return 0;
    return order == ByteOrder::kBig ? quantiseRuns<ByteOrder::kBig>(to, from, count)
                                    : quantiseRuns<ByteOrder::kLittle>(to, from, count);
}

#else

std::size_t copyExchangedAvx2(std::uint8_t*, const std::uint8_t*, std::size_t, const Exchange&) {
    return 0;
}

std::size_t quantiseAvx2(std::uint8_t*, const float*, std::size_t, ByteOrder) {
    return 0;
}

#endif
