// The UV tiles of a mesh, with and without a filter, for which the mesh itself serves as any text does.

#include <array>
#include <string_view>

#include "harness/Target.h"
#include "mesh/VemoOps.h"

FUZZ_TARGET(vemo_tiles, kVemo, 1) {
    if (files.byte(1) % 2 == 1) setUVtilesOut(files.file(0));
    std::array<char, 64> name = {"untouched"};
    const float status = GetUVTile(files.file(0), name.data(), files.byte(0) % 4);
    clearUVtilesOut();  // what is left for the next input looks like a leak
    Case::expect(status >= 0.0f || status == -18.0f, "the status is a count or a known one");
    Case::expect(status >= 0.0f || std::string_view(name.data()) == "untouched",
                 "a refused call leaves the block alone");
    files.expectUnchanged(0);
    files.expectOutputs(0);
    return status;
}
