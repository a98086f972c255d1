#pragma once
// quillon call: one call of one export, told in words.

#include <string>

#include "calls/Library.h"
#include "calls/Report.h"

struct CallOptions {
    std::string name;  // of the export
    CallArguments arguments;
    OutputStyle output = OutputStyle::kLines;
};

// Prints the status, its meaning and the text that the export wrote.
//
//   returns  whether the status is a success. Throws WrongUsage for an export that does not exist.
bool callExport(const Library& library, const CallOptions& options);
