#include "files/Piece.h"

#include <new>

namespace {

constexpr std::size_t kPage = 4096;
constexpr std::size_t kAlignment = 16;
static_assert(__STDCPP_DEFAULT_NEW_ALIGNMENT__ >= kAlignment);

}  // namespace

Piece::Piece(std::size_t capacity) : memory_(new std::uint8_t[capacity + kPage]) {}

Piece::Piece(std::nothrow_t, std::size_t capacity)
    : memory_(new (std::nothrow) std::uint8_t[capacity + kPage]) {}

std::uint8_t* Piece::moveTo(std::uint64_t offset, std::size_t count) {
    const auto start = reinterpret_cast<std::uintptr_t>(memory_.get());
    const std::uint64_t halfAPageOn = offset + kPage / 2;
    data_ = memory_.get() + (halfAPageOn - start) % kPage / kAlignment * kAlignment;
    size_ = count;
    offset_ = offset;
    return data_;
}

bool Piece::read(const File& file, std::uint64_t offset, std::size_t count) {
    moveTo(offset, count);
    size_ = file.readAt(offset, data_, count);
    return size_ == count;
}
