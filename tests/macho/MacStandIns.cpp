#include "macho/MacStandIns.h"

#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <pthread.h>
#include <sys/stat.h>
#include <unistd.h>
#include <unwind.h>
#include <zlib.h>

#include <array>
#include <cerrno>
#include <cmath>
#include <cstdarg>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <utility>

#include "macho/MacFoundation.h"

// Finds a thread-local variable. Called with its descriptor; may change no register except the result.
extern "C" void macThreadVariable();

#ifdef __aarch64__
// macOS passes variadic arguments on the stack, Linux the first ones in registers: these hand them to
// openMac and printOnStack below.
extern "C" void macOpen();
extern "C" void macPrintf();
asm(R"(
    .text
    .globl macThreadVariable
    .globl macOpen
    .globl macPrintf
macThreadVariable:
    ldr x16, [x0, #8]
    ldr x0, [x0, #16]
    add x0, x0, x16
    ret
macOpen:
    ldr w2, [sp]
    b openMac
macPrintf:
    mov x1, sp
    b printOnStack
)");
#else
asm(R"(
    .text
    .globl macThreadVariable
macThreadVariable:
    movq 8(%rdi), %rax
    addq 16(%rdi), %rax
    ret
)");
#endif

namespace {

// Flags of open(): on macOS, on Linux.
constexpr std::pair<int, int> kOpenFlags[] = {
    {0x0001, O_WRONLY}, {0x0002, O_RDWR},  {0x0004, O_NONBLOCK}, {0x0008, O_APPEND},
    {0x0200, O_CREAT},  {0x0400, O_TRUNC}, {0x0800, O_EXCL},     {0x0100'0000, O_CLOEXEC},
};

}  // namespace

extern "C" int openMac(const char* path, int flags, int mode);
extern "C" int openMac(const char* path, int flags, int mode) {
    int known = 0;
    int translated = 0;
    for (const auto& [mac, ours] : kOpenFlags) {
        if ((flags & mac) == 0) continue;
        known |= mac;
        translated |= ours;
    }
    if (flags != known) {
        std::fprintf(stderr, "no stand-in for the flags %#x of open\n",
                     static_cast<unsigned>(flags));
        std::abort();
    }
    return ::open(path, translated, mode);
}

#ifdef __aarch64__
extern "C" int printOnStack(const char* format, void* arguments);
extern "C" int printOnStack(const char* format, void* arguments) {
    // A list with no arguments left in registers takes all from the stack, eight bytes each as on macOS.
    struct {
        void* stack;
        void* generalTop;
        void* vectorTop;
        int generalOffset;
        int vectorOffset;
    } fields{arguments, nullptr, nullptr, 0, 0};
    std::va_list list;
    static_assert(sizeof list == sizeof fields);
    std::memcpy(&list, &fields, sizeof list);
    return std::vprintf(format, list);
}
#endif

namespace {

struct MacStat {
    std::int32_t device;
    std::uint16_t mode;
    std::uint16_t links;
    std::uint64_t inode;
    std::uint32_t user;
    std::uint32_t group;
    std::int32_t specialDevice;
    std::int64_t times[8];  // of access, change, change of status, birth: seconds, nanoseconds
    std::int64_t size;
    std::int64_t blocks;
    std::int32_t blockSize;
    std::uint32_t flags;
    std::uint32_t generation;
    std::int32_t spare;
    std::int64_t spares[2];
};
static_assert(sizeof(MacStat) == 144 && offsetof(MacStat, size) == 96);

// The fields that the library reads; the rest is zero.
int converted(int result, const struct stat& status, MacStat* mac) {
    if (result != 0) return result;
    *mac = {};
    mac->device = static_cast<std::int32_t>(status.st_dev);
    mac->mode = static_cast<std::uint16_t>(status.st_mode);
    mac->inode = status.st_ino;
    mac->size = status.st_size;
    return 0;
}

// What the library puts at the end of its stack frames and looks for before it returns from them. Linux
// programs have another such value of their own.
std::uintptr_t stackGuard = 0x5A17'C0DE'0DDB'A1A5;

[[noreturn]] void stackIsSmashed() {
    std::fputs("the library found its stack smashed\n", stderr);
    std::abort();
}

bool overrunsNextFstat = false;

int statMac(const char* path, MacStat* mac) {
    struct stat status {};
    return converted(::stat(path, &status), status, mac);
}

int fstatMac(int descriptor, MacStat* mac) {
    struct stat status {};
    const int result = converted(::fstat(descriptor, &status), status, mac);
    std::uintptr_t word = 0;
    for (char* at = reinterpret_cast<char*>(mac + 1); overrunsNextFstat; at += sizeof word) {
        std::memcpy(&word, at, sizeof word);
        std::memset(at, 0xAA, sizeof word);
        overrunsNextFstat = word != stackGuard;
    }
    return result;
}

struct MacEntry {
    std::uint64_t inode;
    std::uint64_t seekOffset;
    std::uint16_t recordLength;
    std::uint16_t nameLength;
    std::uint8_t type;
    char name[1024];
};
static_assert(sizeof(MacEntry) == 1048 && offsetof(MacEntry, name) == 21);

// Returns an entry that is valid until the next call.
MacEntry* readdirMac(DIR* folder) {
    static MacEntry mac;
    const dirent* entry = ::readdir(folder);
    if (entry == nullptr) return nullptr;
    mac = {};
    mac.inode = entry->d_ino;
    mac.recordLength = sizeof mac;
    mac.nameLength = static_cast<std::uint16_t>(std::strlen(entry->d_name));
    mac.type = entry->d_type;
    std::memcpy(mac.name, entry->d_name, mac.nameLength);
    return &mac;
}

// Fills memory with copies of a pattern, the last one cut off. Compilers turn loops into calls of these.
template <std::size_t PatternBytes>
void fillWithPattern(std::uint8_t* bytes, const std::uint8_t* pattern, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i)
        bytes[i] = pattern[i % PatternBytes];
}

// A lock of macOS looks taken to Linux; with one thread it is always free.
int alwaysFree(void*) {
    return 0;
}

unsigned threadNumber(void*) {
    return 1;
}

// Character classes, which no export uses.
std::array<std::uint8_t, 8192> runes{};

// No other library is loaded; the C++ library looks for an older version of itself.
void* noLibrary(const char*, int) {
    return nullptr;
}

// Symbols that the C++ library imports for its locales, its messages before an abort and the like. No
// export leads to them.
constexpr const char* kNeverCalled[] = {
    "____mb_cur_max_l", "___maskrune_l", "___tolower",  "___toupper",
    "_asprintf_l",      "_catclose",     "_catgets",    "_catopen",
    "_dlsym",           "_freelocale",   "_mbrlen_l",   "_mbrtowc_l",
    "_mbsnrtowcs_l",    "_mbsrtowcs_l",  "_mbtowc_l",   "_pthread_cond_wait",
    "_snprintf",        "_snprintf_l",   "_sscanf",     "_sscanf_l",
    "_strerror_r",      "_strftime_l",   "_strtod_l",   "_strtof_l",
    "_strtold_l",       "_strtoll_l",    "_strtoull_l", "_vfprintf",
    "_wcrtomb_l",       "_wcsnrtombs_l", "_wcslen",     "_wmemchr",
    "dyld_stub_binder",
};

[[noreturn]] void endProgram() {
    std::fputs("the library called a function of kNeverCalled\n", stderr);
    std::abort();
}

// The same functions of the C library on both systems.
constexpr const char* kShared[] = {
    "___cxa_atexit", "_abort",     "_aligned_alloc", "_bzero",   "_calloc",     "_ceilf",
    "_close",        "_closedir",  "_exp",           "_fflush",  "_fmodf",      "_fputc",
    "_free",         "_ftruncate", "_futimens",      "_fwrite",  "_malloc",     "_memchr",
    "_memcmp",       "_memcpy",    "_memmove",       "_memset",  "_nextafterf", "_opendir",
    "_pread",        "_puts",      "_pwrite",        "_realloc", "_remove",     "_rename",
    "_strcmp",       "_strlen",    "_strncpy",       "_strnlen",
};

using StandIns = std::map<std::string, void*>;

template <typename Function>
void* code(Function* function) {
    return reinterpret_cast<void*>(function);
}

StandIns makeStandIns() {
    StandIns all = {
        // The same under other names, or of other libraries.
        {"__Unwind_DeleteException", code(_Unwind_DeleteException)},
        {"__Unwind_GetIP", code(_Unwind_GetIP)},
        {"__Unwind_GetLanguageSpecificData", code(_Unwind_GetLanguageSpecificData)},
        {"__Unwind_GetRegionStart", code(_Unwind_GetRegionStart)},
        {"__Unwind_RaiseException", code(_Unwind_RaiseException)},
        {"__Unwind_Resume", code(_Unwind_Resume)},
        {"__Unwind_SetGR", code(_Unwind_SetGR)},
        {"__Unwind_SetIP", code(_Unwind_SetIP)},
        {"___bzero", code(::bzero)},
        {"___error", code(::__errno_location)},
        {"___stdoutp", &stdout},
        {"___stderrp", &stderr},
        {"_uncompress", code(::uncompress)},

        // Other layouts, constants or ways to pass arguments.
        {"_fstat", code(fstatMac)},
        {"_readdir", code(readdirMac)},
        {"_stat", code(statMac)},
#ifdef __aarch64__
        {"_open", code(macOpen)},
        {"_printf", code(macPrintf)},
#else
        {"_open", code(openMac)},
        {"_printf", code(std::printf)},
#endif

        {"___stack_chk_guard", &stackGuard},
        {"___stack_chk_fail", code(stackIsSmashed)},

        // Only on macOS.
        {"_memset_pattern4", code(fillWithPattern<4>)},
        {"_memset_pattern8", code(fillWithPattern<8>)},
        {"_memset_pattern16", code(fillWithPattern<16>)},

        // One thread, one locale, one library.
        {"_dlopen", code(noLibrary)},
        {"__tlv_bootstrap", code(macThreadVariable)},
        {"__DefaultRuneLocale", runes.data()},
        {"_pthread_cond_broadcast", code(alwaysFree)},
        {"_pthread_mach_thread_np", code(threadNumber)},
        {"_pthread_mutex_lock", code(alwaysFree)},
        {"_pthread_mutex_unlock", code(alwaysFree)},
        {"_pthread_self", code(::pthread_self)},

        {"_NSSearchPathForDirectoriesInDomains", code(mac::searchPath)},
        {"_objc_getClass", code(mac::classNamed)},
        {"_objc_msgSend", code(mac::send)},
        {"_sel_registerName", code(mac::selector)},
    };
    for (const char* name : kShared)
        all.emplace(name, ::dlsym(RTLD_DEFAULT, name + 1));
    for (const char* name : kNeverCalled)
        all.emplace(name, code(endProgram));
    return all;
}

}  // namespace

void* macStandIn(const std::string& symbol) {
    static const StandIns standIns = makeStandIns();
    const auto found = standIns.find(symbol.substr(0, symbol.find('$')));
    return found == standIns.end() ? nullptr : found->second;
}

void overrunNextFstat() {
    overrunsNextFstat = true;
}
