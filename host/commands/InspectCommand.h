#pragma once
// quillon inspect: what stands in files, and which exports take them.

#include <string>
#include <vector>

#include "calls/Library.h"
#include "calls/Report.h"

struct InspectOptions {
    std::vector<std::string> files;
    bool fieldsOnly = false;  // no export is tried
    OutputStyle output = OutputStyle::kLines;
};

// Tells of each file its format, size, fields and verdicts; as JSON, an object a line for each file.
//
//   returns  whether every file could be looked into. A file that no export takes is no failure.
bool inspectFiles(const Library& library, const InspectOptions& options);
