#include "encoders/jpeg/JpegStream.h"

#include <algorithm>

namespace {

constexpr std::size_t kWord = 8;

// A byte of ones is one of zeros in the complement, the only one that borrows when it loses 1 and
// does not have its high bit set.
bool hasByteOfOnes(std::uint64_t word) {
    return ((~word - 0x0101010101010101) & word & 0x8080808080808080) != 0;
}

}  // namespace

std::uint8_t* stuffed(const std::uint8_t* coded, std::size_t count, std::uint8_t* to) {
    const std::uint8_t* const end = coded + count;
    while (coded < end) {
        if (end - coded >= std::ptrdiff_t{kWord} && !hasByteOfOnes(loadLe64(coded))) {
            to = std::copy_n(coded, kWord, to);
            coded += kWord;
            continue;
        }
        const std::size_t part =
            std::min<std::size_t>(kWord, static_cast<std::size_t>(end - coded));
        for (const std::uint8_t* const stop = coded + part; coded < stop; ++coded) {
            *to++ = *coded;
            if (*coded == 0xFF) *to++ = 0x00;
        }
    }
    return to;
}

JpegStream::JpegStream(const char* path)
    : buffer_(new std::uint8_t[kPieceBytes + 2 * kRoom]),
      file_(File::create(path)),
      next_(buffer_.get()),
      bits_(coded_.data()) {}

void JpegStream::append(std::span<const std::uint8_t> bytes) {
    makeRoom();
    next_ = std::copy(bytes.begin(), bytes.end(), next_);
}

void JpegStream::makeRoom() {
    next_ = stuffed(coded_.data(), static_cast<std::size_t>(bits_.next() - coded_.data()), next_);
    bits_.continueAt(coded_.data());
    if (next_ >= buffer_.get() + kPieceBytes) writeOut();
}

bool JpegStream::flush() {
    makeRoom();
    writeOut();
    return !failed_;
}

void JpegStream::writeOut() {
    const auto count = static_cast<std::size_t>(next_ - buffer_.get());
    failed_ = failed_ || !file_.append(buffer_.get(), count);
    next_ = buffer_.get();
}
