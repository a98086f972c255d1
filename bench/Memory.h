#pragma once
// How much memory an export takes: the peak of the resident size over what the process had before.

#include "Job.h"
#include "Table.h"

// Runs the export in a process of its own, once on small maps, so that the library's code is in
// memory, then measured on the setup's.
Peak peakOf(const Job& job, const Setup& setup);
