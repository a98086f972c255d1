#pragma once
// What each export returns when it cannot open one of its files.

#include <map>
#include <string>
#include <string_view>
#include <vector>

// An entry of a scenario's folder and the export's status when it cannot be opened, or created.
struct Opened {
    std::string name;
    float refused;
};

inline const std::map<std::string_view, std::vector<Opened>> kOpened = {
    {"FileCopyTo", {{"a.tif", -1}}},
    {"setUVtilesOutput", {{"tiles.txt", -1}}},
    {"getUVTile", {{"mesh.vws", -17}}},
    {"getUVGroups", {{"mesh.vws", -17}}},
    {"getUVs", {{"mesh.vws", -1760}, {"tile1001.Vemo", 1501}, {"tile1011.Vemo", 1503}}},
    {"getUVsMask", {{"mesh.vws", -1760}, {"tile1001.Vemo", 1501}, {"tile1011.Vemo", 1503}}},
    {"mergeCrease", {{"mesh.vws", -1760}, {"all.vws", -2760}}},
    {"mergeMapsTIF", {{"tile.map", -10}, {"all.map", -20}}},
    {"mergeMapsPSD", {{"tile.map", -1}, {"all.map", -1}}},
    {"mergeMapsBMP", {{"tile.map", -1770}, {"all.map", -1760}}},
    {"swapRGBTIF", {{"one.map", -10}}},
    {"swapRGBPSD", {{"one.map", -1}}},
    {"swapRGBBMP", {{"one.map", -1760}}},
    {"convertTIFF16", {{"one.map", -10}, {"out.tif", -201}, {"out.psd", -201}}},
    {"convertTIFFSingle", {{"one.map", -10}, {"out.tif", -201}}},
    {"getScale", {{"one.map", -10}}},
    {"saveAsTarga", {{"one.map", -10}, {"out.tga", -5}}},
    {"saveAsJpeg", {{"one.map", 3}, {"out.jpg", -1}}},
    {"CreateThumbnailBMP", {{"one.map", -1}}},
    {"OpenEXR", {{"one.exr", -7}}},
};
