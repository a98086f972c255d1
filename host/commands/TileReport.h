#pragma once
// What commands say about the UV tiles of a mesh, in lines and as JSON. Where groups have names, these
// take the place of their numbers.

#include <string>
#include <vector>

#include "calls/Report.h"
#include "mesh/TileList.h"

// Returns how many faces no map shows, which, and what to do; no lines if there are none.
std::vector<std::string> linesAbout(const CrossingFaces& faces,
                                    const std::vector<std::string>& groupNames = {});

// Returns which tiles share a name, and what to do; no lines if there are none.
std::vector<std::string> linesAbout(const std::vector<SharedName>& names);

void printLines(const std::vector<std::string>& lines);

// {"count", "touching", "first": [{"face", "group"}]}.
Json jsonOf(const CrossingFaces& faces, const std::vector<std::string>& groupNames = {});

// [{"name", "tiles": [{"column", "row"}]}].
Json jsonOf(const std::vector<SharedName>& names);
