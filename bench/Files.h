#pragma once
// What makers, peers and the limit read and write files with. Whatever goes wrong becomes a Failure
// that names the file: a race on a full disk has no result.

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

// The size of the pieces in which the limit moves bytes; well inside a processor's second cache.
inline constexpr std::size_t kPieceBytes = std::size_t{256} * 1024;

class OpenFile {
public:
    static OpenFile forReading(const std::string& path);
    static OpenFile forRewriting(const std::string& path);
    static OpenFile create(const std::string& path);  // emptied if it exists

    OpenFile(OpenFile&& other) noexcept;
    OpenFile& operator=(OpenFile&& other) = delete;
    ~OpenFile();

    std::uint64_t size() const;
    void resize(std::uint64_t bytes) const;
    void readAt(std::uint64_t offset, std::span<std::uint8_t> bytes) const;
    void writeAt(std::uint64_t offset, std::span<const std::uint8_t> bytes) const;
    int descriptor() const { return descriptor_; }

private:
    OpenFile(const std::string& path, int flags);

    std::string path_;
    int descriptor_;
};

// A whole file in memory, shared with the disk: what is written to it is written to the file.
class MappedFile {
public:
    static MappedFile forReading(const std::string& path);
    static MappedFile forRewriting(const std::string& path);

    MappedFile(const MappedFile&) = delete;
    MappedFile& operator=(const MappedFile&) = delete;
    ~MappedFile();

    std::uint8_t* data() const { return bytes_.data(); }
    std::size_t size() const { return bytes_.size(); }

private:
    MappedFile(const OpenFile& file, int protection);

    std::span<std::uint8_t> bytes_;
};

// A stretch of a file that the limit moves: read, written to a new file, or read and written back.
struct Traffic {
    enum class Kind { kRead, kWrite, kRewrite };
    Kind kind;
    std::string path;
    std::uint64_t bytes;
    std::uint64_t offset = 0;
};

// Moves all stretches side by side, piece by piece, through one buffer.
void moveBytes(const std::vector<Traffic>& stretches);

// Makes `to` the same as `from` without giving back the pages that it has.
void copyInPlace(const std::string& from, const std::string& to);

// A number that tells files apart by their bytes from `offset` on.
std::uint64_t digestOf(const std::string& path, std::uint64_t offset = 0);
std::uint64_t digestOf(std::span<const std::uint8_t> bytes, std::uint64_t seed);
