#pragma once
// quillon merge: maps of single tiles folded into one map, whatever rendered them.

#include <string>
#include <vector>

#include "calls/Library.h"
#include "calls/Report.h"

struct MergeOptions {
    std::string target;
    std::vector<std::string> sources;
    OutputStyle output = OutputStyle::kLines;
};

// Folds the sources into the target, in their order. Throws WrongUsage for files of several formats
// or of none that is known, Failure at the first source that does not fit the target and
// Interrupted; the sources before it are in the target then.
//
//   report  gets the calls and the target
void mergeMaps(const Library& library, const MergeOptions& options, Report& report);
