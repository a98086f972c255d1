#pragma once
// What every colour block begins with, character by character: the host searches for it.

#include <string>

inline const std::string kColourBlockStart =
    "# The following RGB block contains Morvane Vertex Color (Tintcoat) output as 3 hexadecimal "
    "values per vertex. The vertex color format is RRGGBB with up to 32 entries per RGB line.\n";
