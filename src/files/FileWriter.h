#pragma once
// FileWriter: a file written from its start to its end.

#include <cstddef>
#include <cstdint>
#include <utility>

#include "files/File.h"

// finish(), or the destructor, truncates the file to the bytes appended: overwriting an older file's
// blocks (File::createOver) is cheaper than freeing them and allocating new ones.
class FileWriter {
public:
    explicit FileWriter(File file) : file_(std::move(file)) {}
    FileWriter(FileWriter&&) = default;
    FileWriter& operator=(FileWriter&&) = delete;
    ~FileWriter();

    bool isOpen() const { return file_.isOpen(); }

    // How many bytes the disk took, and so where the next ones go.
    std::uint64_t length() const { return length_; }

    // Appends all of `count` bytes; false if the disk took fewer.
    bool append(const std::uint8_t* bytes, std::size_t count);

    // Discards what was appended after the first `length` bytes.
    void goBackTo(std::uint64_t length) { length_ = length; }

    // Truncates the file and closes it. False if it could not be truncated.
    bool finish();

private:
    File file_;
    std::uint64_t length_ = 0;
};
