#pragma once
// quillon script: a list of calls in one process, so that the open folder, the tile filter and the
// tile names carry over from one to the next.

#include <string>

#include "calls/Library.h"
#include "calls/Report.h"

struct ScriptOptions {
    std::string file;        // "-" for standard input
    bool keepGoing = false;  // after a call that failed
    OutputStyle output = OutputStyle::kLines;
};

// Makes the calls and prints each as it is made. A file is read and checked to its end before the
// first call; standard input is carried out line by line, so that a program can go on with what a
// call answered.
//
//   returns  whether every call succeeded. Throws WrongUsage, with the line, for what is no call.
bool runScript(const Library& library, const ScriptOptions& options);
