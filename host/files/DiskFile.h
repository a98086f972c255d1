#pragma once
// Whole files read, and files written from start to end; whatever goes wrong becomes a Failure that
// names the file.

#include <cstdint>
#include <cstdio>
#include <memory>
#include <span>
#include <string>
#include <vector>

// What a path ends with, its letters small: ".tif", or nothing.
std::string extensionOf(const std::string& path);

// Throws Failure unless `path` is an existing regular file; `what` says what it should be.
void requireFile(const std::string& path, const char* what);

// A file's bytes, as many as it really has. `what` as above.
std::vector<std::uint8_t> readWholeFile(const std::string& path, const char* what);

// Throws Failure when something that is no file, a folder say, lies where one is to be written.
void requireFreePath(const std::string& path);

struct CloseFile {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using FilePointer = std::unique_ptr<std::FILE, CloseFile>;

// A file of which parts are read, wherever they lie.
class InputFile {
public:
    // Throws Failure for what is no file or cannot be read; `what` as above.
    InputFile(std::string path, const char* what);

    std::uint64_t size() const { return size_; }

    // What stands from `offset` on, as far as it fits; the rest of `bytes` becomes 0. Returns how
    // many bytes there were.
    std::size_t read(std::uint64_t offset, std::span<std::uint8_t> bytes);

private:
    std::string path_;
    FilePointer file_;
    std::uint64_t size_ = 0;
};

// A file being written. Unless finish() was reached, what was written so far is removed again; that
// goes for Ctrl-C, too, at which write() throws Interrupted.
class OutputFile {
public:
    explicit OutputFile(std::string path);
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;
    ~OutputFile();

    void write(std::span<const std::uint8_t> bytes);
    void finish();  // a full disk may show only here

private:
    std::string path_;
    FilePointer file_;
};
