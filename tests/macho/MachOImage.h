#pragma once
// MachOImage: one slice of a macOS library, loaded into a Linux program for the same processor, so that
// the bytes that are shipped can be run without a Mac.
//
// What the library imports is bound to the C library of this machine where both agree, to stand-ins with
// macOS's layouts and constants where they do not (MacStandIns.h), and to a function that ends the program
// where no export leads to. Not covered:
//   - more than one thread: thread-local variables exist once, locks are always free;
//   - locales other than "C", and classes of characters;
//   - AppKit: the file browser cannot be opened;
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
    // no stand-in.
    explicit MachOImage(const std::string& path);

    // Returns the address of an export, named as in C ("Version") or mangled ("_Z10get_substrPci").
    // Throws std::runtime_error if there is none.
    void* symbol(const std::string& name) const;

private:
    std::uint8_t* memory_ = nullptr;
    std::map<std::string, std::uint64_t> exports_;
};
