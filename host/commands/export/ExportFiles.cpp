#include "commands/export/ExportFiles.h"

#include <filesystem>

namespace fs = std::filesystem;

std::string stemOf(const ExportOptions& options) {
    return fs::path(options.mesh).stem().string();
}

ExportFiles::ExportFiles(const ExportOptions& options, const std::string& tile) {
    const std::string kind = options.map == MapKind::kNormal ? "_normal" : "_height";
    const std::string name = stemOf(options) + kind + (tile.empty() ? "" : '_' + tile);
    const auto path = [&](const std::string& ending) {
        return (fs::path(options.out) / (name + ending)).string();
    };
    map = path(std::string(infoOf(options.format).extension));
    sixteenBitMap = path("_16bit.tif");
    targa = path(".tga");
    thumbnail = path("_thumbnail.bmp");
    jpeg = path(".jpg");
    page = path(".html");
}

std::vector<std::string> ExportFiles::wanted(const ExportOptions& options) const {
    std::vector<std::string> paths{map};
    if (options.sixteenBits) paths.push_back(sixteenBitMap);
    if (options.targa) paths.push_back(targa);
    if (options.thumbnail > 0) paths.push_back(thumbnail);
    if (options.jpeg) paths.push_back(jpeg);
    if (options.page) paths.push_back(page);
    return paths;
}
