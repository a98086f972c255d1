#include "files/MapFormat.h"

#include <algorithm>
#include <iterator>

#include "files/DiskFile.h"

namespace {

// In the order of MapFormat.
constexpr MapFormatInfo kFormats[] = {
    {"tiff", "TIFF", ".tif", "mergeMapsTIF", "swapRGBTIF"},
    {"psd", "PSD", ".psd", "mergeMapsPSD", "swapRGBPSD"},
    {"bmp", "BMP", ".bmp", "mergeMapsBMP", "swapRGBBMP"},
};

template <typename Matches>
std::optional<MapFormat> formatWhere(Matches matches) {
    const auto* found = std::ranges::find_if(kFormats, matches);
    if (found == std::end(kFormats)) return std::nullopt;
    return static_cast<MapFormat>(found - std::begin(kFormats));
}

}  // namespace

const MapFormatInfo& infoOf(MapFormat format) {
    return kFormats[static_cast<std::size_t>(format)];
}

std::vector<std::string> formatNames() {
    std::vector<std::string> names;
    for (const MapFormatInfo& info : kFormats)
        names.emplace_back(info.name);
    return names;
}

std::optional<MapFormat> formatNamed(std::string_view name) {
    return formatWhere([&](const MapFormatInfo& info) { return name == info.name; });
}

std::optional<MapFormat> formatOfPath(const std::string& path) {
    const std::string extension = extensionOf(path);
    if (extension == ".tiff") return MapFormat::kTiff;
    return formatWhere([&](const MapFormatInfo& info) { return info.extension == extension; });
}

std::vector<int> swapsFor(MapFormat format, std::string_view order) {
    const bool rotates = format == MapFormat::kPsd;
    if (order == "rbg") return {1};
    if (order == "bgr") return rotates ? std::vector{1, 3} : std::vector{2};
    return rotates ? std::vector{1, 2} : std::vector{3};  // grb
}
