#pragma once
// Which exports accept a file, and whether they do with it what they are for, found out by calling
// each of them.

#include <string>
#include <vector>

#include "calls/Library.h"
#include "files/FileFacts.h"

enum class Outcome {
    kRefused,
    kAccepted,
    kChangesNothing,  // accepted, but the file that should have changed did not
    kWrongResult      // accepted, but a note on the file says why the result is wrong
};

struct Verdict {
    std::string name;  // of the export
    std::string how;   // the other arguments, in words, such as "layout 3 to PSD"; may be empty
    float status;      // as the export returns it
    Outcome outcome;
    std::string meaning;
};

// Calls the exports that work on files of this kind. The file itself is only read: an export that
// changes a file in place gets a copy in a temporary folder; one that writes another file writes it to
// /dev/null. Throws Failure if the copy cannot be made, and Interrupted.
std::vector<Verdict> trialsOf(const Library& library, const std::string& path,
                              const FileFacts& facts);
