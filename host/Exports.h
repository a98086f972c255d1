#pragma once
// The library's exports as the command line shows them: which of the three arguments each reads.

#include <span>
#include <string>
#include <string_view>

enum class BufferUse {
    kNone,    // not read
    kPath,    // a second path, which the user may leave out to try a null pointer
    kOutput,  // a block that takes a text; always passed
};

struct Export {
    std::string_view name;
    const char* text;   // what the first argument is; null when it is not read
    const char* value;  // what the number is and which ones are taken; null when it is not read
    BufferUse buffer;
    const char* bufferIs;  // what the block takes or names; null when it is not read
};

std::span<const Export> allExports();

// Null when the library has no such export.
const Export* findExport(std::string_view name);

// Throws WrongUsage when the library has no such export.
const Export& requireExport(std::string_view name);

// One line an export: its name and what it reads.
std::string exportList();
