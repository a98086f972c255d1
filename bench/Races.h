#pragma once
// The shapes that races of maps have in every format. Each race comes with the export's contenders
// and, where its file traffic is that of the whole maps, the limit; peers are added by the formats.

#include <functional>
#include <string>

#include "Job.h"
#include "Pictures.h"

// Where a race's maps lie.
struct MapPaths {
    MapPaths(const Setup& setup, const std::string& extension);

    std::string tile;      // only read
    std::string map;       // read, or rewritten in place
    std::string original;  // of a map that is rewritten
};

using WriteMap = void (*)(const std::string& path, const MapSpec& map, Tile tile);

// Folds the tile into the map.
Race mergeRace(const Setup& setup, const MapPaths& paths, const char* exportName, WriteMap writeMap,
               double limitTarget);

// Rewrites the map, without a limit.
Race rewriteRace(const Setup& setup, const MapPaths& paths, const ExportCall& call,
                 WriteMap writeMap);

// Makes a file, `call.buffer`, of the map.
struct MadeFile {
    double bytesPerPixel;
    double limitTarget;
};
Race makeRace(const Setup& setup, const MapPaths& paths, const ExportCall& call, WriteMap writeMap,
              const MadeFile& made);

// Reads and writes the whole map, as the limit of a rewrite.
Contender rewriteLimit(const MapPaths& paths, double target);

Contender peer(const std::string& name, double target, std::function<float()> work);

std::uint64_t fileBytes(const std::string& path);
std::size_t pixelsOf(const Setup& setup);
