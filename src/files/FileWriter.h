#pragma once
// FileWriter: a file written from its start to its end.

#include <cstddef>
#include <cstdint>
#include <utility>

#include "files/File.h"

// What an older file has behind the bytes appended is cut off by finish, or by the destructor:
// writing over its blocks (File::createOver) is cheaper than giving them back and asking for new ones.
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

    // Takes back what was appended behind `length`: the next bytes go there.
    void goBackTo(std::uint64_t length) { length_ = length; }

    // Cuts off the rest of an older file and closes this one. False if the rest stays.
    bool finish();

private:
    File file_;
    std::uint64_t length_ = 0;
};
