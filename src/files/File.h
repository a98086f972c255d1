#pragma once
// Open files, shared by every module: handles that close themselves, and reads and writes of any
// length at an offset. Paths are NUL-terminated UTF-8 as the host passes them; a null path is a
// file that cannot be opened.

#include <cstddef>
#include <cstdint>
#include <memory>
#include <utility>

class File {
public:
    // Each gives a file that is not open when the path cannot be opened that way.
    static File openForReading(const char* path);    // regular files only, never a folder or a pipe
    static File openForRewriting(const char* path);  // an existing regular file, read and written
    static File create(const char* path);            // emptied if it exists; never waits on a pipe
    static File createOver(const char* path);        // the same, but keeping what it holds
    static File createNew(const char* path);  // only where there is nothing, not even a dead link

    File() = default;
    File(File&& other) noexcept;
    File& operator=(File&& other) noexcept;
    File(const File&) = delete;
    File& operator=(const File&) = delete;
    ~File();

    bool isOpen() const { return descriptor_ >= 0; }

    // The length in bytes that the file had when it was opened. A reader that gets less has met a
    // disk that fails.
    std::uint64_t size() const { return size_; }

    // True if `path` refers to this file, even through a link, and when the system cannot tell: a
    // file that is being read must not be overwritten.
    bool isSameAs(const char* path) const;

    // Reads up to `count` bytes from `offset` on. Returns how many there were; fewer only at the
    // end of the file or on a read error.
    std::size_t readAt(std::uint64_t offset, std::uint8_t* bytes, std::size_t count) const;

    // Writes all of `count` bytes at `offset`; false if the disk took fewer.
    bool writeAt(std::uint64_t offset, const std::uint8_t* bytes, std::size_t count) const;

    // The same; returns how many bytes the disk took.
    std::size_t writeUpTo(std::uint64_t offset, const std::uint8_t* bytes, std::size_t count) const;

    // Sets the modification time to now.
    void touch() const;

    // Truncates the file to `length` bytes if it is longer. False on failure.
    bool cut(std::uint64_t length) const;

private:
    explicit File(int descriptor) : descriptor_(descriptor) {}
    static File openRegular(const char* path, int flags);

    int descriptor_ = -1;
    std::uint64_t size_ = 0;
};

// A file's bytes in memory, as many as the file really had.
struct FileBytes {
    std::unique_ptr<std::uint8_t[]> data;  // null when the file could not be opened, held or read
    std::size_t size = 0;
};

// Loads a whole file with one read. `spare` more bytes, all zero, follow the file's own and are not
// counted in `size`.
FileBytes loadFile(const char* path, std::size_t spare = 0);
FileBytes loadFile(const File& file, std::size_t spare = 0);  // one that is open

// The size of the pieces in which large files are moved: small enough to stay in the processor's
// cache, large enough that the system calls do not show.
#ifdef QUILLON_PIECE_BYTES  // fuzzing: so small that even its files have several
inline constexpr std::size_t kPieceBytes = QUILLON_PIECE_BYTES;
#else
inline constexpr std::size_t kPieceBytes = std::size_t{256} * 1024;
#endif
