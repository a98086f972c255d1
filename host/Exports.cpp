#include "Exports.h"

#include <algorithm>

namespace {

using enum BufferUse;

constexpr const char* kNamingMode = "naming mode 0 to 3";
constexpr const char* kSwap = "the exchange, 1 to 3";
constexpr const char* kPlaneOrder = "the order of the planes, 1 to 3";

constexpr Export kExports[] = {
    {"Version", nullptr, nullptr, kNone, nullptr, false},
    {"CreateFolder", "folder", nullptr, kNone, nullptr, false},
    {"GetPublicFolder", nullptr, nullptr, kOutput, "the users' folder", false},
    {"CheckFolder", "folder", nullptr, kNone, nullptr, false},
    {"OpenFolder", "folder", nullptr, kNone, nullptr, false},
    {"GetFile", nullptr, nullptr, kOutput, "an entry's name", false},
    {"CloseFolder", nullptr, nullptr, kNone, nullptr, false},
    {"EmptyFolder", "folder", nullptr, kNone, nullptr, false},
    {"FileDelete", "file", nullptr, kNone, nullptr, false},
    {"FileCopyTo", "source", nullptr, kPath, "target", false},
    {"FileRename", "old path", nullptr, kPath, "new path", false},
    {"GetString", "any text", "first byte, 0 to 10, else 5", kOutput, "the rest of the text",
     false},
    {"clearUVtilesOutput", nullptr, nullptr, kNone, nullptr, false},
    {"setUVtilesOutput", "tile filter", nullptr, kNone, nullptr, false},
    {"getUVTile", "mesh", kNamingMode, kOutput, "the last face's tile", false},
    {"getUVGroups", "mesh", nullptr, kNone, nullptr, false},
    {"getUVString", nullptr, "tile position from 0", kOutput, "the tile's name", false},
    {"clearUVString", nullptr, nullptr, kNone, nullptr, false},
    {"getUVs", "mesh", kNamingMode, kPath, "output path", false},
    {"getUVsMask", "mesh", kNamingMode, kPath, "output path", false},
    {"mergeCrease", "mesh", nullptr, kPath, "mesh", true},
    {"mergeMapsTIF", "source", nullptr, kPath, "target", false},
    {"mergeMapsPSD", "source", nullptr, kPath, "target", false},
    {"mergeMapsBMP", "source", nullptr, kPath, "target", false},
    {"swapRGBTIF", "map", kSwap, kNone, nullptr, false},
    {"swapRGBPSD", "map", kPlaneOrder, kNone, nullptr, false},
    {"swapRGBBMP", "map", kSwap, kNone, nullptr, false},
    {"convertTIFF16", "map", "target layout 1, 3 or 4", kPath, "target", false},
    {"convertTIFFSingle", "map", nullptr, kPath, "target", false},
    {"getScale", "map", "channels 1 or 3", kNone, nullptr, false},
    {"saveAsTarga", "map", nullptr, kPath, "target", false},
    {"saveAsJpeg", "image", "quality 0 to 100, else 50", kPath, "target", true},
    {"CreateThumbnailBMP", "image", "pixels of the longer side", kNone, nullptr, false},
    {"OpenEXR", "image", nullptr, kNone, nullptr, true},
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
    if (entry.notYet) line += " (not in this version yet)";
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
