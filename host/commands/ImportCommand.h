#pragma once
// quillon import: an OBJ model as a mesh file.

#include <string>

#include "calls/Report.h"

struct ImportOptions {
    std::string model;
    std::string out;
    bool tilePerGroup = false;
    OutputStyle output = OutputStyle::kLines;
};

// Throws Failure for a model that cannot be turned into a mesh, and Interrupted, with what was
// written so far deleted.
//
//   report  gets the file and the mesh's numbers
void importModel(const ImportOptions& options, Report& report);
