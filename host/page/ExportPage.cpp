#include "page/ExportPage.h"

#include <algorithm>
#include <filesystem>
#include <utility>

#include "exports/Meanings.h"
#include "files/DiskFile.h"
#include "files/FileFacts.h"
#include "mesh/TileList.h"
#include "page/CopyTime.h"
#include "page/Html.h"
#include "terminal/Failure.h"

namespace fs = std::filesystem;

namespace {

constexpr double kQuality = 20.0;  // pictures to look at closely

// Sides of pictures in pixels, for screens with two pixels where the page counts one.
constexpr std::uint32_t kModelWidth = 1600;
constexpr std::uint32_t kModelHeight = 800;
constexpr std::uint32_t kTileSide = 240;
constexpr std::uint32_t kSmallSide = 500;
constexpr std::uint32_t kLargeSide = 2144;

// Names of working files that no tile has.
constexpr const char* kPictureFile = "page.bmp";
constexpr const char* kJpegFile = "page.jpg";
constexpr const char* kCopyFile = "page.copy";

std::string captionOf(const std::string& file) {
    const FileFacts facts = factsOf(file);
    std::string caption = fs::path(file).filename().string() + ": ";
    if (const auto& picture = facts.picture) {
        caption += std::to_string(picture->width) + " x " + std::to_string(picture->height) +
                   " pixels of " + std::to_string(picture->channels * picture->depth) + " bits, ";
    }
    return caption + grouped(facts.bytes) + " bytes";
}

}  // namespace

ExportPage::ExportPage(const Library& library, std::string title) : library_(library) {
    page_.title = std::move(title);
}

void ExportPage::beginChapter(const std::string& title, const VemoMesh& mesh,
                              const std::string& folder, const CallLog& log, Leftovers& working) {
    if (page_.chapters.empty()) {
        mesh_ = mesh;
        colours_.assign(mesh.faces.size(), kNoTileColour);
    }
    page_.chapters.push_back({title, {}, {}});
    work_.emplace(Work{log, folder, {}, {}});
    for (const char* name : {kPictureFile, kJpegFile, kCopyFile})
        working.add(workFile(name));
}

void ExportPage::endChapter() {
    if (page_.chapters.size() == 1) {
        const Picture model = pictureOfModel(mesh_, colours_, kModelWidth, kModelHeight);
        page_.model = pictureOf(model, "The model, each UV tile in its colour");
    }
    std::vector<PageCall>& calls = page_.chapters.back().calls;
    for (std::size_t i = 0; i < work_->log.calls().size(); ++i)
        calls.push_back(callAt(i));
    work_.reset();
}

void ExportPage::addTile(const std::string& name, const VemoMesh& tile, const std::string& map,
                         const MapPart& part) {
    auto card = std::ranges::find(page_.tiles, name, &PageTile::name);
    if (card == page_.tiles.end()) {
        const Rgb colour = tileColour(page_.tiles.size());
        colourFaces(colours_, tile, colour);
        const Picture layout = pictureOfLayout(tile, colour, kTileSide);
        PagePicture picture = pictureOf(layout, "UVs of " + name);
        page_.tiles.push_back({name, cssOf(colour), groupsIn(tile), {std::move(picture)}});
        card = page_.tiles.end() - 1;
    }
    const std::string caption = page_.chapters.back().title + " of " + name;
    card->pictures.push_back(pictureOf(pictureOfMap(map, part, kTileSide), caption));
}

void ExportPage::timeCopyOf(const std::string& path, std::size_t position) {
    work_->copies[position] += copyMilliseconds(path, workFile(kCopyFile));
}

void ExportPage::addBetween(const std::string& map, const std::string& caption) {
    work_->between.push_back(pictureOf(pictureOfMap(map, kSmallSide), caption));
}

void ExportPage::addStep() {
    const std::vector<CallRecord>& calls = work_->log.calls();
    const CallRecord& latest = calls.back();
    const Export& entry = requireExport(latest.name);
    PageStep& step = page_.chapters.back().steps.emplace_back();
    step.does = entry.purpose;
    if (entry.countOne != nullptr) step.does += " Here: " + statusText(latest.result.status) + '.';
    step.between = std::exchange(work_->between, {});
    std::size_t first = calls.size() - 1;
    while (first > 0 && calls[first - 1].name == latest.name)
        --first;
    for (; first < calls.size(); ++first)
        step.calls.push_back(callAt(first));
}

void ExportPage::addStep(const std::string& map) {
    addStep();
    page_.chapters.back().steps.back().after =
        pictureOf(pictureOfMap(map, kLargeSide), captionOf(map));
}

void ExportPage::addJpegStep(const std::string& jpeg) {
    addStep();
    PagePicture picture;
    picture.caption = captionOf(jpeg);
    picture.jpeg = readWholeFile(jpeg, "picture");
    if (const auto size = factsOf(jpeg).picture) {
        picture.width = static_cast<std::uint32_t>(size->width);
        picture.height = static_cast<std::uint32_t>(size->height);
    }
    page_.chapters.back().steps.back().after = std::move(picture);
}

void ExportPage::write(const std::string& path) {
    page_.lead = lead();
    const std::string html = htmlOf(page_);
    OutputFile file(path);
    file.append({reinterpret_cast<const std::uint8_t*>(html.data()), html.size()});
    file.finish();
}

PagePicture ExportPage::pictureOf(const Picture& picture, const std::string& caption) {
    const std::string bmp = workFile(kPictureFile);
    const std::string jpeg = workFile(kJpegFile);
    writePicture(bmp, picture);
    const CallRecord made =
        library_.call("saveAsJpeg", {.text = bmp, .value = kQuality, .buffer = jpeg});
    if (!made.meaning.success) throw Failure(failureSentence(made));
    return {caption, readWholeFile(jpeg, "picture"), picture.width, picture.height};
}

std::string ExportPage::workFile(const char* name) const {
    return (fs::path(work_->folder) / name).string();
}

PageCall ExportPage::callAt(std::size_t index) const {
    const CallRecord& call = work_->log.calls()[index];
    const auto copy = work_->copies.find(index);
    return {call.name, detailOf(call), statusText(call.result.status), call.milliseconds,
            copy == work_->copies.end() ? std::nullopt : std::optional(copy->second)};
}

std::string ExportPage::groupsIn(const VemoMesh& tile) const {
    FacesByGroup groups;
    for (std::size_t face = 0; face < std::min(mesh_.groups.size(), tile.uvs.size()); ++face) {
        if (isInTile(tile.uvs[face][0])) ++groups[mesh_.groups[face]];
    }
    return groupsText(groups);
}

std::string ExportPage::lead() const {
    std::size_t calls = 0;
    double milliseconds = 0.0;
    for (const PageChapter& chapter : page_.chapters) {
        calls += chapter.calls.size();
        for (const PageCall& call : chapter.calls)
            milliseconds += call.milliseconds;
    }
    const std::size_t crossing = crossingFaces(tilesOf(mesh_, kNumberNaming)).count;
    const std::string unpainted = crossing == 0 ? ""
                                                : " No map shows " + counted(crossing, "face") +
                                                      " with corners in several tiles.";
    return counted(mesh_.faces.size(), "face") + " on " + counted(page_.tiles.size(), "UV tile") +
           ", a colour each; " + counted(calls, "call") + " to the library took " +
           fixed(milliseconds, 1) + " ms." + unpainted;
}
