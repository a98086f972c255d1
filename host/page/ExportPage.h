#pragma once
// The page of an export, put together while the export goes on. Its pictures are JPEG files that
// the library makes of BMP files.

#include <string>

#include "CallLog.h"
#include "Leftovers.h"
#include "page/Page.h"
#include "TileSheet.h"

class ExportPage {
public:
    // What is written for the pictures goes to `working`.
    ExportPage(CallLog& log, Leftovers& working) : log_(log), working_(working) {}

    // The picture of one tile. `path` is where its files may lie, without an extension.
    void addTile(const std::string& path, const std::string& name, const TilePlace& place,
                 const TileMap& map);

    // Writes the page. `sheet` is the merged map, `path` as above for its picture.
    void write(const std::string& page, const std::string& title, const std::string& sheet,
               const std::string& path, const TileSheet& layout);

private:
    PagePicture pictureOf(const std::string& bmp, const std::string& jpeg,
                          const std::string& caption);

    CallLog& log_;
    Leftovers& working_;
    Page page_;
};
