#pragma once
// Which exports accept a file, found out by calling each of them.

#include <string>
#include <vector>

#include "calls/Library.h"
#include "files/FileFacts.h"

struct Verdict {
    std::string name;  // of the export
    std::string how;   // the other arguments, in words, such as "layout 3 to PSD"; may be empty
    float status;      // as the export returns it
    bool accepted;
    std::string meaning;
};

// Calls the exports that work on files of this kind. The file itself is only read: an export that
// changes a file in place gets a copy in a temporary folder; one that writes another file writes it to
// /dev/null. Throws Failure if the copy cannot be made, and Interrupted.
std::vector<Verdict> trialsOf(const Library& library, const std::string& path,
                              const FileFacts& facts);
