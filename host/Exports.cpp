#include "Exports.h"

#include <algorithm>

#include "Failure.h"

namespace {

using enum BufferUse;

constexpr const char* kNamingMode = "naming mode 0 to 3";
constexpr const char* kSwap = "the exchange, 1 to 3";
constexpr const char* kPlaneOrder = "the order of the planes, 1 to 3";

constexpr Export kExports[] = {
    {"Version", nullptr, nullptr, kNone, nullptr},
    {"CreateFolder", "folder", nullptr, kNone, nullptr},
    {"GetPublicFolder", nullptr, nullptr, kOutput, "the users' folder"},
    {"CheckFolder", "folder", nullptr, kNone, nullptr},
    {"OpenFolder", "folder", nullptr, kNone, nullptr},
    {"GetFile", nullptr, nullptr, kOutput, "an entry's name"},
    {"CloseFolder", nullptr, nullptr, kNone, nullptr},
    {"EmptyFolder", "folder", nullptr, kNone, nullptr},
    {"FileDelete", "file", nullptr, kNone, nullptr},
    {"FileCopyTo", "source", nullptr, kPath, "target"},
    {"FileRename", "old path", nullptr, kPath, "new path"},
    {"GetString", "any text", "first byte, 0 to 10, else 5", kOutput, "the rest of the text"},
    {"clearUVtilesOutput", nullptr, nullptr, kNone, nullptr},
    {"setUVtilesOutput", "tile filter", nullptr, kNone, nullptr},
    {"getUVTile", "mesh", kNamingMode, kOutput, "the last face's tile"},
    {"getUVGroups", "mesh", nullptr, kNone, nullptr},
    {"getUVString", nullptr, "tile position from 0", kOutput, "the tile's name"},
    {"clearUVString", nullptr, nullptr, kNone, nullptr},
    {"getUVs", "mesh", kNamingMode, kPath, "output path"},
    {"getUVsMask", "mesh", kNamingMode, kPath, "output path"},
    {"mergeCrease", "mesh to append", nullptr, kPath, "mesh to append to"},
    {"mergeMapsTIF", "source", nullptr, kPath, "target"},
    {"mergeMapsPSD", "source", nullptr, kPath, "target"},
    {"mergeMapsBMP", "source", nullptr, kPath, "target"},
    {"swapRGBTIF", "map", kSwap, kNone, nullptr},
    {"swapRGBPSD", "map", kPlaneOrder, kNone, nullptr},
    {"swapRGBBMP", "map", kSwap, kNone, nullptr},
    {"convertTIFF16", "map", "target layout 1, 3 or 4", kPath, "target"},
    {"convertTIFFSingle", "map", nullptr, kPath, "target"},
    {"getScale", "map", "channels 1 or 3", kNone, nullptr},
    {"saveAsTarga", "map", nullptr, kPath, "target"},
    {"saveAsJpeg", "image", "0 (finest) to 100, else 50", kPath, "target"},
    {"CreateThumbnailBMP", "image", "pixels of the longer side", kNone, nullptr},
    {"OpenEXR", "image", nullptr, kNone, nullptr},
};

std::string argumentsOf(const Export& entry) {
    std::string line;
    const auto add = [&line](const char* option, const char* what) {
        if (what == nullptr) return;
        line += line.empty() ? "" : ", ";
        line += option;
        line += what;
    };
    add("TEXT ", entry.text);
    add("--value ", entry.value);
    add(entry.buffer == kOutput ? "writes " : "--buffer ", entry.bufferIs);
    return line;
}

}  // namespace

std::span<const Export> allExports() {
    return kExports;
}

const Export* findExport(std::string_view name) {
    const auto* found = std::ranges::find(kExports, name, &Export::name);
    return found == std::end(kExports) ? nullptr : found;
}

const Export& requireExport(std::string_view name) {
    if (const Export* entry = findExport(name)) return *entry;
    throw WrongUsage("there is no export " + std::string(name) +
                     "; quillon call --help lists them all");
}

std::string exportList() {
    std::string list;
    for (const Export& entry : kExports) {
        std::string line = "  " + std::string(entry.name);
        line.resize(22, ' ');
        line += argumentsOf(entry);
        list += line.substr(0, line.find_last_not_of(' ') + 1) + '\n';
    }
    return list;
}
