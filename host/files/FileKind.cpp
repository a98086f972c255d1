#include "files/FileKind.h"

#include <algorithm>
#include <stdexcept>

#include "files/Fields.h"
#include "mesh/VemoFile.h"

using namespace std::string_view_literals;

FileKindInfo infoOf(FileKind kind) {
    switch (kind) {
        case FileKind::kTiff:
            return {"TIFF",
                    {".tif", ".tiff"},
                    {"II*\0"sv, "MM\0*"sv, "II+\0"sv, "MM\0+"sv},
                    readTiff,
                    MapFormat::kTiff};
        case FileKind::kPsd:
            return {"PSD", {".psd"}, {"8BPS"}, readPsd, MapFormat::kPsd};
        case FileKind::kBmp:
            return {"BMP", {".bmp"}, {"BM"}, readBmp, MapFormat::kBmp};
        case FileKind::kExr:
            return {"OpenEXR", {".exr"}, {"\x76\x2F\x31\x01"}, readExr};
        case FileKind::kJpeg:
            return {"JPEG", {".jpg", ".jpeg"}, {"\xFF\xD8\xFF"}, readJpeg};
        case FileKind::kTarga:
            return {"Targa", {".tga"}, {}, readTarga};
        case FileKind::kVemo:
            return {"Vemo mesh", {".vemo"}, {}, readVemo};
        case FileKind::kUnknown:
            return {"no format that Quillon knows", {}, {}, nullptr};
    }
    throw std::logic_error("there is no such kind of file");
}

FileKind kindOf(Bytes head, const std::string& path) {
    const std::string_view start(reinterpret_cast<const char*>(head.data), head.size);
    FileKind found = FileKind::kUnknown;
    forEachFileKind([&](FileKind kind) {
        for (const std::string_view expected : infoOf(kind).starts) {
            if (start.starts_with(expected)) found = kind;
        }
    });
    if (found != FileKind::kUnknown) return found;
    return isVemoChunk(head.le32(kFirstChunk)) ? FileKind::kVemo : kindOfPath(path);
}

FileKind kindOfPath(const std::string& path) {
    const std::string extension = extensionOf(path);
    FileKind found = FileKind::kUnknown;
    forEachFileKind([&](FileKind kind) {
        if (std::ranges::count(infoOf(kind).extensions, extension) > 0) found = kind;
    });
    return found;
}
