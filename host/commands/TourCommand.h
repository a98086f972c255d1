#pragma once
// quillon tour: two exports of a mesh, shown on one page.

#include <string>

#include "calls/Library.h"
#include "calls/Report.h"

struct TourOptions {
    std::string mesh;
    std::string out;  // folder; created when it is missing
    std::uint32_t size = 1024;
    OutputStyle output = OutputStyle::kLines;
};

// Exports the normals as BMP with their channels swapped, a thumbnail and a JPEG, then the heights
// as TIFF with their scale and 16 bits besides, and leaves <mesh>.html besides. Throws as exportMap
// does; an export that has ended stays.
void runTour(const Library& library, const TourOptions& options, Report& report);
