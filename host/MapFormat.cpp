#include "MapFormat.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <iterator>

namespace {

// In the order of MapFormat.
constexpr MapFormatInfo kFormats[] = {
    {"tiff", ".tif", "mergeMapsTIF", "swapRGBTIF"},
    {"psd", ".psd", "mergeMapsPSD", "swapRGBPSD"},
    {"bmp", ".bmp", "mergeMapsBMP", "swapRGBBMP"},
};

template <typename Matches>
std::optional<MapFormat> formatWhere(Matches matches) {
    const auto* found = std::ranges::find_if(kFormats, matches);
    if (found == std::end(kFormats)) return std::nullopt;
    return static_cast<MapFormat>(found - std::begin(kFormats));
}

std::string lowerCase(std::string text) {
    std::ranges::transform(text, text.begin(), [](char c) {
        return static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    });
    return text;
}

}  // namespace

const MapFormatInfo& infoOf(MapFormat format) {
    return kFormats[static_cast<std::size_t>(format)];
}

std::optional<MapFormat> formatNamed(std::string_view name) {
    return formatWhere([&](const MapFormatInfo& info) { return info.name == name; });
}

std::optional<MapFormat> formatOfPath(const std::string& path) {
    const std::string extension = lowerCase(std::filesystem::path(path).extension().string());
    if (extension == ".tiff") return MapFormat::kTiff;
    return formatWhere([&](const MapFormatInfo& info) { return info.extension == extension; });
}

std::vector<int> swapsFor(MapFormat format, std::string_view order) {
    const bool rotates = format == MapFormat::kPsd;
    if (order == "rbg") return {1};
    if (order == "bgr") return rotates ? std::vector{1, 3} : std::vector{2};
    return rotates ? std::vector{1, 2} : std::vector{3};  // grb
}
