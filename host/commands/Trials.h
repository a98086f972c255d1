#pragma once
// Which exports take a file, found out by calling each of them: nobody knows better.

#include <string>
#include <vector>

#include "calls/Library.h"
#include "files/FileFacts.h"

struct Verdict {
    std::string name;  // of the export
    std::string how;   // what else it was called with, such as "layout 3 to PSD"; may be empty
    float status;      // as the export answers it
    bool accepted;
    std::string meaning;
};

// Calls the exports that work on files of this kind. The file itself is only read: what changes a
// file in place gets a copy in a folder of its own, which is made for the first such export and
// deleted at the end; what writes another file writes it to /dev/null.
//
// Throws Failure when the copy cannot be made, and Interrupted.
std::vector<Verdict> trialsOf(const Library& library, const std::string& path,
                              const FileFacts& facts);
