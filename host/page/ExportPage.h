#pragma once
// The page of one or more exports of a mesh, built while they run. Its pictures are JPEG files that
// the library encodes; these calls, and the copies that are timed, are not among the export's calls.

#include <map>
#include <optional>
#include <string>

#include "calls/CallLog.h"
#include "calls/Leftovers.h"
#include "calls/Library.h"
#include "mesh/VemoMesh.h"
#include "page/MapPicture.h"
#include "page/ModelPicture.h"
#include "page/Page.h"

// Of how many tiles a page shows the maps.
inline constexpr std::size_t kMaxTilesOnPage = 200;

class ExportPage {
public:
    ExportPage(const Library& library, std::string title);

    // Starts a chapter for an export, whose calls are in `log`. Files for the pictures are written to
    // `folder` and added to `working`.
    void beginChapter(const std::string& title, const VemoMesh& mesh, const std::string& folder,
                      const CallLog& log, Leftovers& working);
    void endChapter();

    // Adds a tile and its part of a map.
    void addTile(const std::string& name, const VemoMesh& tile, const std::string& map,
                 const MapPart& part);

    // Adds the time to copy a file to what the call at a position of the log is compared with.
    void timeCopyOf(const std::string& path, std::size_t position);

    // Adds a small picture of the map after one of several calls.
    void addBetween(const std::string& map, const std::string& caption);

    // Adds the latest calls of one export, and what they wrote: nothing, a map, a JPEG file.
    void addStep();
    void addStep(const std::string& map);
    void addJpegStep(const std::string& jpeg);

    // Writes the page.
    void write(const std::string& path);

private:
    PagePicture pictureOf(const Picture& picture, const std::string& caption);
    std::string workFile(const char* name) const;
    PageCall callAt(std::size_t index) const;
    std::string groupsIn(const VemoMesh& tile) const;  // the face groups of a tile's faces
    std::string lead() const;

    // The state of the export that runs.
    struct Work {
        const CallLog& log;
        std::string folder;
        std::map<std::size_t, double> copies;  // by the positions of the calls
        std::vector<PagePicture> between;
    };

    const Library& library_;
    Page page_;
    VemoMesh mesh_;
    std::vector<Rgb> colours_;  // of the faces
    std::optional<Work> work_;
};
