#include "page/ExportPage.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <span>

#include "DiskFile.h"
#include "SheetWriter.h"

namespace {

constexpr double kQuality = 20.0;  // pictures to look at closely

std::string sizeText(std::uint32_t width, std::uint32_t height) {
    return std::to_string(width) + " x " + std::to_string(height);
}

std::string leadOf(const Page& page, const TileSheet& layout) {
    double milliseconds = 0.0;
    for (const PageCall& call : page.calls)
        milliseconds += call.milliseconds;
    std::array<char, 32> time{};
    std::snprintf(time.data(), time.size(), "%.1f", milliseconds);
    return std::to_string(page.tiles.size()) + " UV tiles on a sheet of " +
           sizeText(layout.width(), layout.height()) + " pixels; " +
           std::to_string(page.calls.size()) + " calls to the library took " + time.data() + " ms.";
}

}  // namespace

void ExportPage::addTile(const std::string& path, const std::string& name, const TilePlace& place,
                         const TileMap& map) {
    const std::string bmp = path + ".bmp";
    const TileSheet alone(std::span(&place, 1), map.size);
    working_.add(bmp);
    writeSheet(bmp, MapFormat::kBmp, alone, alone.cellOf(place), map);
    PagePicture picture = pictureOf(bmp, path + ".jpg", name);
    picture.width = picture.height = map.size;
    page_.tiles.push_back(std::move(picture));
}

void ExportPage::write(const std::string& page, const std::string& title, const std::string& sheet,
                       const std::string& path, const TileSheet& layout) {
    page_.title = title;
    page_.sheet = pictureOf(sheet, path + ".jpg", "All tiles folded into one map");
    page_.sheet.width = layout.width();
    page_.sheet.height = layout.height();
    page_.calls = log_.calls();
    page_.lead = leadOf(page_, layout);

    const std::string html = htmlOf(page_);
    OutputFile file(page);
    file.write({reinterpret_cast<const std::uint8_t*>(html.data()), html.size()});
    file.finish();
}

PagePicture ExportPage::pictureOf(const std::string& bmp, const std::string& jpeg,
                                  const std::string& caption) {
    working_.add(jpeg);
    log_.require("saveAsJpeg", {.text = bmp, .value = kQuality, .buffer = jpeg});
    PagePicture picture;
    picture.caption = caption;
    picture.jpeg = readWholeFile(jpeg, "picture");
    return picture;
}
