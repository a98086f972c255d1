#pragma once
// What a map export is to make.

#include <cstdint>
#include <optional>
#include <string>

#include "calls/Report.h"
#include "files/MapFormat.h"
#include "render/TileRenderer.h"

struct ExportOptions {
    std::string mesh;
    std::string out;  // folder; created when it is missing
    std::uint32_t size = 1024;
    int naming = 2;
    std::string tiles;  // tile filter; empty: all tiles
    MapKind map = MapKind::kNormal;
    MapFormat format = MapFormat::kTiff;
    std::string order;            // of the colour channels: rbg, bgr or grb; empty: as rendered
    bool sixteenBits = false;     // the map in 16 bits besides
    bool targa = false;           // the map as Targa besides
    std::uint32_t thumbnail = 0;  // pixels of a thumbnail's longer side; 0: no thumbnail
    std::optional<double> jpeg;   // the map as JPEG besides, of this quality
    bool page = false;            // a page that shows the export besides
    bool keepTiles = false;
    OutputStyle output = OutputStyle::kLines;
};

// Throws WrongUsage for options that make no sense together.
void requireConsistent(const ExportOptions& options);
