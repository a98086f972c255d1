#pragma once
// The parts of the table of exports, a file each. Exports.h tells what stands in them.

#include "Exports.h"

const ExportGroup& folderExports();
const ExportGroup& meshExports();
const ExportGroup& tiffExports();
const ExportGroup& psdExports();
const ExportGroup& bmpExports();
const ExportGroup& imageExports();

// The numbers that the three exports take which reorder channels.
inline bool takesSwap(double value) {
    return value > 0.0 && value < 4.0;
}
