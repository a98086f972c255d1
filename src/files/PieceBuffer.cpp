#include "files/PieceBuffer.h"

#include <new>

namespace {

constexpr std::size_t kPage = 4096;
constexpr std::size_t kPlaceMultiple = 16;
static_assert(__STDCPP_DEFAULT_NEW_ALIGNMENT__ >= kPlaceMultiple);

}  // namespace

PieceBuffer::PieceBuffer(std::size_t capacity) : memory_(new std::uint8_t[capacity + kPage]) {}

PieceBuffer PieceBuffer::ifThereIsMemory(std::size_t capacity) {
    return PieceBuffer(
        std::unique_ptr<std::uint8_t[]>(new (std::nothrow) std::uint8_t[capacity + kPage]));
}

std::uint8_t* PieceBuffer::placeFor(std::uint64_t offset) const {
    const auto start = reinterpret_cast<std::uintptr_t>(memory_.get());
    const std::uint64_t halfAPageOn = offset + kPage / 2;
    return memory_.get() + (halfAPageOn - start) % kPage / kPlaceMultiple * kPlaceMultiple;
}
