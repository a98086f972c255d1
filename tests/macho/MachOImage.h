#pragma once
// MachOImage: one slice of a macOS library, loaded into a Linux program of the same processor, so
// that the very bytes that are shipped can be run without a Mac.
//
// The library finds no macOS around it. What it imports is bound to the C library of this machine
// where both agree, to stand-ins with macOS's layouts and constants where they do not (MacStandIns.h),
// and to functions that end the program with a message where no export of ours leads. Not covered:
//   - more than one thread: a thread's own variables exist once, locks are always free;
//   - locales other than "C", and classes of characters;
//   - AppKit: the file browser cannot be opened;
//   - Foundation beyond creating a folder and finding the shared one, with the least of a Foundation
//     that these need;
//   - what only macOS's own loader checks: the signature, the minimum system, libraries and versions.

#include <cstdint>
#include <map>
#include <string>

class MachOImage {
public:
    // Maps the slice for this processor, sets its pointers and runs its initialisers. It stays mapped
    // until the program ends, when what it registered to run then is run.
    //
    // Throws std::runtime_error when the file cannot be read, is damaged, or imports a symbol that
    // has no stand-in.
    explicit MachOImage(const std::string& path);

    // The address of an export, named as in C ("Version") or mangled ("_Z10get_substrPci"). Throws
    // std::runtime_error when there is none.
    void* symbol(const std::string& name) const;

private:
    std::uint8_t* memory_ = nullptr;
    std::map<std::string, std::uint64_t> exports_;
};
