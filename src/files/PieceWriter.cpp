#include "files/PieceWriter.h"

#include <algorithm>
#include <cstring>
#include <utility>

bool PieceWriter::start(File file, std::uint64_t offset) {
    file_ = std::move(file);
    offset_ = written_ = offset;
    piece_.moveTo(offset_, capacity_);
    return file_.isOpen();
}

std::uint8_t* PieceWriter::room(std::size_t count) {
    if (count > capacity_ - used_) flush();
    used_ += count;
    return piece_.data() + used_ - count;
}

void PieceWriter::append(const std::uint8_t* bytes, std::size_t count) {
    while (count > 0) {
        const std::size_t fitting = used_ < capacity_ ? capacity_ - used_ : capacity_;
        const std::size_t taken = std::min(count, fitting);
        std::memcpy(room(taken), bytes, taken);
        bytes += taken;
        count -= taken;
    }
}

void PieceWriter::skip(std::uint64_t count) {
    flush();
    offset_ += count;
    piece_.moveTo(offset_, capacity_);
}

bool PieceWriter::flush() {
    if (used_ > 0 && !failed_) {
        const std::size_t taken = file_.writeUpTo(offset_, piece_.data(), used_);
        failed_ = taken < used_;
        written_ = offset_ + taken;
    }
    offset_ += used_;
    used_ = 0;
    piece_.moveTo(offset_, capacity_);
    return !failed_;
}
