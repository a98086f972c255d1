#pragma once
// The system calls and the heap of the library in this program. The program defines the functions
// itself, so the dynamic linker binds the library to them instead of the C library's own. They pass
// everything on; while a Watch lives, they count the calls and let those fail that its fault names.

#include <array>
#include <cstddef>
#include <cstdlib>
#include <functional>
#include <optional>
#include <string>

enum class SystemCall {
    kOpen,
    kStat,  // and fstat
    kRead,
    kWrite,  // and ftruncate
    kClose,
    kOpenFolder,
    kReadFolder,
    kCloseFolder,
    kMakeFolder,
    kRemove,
    kRename,
    kAllocate,  // malloc, calloc and realloc, and so operator new
};
inline constexpr std::size_t kSystemCalls = 12;

// How a call goes wrong.
enum class Harm {
    kFails,              // with an error number
    kMovesHalf,          // a read or write moves half of what it was asked to, at least one byte
    kFindsTheEnd,        // a read returns 0 as at the end of the file
    kKills,              // the process, before the call
    kMovesHalfAndKills,  // the process, in the middle of a write
    kMeanwhile,          // none to the call itself: something else happens just before it
};

struct Fault {
    SystemCall call;
    Harm harm = Harm::kFails;
    int error = 0;
    bool lasting = false;      // all calls of the kind from then on
    std::size_t position = 1;  // which call of its kind goes wrong first
    const std::function<void()>* meanwhile = nullptr;
};

// "read number 3 and all further fails, errno 5".
std::string describe(const Fault& fault);

// Makes a folder a disk of its own with room for so many bytes: a write that would make the files in it
// longer than that together fails as on a full disk, and a file that is removed makes room.
class SmallDisk {
public:
    SmallDisk(const char* folder, std::size_t bytes);
    SmallDisk(const SmallDisk&) = delete;
    SmallDisk& operator=(const SmallDisk&) = delete;
    ~SmallDisk();
};

// Whether as many blocks of the heap may hold either number of bytes: it gives a block up to 16 bytes
// more than asked where what would be left is too little for another.
inline bool isTheSameHeap(std::ptrdiff_t bytes, std::ptrdiff_t others, std::ptrdiff_t blocks) {
    return std::abs(bytes - others) <= 16 * blocks;
}

// The calls that were made while a Watch lived.
struct Asked {
    std::array<std::size_t, kSystemCalls> calls{};
    std::ptrdiff_t blocks = 0;  // allocated and not freed
    std::ptrdiff_t bytes = 0;
    bool harmed = false;  // the fault has happened

    // Of the first open that went wrong.
    std::array<char, 4096> path{};
    bool writes = false;

    std::size_t of(SystemCall call) const { return calls[static_cast<std::size_t>(call)]; }
};

// One at a time, around one call of an export.
class Watch {
public:
    explicit Watch(const std::optional<Fault>& fault = {});
    Watch(const Watch&) = delete;
    Watch& operator=(const Watch&) = delete;
    ~Watch();

    // Ends the watch.
    Asked end();
};
