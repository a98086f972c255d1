#include "files/MapFormat.h"

#include <stdexcept>

#include "files/FileKind.h"

namespace {

// Calls `use` with each format and the kind of its files.
template <typename Use>
void forEachFormat(Use use) {
    forEachFileKind([&](FileKind kind) {
        if (const auto format = infoOf(kind).mapFormat) use(*format, kind);
    });
}

}  // namespace

const MapFormatInfo& infoOf(MapFormat format) {
    static constexpr MapFormatInfo kTiff{"tiff",       "TIFF", ".tif", "mergeMapsTIF",
                                         "swapRGBTIF", false,  32};
    static constexpr MapFormatInfo kPsd{"psd",        "PSD", ".psd", "mergeMapsPSD",
                                        "swapRGBPSD", true,  16};
    static constexpr MapFormatInfo kBmp{"bmp",        "BMP", ".bmp", "mergeMapsBMP",
                                        "swapRGBBMP", false, 0};
    switch (format) {
        case MapFormat::kTiff:
            return kTiff;
        case MapFormat::kPsd:
            return kPsd;
        case MapFormat::kBmp:
            return kBmp;
    }
    throw std::logic_error("there is no such map format");
}

std::vector<std::string> formatNames() {
    std::vector<std::string> names;
    forEachFormat([&](MapFormat format, FileKind) { names.emplace_back(infoOf(format).name); });
    return names;
}

std::vector<std::string> mapExtensions() {
    std::vector<std::string> all;
    forEachFormat([&](MapFormat, FileKind kind) {
        const auto extensions = infoOf(kind).extensions;
        all.insert(all.end(), extensions.begin(), extensions.end());
    });
    return all;
}

std::optional<MapFormat> formatNamed(std::string_view name) {
    std::optional<MapFormat> found;
    forEachFormat([&](MapFormat format, FileKind) {
        if (name == infoOf(format).name) found = format;
    });
    return found;
}

std::optional<MapFormat> formatOfPath(const std::string& path) {
    return infoOf(kindOfPath(path)).mapFormat;
}

std::vector<int> swapsFor(MapFormat format, std::string_view order) {
    const bool rotates = infoOf(format).swapRotates;
    if (order == "rbg") return {1};
    if (order == "bgr") return rotates ? std::vector{1, 3} : std::vector{2};
    return rotates ? std::vector{1, 2} : std::vector{3};  // grb
}
