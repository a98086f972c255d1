#include "Files.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>

#include "terminal/Failure.h"

namespace {

Failure failure(const char* action, const std::string& path) {
    return Failure(std::string("cannot ") + action + ' ' + path + ": " + std::strerror(errno));
}

}  // namespace

OpenFile::OpenFile(const std::string& path, int flags)
    : path_(path), descriptor_(::open(path.c_str(), flags | O_CLOEXEC, 0644)) {
    if (descriptor_ < 0) throw failure("open", path);
}

OpenFile OpenFile::forReading(const std::string& path) {
    return {path, O_RDONLY};
}

OpenFile OpenFile::forRewriting(const std::string& path) {
    return {path, O_RDWR};
}

OpenFile OpenFile::create(const std::string& path) {
    return {path, O_RDWR | O_CREAT | O_TRUNC};
}

OpenFile::OpenFile(OpenFile&& other) noexcept
    : path_(std::move(other.path_)), descriptor_(std::exchange(other.descriptor_, -1)) {}

OpenFile::~OpenFile() {
    if (descriptor_ >= 0) ::close(descriptor_);
}

std::uint64_t OpenFile::size() const {
    struct stat state {};
    if (::fstat(descriptor_, &state) != 0) throw failure("measure", path_);
    return static_cast<std::uint64_t>(state.st_size);
}

void OpenFile::resize(std::uint64_t bytes) const {
    if (::ftruncate(descriptor_, static_cast<off_t>(bytes)) != 0) throw failure("resize", path_);
}

void OpenFile::readAt(std::uint64_t offset, std::span<std::uint8_t> bytes) const {
    while (!bytes.empty()) {
        const ssize_t count =
            ::pread(descriptor_, bytes.data(), bytes.size(), static_cast<off_t>(offset));
        if (count <= 0) throw failure("read", path_);
        bytes = bytes.subspan(static_cast<std::size_t>(count));
        offset += static_cast<std::uint64_t>(count);
    }
}

void OpenFile::writeAt(std::uint64_t offset, std::span<const std::uint8_t> bytes) const {
    while (!bytes.empty()) {
        const ssize_t count =
            ::pwrite(descriptor_, bytes.data(), bytes.size(), static_cast<off_t>(offset));
        if (count <= 0) throw failure("write", path_);
        bytes = bytes.subspan(static_cast<std::size_t>(count));
        offset += static_cast<std::uint64_t>(count);
    }
}

MappedFile::MappedFile(const OpenFile& file, int protection) {
    const auto size = static_cast<std::size_t>(file.size());
    void* const address = ::mmap(nullptr, size, protection, MAP_SHARED, file.descriptor(), 0);
    if (address == MAP_FAILED) throw failure("map", "a file");
    bytes_ = {static_cast<std::uint8_t*>(address), size};
}

MappedFile MappedFile::forReading(const std::string& path) {
    return {OpenFile::forReading(path), PROT_READ};
}

MappedFile MappedFile::forRewriting(const std::string& path) {
    return {OpenFile::forRewriting(path), PROT_READ | PROT_WRITE};
}

MappedFile::~MappedFile() {
    ::munmap(bytes_.data(), bytes_.size());
}

void moveBytes(const std::vector<Traffic>& stretches) {
    std::vector<OpenFile> files;
    std::uint64_t pieces = 1;
    for (const Traffic& stretch : stretches) {
        files.push_back(stretch.kind == Traffic::Kind::kRead ? OpenFile::forReading(stretch.path)
                        : stretch.kind == Traffic::Kind::kWrite
                            ? OpenFile::create(stretch.path)
                            : OpenFile::forRewriting(stretch.path));
        pieces = std::max(pieces, (stretch.bytes + kPieceBytes - 1) / kPieceBytes);
    }
    const auto buffer = std::make_unique<std::uint8_t[]>(kPieceBytes);
    for (std::uint64_t piece = 0; piece < pieces; ++piece) {
        for (std::size_t i = 0; i < files.size(); ++i) {
            const std::uint64_t first = stretches[i].bytes * piece / pieces;
            const std::uint64_t last = stretches[i].bytes * (piece + 1) / pieces;
            const std::uint64_t offset = stretches[i].offset + first;
            const std::span bytes(buffer.get(), static_cast<std::size_t>(last - first));
            if (stretches[i].kind != Traffic::Kind::kWrite) files[i].readAt(offset, bytes);
            if (stretches[i].kind != Traffic::Kind::kRead) files[i].writeAt(offset, bytes);
        }
    }
}

void copyInPlace(const std::string& from, const std::string& to) {
    const OpenFile source = OpenFile::forReading(from);
    const OpenFile target = OpenFile::forRewriting(to);
    const std::uint64_t size = source.size();
    const auto buffer = std::make_unique<std::uint8_t[]>(kPieceBytes);
    for (std::uint64_t offset = 0; offset < size; offset += kPieceBytes) {
        const std::span bytes(buffer.get(), static_cast<std::size_t>(std::min<std::uint64_t>(
                                                kPieceBytes, size - offset)));
        source.readAt(offset, bytes);
        target.writeAt(offset, bytes);
    }
    if (target.size() != size) target.resize(size);
}

std::uint64_t digestOf(std::span<const std::uint8_t> bytes, std::uint64_t seed) {
    std::uint64_t digest = seed + bytes.size();
    for (; !bytes.empty(); bytes = bytes.subspan(std::min<std::size_t>(8, bytes.size()))) {
        std::uint64_t word = 0;
        std::memcpy(&word, bytes.data(), std::min<std::size_t>(8, bytes.size()));
        digest = (digest ^ word) * 0x9E3779B97F4A7C15u;
        digest ^= digest >> 29;
    }
    return digest;
}

std::uint64_t digestOf(const std::string& path, std::uint64_t offset) {
    const OpenFile file = OpenFile::forReading(path);
    const std::uint64_t size = file.size();
    std::uint64_t digest = size - offset;
    std::vector<std::uint8_t> piece(kPieceBytes);
    for (; offset < size; offset += piece.size()) {
        piece.resize(static_cast<std::size_t>(std::min<std::uint64_t>(kPieceBytes, size - offset)));
        file.readAt(offset, piece);
        digest = digestOf(piece, digest);
    }
    return digest;
}
