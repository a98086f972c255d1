#pragma once
// The page of one or more exports of a mesh, put together while they go on. Its pictures are JPEG
// files that the library makes; neither they nor the copies that are timed count as calls of the
// export.

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

    // An export begins, whose calls are in `log`. What is written for the pictures lies in `folder`
    // and is noted in `working`.
    void beginChapter(const std::string& title, const VemoMesh& mesh, const std::string& folder,
                      const CallLog& log, Leftovers& working);
    void endChapter();

    // A tile and its part of a map.
    void addTile(const std::string& name, const VemoMesh& tile, const std::string& map,
                 const MapPart& part);

    // Adds the time of copying a file to what the call at a position of the log is compared with.
    void timeCopyOf(const std::string& path, std::size_t position);

    // The map as a call of a row left it, small.
    void addBetween(const std::string& map, const std::string& caption);

    // The row of calls that ends with the latest, and what it made: nothing, a map, a JPEG file.
    void addStep();
    void addStep(const std::string& map);
    void addJpegStep(const std::string& jpeg);

    // Writes the page.
    void write(const std::string& path);

private:
    PagePicture pictureOf(const Picture& picture, const std::string& caption);
    std::string workFile(const char* name) const;
    PageCall callAt(std::size_t index) const;
    std::string lead() const;

    // Where an export is that goes on.
    struct Work {
        const CallLog& log;
        std::string folder;
        std::map<std::size_t, double> copies;  // of the calls, by their positions
        std::vector<PagePicture> between;
    };

    const Library& library_;
    Page page_;
    std::optional<VemoMesh> mesh_;
    std::optional<FaceColours> colours_;
    std::optional<Work> work_;
};
