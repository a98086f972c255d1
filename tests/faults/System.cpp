// The library's calls are checked by the compiler; here the checks would be defined twice.
#undef _FORTIFY_SOURCE

#include "faults/System.h"

#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <malloc.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <new>
#include <sstream>
#include <utility>

// The heap behind this program's own, by the names that still reach it: the C library's, or the
// sanitizer's, which replaces that.
#ifdef QUILLON_SANITIZED
#define QUILLON_HEAP(name) __interceptor_##name
#else
#define QUILLON_HEAP(name) __libc_##name
#endif
extern "C" void* QUILLON_HEAP(malloc)(std::size_t bytes);
extern "C" void* QUILLON_HEAP(calloc)(std::size_t count, std::size_t bytes);
extern "C" void* QUILLON_HEAP(realloc)(void* block, std::size_t bytes);
extern "C" void QUILLON_HEAP(free)(void* block);

namespace {

// Set before any constructor runs: the heap is used that early.
constinit bool watching = false;
constinit Fault planned{};
constinit bool isPlanned = false;
constinit Asked asked{};

// Counts a call; true if it must fail.
bool goesWrong(SystemCall call) {
    if (!watching) return false;
    const std::size_t position = ++asked.calls[static_cast<std::size_t>(call)];
    const bool wrong =
        isPlanned && call == planned.call &&
        (planned.lasting ? position >= planned.position : position == planned.position);
    if (!wrong) return false;
    if (planned.harm == Harm::kKills) ::raise(SIGKILL);
    asked.harmed = true;
    if (planned.harm == Harm::kMeanwhile) {
        watching = false;
        (*planned.meanwhile)();
        watching = true;
        return false;
    }
    errno = planned.error;
    return true;
}

// The function that this program's own replaces. What looking for it takes from the heap is not the
// library's.
template <typename Function>
Function* theSystems(const char* name) {
    const bool wasWatching = std::exchange(watching, false);
#ifdef QUILLON_SANITIZED
    char sanitizers[64];
    std::snprintf(sanitizers, sizeof sanitizers, "__interceptor_%s", name);
    void* address = ::dlsym(RTLD_DEFAULT, sanitizers);
    if (address == nullptr) address = ::dlsym(RTLD_NEXT, name);
#else
    void* const address = ::dlsym(RTLD_NEXT, name);
#endif
    if (address == nullptr) std::abort();
    watching = wasWatching;
    return reinterpret_cast<Function*>(address);
}

void* taken(void* block) {
    if (watching && block != nullptr) {
        ++asked.blocks;
        asked.bytes += static_cast<std::ptrdiff_t>(::malloc_usable_size(block));
    }
    return block;
}

void givenBack(void* block) {
    if (watching && block != nullptr) {
        --asked.blocks;
        asked.bytes -= static_cast<std::ptrdiff_t>(::malloc_usable_size(block));
    }
}

// How many of `count` bytes are moved; -1: the call fails.
template <typename Move>
ssize_t moved(SystemCall call, std::size_t count, Move move) {
    if (!goesWrong(call)) return move(count);
    switch (planned.harm) {
        case Harm::kMovesHalf:
            // A disk that takes half of the last piece takes nothing after it.
            if (planned.error != 0 && asked.of(call) > planned.position) return -1;
            return move((count + 1) / 2);
        case Harm::kFindsTheEnd:
            return 0;
        case Harm::kMovesHalfAndKills:
            move((count + 1) / 2);
            return ::raise(SIGKILL);
        default:
            return -1;
    }
}

// A close that fails has closed all the same.
template <typename Handle>
int closed(SystemCall call, int (*real)(Handle), Handle handle) {
    const bool wrong = goesWrong(call);
    const int result = real(handle);
    if (wrong) errno = planned.error;
    return wrong ? -1 : result;
}

char smallDisk[4096] = "";  // a folder, or none
std::uintmax_t smallDiskBytes = 0;

bool fillsSmallDisk(int descriptor, std::size_t count, off_t offset) {
    struct stat status {};
    if (smallDisk[0] == '\0' || ::fstat(descriptor, &status) != 0) return false;
    const off_t growth = std::max<off_t>(offset + static_cast<off_t>(count) - status.st_size, 0);
    std::uintmax_t used = static_cast<std::uintmax_t>(growth);
    for (const auto& entry : std::filesystem::directory_iterator(smallDisk))
        used += entry.file_size();
    if (used <= smallDiskBytes) return false;
    errno = ENOSPC;
    return true;
}

}  // namespace

std::string describe(const Fault& fault) {
    static constexpr const char* kCalls[] = {"open",  "stat",    "read",    "write",
                                             "close", "opendir", "readdir", "closedir",
                                             "mkdir", "remove",  "rename",  "allocation"};
    static constexpr const char* kHarms[] = {"fails", "moves half",           "finds the end",
                                             "kills", "moves half and kills", "is made later"};
    std::ostringstream text;
    text << kCalls[static_cast<std::size_t>(fault.call)] << " number " << fault.position
         << (fault.lasting ? " and all further " : " ")
         << kHarms[static_cast<std::size_t>(fault.harm)] << ", errno " << fault.error;
    return text.str();
}

SmallDisk::SmallDisk(const char* folder, std::size_t bytes) {
    std::snprintf(smallDisk, sizeof smallDisk, "%s", folder);
    smallDiskBytes = bytes;
}

SmallDisk::~SmallDisk() {
    smallDisk[0] = '\0';
}

Watch::Watch(const std::optional<Fault>& fault) {
    asked = {};
    isPlanned = fault.has_value();
    planned = fault.value_or(Fault{});
    watching = true;
}

Watch::~Watch() {
    watching = false;
}

Asked Watch::end() {
    watching = false;
    return asked;
}

extern "C" {

int open(const char* path, int flags, ...) {
    std::va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(arguments, mode_t) : 0;
    va_end(arguments);
    static const auto real = theSystems<int(const char*, int, ...)>("open");
    if (!goesWrong(SystemCall::kOpen)) return real(path, flags, mode);
    if (asked.path[0] == '\0') {
        ::strncpy(asked.path.data(), path, asked.path.size() - 1);
        asked.writes = (flags & O_ACCMODE) != O_RDONLY;
    }
    return -1;
}

// What a compiler that checks the library's calls makes of an open without a mode.
int __open_2(const char* path, int flags);
int __open_2(const char* path, int flags) {
    return open(path, flags);
}

int stat(const char* path, struct stat* status) noexcept {
    static const auto real = theSystems<int(const char*, struct stat*)>("stat");
    return goesWrong(SystemCall::kStat) ? -1 : real(path, status);
}

int fstat(int descriptor, struct stat* status) noexcept {
    static const auto real = theSystems<int(int, struct stat*)>("fstat");
    return goesWrong(SystemCall::kStat) ? -1 : real(descriptor, status);
}

ssize_t pread(int descriptor, void* bytes, std::size_t count, off_t offset) {
    static const auto real = theSystems<ssize_t(int, void*, std::size_t, off_t)>("pread");
    return moved(SystemCall::kRead, count,
                 [&](std::size_t part) { return real(descriptor, bytes, part, offset); });
}

int ftruncate(int descriptor, off_t length) noexcept {
    static const auto real = theSystems<int(int, off_t)>("ftruncate");
    const bool fails = goesWrong(SystemCall::kWrite) && planned.harm == Harm::kFails;
    return fails ? -1 : real(descriptor, length);
}

ssize_t pwrite(int descriptor, const void* bytes, std::size_t count, off_t offset) {
    static const auto real = theSystems<ssize_t(int, const void*, std::size_t, off_t)>("pwrite");
    if (fillsSmallDisk(descriptor, count, offset)) return -1;
    return moved(SystemCall::kWrite, count,
                 [&](std::size_t part) { return real(descriptor, bytes, part, offset); });
}

int close(int descriptor) {
    static const auto real = theSystems<int(int)>("close");
    return closed(SystemCall::kClose, real, descriptor);
}

DIR* opendir(const char* path) {
    static const auto real = theSystems<DIR*(const char*)>("opendir");
    return goesWrong(SystemCall::kOpenFolder) ? nullptr : real(path);
}

dirent* readdir(DIR* stream) {
    static const auto real = theSystems<dirent*(DIR*)>("readdir");
    return goesWrong(SystemCall::kReadFolder) ? nullptr : real(stream);
}

int closedir(DIR* stream) {
    static const auto real = theSystems<int(DIR*)>("closedir");
    return closed(SystemCall::kCloseFolder, real, stream);
}

int mkdir(const char* path, mode_t mode) noexcept {
    static const auto real = theSystems<int(const char*, mode_t)>("mkdir");
    return goesWrong(SystemCall::kMakeFolder) ? -1 : real(path, mode);
}

int remove(const char* path) noexcept {
    static const auto real = theSystems<int(const char*)>("remove");
    return goesWrong(SystemCall::kRemove) ? -1 : real(path);
}

int rename(const char* from, const char* to) noexcept {
    static const auto real = theSystems<int(const char*, const char*)>("rename");
    return goesWrong(SystemCall::kRename) ? -1 : real(from, to);
}

void* malloc(std::size_t bytes) noexcept {
    return goesWrong(SystemCall::kAllocate) ? nullptr : taken(QUILLON_HEAP(malloc)(bytes));
}

void* calloc(std::size_t count, std::size_t bytes) noexcept {
    return goesWrong(SystemCall::kAllocate) ? nullptr : taken(QUILLON_HEAP(calloc)(count, bytes));
}

void* realloc(void* block, std::size_t bytes) noexcept {
    if (goesWrong(SystemCall::kAllocate)) return nullptr;
    givenBack(block);
    return taken(QUILLON_HEAP(realloc)(block, bytes));
}

void free(void* block) noexcept {
    givenBack(block);
    QUILLON_HEAP(free)(block);
}

}  // extern "C"

#ifdef QUILLON_SANITIZED
// The C++ library's, which the sanitizer has replaced: they go through malloc.
void* operator new(std::size_t bytes) {
    void* const block = std::malloc(bytes);
    if (block == nullptr) throw std::bad_alloc();
    return block;
}
void* operator new[](std::size_t bytes) {
    return operator new(bytes);
}
void* operator new(std::size_t bytes, const std::nothrow_t&) noexcept {
    return std::malloc(bytes);
}
void* operator new[](std::size_t bytes, const std::nothrow_t&) noexcept {
    return std::malloc(bytes);
}
void operator delete(void* block) noexcept {
    std::free(block);
}
void operator delete[](void* block) noexcept {
    std::free(block);
}
void operator delete(void* block, std::size_t) noexcept {
    std::free(block);
}
void operator delete[](void* block, std::size_t) noexcept {
    std::free(block);
}
#endif
