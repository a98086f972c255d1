#include "encoders/JpegStream.h"

#include <algorithm>

JpegStream::JpegStream(const char* path)
    : buffer_(new std::uint8_t[kPieceBytes + kRoom]),
      file_(File::create(path)),
      bits_(buffer_.get()) {}

void JpegStream::append(std::span<const std::uint8_t> bytes) {
    makeRoom();
    bits_.goOnAt(std::copy(bytes.begin(), bytes.end(), bits_.next()));
}

bool JpegStream::flush() {
    const auto count = static_cast<std::size_t>(bits_.next() - buffer_.get());
    failed_ = failed_ || !file_.append(buffer_.get(), count);
    bits_.goOnAt(buffer_.get());
    return !failed_;
}
