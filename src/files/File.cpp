#include "files/File.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <limits>
#include <utility>

#include "files/LargeMemory.h"

namespace {

// Some systems refuse a single transfer of 2 GiB and more.
constexpr std::size_t kLargestTransfer = std::size_t{1} << 30;

// An offset that a file could never have: the transfer ends there.
bool fitsOffset(std::uint64_t offset) {
    return offset <=
           static_cast<std::uint64_t>(std::numeric_limits<off_t>::max()) - kLargestTransfer;
}

// Opens a file however often a signal interrupts that, as it can on a disk that is far away. Without
// O_NONBLOCK, opening a pipe whose other end nobody holds would freeze the host.
int openPatiently(const char* path, int flags, mode_t mode = 0) {
    for (;;) {
        const int descriptor = ::open(path, flags | O_CLOEXEC | O_NONBLOCK, mode);
        if (descriptor >= 0 || errno != EINTR) return descriptor;
    }
}

// Moves `count` bytes by calls of `transfer(done, length)`, which returns what read and write do.
// Returns how many bytes were moved before the end or an error.
template <typename Transfer>
std::size_t transferAll(std::uint64_t offset, std::size_t count, Transfer transfer) {
    std::size_t done = 0;
    while (done < count && fitsOffset(offset + done)) {
        const ssize_t moved = transfer(done, std::min(count - done, kLargestTransfer));
        if (moved < 0 && errno == EINTR) continue;
        if (moved <= 0) break;
        done += static_cast<std::size_t>(moved);
    }
    return done;
}

}  // namespace

File File::openRegular(const char* path, int flags) {
    if (path == nullptr) return {};
    File file(openPatiently(path, flags));
    struct stat status {};
    if (!file.isOpen() || ::fstat(file.descriptor_, &status) != 0 || !S_ISREG(status.st_mode))
        return {};
    file.size_ = static_cast<std::uint64_t>(std::max<off_t>(status.st_size, 0));
    return file;
}

File File::openForReading(const char* path) {
    return openRegular(path, O_RDONLY);
}

File File::openForRewriting(const char* path) {
    return openRegular(path, O_RDWR);
}

File File::create(const char* path) {
    if (path == nullptr) return {};
    return File(openPatiently(path, O_WRONLY | O_CREAT | O_TRUNC, 0666));
}

File File::createOver(const char* path) {
    if (path == nullptr) return {};
    return File(openPatiently(path, O_WRONLY | O_CREAT, 0666));
}

File File::createNew(const char* path) {
    if (path == nullptr) return {};
    return File(openPatiently(path, O_WRONLY | O_CREAT | O_EXCL, 0666));
}

File::File(File&& other) noexcept
    : descriptor_(std::exchange(other.descriptor_, -1)), size_(std::exchange(other.size_, 0)) {}

File& File::operator=(File&& other) noexcept {
    std::swap(descriptor_, other.descriptor_);
    std::swap(size_, other.size_);
    return *this;
}

File::~File() {
    if (isOpen()) ::close(descriptor_);
}

bool File::isSameAs(const char* path) const {
    if (path == nullptr) return false;
    struct stat other {};
    if (::stat(path, &other) != 0) return errno != ENOENT && errno != ENOTDIR;
    struct stat mine {};
    if (::fstat(descriptor_, &mine) != 0) return true;
    return mine.st_dev == other.st_dev && mine.st_ino == other.st_ino;
}

std::size_t File::readAt(std::uint64_t offset, std::uint8_t* bytes, std::size_t count) const {
    return transferAll(offset, count, [&](std::size_t done, std::size_t length) {
        return ::pread(descriptor_, bytes + done, length, static_cast<off_t>(offset + done));
    });
}

bool File::writeAt(std::uint64_t offset, const std::uint8_t* bytes, std::size_t count) const {
    return writeUpTo(offset, bytes, count) == count;
}

std::size_t File::writeUpTo(std::uint64_t offset, const std::uint8_t* bytes,
                            std::size_t count) const {
    return transferAll(offset, count, [&](std::size_t done, std::size_t length) {
        return ::pwrite(descriptor_, bytes + done, length, static_cast<off_t>(offset + done));
    });
}

void File::touch() const {
    ::futimens(descriptor_, nullptr);
}

bool File::cut(std::uint64_t length) const {
    struct stat status {};
    const bool isKnown = ::fstat(descriptor_, &status) == 0;
    if (isKnown && !std::cmp_greater(status.st_size, length)) return true;
    int refused = 0;
    do
        refused = ::ftruncate(descriptor_, static_cast<off_t>(length));
    while (refused != 0 && errno == EINTR);
    return refused == 0;
}

FileBytes loadFile(const char* path, std::size_t spare) {
    const File file = File::openForReading(path);
    return file.isOpen() ? loadFile(file, spare) : FileBytes();
}

FileBytes loadFile(const File& file, std::size_t spare) {
    const std::uint64_t size = file.size();
    if (size > std::numeric_limits<std::size_t>::max() / 2 - spare) return {};

    const auto length = static_cast<std::size_t>(size);
    FileBytes loaded;
    loaded.data = largeMemory(length + spare);
    if (loaded.data == nullptr) return {};
    loaded.size = file.readAt(0, loaded.data.get(), length);
    if (loaded.size < length) return {};
    std::fill_n(loaded.data.get() + length, spare, std::uint8_t{0});
    return loaded;
}
