// A tile filter file. Lines are independent: cut at any line end, the two halves list what the whole
// lists.

#include <algorithm>
#include <array>
#include <string>

#include "harness/Target.h"
#include "mesh/TileFilter.h"
#include "mesh/VemoOps.h"

FUZZ_TARGET(tile_filter, kText, 1) {
    const float status = setUVtilesOut(files.file(0));
    clearUVtilesOut();
    Case::expectStatus(status, {0.0f});
    files.expectUnchanged(0);

    const ByteList& given = files.given(0);
    const std::string text(given.begin(), given.end());
    const std::size_t cut = std::min(text.find('\n', files.byte(0)), text.size());
    TileFilter whole;
    TileFilter before;
    TileFilter after;
    whole.add(text);
    before.add(std::string_view(text).substr(0, cut));
    after.add(std::string_view(text).substr(std::min(cut + 1, text.size())));
    const std::string probes[] = {
        "1001", "1002", "1011", "0", "-5", "u0v0", std::to_string(files.number(4))};
    for (const std::string& name : probes) {
        Case::expect(whole.contains(name) == (before.contains(name) || after.contains(name)),
                     "both halves of a filter list what it lists");
    }
    return status;
}
