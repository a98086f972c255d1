#pragma once
// How makers, peers and the limit read and write files. Whatever goes wrong becomes a Failure that
// names the file: a race on a full disk has no result.

#include <cstdint>
#include <span>
#include <string>
#include <vector>

// The size of the pieces in which the limit moves bytes; well inside a processor's second cache.
inline constexpr std::size_t kPieceBytes = std::size_t{256} * 1024;

enum class Access {
    kRead,
    kRewrite,    // an existing file, read and written
    kOverwrite,  // an existing file, written only
    kCreate,     // emptied if it exists
};

class OpenFile {
public:
    OpenFile(const std::string& path, Access access);
    OpenFile(OpenFile&& other) noexcept;
    OpenFile& operator=(OpenFile&& other) = delete;
    ~OpenFile();

    void readAt(std::uint64_t offset, std::span<std::uint8_t> bytes) const;
    void writeAt(std::uint64_t offset, std::span<const std::uint8_t> bytes) const;
    int descriptor() const { return descriptor_; }

private:
    std::string path_;
    int descriptor_;
};

// A file mapped into memory, to read or to rewrite: what is written there is written to the file.
class MappedFile {
public:
    MappedFile(const std::string& path, Access access);
    MappedFile(const MappedFile&) = delete;
    MappedFile& operator=(const MappedFile&) = delete;
    ~MappedFile();

    std::uint8_t* data() const { return bytes_.data(); }
    std::span<const std::uint8_t> bytes() const { return bytes_; }

private:
    std::span<std::uint8_t> bytes_;
};

// A part of a file that the limit moves: reads, writes, or reads and writes back.
struct Traffic {
    Access access;
    std::string path;
    std::uint64_t bytes;
    std::uint64_t offset = 0;
};

// Moves all parts in turn, piece by piece, through one buffer.
void moveBytes(const std::vector<Traffic>& parts);

// Makes `to` equal to `from` without giving back the pages that it needs again.
void copyInPlace(const std::string& from, const std::string& to);

// A number that distinguishes files by their bytes.
std::uint64_t digestOf(const std::string& path);
std::uint64_t digestOf(std::span<const std::uint8_t> bytes, std::uint64_t seed);
