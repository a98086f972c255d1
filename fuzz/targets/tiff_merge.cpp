// One tile's map folded into the map of all tiles.

#include "harness/Target.h"
#include "tiff/TiffOps.h"

FUZZ_TARGET(tiff_merge, kTiff, 2) {
    const float status = mergeTiff(files.file(0), files.file(1));
    Case::expectStatus(status, {0.0f, -30.0f, -40.0f, 258.0f, -259.0f, -262.0f, -273.0f, -339.0f});
    files.expectUnchanged(0);
    files.expectSameSize(1);
    return status;
}
