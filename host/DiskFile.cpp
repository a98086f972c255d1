#include "DiskFile.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <utility>

#include "Failure.h"
#include "Interrupt.h"

namespace fs = std::filesystem;

namespace {

constexpr std::size_t kPieceBytes = 256 * 1024;

Failure failure(const std::string& action, const std::string& path, int error) {
    return Failure("cannot " + action + ' ' + path + ": " + std::strerror(error));
}

}  // namespace

void requireFile(const std::string& path, const char* what) {
    std::error_code error;
    const fs::file_status status = fs::status(path, error);
    if (!fs::exists(status)) throw Failure("there is no " + std::string(what) + ' ' + path);
    if (!fs::is_regular_file(status)) throw Failure(path + " is not a file");
}

std::vector<std::uint8_t> readWholeFile(const std::string& path, const char* what) {
    requireFile(path, what);
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "rb"),
                                                               std::fclose);
    if (file == nullptr) throw failure("read", path, errno);

    std::vector<std::uint8_t> bytes;
    for (;;) {
        const std::size_t size = bytes.size();
        bytes.resize(size + kPieceBytes);
        const std::size_t count = std::fread(&bytes[size], 1, kPieceBytes, file.get());
        bytes.resize(size + count);
        if (count < kPieceBytes) break;
    }
    if (std::ferror(file.get())) throw failure("read", path, errno);
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

void OutputFile::write(std::span<const std::uint8_t> bytes) {
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
