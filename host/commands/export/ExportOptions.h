#pragma once
// What a map export makes.

#include <cstdint>
#include <optional>
#include <string>

#include "files/DiskFile.h"
#include "files/MapFormat.h"
#include "render/TileRenderer.h"

struct ExportOptions {
    std::string mesh;
    std::string out;  // folder; created if it is missing
    std::uint32_t size = 1024;
    int naming = 2;
    std::string tiles;  // tile filter; empty: all tiles
    MapKind map = MapKind::kNormal;
    MapFormat format = MapFormat::kTiff;
    std::string order;  // of the colour channels: rbg, bgr or grb; empty: as rendered
    // What is also made of the map:
    bool sixteenBits = false;     // a copy with 16 bits
    bool targa = false;           // a Targa file
    std::uint32_t thumbnail = 0;  // a thumbnail, its longer side in pixels; 0: none
    std::optional<double> jpeg;   // a JPEG file of this quality
    bool page = false;            // a page that shows the export
    bool keepTiles = false;       // the working files stay
    bool perTile = false;         // a map of each tile alone
    bool dryRun = false;          // only say what would be made
    Overwrite overwrite = Overwrite::kReplace;
};

// Throws WrongUsage for options that contradict each other.
void requireConsistent(const ExportOptions& options);
