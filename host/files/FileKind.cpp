#include "files/FileKind.h"

#include <algorithm>
#include <stdexcept>

#include "files/DiskFile.h"
#include "files/VemoChunks.h"
#include "mesh/VemoFile.h"

using namespace std::string_view_literals;

FileKindInfo infoOf(FileKind kind) {
    switch (kind) {
        case FileKind::kTiff:
            return {"TIFF", {".tif", ".tiff"}, {"II*\0"sv, "MM\0*"sv}};
        case FileKind::kPsd:
            return {"PSD", {".psd"}, {"8BPS"}};
        case FileKind::kBmp:
            return {"BMP", {".bmp"}, {"BM"}};
        case FileKind::kExr:
            return {"OpenEXR", {".exr"}, {"\x76\x2F\x31\x01"}};
        case FileKind::kJpeg:
            return {"JPEG", {".jpg", ".jpeg"}, {"\xFF\xD8\xFF"}};
        case FileKind::kTarga:
            return {"Targa", {".tga"}, {}};
        case FileKind::kVemo:
            return {"Vemo mesh", {".vemo"}, {}};
        case FileKind::kUnknown:
            return {"no format that Quillon knows", {}, {}};
    }
    throw std::logic_error("there is no such kind of file");
}

FileKind kindOf(Bytes head, const std::string& path) {
    const std::string_view start(reinterpret_cast<const char*>(head.data), head.size);
    FileKind found = FileKind::kUnknown;
    forEachFileKind([&](FileKind kind) {
        const auto begins = [&](std::string_view text) { return start.starts_with(text); };
        if (std::ranges::any_of(infoOf(kind).starts, begins)) found = kind;
    });
    if (found != FileKind::kUnknown) return found;
    return findChunkKind(head.le32(kFirstChunk)) != nullptr ? FileKind::kVemo : kindOfPath(path);
}

FileKind kindOfPath(const std::string& path) {
    const std::string extension = extensionOf(path);
    FileKind found = FileKind::kUnknown;
    forEachFileKind([&](FileKind kind) {
        if (std::ranges::count(infoOf(kind).extensions, extension) > 0) found = kind;
    });
    return found;
}
