#include "Files.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <functional>
#include <memory>
#include <string_view>
#include <utility>

#include "terminal/Failure.h"

namespace {

Failure failure(const char* action, const std::string& path) {
    return Failure(std::string("cannot ") + action + ' ' + path + ": " + std::strerror(errno));
}

int flagsOf(Access access) {
    if (access == Access::kRead) return O_RDONLY;
    return access == Access::kCreate ? O_RDWR | O_CREAT | O_TRUNC : O_RDWR;
}

// Calls pread or pwrite until all bytes are moved; false if the system moves none.
template <typename Move, typename Byte>
bool moveAll(Move move, int file, std::uint64_t offset, std::span<Byte> bytes) {
    while (!bytes.empty()) {
        const ssize_t count = move(file, bytes.data(), bytes.size(), static_cast<off_t>(offset));
        if (count <= 0) return false;
        bytes = bytes.subspan(static_cast<std::size_t>(count));
        offset += static_cast<std::uint64_t>(count);
    }
    return true;
}

}  // namespace

OpenFile::OpenFile(const std::string& path, Access access)
    : path_(path), descriptor_(::open(path.c_str(), flagsOf(access) | O_CLOEXEC, 0644)) {
    if (descriptor_ < 0) throw failure("open", path);
}

OpenFile::OpenFile(OpenFile&& other) noexcept
    : path_(std::move(other.path_)), descriptor_(std::exchange(other.descriptor_, -1)) {}

OpenFile::~OpenFile() {
    if (descriptor_ >= 0) ::close(descriptor_);
}

void OpenFile::readAt(std::uint64_t offset, std::span<std::uint8_t> bytes) const {
    if (!moveAll(::pread, descriptor_, offset, bytes)) throw failure("read", path_);
}

void OpenFile::writeAt(std::uint64_t offset, std::span<const std::uint8_t> bytes) const {
    if (!moveAll(::pwrite, descriptor_, offset, bytes)) throw failure("write", path_);
}

MappedFile::MappedFile(const std::string& path, Access access) {
    const OpenFile file(path, access);
    const auto size = std::filesystem::file_size(path);
    const int protection = access == Access::kRead ? PROT_READ : PROT_READ | PROT_WRITE;
    void* const address = ::mmap(nullptr, size, protection, MAP_SHARED, file.descriptor(), 0);
    if (address == MAP_FAILED) throw failure("map", path);
    bytes_ = {static_cast<std::uint8_t*>(address), size};
}

MappedFile::~MappedFile() {
    ::munmap(bytes_.data(), bytes_.size());
}

void moveBytes(const std::vector<Traffic>& parts) {
    std::vector<OpenFile> files;
    std::uint64_t pieces = 1;
    for (const Traffic& part : parts) {
        files.emplace_back(part.path, part.access);
        pieces = std::max(pieces, (part.bytes + kPieceBytes - 1) / kPieceBytes);
    }
    const auto buffer = std::make_unique_for_overwrite<std::uint8_t[]>(kPieceBytes);
    for (std::uint64_t piece = 0; piece < pieces; ++piece) {
        for (std::size_t i = 0; i < files.size(); ++i) {
            const std::uint64_t first = parts[i].bytes * piece / pieces;
            const std::uint64_t last = parts[i].bytes * (piece + 1) / pieces;
            const std::uint64_t offset = parts[i].offset + first;
            const std::span bytes(buffer.get(), static_cast<std::size_t>(last - first));
            const Access access = parts[i].access;
            if (access == Access::kRead || access == Access::kRewrite)
                files[i].readAt(offset, bytes);
            if (access != Access::kRead) files[i].writeAt(offset, bytes);
        }
    }
}

void copyInPlace(const std::string& from, const std::string& to) {
    const MappedFile source(from, Access::kRead);
    const OpenFile target(to, Access::kOverwrite);
    target.writeAt(0, source.bytes());
    if (::ftruncate(target.descriptor(), static_cast<off_t>(source.bytes().size())) != 0)
        throw failure("truncate", to);
}

std::uint64_t digestOf(std::span<const std::uint8_t> bytes, std::uint64_t seed) {
    const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    return seed * 31 + std::hash<std::string_view>()(text);
}

std::uint64_t digestOf(const std::string& path) {
    return digestOf(MappedFile(path, Access::kRead).bytes(), 0);
}
