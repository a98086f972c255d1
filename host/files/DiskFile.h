#pragma once
// Files read in part or as a whole, and files written from start to end. Whatever goes wrong becomes a
// Failure that names the file.

#include <cstdint>
#include <cstdio>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "bytes/Bytes.h"

// Returns the extension of a path in lower case, such as ".tif", or an empty text.
std::string extensionOf(const std::string& path);

// Throws Failure unless `path` is an existing regular file; `what` is what errors call it.
void requireFile(const std::string& path, const char* what);

// Returns a file's bytes. `what` as above.
std::vector<std::uint8_t> readWholeFile(const std::string& path, const char* what);

// Throws Failure if `path`, to which a file will be written, exists and is not a file.
void requireFreePath(const std::string& path);

// Returns the file to which a link leads, so that writing it keeps the link, or else the path itself.
std::string linkTarget(const std::string& path);

// Whether both paths lead to one file.
bool isSameFile(const std::string& a, const std::string& b);

// What happens to an earlier file where a command writes one.
enum class Overwrite {
    kReplace,  // replaced where it is surely an earlier result
    kNever,    // the command fails
    kForce,    // replaced, whatever it is
};

// Throws Failure if `path` exists and must not be replaced.
void requireReplaceable(const std::string& path, Overwrite overwrite);

struct CloseFile {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using FilePointer = std::unique_ptr<std::FILE, CloseFile>;

// A file of which parts are read.
class InputFile {
public:
    // Throws Failure if `path` is not a file or cannot be read; `what` as above.
    InputFile(std::string path, const char* what);

    std::uint64_t size() const { return size_; }

    // Fills `bytes` from the file at `offset`, and with 0 beyond its end. Returns how many bytes were
    // read.
    std::size_t read(std::uint64_t offset, std::span<std::uint8_t> bytes);

    // Returns a part of the file, as far as the file has it. It is valid until the next call.
    Bytes part(std::uint64_t offset, std::size_t count);

private:
    std::string path_;
    FilePointer file_;
    std::uint64_t size_ = 0;
    std::vector<std::uint8_t> part_;
};

// A file that appears under its name whole or not at all: it is written under a temporary name in the
// same folder, and finish() renames it, over an earlier file. What is there and is no regular file,
// such as /dev/stdout, is written directly. Without finish() the destructor deletes what was written.
// After a signal append() throws Interrupted; all three throw Failure if the file cannot be created,
// written or renamed.
class OutputFile {
public:
    explicit OutputFile(const std::string& path);
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;
    ~OutputFile();

    void append(std::span<const std::uint8_t> bytes);
    void finish();  // a full disk may show only here

private:
    std::string path_;       // of the file itself, also where a link was named
    std::string temporary_;  // empty: written directly
    FilePointer file_;
};

// A file made under one name, to be known under another.
struct Rename {
    std::string from;
    std::string to;
};

// Renames all files, or none if one cannot be renamed; replaces earlier files. Each `to` is in the
// folder that has the folder of its `from`, or in a folder of the same disk. Throws Failure.
void renameAll(const std::vector<Rename>& renames);
