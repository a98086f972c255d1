#include "files/DiskFile.h"

#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <random>
#include <utility>

#include "files/File.h"
#include "terminal/Failure.h"
#include "terminal/Interrupt.h"

namespace fs = std::filesystem;

namespace {

Failure failure(const std::string& action, const std::string& path, int error) {
    return Failure("cannot " + action + ' ' + path + ": " + std::strerror(error));
}

// A file that the user protected is not replaced by renaming another over it.
void requireWritable(const std::string& path) {
    if (::access(path.c_str(), W_OK) != 0 && errno != ENOENT) throw failure("write", path, errno);
}

// Returns a path in the folder of `path` that is not in use, as far as chance can tell.
std::string randomPathBeside(const std::string& path) {
    constexpr char kLetters[] = "abcdefghijklmnopqrstuvwxyz0123456789";
    std::random_device random;
    std::string name = ".quillon-";
    for (int i = 0; i < 8; ++i)
        name += kLetters[random() % (sizeof kLetters - 1)];
    return (fs::path(path).parent_path() / name).string();
}

void keepPermissions(const fs::file_status& earlier, const std::string& path) {
    std::error_code ignored;
    if (fs::exists(earlier)) fs::permissions(path, earlier.permissions(), ignored);
}

// Creates a file in the folder of `path`; null where that fails.
FilePointer createBeside(const std::string& path, std::string& name) {
    for (;;) {
        const std::string candidate = randomPathBeside(path);
        FilePointer file(std::fopen(candidate.c_str(), "wbx"));
        if (file != nullptr) name = candidate;
        if (file != nullptr || errno != EEXIST) return file;
    }
}

// Files that were replaced by renaming others over them, until they are no longer needed. The
// destructor puts them back unless keep() was called.
class Replaced {
public:
    Replaced() = default;
    Replaced(const Replaced&) = delete;
    Replaced& operator=(const Replaced&) = delete;
    ~Replaced() {
        for (auto done = done_.rbegin(); done != done_.rend(); ++done)
            putBack(*done);
    }

    void replace(const Rename& wanted) {
        requireWritable(wanted.to);
        std::error_code ignored;
        keepPermissions(fs::symlink_status(wanted.to, ignored), wanted.from);
        std::string kept = randomPathBeside(wanted.to);
        if (::link(wanted.to.c_str(), kept.c_str()) != 0) kept.clear();
        const bool isNew = kept.empty() && errno == ENOENT;
        done_.push_back({wanted.to, std::move(kept), isNew});
        if (std::rename(wanted.from.c_str(), wanted.to.c_str()) == 0) return;
        const int error = errno;
        if (!done_.back().kept.empty()) ::unlink(done_.back().kept.c_str());
        done_.pop_back();
        throw failure("write", wanted.to, error);
    }

    void keep() {
        for (const Done& done : done_) {
            if (!done.kept.empty()) ::unlink(done.kept.c_str());
        }
        done_.clear();
    }

private:
    struct Done {
        std::string path;
        std::string kept;  // a link to the earlier file; empty: none, or the disk has no links
        bool isNew;
    };

    static void putBack(const Done& done) {
        if (!done.kept.empty()) std::rename(done.kept.c_str(), done.path.c_str());
        if (done.isNew) ::unlink(done.path.c_str());
    }

    std::vector<Done> done_;
};

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

std::string linkTarget(const std::string& path) {
    std::error_code missing;
    if (!fs::is_symlink(path, missing)) return path;
    const fs::path target = fs::canonical(path, missing);
    return missing ? path : target.string();
}

bool isSameFile(const std::string& a, const std::string& b) {
    std::error_code missing;
    return fs::equivalent(a, b, missing);
}

void requireReplaceable(const std::string& path, Overwrite overwrite) {
    std::error_code ignored;
    if (overwrite == Overwrite::kNever && fs::exists(fs::symlink_status(path, ignored)))
        throw Failure(path + " exists; leave out --no-clobber to replace it");
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

OutputFile::OutputFile(const std::string& path) : path_(linkTarget(path)) {
    stopIfInterrupted();
    std::error_code ignored;
    const fs::file_status earlier = fs::status(path_, ignored);
    if (fs::exists(earlier) && !fs::is_regular_file(earlier)) {
        file_.reset(std::fopen(path_.c_str(), "wb"));
    } else {
        requireWritable(path_);
        file_ = createBeside(path_, temporary_);
    }
    if (file_ == nullptr) throw failure("write", path_, errno);
    if (!temporary_.empty()) keepPermissions(earlier, temporary_);
    std::setvbuf(file_.get(), nullptr, _IOFBF, kPieceBytes);
}

OutputFile::~OutputFile() {
    file_.reset();
    if (!temporary_.empty()) ::unlink(temporary_.c_str());
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
    if (temporary_.empty()) return;
    if (std::rename(temporary_.c_str(), path_.c_str()) != 0) throw failure("write", path_, errno);
    temporary_.clear();
}

void renameAll(const std::vector<Rename>& renames) {
    Replaced replaced;
    for (const Rename& rename : renames)
        replaced.replace(rename);
    replaced.keep();
}
