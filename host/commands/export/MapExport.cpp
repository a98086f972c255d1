#include "commands/export/MapExport.h"

#include <cmath>
#include <cstdio>
#include <filesystem>
#include <optional>

#include "commands/export/TileMaps.h"
#include "exports/Meanings.h"
#include "files/DiskFile.h"
#include "terminal/Failure.h"
#include "terminal/Interrupt.h"

namespace fs = std::filesystem;

namespace {

std::string titleOf(const ExportOptions& options) {
    const std::string kind = options.map == MapKind::kNormal ? "Normals" : "Heights";
    return kind + " as " + infoOf(options.format).title;
}

class MapExport {
public:
    MapExport(const Library& library, const ExportOptions& options, Report& report,
              ExportPage* page)
        : options_(options), report_(report), run_(library, options, report, page), page_(page) {}

    void run();

private:
    void requireFreeOutputs() const;
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
    std::vector<std::string> remainingFiles() const;
    void printOutputs() const;

    const ExportOptions& options_;
    Report& report_;
    ExportRun run_;
    ExportPage* page_;  // null: none is wanted
    const ExportFiles& files_ = run_.files;
    const MapFormatInfo& format_ = infoOf(options_.format);
    std::vector<Tile> tiles_;
    std::optional<float> scale_;  // of a displacement
};

void MapExport::run() {
    requireFreeOutputs();
    const std::size_t count = findTiles(run_);
    const VemoMesh mesh = readVemo(options_.mesh);
    makeOutFolder(run_);
    makeWorkingFolder(run_);
    if (page_)
        page_->beginChapter(titleOf(options_), mesh, run_.workingFolder, run_.log, run_.working);
    tiles_ = writeTileMeshes(run_, count);
    renderTiles(run_, layOutSheet(run_, mesh, tiles_), tiles_);
    mergeTiles();
    if (!options_.order.empty()) reorderChannels();
    requireWholeMap();
    makeExtras();
    finish();
}

// An earlier output is replaced.
void MapExport::requireFreeOutputs() const {
    for (const std::string& path : files_.wanted(options_))
        requireFreePath(path);
}

void MapExport::mergeTiles() {
    run_.unfinished.add(files_.map);
    process("FileCopyTo", {.text = tiles_.front().mapFile, .buffer = files_.map});
    if (page_) page_->addBetween(files_.map, tiles_.front().name);
    for (std::size_t i = 1; i < tiles_.size(); ++i) {
        stopIfInterrupted();
        run_.progress.show("merging", i, tiles_.size(), tiles_[i].name);
        process(format_.merge, {.text = tiles_[i].mapFile, .buffer = files_.map});
        if (page_) page_->addBetween(files_.map, "+ " + tiles_[i].name);
    }
    if (page_) page_->addStep(files_.map);
}

void MapExport::reorderChannels() {
    for (const int mode : swapsFor(options_.format, options_.order))
        process(format_.swap, {.text = files_.map, .value = static_cast<double>(mode)});
    if (page_) page_->addStep(files_.map);
}

// A call that processes a map and must succeed.
CallResult MapExport::process(std::string_view name, const CallArguments& arguments) {
    if (page_) page_->timeCopyOf(*arguments.text, run_.log.calls().size());
    return run_.log.require(name, arguments);
}

// The library does not report every full disk. The map is as long as each tile's.
void MapExport::requireWholeMap() const {
    if (fs::file_size(files_.map) != fs::file_size(tiles_.front().mapFile))
        throw Failure("cannot write " + files_.map + ": the disk took only a part of it");
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
    scale_ = process("getScale", {.text = files_.map, .value = 1.0}).status;
    if (page_) page_->addStep();
}

void MapExport::convertTo16Bits() {
    run_.unfinished.add(files_.sixteenBitMap);
    constexpr double kGreyToGrey = 1.0;
    process("convertTIFF16",
            {.text = files_.map, .value = kGreyToGrey, .buffer = files_.sixteenBitMap});
    if (page_) page_->addStep(files_.sixteenBitMap);
}

void MapExport::saveTarga() {
    run_.unfinished.add(files_.targa);
    process("saveAsTarga", {.text = files_.map, .buffer = files_.targa});
    if (page_) page_->addStep();
}

void MapExport::makeThumbnail() {
    run_.unfinished.add(files_.thumbnail);
    process("FileCopyTo", {.text = files_.map, .buffer = files_.thumbnail});
    const auto size = static_cast<double>(options_.thumbnail);
    process("CreateThumbnailBMP", {.text = files_.thumbnail, .value = size});
    if (page_) page_->addStep(files_.thumbnail);
}

void MapExport::saveJpeg() {
    run_.unfinished.add(files_.jpeg);
    process("saveAsJpeg", {.text = files_.map, .value = *options_.jpeg, .buffer = files_.jpeg});
    if (page_) page_->addJpegStep(files_.jpeg);
}

void MapExport::finishPage() {
    page_->endChapter();
    if (!options_.page) return;
    run_.unfinished.add(files_.page);
    page_->write(files_.page);
}

void MapExport::finish() {
    run_.unfinished.keep();
    if (options_.keepTiles)
        run_.working.keep();
    else
        run_.working.deleteAll();
    run_.log.finishRow();
    if (scale_) report_.set("scale", jsonOf(*scale_));
    for (const std::string& path : remainingFiles())
        report_.addFile(path);
    if (!printsLines(options_.output)) return;
    std::puts("");
    printOutputs();
}

// The working files that stay come first.
std::vector<std::string> MapExport::remainingFiles() const {
    std::vector<std::string> paths;
    if (options_.keepTiles) {
        for (const Tile& tile : tiles_)
            paths.insert(paths.end(), {tile.meshFile, tile.mapFile});
    }
    const std::vector<std::string> made = files_.wanted(options_);
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
