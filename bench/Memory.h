#pragma once
// How much memory an export takes: the peak of the resident size over what the process had before.

#include "Job.h"
#include "Table.h"

// Runs the export in a process of its own, first on small maps, so that the library's code is in
// memory, then on the setup's, and measures the second run.
Peak peakOf(const Job& job, const Setup& setup);

// How many bytes files in a folder may take: what its disk has left, or, where files are kept in
// memory, what that has left, if it is less.
double roomIn(const std::string& folder);

// Reads the bytes from a line such as "VmHWM:   1234 kB" of a file below /proc.
double memoryField(const std::string& file, const std::string& field);
