#include "files/FileWriter.h"

FileWriter::~FileWriter() {
    finish();
}

bool FileWriter::append(const std::uint8_t* bytes, std::size_t count) {
    const std::size_t written = file_.writeUpTo(length_, bytes, count);
    length_ += written;
    return written == count;
}

bool FileWriter::finish() {
    const bool isCut = !isOpen() || file_.cut(length_);
    file_ = File();
    return isCut;
}
