#include "encoders/exr/Inflater.h"

#ifdef QUILLON_LIBDEFLATE

#include <libdeflate.h>

#include <new>

Inflater::Inflater() : state_(libdeflate_alloc_decompressor()) {
    if (state_ == nullptr) throw std::bad_alloc();
}

Inflater::~Inflater() {
    libdeflate_free_decompressor(static_cast<libdeflate_decompressor*>(state_));
}

bool Inflater::inflate(std::uint8_t* to, std::size_t& toBytes, const std::uint8_t* from,
                       std::size_t fromBytes) const {
    return libdeflate_zlib_decompress(static_cast<libdeflate_decompressor*>(state_), from,
                                      fromBytes, to, toBytes, &toBytes) == LIBDEFLATE_SUCCESS;
}

#else

#include <zlib.h>

Inflater::Inflater() : state_(nullptr) {}
Inflater::~Inflater() = default;

bool Inflater::inflate(std::uint8_t* to, std::size_t& toBytes, const std::uint8_t* from,
                       std::size_t fromBytes) const {
    uLongf length = toBytes;
    const bool whole = ::uncompress(to, &length, from, fromBytes) == Z_OK;
    toBytes = length;
    return whole;
}

#endif
