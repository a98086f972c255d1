#include "files/DiskFile.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <utility>

#include "files/File.h"
#include "terminal/Failure.h"
#include "terminal/Interrupt.h"

namespace fs = std::filesystem;

namespace {

Failure failure(const std::string& action, const std::string& path, int error) {
    return Failure("cannot " + action + ' ' + path + ": " + std::strerror(error));
}

}  // namespace

std::string extensionOf(const std::string& path) {
    std::string extension = fs::path(path).extension().string();
    std::ranges::transform(extension, extension.begin(),
                           [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return extension;
}

void requireFile(const std::string& path, const char* what) {
    std::error_code error;
    const fs::file_status status = fs::status(path, error);
    if (!fs::exists(status)) throw Failure("there is no " + std::string(what) + ' ' + path);
    if (!fs::is_regular_file(status)) throw Failure(path + " is not a file");
}

void requireFreePath(const std::string& path) {
    std::error_code ignored;
    const fs::file_status status = fs::status(path, ignored);
    if (fs::exists(status) && !fs::is_regular_file(status))
        throw Failure(path + " exists and is not a file; move it or choose another folder");
}

InputFile::InputFile(std::string path, const char* what) : path_(std::move(path)) {
    requireFile(path_, what);
    file_.reset(std::fopen(path_.c_str(), "rb"));
    if (file_ == nullptr) throw failure("read", path_, errno);
    size_ = fs::file_size(path_);
}

std::size_t InputFile::read(std::uint64_t offset, std::span<std::uint8_t> bytes) {
    const std::uint64_t left = offset < size_ ? size_ - offset : 0;
    const auto wanted = static_cast<std::size_t>(std::min<std::uint64_t>(left, bytes.size()));
    if (wanted > 0 && ::fseeko(file_.get(), static_cast<off_t>(offset), SEEK_SET) != 0)
        throw failure("read", path_, errno);
    const std::size_t count = std::fread(bytes.data(), 1, wanted, file_.get());
    if (count < wanted && std::ferror(file_.get())) throw failure("read", path_, errno);
    std::ranges::fill(bytes.subspan(count), std::uint8_t{0});
    return count;
}

Bytes InputFile::part(std::uint64_t offset, std::size_t count) {
    part_.resize(count);
    part_.resize(read(offset, part_));
    return {part_.data(), part_.size()};
}

std::vector<std::uint8_t> readWholeFile(const std::string& path, const char* what) {
    InputFile file(path, what);
    std::vector<std::uint8_t> bytes(file.size());
    bytes.resize(file.read(0, bytes));
    return bytes;
}

OutputFile::OutputFile(std::string path) : path_(std::move(path)) {
    stopIfInterrupted();  // before an earlier file is emptied
    file_.reset(std::fopen(path_.c_str(), "wb"));
    if (file_ == nullptr) throw failure("write", path_, errno);
    std::setvbuf(file_.get(), nullptr, _IOFBF, kPieceBytes);
}

OutputFile::~OutputFile() {
    if (file_ == nullptr) return;
    file_.reset();
    std::error_code ignored;  // a device, such as /dev/full, stays
    if (fs::is_regular_file(path_, ignored)) fs::remove(path_, ignored);
}

void OutputFile::append(std::span<const std::uint8_t> bytes) {
    while (!bytes.empty()) {
        stopIfInterrupted();
        const auto piece = bytes.first(std::min(bytes.size(), kPieceBytes));
        if (std::fwrite(piece.data(), 1, piece.size(), file_.get()) != piece.size())
            throw failure("write", path_, errno);
        bytes = bytes.subspan(piece.size());
    }
}

void OutputFile::finish() {
    if (std::fflush(file_.get()) != 0) throw failure("write", path_, errno);
    if (std::fclose(file_.release()) != 0) throw failure("write", path_, errno);
}
