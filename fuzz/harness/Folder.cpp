#include "harness/Folder.h"

#include <fcntl.h>
#include <poll.h>
#include <stdlib.h>
#include <sys/inotify.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <filesystem>
#include <functional>
#include <string_view>

namespace {

constexpr const char* kGivenName = "in";
constexpr std::size_t kMaxBytesCompared = std::size_t{128} * 1024;

// An error or a file that ends early fails.
void readAt(int file, FileState& state) {
    state.bytes.resize(std::min(static_cast<std::size_t>(state.size), kMaxBytesCompared));
    if (::pread(file, state.bytes.data(), state.bytes.size(), 0) !=
        static_cast<ssize_t>(state.bytes.size()))
        fail("a file can be read");
}

void writeAt(int file, const ByteList& bytes) {
    if (::pwrite(file, bytes.data(), bytes.size(), 0) != static_cast<ssize_t>(bytes.size()))
        fail("a file can be written");
}

}  // namespace

void fail(const char* what) {
    std::fprintf(stderr, "\nDoes not hold: %s\n", what);
    std::abort();
}

void GivenFile::open(int flags) {
    if (descriptor_ >= 0) ::close(descriptor_);
    descriptor_ = ::open(name_.c_str(), O_RDWR | O_CLOEXEC | flags, 0666);
    struct stat status {};
    if (descriptor_ < 0 || ::fstat(descriptor_, &status) != 0) fail("a given file can be opened");
    inode_ = status.st_ino;
}

void GivenFile::put(const ByteList& bytes) {
    if (descriptor_ < 0) open(O_CREAT | O_TRUNC);
    isRead_ = false;
    const auto size = static_cast<off_t>(bytes.size());
    if (state_.size == size && state_.bytes == bytes) return;
    if (state_.size != size && ::ftruncate(descriptor_, size) != 0) fail("a given file can be cut");
    writeAt(descriptor_, bytes);
    state_ = {size, bytes};
}

const FileState& GivenFile::now() {
    if (isRead_) return state_;
    isRead_ = true;
    struct stat status {};
    if (::stat(name_.c_str(), &status) != 0) fail("a file that is given is there afterwards");
    if (status.st_ino != inode_) open(0);
    state_.size = status.st_size;
    readAt(descriptor_, state_);
    return state_;
}

Folder::Folder() : workingFolder_(::open(".", O_PATH | O_DIRECTORY | O_CLOEXEC)) {
    path_ = (std::filesystem::temp_directory_path() / "quillon-fuzz-XXXXXX").string();
    if (::mkdtemp(path_.data()) == nullptr) fail("there is a temporary folder");
    listing_ = ::opendir(path_.c_str());
}

Folder::~Folder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
    ::closedir(listing_);
}

Folder::Visit::Visit(const Folder& folder) : folder_(folder) {
    if (::fchdir(::dirfd(folder.listing_)) != 0) fail("the folder can be entered");
}

Folder::Visit::~Visit() {
    if (::fchdir(folder_.workingFolder_) != 0) fail("the folder can be left");
}

GivenFile& Folder::given(std::size_t index) {
    while (given_.size() <= index)
        given_.emplace_back(kGivenName + std::to_string(given_.size()));
    return given_[index];
}

bool Folder::isGiven(std::string_view name) const {
    return std::any_of(given_.begin(), given_.end(),
                       [&](const GivenFile& file) { return file.name() == name; });
}

std::vector<std::string> Folder::others() const {
    std::vector<std::string> names;
    ::rewinddir(listing_);
    while (const dirent* const entry = ::readdir(listing_)) {
        const std::string_view name = entry->d_name;
        if (name != "." && name != ".." && !isGiven(name)) names.emplace_back(name);
    }
    return names;
}

void Folder::remove(const std::vector<std::string>& names) {
    for (const std::string& name : names) {
        if (::unlink(name.c_str()) != 0) ::rmdir(name.c_str());
    }
}

// One call for all of them: poll() says which numbers name nothing. No operation here needs more.
int Folder::openDescriptors() const {
    std::array<pollfd, 48> descriptors{};
    for (std::size_t i = 0; i < descriptors.size(); ++i)
        descriptors[i].fd = static_cast<int>(i);
    ::poll(descriptors.data(), descriptors.size(), 0);
    const auto open = std::count_if(
        descriptors.begin(), descriptors.end(),
        [](const pollfd& descriptor) { return (descriptor.revents & POLLNVAL) == 0; });
    const auto given = std::count_if(given_.begin(), given_.end(), std::mem_fn(&GivenFile::isOpen));
    return static_cast<int>(open - given - (events_ >= 0 ? 1 : 0));
}

std::set<std::string> Folder::changed() {
    constexpr auto kAnyChange = IN_CREATE | IN_DELETE | IN_MODIFY | IN_MOVE;
    if (events_ < 0) {
        events_ = ::inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
        if (::inotify_add_watch(events_, path_.c_str(), kAnyChange) < 0)
            fail("the folder can be watched");
    }
    std::set<std::string> names;
    alignas(inotify_event) std::array<char, 8192> events;
    ssize_t count = 0;
    while ((count = ::read(events_, events.data(), events.size())) > 0) {
        for (ssize_t at = 0; at < count;) {
            const auto* const event = reinterpret_cast<const inotify_event*>(events.data() + at);
            if ((event->mask & IN_Q_OVERFLOW) != 0) fail("no change is lost");
            names.insert(event->name);
            at += static_cast<ssize_t>(sizeof(inotify_event) + event->len);
        }
    }
    return names;
}

Folder& folder() {
    static Folder folder;
    return folder;
}

void writeFile(const char* name, const ByteList& bytes) {
    const int file = ::open(name, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    if (file < 0) fail("a file can be created");
    writeAt(file, bytes);
    ::close(file);
}

FileState readFile(const char* name) {
    const int file = ::open(name, O_RDONLY | O_CLOEXEC);
    struct stat status {};
    if (file < 0 || ::fstat(file, &status) != 0) fail("a file that was there is there still");
    FileState state{status.st_size};
    readAt(file, state);
    ::close(file);
    return state;
}
