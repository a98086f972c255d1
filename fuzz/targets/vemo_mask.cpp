// One mesh file per UV tile, with a mask of the tile's vertices.

#include "harness/Target.h"
#include "mesh/VemoOps.h"

FUZZ_TARGET(vemo_mask, kVemo, 1) {
    if (files.byte(1) % 2 == 1) setUVtilesOut(files.file(0));
    const float status = GetUVsFromVemoMASK(files.file(0), files.output(), files.byte(0) % 4);
    Case::expect(status >= 0.0f || status == -18.0f || status == -19.0f,
                 "the status is a count or a known one");
    clearUVtilesOut();  // what is left for the next input looks like a leak
    clearUVTileString();
    files.expectUnchanged(0);
    files.expectOutputs(status > 0.0f ? static_cast<std::size_t>(status) : 0);
    return status;
}
