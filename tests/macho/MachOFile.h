#pragma once
// MachOFile: what a dynamic library of macOS asks its loader to do. The file is one that
// scripts/build-macos has just built, and is trusted as such.

#include <cstdint>
#include <map>
#include <string>
#include <vector>

inline constexpr std::uint32_t kCpuX86_64 = 0x0100'0007;
inline constexpr std::uint32_t kCpuArm64 = 0x0100'000C;

// Addresses count from the start of the library's memory, which begins with its first segment.
struct MachORange {
    std::uint64_t address = 0;
    std::uint64_t size = 0;
};

struct MachOSegment {
    std::string name;
    MachORange memory;
    std::uint64_t fileOffset = 0;  // where the first `fileSize` bytes come from; zeros follow
    std::uint64_t fileSize = 0;
    bool isWritable = false;
    bool isExecutable = false;
    bool isFixedUpOnce = false;  // read-only once its pointers are set
};

// A pointer to be set to the address of a symbol of another library, or so far behind it.
struct MachOBind {
    std::uint64_t address = 0;
    std::string symbol;
    std::uint64_t addend = 0;
};

struct MachOFile {
    std::vector<std::uint8_t> bytes;  // of the slice
    std::vector<MachOSegment> segments;
    std::vector<std::uint64_t> rebases;  // addresses of pointers into the library itself
    std::vector<MachOBind> binds;
    std::map<std::string, std::uint64_t> exports;
    std::map<std::string, std::uint64_t> symbols;  // all that the symbol table has, also local ones
    std::vector<std::uint64_t> initialisers;  // addresses of pointers to functions, in their order
    MachORange threadVariables;               // descriptors, three pointers each
    MachORange threadValues;                  // the initial values of each thread's variables
    MachORange unwindWords;                   // how to unwind functions, a word for each
    MachORange unwindFrames;                  // the same in DWARF where a word is not enough

    // The size of the library's memory.
    std::uint64_t memorySize() const;
};

// Reads the slice for the processor `cpu` from the bytes of a universal file or of a plain library.
//
// Throws std::runtime_error if the slice is missing or uses what this loader does not support: chained
// fixups, re-exports, symbols that are made on demand.
MachOFile readMachO(const std::vector<std::uint8_t>& file, std::uint32_t cpu);
