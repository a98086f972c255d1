#include "commands/ExportCommand.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <optional>
#include <string_view>
#include <vector>

#include "calls/CallLog.h"
#include "calls/Leftovers.h"
#include "exports/Meanings.h"
#include "files/DiskFile.h"
#include "files/TiffWriter.h"
#include "page/ExportPage.h"
#include "render/SheetWriter.h"
#include "terminal/Failure.h"
#include "terminal/Interrupt.h"
#include "terminal/Progress.h"

namespace fs = std::filesystem;

namespace {

struct Tile {
    std::string name;
    std::string meshFile;
    std::string mapFile;
    TilePlace place{};
};

std::string titleOf(const ExportOptions& options) {
    const std::string kind = options.map == MapKind::kNormal ? "Normals" : "Heights";
    return kind + " as " + infoOf(options.format).title;
}

class MapExport {
public:
    MapExport(const Library& library, const ExportOptions& options, Report& report,
              ExportPage* page)
        : options_(options),
          stem_(fs::path(options.mesh).stem().string()),
          format_(infoOf(options.format)),
          map_(outputPath("", format_.extension)),
          sixteenBitMap_(outputPath("_16bit", ".tif")),
          targa_(outputPath("", ".tga")),
          thumbnail_(outputPath("_thumbnail", ".bmp")),
          jpeg_(outputPath("", ".jpg")),
          pagePath_(outputPath("", ".html")),
          report_(report),
          progress_(options.output != OutputStyle::kQuiet),
          log_(library, progress_, report, options.output),
          unfinished_(log_),
          working_(log_),
          page_(page) {}

    void run();

private:
    double naming() const { return options_.naming; }
    std::string outputPath(std::string_view suffix, std::string_view extension) const;
    std::vector<std::string> outputs() const;
    void requireFreeOutputs() const;
    std::size_t findTiles();
    void requireShowable(std::size_t count) const;
    void makeOutFolder();
    void makeWorkingFolder();
    void writeTileMeshes(std::size_t count);
    void nameTiles(std::size_t count);
    TileSheet layOutSheet(const VemoMesh& mesh);
    void requireMergeable(const TileSheet& sheet) const;
    void requireVisibleThumbnail(const TileSheet& sheet) const;
    void renderTiles(const TileSheet& sheet);
    void showTile(const Tile& tile, const VemoMesh& mesh, const TileSheet& sheet);
    void mergeTiles();
    void reorderChannels();
    CallResult process(std::string_view name, const CallArguments& arguments);
    void requireWholeMap() const;
    void makeExtras();
    void measureScale();
    void convertTo16Bits();
    void saveTarga();
    void makeThumbnail();
    void saveJpeg();
    void finishPage();
    void finish();
    void reportOutputs() const;
    std::vector<std::string> remainingFiles() const;
    void printOutputs() const;

    const ExportOptions& options_;
    const std::string stem_;  // the mesh's name, after which everything is named
    const MapFormatInfo& format_;
    const std::string map_;  // the outputs
    const std::string sixteenBitMap_;
    const std::string targa_;
    const std::string thumbnail_;
    const std::string jpeg_;
    const std::string pagePath_;
    std::optional<float> scale_;  // of a displacement
    std::string workingFolder_;
    std::vector<Tile> tiles_;
    Report& report_;
    Progress progress_;
    CallLog log_;
    Leftovers unfinished_;  // the outputs, and their folder if it was made for them
    Leftovers working_;
    ExportPage* page_;  // null: none is wanted
};

void MapExport::run() {
    requireFreeOutputs();
    const std::size_t count = findTiles();
    if (page_) requireShowable(count);
    const VemoMesh mesh = readVemo(options_.mesh);
    makeOutFolder();
    makeWorkingFolder();
    if (page_) page_->beginChapter(titleOf(options_), mesh, workingFolder_, log_, working_);
    writeTileMeshes(count);
    const TileSheet sheet = layOutSheet(mesh);
    renderTiles(sheet);
    mergeTiles();
    if (!options_.order.empty()) reorderChannels();
    requireWholeMap();
    makeExtras();
    finish();
}

std::string MapExport::outputPath(std::string_view suffix, std::string_view extension) const {
    std::string name = stem_ + (options_.map == MapKind::kNormal ? "_normal" : "_height");
    name += suffix;
    name += extension;
    return (fs::path(options_.out) / name).string();
}

std::vector<std::string> MapExport::outputs() const {
    std::vector<std::string> paths{map_};
    if (options_.sixteenBits) paths.push_back(sixteenBitMap_);
    if (options_.targa) paths.push_back(targa_);
    if (options_.thumbnail > 0) paths.push_back(thumbnail_);
    if (options_.jpeg) paths.push_back(jpeg_);
    if (options_.page) paths.push_back(pagePath_);
    return paths;
}

// An earlier output is replaced.
void MapExport::requireFreeOutputs() const {
    for (const std::string& path : outputs())
        requireFreePath(path);
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

void MapExport::requireShowable(std::size_t count) const {
    if (count > kMostTilesOnPage)
        throw Failure(options_.mesh + " has " + std::to_string(count) +
                      " tiles to export, and a page shows up to " +
                      std::to_string(kMostTilesOnPage) + "; choose some with --tiles");
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
    const std::size_t position = log_.calls().size();
    const CallResult written = log_.call("getUVs", arguments);
    // A count of 1501 and more is also the status of a file that was not written.
    const bool allWritten = written.status == static_cast<float>(count);
    nameTiles(count);
    log_.require("clearUVString");
    if (!allWritten) throw Failure(failureSentence("getUVs", arguments, written.status));
    if (tiles_.size() < count) throw Failure("getUVString named fewer tiles than getUVs wrote");
    for (const Tile& tile : tiles_) {
        if (page_) page_->timeCopyOf(tile.meshFile, position);
    }
}

// The library knows the names of all files that it began, also when it could not write them all.
void MapExport::nameTiles(std::size_t count) {
    for (std::size_t position = 0; position < count; ++position) {
        const auto value = static_cast<double>(position);
        const CallResult named = log_.require("getUVString", {.value = value});
        if (!named.text) return;
        const fs::path base = fs::path(workingFolder_) / (stem_ + *named.text);
        tiles_.push_back(
            {*named.text, base.string() + ".Vemo", base.string() + std::string(format_.extension)});
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
    if (options_.format == MapFormat::kTiff) requireMergeable(sheet);
    if (options_.thumbnail > 0) requireVisibleThumbnail(sheet);
    return sheet;
}

// A TIFF is merged only where its pixels take more bytes than what precedes them.
void MapExport::requireMergeable(const TileSheet& sheet) const {
    const std::uint64_t pixels = std::uint64_t{sheet.width()} * sheet.height();
    if (pixels * pixelBytesOf(options_.map) <= kTiffPixelOffset)
        throw Failure("a sheet of " + std::to_string(sheet.width()) + " x " +
                      std::to_string(sheet.height()) +
                      " pixels is too small to merge; raise --size");
}

// The shorter side of a thumbnail is rounded down, to nothing for a long thin sheet.
void MapExport::requireVisibleThumbnail(const TileSheet& sheet) const {
    const std::uint64_t shorter = std::min(sheet.width(), sheet.height());
    const std::uint32_t longer = std::max(sheet.width(), sheet.height());
    if (options_.thumbnail <= longer && options_.thumbnail * shorter <= longer)
        throw Failure("a sheet of " + std::to_string(sheet.width()) + " x " +
                      std::to_string(sheet.height()) +
                      " pixels is too thin for that thumbnail; raise --thumbnail");
}

void MapExport::renderTiles(const TileSheet& sheet) {
    std::size_t done = 0;
    for (const Tile& tile : tiles_) {
        stopIfInterrupted();
        progress_.show("rendering", done++, tiles_.size(), tile.name);
        const VemoMesh mesh = readVemo(tile.meshFile);
        const TileMap map = renderTile(mesh, options_.map, sheet.cellSize());
        working_.add(tile.mapFile);
        writeSheet(tile.mapFile, options_.format, sheet, sheet.cellOf(tile.place), map);
        if (page_) showTile(tile, mesh, sheet);
    }
    log_.print("(rendered)", std::to_string(tiles_.size()),
               "maps of " + std::to_string(sheet.width()) + " x " + std::to_string(sheet.height()) +
                   " pixels, as Morvane does");
}

void MapExport::showTile(const Tile& tile, const VemoMesh& mesh, const TileSheet& sheet) {
    const Cell cell = sheet.cellOf(tile.place);
    const std::uint32_t size = sheet.cellSize();
    page_->addTile(tile.name, mesh, tile.mapFile, {cell.left, cell.top, size, size});
}

void MapExport::mergeTiles() {
    unfinished_.add(map_);
    process("FileCopyTo", {.text = tiles_.front().mapFile, .buffer = map_});
    if (page_) page_->addBetween(map_, tiles_.front().name);
    for (std::size_t i = 1; i < tiles_.size(); ++i) {
        stopIfInterrupted();
        progress_.show("merging", i, tiles_.size(), tiles_[i].name);
        process(format_.merge, {.text = tiles_[i].mapFile, .buffer = map_});
        if (page_) page_->addBetween(map_, "+ " + tiles_[i].name);
    }
    if (page_) page_->addStep(map_);
}

void MapExport::reorderChannels() {
    for (const int mode : swapsFor(options_.format, options_.order))
        process(format_.swap, {.text = map_, .value = static_cast<double>(mode)});
    if (page_) page_->addStep(map_);
}

// A call that works through a map, which has to succeed.
CallResult MapExport::process(std::string_view name, const CallArguments& arguments) {
    if (page_) page_->timeCopyOf(*arguments.text, log_.calls().size());
    return log_.require(name, arguments);
}

// The library does not report every full disk. A map is as long as each of the tiles' own.
void MapExport::requireWholeMap() const {
    if (fs::file_size(map_) != fs::file_size(tiles_.front().mapFile))
        throw Failure("cannot write " + map_ + ": the disk took only a part of it");
}

void MapExport::makeExtras() {
    stopIfInterrupted();
    if (options_.map == MapKind::kHeight && options_.format == MapFormat::kTiff) measureScale();
    if (options_.sixteenBits) convertTo16Bits();
    if (options_.targa) saveTarga();
    if (options_.thumbnail > 0) makeThumbnail();
    if (options_.jpeg) saveJpeg();
    if (page_) finishPage();
    stopIfInterrupted();
}

void MapExport::measureScale() {
    scale_ = process("getScale", {.text = map_, .value = 1.0}).status;
    if (page_) page_->addStep();
}

void MapExport::convertTo16Bits() {
    unfinished_.add(sixteenBitMap_);
    constexpr double kGreyToGrey = 1.0;
    process("convertTIFF16", {.text = map_, .value = kGreyToGrey, .buffer = sixteenBitMap_});
    if (page_) page_->addStep(sixteenBitMap_);
}

void MapExport::saveTarga() {
    unfinished_.add(targa_);
    process("saveAsTarga", {.text = map_, .buffer = targa_});
    if (page_) page_->addStep();
}

void MapExport::makeThumbnail() {
    unfinished_.add(thumbnail_);
    process("FileCopyTo", {.text = map_, .buffer = thumbnail_});
    const auto size = static_cast<double>(options_.thumbnail);
    process("CreateThumbnailBMP", {.text = thumbnail_, .value = size});
    if (page_) page_->addStep(thumbnail_);
}

void MapExport::saveJpeg() {
    unfinished_.add(jpeg_);
    process("saveAsJpeg", {.text = map_, .value = *options_.jpeg, .buffer = jpeg_});
    if (page_) page_->addJpegStep(jpeg_);
}

void MapExport::finishPage() {
    page_->endChapter();
    if (!options_.page) return;
    unfinished_.add(pagePath_);
    page_->write(pagePath_);
}

void MapExport::finish() {
    unfinished_.keep();
    if (options_.keepTiles)
        working_.keep();
    else
        working_.deleteAll();
    log_.finishRow();
    reportOutputs();
    if (!printsLines(options_.output)) return;
    std::puts("");
    printOutputs();
}

void MapExport::reportOutputs() const {
    if (scale_) report_.set("scale", jsonOf(*scale_));
    for (const std::string& path : remainingFiles())
        report_.addFile(path);
}

// The working files that stay come first.
std::vector<std::string> MapExport::remainingFiles() const {
    std::vector<std::string> paths;
    if (options_.keepTiles) {
        for (const Tile& tile : tiles_)
            paths.insert(paths.end(), {tile.meshFile, tile.mapFile});
    }
    const std::vector<std::string> made = outputs();
    paths.insert(paths.end(), made.begin(), made.end());
    return paths;
}

void MapExport::printOutputs() const {
    if (scale_) {
        std::printf("displacement scale %s\n", std::isinf(*scale_)
                                                   ? "infinite: the map has too few levels to tell"
                                                   : statusText(*scale_).c_str());
    }
    for (const std::string& path : remainingFiles())
        printSize(path);
}

}  // namespace

void exportMap(const Library& library, const ExportOptions& options, Report& report,
               ExportPage* page) {
    noteInterrupts();
    MapExport(library, options, report, page).run();
}

void exportMap(const Library& library, const ExportOptions& options, Report& report) {
    if (!options.page) return exportMap(library, options, report, nullptr);
    ExportPage page(library, "The maps of " + fs::path(options.mesh).stem().string());
    exportMap(library, options, report, &page);
}
