#include "ExportCommand.h"

#include <cstdio>
#include <filesystem>
#include <vector>

#include "CallLog.h"
#include "Failure.h"
#include "Leftovers.h"
#include "Progress.h"
#include "TiffWriter.h"

namespace fs = std::filesystem;

namespace {

struct Tile {
    std::string name;
    std::string meshFile;
    std::string mapFile;
    TilePlace place{};
};

void printSize(const std::string& path) {
    std::printf("%s  %s bytes\n", path.c_str(), std::to_string(fs::file_size(path)).c_str());
}

class MapExport {
public:
    MapExport(const Library& library, const ExportOptions& options)
        : options_(options),
          stem_(fs::path(options.mesh).stem().string()),
          log_(library, progress_),
          unfinished_(log_),
          working_(log_) {}

    void run();

private:
    double naming() const { return options_.naming; }
    std::string mapPath() const;
    void requireFreeMapPath() const;
    std::size_t findTiles();
    void makeOutFolder();
    void makeWorkingFolder();
    void writeTileMeshes(std::size_t count);
    void nameTiles(std::size_t count);
    TileSheet layOutSheet(const VemoMesh& mesh);
    void requireMergeable(const TileSheet& sheet) const;
    void renderTiles(const TileSheet& sheet);
    void mergeTiles();
    void finish();

    const ExportOptions& options_;
    const std::string stem_;  // the mesh's name, after which everything is named
    std::string workingFolder_;
    std::vector<Tile> tiles_;
    Progress progress_;
    CallLog log_;
    Leftovers unfinished_;  // the map, and its folder if it was made for it
    Leftovers working_;
};

void MapExport::run() {
    requireFreeMapPath();
    const std::size_t count = findTiles();
    const VemoMesh mesh = readVemo(options_.mesh);
    makeOutFolder();
    makeWorkingFolder();
    writeTileMeshes(count);
    const TileSheet sheet = layOutSheet(mesh);
    renderTiles(sheet);
    mergeTiles();
    finish();
}

std::string MapExport::mapPath() const {
    const char* kind = options_.map == MapKind::kNormal ? "normal" : "height";
    return (fs::path(options_.out) / (stem_ + '_' + kind + ".tif")).string();
}

// An earlier map is replaced; a folder of that name must not be.
void MapExport::requireFreeMapPath() const {
    std::error_code ignored;
    const fs::file_status status = fs::status(mapPath(), ignored);
    if (fs::exists(status) && !fs::is_regular_file(status))
        throw Failure(mapPath() + " is in the way: it is not a file");
}

std::size_t MapExport::findTiles() {
    log_.require("clearUVtilesOutput");
    if (!options_.tiles.empty()) log_.require("setUVtilesOutput", {.text = options_.tiles});
    const CallResult found = log_.require("getUVTile", {.text = options_.mesh, .value = naming()});
    if (found.status > 0.0f) return static_cast<std::size_t>(found.status);
    const bool filteredOut = !options_.tiles.empty() && found.text && !found.text->empty();
    throw Failure(filteredOut
                      ? "no tile of " + options_.mesh + " is in the filter " + options_.tiles
                      : options_.mesh + " has no faces, so there is no tile to export");
}

void MapExport::makeOutFolder() {
    if (log_.call("CheckFolder", {.text = options_.out}).status == 0.0f) return;
    log_.require("CreateFolder", {.text = options_.out});
    unfinished_.add(options_.out);
}

// A folder of its own under a name that is still free, so that no file of the user's is near.
void MapExport::makeWorkingFolder() {
    for (int number = 1;; ++number) {
        const std::string name = number == 1 ? "working" : "working-" + std::to_string(number);
        workingFolder_ = (fs::path(options_.out) / name).string();
        const CallArguments arguments{.text = workingFolder_};
        const float status = log_.call("CreateFolder", arguments).status;
        if (status == 0.0f) break;
        std::error_code ignored;
        if (!fs::exists(fs::symlink_status(workingFolder_, ignored)))
            throw Failure(failureSentence("CreateFolder", arguments, status));
    }
    working_.add(workingFolder_);
}

void MapExport::writeTileMeshes(std::size_t count) {
    const std::string outPath = (fs::path(workingFolder_) / (stem_ + ".Vemo")).string();
    const CallArguments arguments{.text = options_.mesh, .value = naming(), .buffer = outPath};
    const CallResult written = log_.call("getUVs", arguments);
    // A count of 1501 and more is also the status of a file that was not written.
    const bool allWritten = written.status == static_cast<float>(count);
    nameTiles(count);
    log_.require("clearUVString");
    if (!allWritten) throw Failure(failureSentence("getUVs", arguments, written.status));
    if (tiles_.size() < count) throw Failure("getUVString named fewer tiles than getUVs wrote");
}

// The library knows the names of all files that it began, also when it could not write them all.
void MapExport::nameTiles(std::size_t count) {
    for (std::size_t position = 0; position < count; ++position) {
        const auto value = static_cast<double>(position);
        const CallResult named = log_.require("getUVString", {.value = value});
        if (!named.text) return;
        const fs::path base = fs::path(workingFolder_) / (stem_ + *named.text);
        tiles_.push_back({*named.text, base.string() + ".Vemo", base.string() + ".tif"});
        working_.add(tiles_.back().meshFile);
    }
}

TileSheet MapExport::layOutSheet(const VemoMesh& mesh) {
    std::vector<TilePlace> places;
    for (Tile& tile : tiles_) {
        progress_.show("placing", places.size(), tiles_.size(), tile.name);
        tile.place = placeOfTile(mesh, readVemo(tile.meshFile), tile.meshFile);
        places.push_back(tile.place);
    }
    TileSheet sheet(places, options_.size);
    requireMergeable(sheet);
    return sheet;
}

// A map is merged only where its pixels take more bytes than what precedes them.
void MapExport::requireMergeable(const TileSheet& sheet) const {
    const std::uint64_t pixels = std::uint64_t{sheet.width()} * sheet.height();
    if (pixels * pixelBytesOf(options_.map) <= kTiffPixelOffset)
        throw Failure("a sheet of " + std::to_string(sheet.width()) + " x " +
                      std::to_string(sheet.height()) +
                      " pixels is too small to merge; raise --size");
}

void MapExport::renderTiles(const TileSheet& sheet) {
    std::size_t done = 0;
    for (const Tile& tile : tiles_) {
        progress_.show("rendering", done++, tiles_.size(), tile.name);
        const TileMap map = renderTile(readVemo(tile.meshFile), options_.map, sheet.cellSize());
        working_.add(tile.mapFile);
        writeSheet(tile.mapFile, sheet, sheet.cellOf(tile.place), map);
    }
    log_.print("(rendered)", std::to_string(tiles_.size()),
               "maps of " + std::to_string(sheet.width()) + " x " + std::to_string(sheet.height()) +
                   " pixels, as Morvane does");
}

void MapExport::mergeTiles() {
    unfinished_.add(mapPath());
    log_.require("FileCopyTo", {.text = tiles_.front().mapFile, .buffer = mapPath()});
    for (std::size_t i = 1; i < tiles_.size(); ++i) {
        progress_.show("merging", i, tiles_.size(), tiles_[i].name);
        log_.require("mergeMapsTIF", {.text = tiles_[i].mapFile, .buffer = mapPath()});
    }
}

void MapExport::finish() {
    unfinished_.keep();
    if (options_.keepTiles)
        working_.keep();
    else
        working_.deleteAll();
    progress_.clear();
    std::puts("");
    if (options_.keepTiles) {
        for (const Tile& tile : tiles_) {
            printSize(tile.meshFile);
            printSize(tile.mapFile);
        }
    }
    printSize(mapPath());
}

}  // namespace

void exportMap(const Library& library, const ExportOptions& options) {
    MapExport(library, options).run();
}
