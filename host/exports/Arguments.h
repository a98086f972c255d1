#pragma once
// The arguments of an export, for those who generate calls of it in other languages.

#include <string>
#include <vector>

#include "exports/Exports.h"

struct Argument {
    const char* position;  // "text", "value" or "buffer1"
    std::string name;      // what it is, as an identifier, such as "old_path"
    // "file", "folder" or "path" (of either), "text", "number", or "output" for a block that takes a text
    const char* role;
    const char* meaning;  // as in the table
};

// Those that the export reads or fills, in the order of a call.
std::vector<Argument> argumentsOf(const Export& entry);
