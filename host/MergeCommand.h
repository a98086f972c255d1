#pragma once
// quillon merge: maps of single tiles folded into one map, whatever rendered them.

#include <string>
#include <vector>

#include "Library.h"

struct MergeOptions {
    std::string target;
    std::vector<std::string> sources;
    bool verbose = false;
};

// Folds the sources into the target, in their order. Throws WrongUsage for files of several formats
// or of none that is known, Failure at the first source that does not fit the target and
// Interrupted; the sources before it are in the target then.
void mergeMaps(const Library& library, const MergeOptions& options);
