#pragma once
// quillon export: the calls that Morvane makes to export one map of a mesh, in Morvane's order.

#include "calls/Library.h"
#include "commands/ExportOptions.h"
#include "page/ExportPage.h"

// Leaves in the folder <mesh>_normal or <mesh>_height with the format's extension, and beside it
// what the options ask for: <mesh>_height_16bit.tif, <mesh>_normal.tga,
// <mesh>_normal_thumbnail.bmp, <mesh>_normal.jpg, <mesh>_normal.html. Throws Failure as soon as a
// call fails, and Interrupted, with what was made so far deleted.
//
//   report  gets the calls, the files that were made and, of a height map in floats, the scale
void exportMap(const Library& library, const ExportOptions& options, Report& report);

// The same, and shows on `page` what happens, as one of its chapters; null: on none.
void exportMap(const Library& library, const ExportOptions& options, Report& report,
               ExportPage* page);
