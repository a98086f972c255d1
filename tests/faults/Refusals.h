#pragma once
// Calls that are refused for the contents of a file, and calls that are accepted although the file is
// not of the kind that the export works on. Each is valid except for the one thing that its
// name says.

#include <vector>

#include "faults/Scenarios.h"

// The statuses are literal.
const std::vector<Scenario>& refusedFiles();

// Calls that docs/exports.md warns of: the status says nothing. Each leaves every file as it was, except
// for those that it lists as written.
const std::vector<Scenario>& acceptedFiles();
