#pragma once
// MachOImage: one slice of a macOS library, loaded into a Linux program for the same processor, so that
// the bytes that are shipped can be run without a Mac.
//
// What the library imports is bound to the C library of this machine where both agree, to stand-ins with
// macOS's layouts and constants where they do not (MacStandIns.h), to a function that ends the program where
// no export leads to, and else to another image: the C++ library of macOS is one, which scripts/test-macos
// builds from the compiler's own. Not covered:
//   - more than one thread: thread-local variables exist once, locks are always free;
//   - locales other than "C", and classes of characters;
//   - AppKit: the file browser cannot be opened;
//   - the C++ library of macOS 11.0 itself;
//   - Foundation beyond creating a folder and finding the shared one;
//   - what only macOS's own loader checks: the signature, the minimum system, libraries and versions.

#include <cstdint>
#include <map>
#include <string>

class MachOImage {
public:
    // Maps the slice for this processor, sets its pointers and runs its initialisers. It stays mapped
    // until the program has ended and run the functions that the library registered for that.
    //
    // Throws std::runtime_error if the file cannot be read, is not supported, or imports a symbol that has
    // neither a stand-in nor a place in `imported`.
    explicit MachOImage(const std::string& path, const MachOImage* imported = nullptr);

    // Returns the address of an export, named as in C ("Version") or mangled ("_Z10get_substrPci").
    // Throws std::runtime_error if there is none.
    void* symbol(const std::string& name) const;

    // Returns the address of a symbol, named as in the file, or null: also of one that is not exported,
    // since the archives of which scripts/test-macos makes the C++ library hide theirs.
    void* defined(const std::string& name) const;

private:
    std::uint8_t* memory_ = nullptr;
    std::map<std::string, std::uint64_t> exports_;
    std::map<std::string, std::uint64_t> symbols_;
};
