#include "macho/MachOImage.h"

#include <sys/mman.h>
#include <unistd.h>

#include <array>
#include <cstring>
#include <list>
#include <stdexcept>
#include <vector>

#include "files/File.h"
#include "macho/MacStandIns.h"
#include "macho/MachOFile.h"
#include "macho/UnwindTables.h"

// Gives libgcc the tables for unwinding of code that no dynamic linker loaded.
extern "C" void __register_frame_table(void* listEndedByNull);

namespace {

#ifdef __aarch64__
constexpr std::uint32_t kThisCpu = kCpuArm64;
#else
constexpr std::uint32_t kThisCpu = kCpuX86_64;
#endif

using Address = std::uintptr_t;

// The largest page of either processor.
constexpr std::uint64_t kPageBytes = 16384;

MachOFile readFile(const std::string& path) {
    const FileBytes file = loadFile(path.c_str());
    if (file.data == nullptr) throw std::runtime_error("cannot read " + path);
    return readMachO({file.data.get(), file.data.get() + file.size}, kThisCpu);
}

// The memory of a library that is being loaded.
class Loading {
public:
    explicit Loading(const MachOFile& file) : file_(file) {
        const std::size_t size = threadValues() + file.threadValues.size;
        void* memory =
            ::mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (memory == MAP_FAILED) throw std::runtime_error("no memory for the library");
        memory_ = static_cast<std::uint8_t*>(memory);
        for (const MachOSegment& segment : file.segments) {
            if (segment.fileSize > 0)
                std::memcpy(memory_ + segment.memory.address, &file.bytes[segment.fileOffset],
                            segment.fileSize);
        }
    }

    std::uint8_t* memory() const { return memory_; }

    void setPointers(const MachOImage* imported) {
        for (const std::uint64_t address : file_.rebases)
            store(address, load(address) + base());
        for (const MachOBind& bind : file_.binds) {
            void* target = macStandIn(bind.symbol);
            if (target == nullptr && imported != nullptr) target = imported->defined(bind.symbol);
            const auto own = file_.symbols.find(bind.symbol);  // replaceable, and not replaced
            if (target == nullptr && own != file_.symbols.end()) target = memory_ + own->second;
            if (target == nullptr) throw std::runtime_error("no stand-in for " + bind.symbol);
            store(bind.address, reinterpret_cast<Address>(target) + bind.addend);
        }
    }

    // A descriptor holds a function that finds the variable, a key and an offset: here the key is the
    // address of the only thread's values.
    void setThreadVariables() {
        std::memcpy(memory_ + threadValues(), memory_ + file_.threadValues.address,
                    file_.threadValues.size);
        for (std::uint64_t at = 0; at + 24 <= file_.threadVariables.size; at += 24)
            store(file_.threadVariables.address + at + 8, base() + threadValues());
    }

    void protect() {
        for (const MachOSegment& segment : file_.segments) {
            const bool writable = segment.isWritable && !segment.isFixedUpOnce;
            const int protection =
                PROT_READ | (writable ? PROT_WRITE : 0) | (segment.isExecutable ? PROT_EXEC : 0);
            std::uint8_t* start = memory_ + segment.memory.address;
            if (::mprotect(start, segment.memory.size, protection) != 0)
                throw std::runtime_error("cannot protect " + segment.name);
            if (segment.isExecutable)
                __builtin___clear_cache(reinterpret_cast<char*>(start),
                                        reinterpret_cast<char*>(start + segment.memory.size));
        }
    }

    // The library's own tables and those made from its words go in as one list: of lists that overlap
    // only one is searched. They must live as long as the library.
    void registerFrames() {
        static std::list<std::vector<std::uint8_t>> made;
        static std::list<std::array<void*, 3>> lists;
        made.push_back(dwarfTables(file_, memory_));
        lists.push_back({made.back().data()});
        if (file_.unwindFrames.size > 0) lists.back()[1] = memory_ + file_.unwindFrames.address;
        __register_frame_table(lists.back().data());
    }

    void runInitialisers() {
        using Initialiser = void (*)(int, char**, char**, char**);
        char* nothing[] = {nullptr};
        for (const std::uint64_t address : file_.initialisers)
            reinterpret_cast<Initialiser>(load(address))(0, nothing, environ, nothing);
    }

private:
    // The values of the thread's variables follow the library, on pages that are not protected.
    std::uint64_t threadValues() const {
        return (file_.memorySize() + kPageBytes - 1) / kPageBytes * kPageBytes;
    }

    Address base() const { return reinterpret_cast<Address>(memory_); }
    Address load(std::uint64_t address) const {
        Address value = 0;
        std::memcpy(&value, memory_ + address, sizeof value);
        return value;
    }
    void store(std::uint64_t address, Address value) {
        std::memcpy(memory_ + address, &value, sizeof value);
    }

    const MachOFile& file_;
    std::uint8_t* memory_ = nullptr;
};

}  // namespace

MachOImage::MachOImage(const std::string& path, const MachOImage* imported) {
    const MachOFile file = readFile(path);
    Loading loading(file);
    loading.setPointers(imported);
    loading.setThreadVariables();
    loading.protect();
    loading.registerFrames();
    loading.runInitialisers();
    memory_ = loading.memory();
    exports_ = file.exports;
    symbols_ = file.symbols;
}

void* MachOImage::symbol(const std::string& name) const {
    const auto found = exports_.find("_" + name);
    if (found == exports_.end()) throw std::runtime_error("no export " + name);
    return memory_ + found->second;
}

void* MachOImage::defined(const std::string& name) const {
    const auto found = symbols_.find(name);
    return found == symbols_.end() ? nullptr : memory_ + found->second;
}
