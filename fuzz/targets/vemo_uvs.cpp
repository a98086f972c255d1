// One mesh file per UV tile, with local UVs.

#include <array>

#include "harness/Target.h"
#include "mesh/VemoOps.h"

FUZZ_TARGET(vemo_uvs, kVemo, 1) {
    if (files.byte(1) % 2 == 1) setUVtilesOut(files.file(0));
    const float status = GetUVsFromVemo(files.file(0), files.output(), files.byte(0) % 4);
    Case::expect(status >= 0.0f || status == -18.0f, "the status is a count or a known one");
    const std::int32_t position = files.number(4);
    std::array<char, 64> name{};
    getUVTileString(position, name.data());
    Case::expect((name[0] != '\0') == (position >= 0 && static_cast<float>(position) < status),
                 "each tile that was written has a name");
    clearUVtilesOut();  // what is left for the next input looks like a leak
    clearUVTileString();
    files.expectUnchanged(0);
    files.expectOutputs(status > 0.0f ? static_cast<std::size_t>(status) : 0);
    return status;
}
