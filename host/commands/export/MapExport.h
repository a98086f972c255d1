#pragma once
// The calls that the host makes to export one map of a mesh, in the host's order.

#include "calls/Library.h"
#include "calls/Report.h"
#include "commands/export/ExportOptions.h"
#include "page/ExportPage.h"

// Writes the files of ExportFiles.h. Throws Failure as soon as a call fails, and Interrupted; what was
// made so far is deleted then.
//
//   report  gets the calls, the files and, for a height map of floats, the displacement scale
//   page    gets a chapter that shows what happens; null: none
void exportMap(const Library& library, const ExportOptions& options, Report& report,
               ExportPage* page);
