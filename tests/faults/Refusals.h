#pragma once
// Calls that are refused for the contents of a file or for a path. Each is valid except for the one
// thing that its name says.

#include <vector>

#include "faults/Scenarios.h"

// The files of such calls; the statuses are literal.
const std::vector<Scenario>& refusedFiles();

// The same for paths: too long, or the same for source and target.
const std::vector<Scenario>& refusedPaths();
