#include "faults/Scenarios.h"

#include <ImfChannelList.h>
#include <ImfFrameBuffer.h>
#include <ImfHeader.h>
#include <ImfOutputFile.h>

#include <algorithm>
#include <filesystem>
#include <stdexcept>
#include <utility>

#include "support/Append.h"
#include "support/BmpFile.h"
#include "support/PsdFile.h"
#include "support/TiffFile.h"
#include "support/VemoBuilder.h"

namespace {

namespace fs = std::filesystem;

// Maps of one piece and, where files are moved in pieces of 256 KiB, of several.
constexpr std::uint32_t kSmall = 20;
constexpr std::uint32_t kLarge = 320;

// Samples of pixels: every fourth, from one that `seed` chooses on, and the first are background, all
// 7; every seventh of the others is black.
template <typename Sample>
std::vector<Sample> paintedSamples(std::uint32_t side, std::uint32_t channels, std::uint32_t seed) {
    std::vector<Sample> samples;
    for (std::uint32_t pixel = 0; pixel < side * side; ++pixel) {
        const bool background = pixel == 0 || pixel % 4 == seed % 4;
        const bool black = pixel % 7 == 3;
        for (std::uint32_t channel = 0; channel < channels; ++channel) {
            const std::uint32_t painted = black ? 0 : (pixel * seed + 41 * channel) % 251 + 1;
            samples.push_back(static_cast<Sample>(background ? 7 : painted));
        }
    }
    return samples;
}

ByteList tiff8(std::uint32_t side, std::uint32_t seed) {
    return TiffFile(side, side, TiffFile::Order::kDirectoryFirst)
        .rgb8(paintedSamples<std::uint8_t>(side, 3, seed))
        .bytes();
}

// Samples from 0 to 1, the directory where the host writes it.
ByteList tiffFloat(std::uint32_t side, std::uint32_t channels) {
    std::vector<float> samples = paintedSamples<float>(side, channels, 5);
    for (float& sample : samples)
        sample /= 256.0f;
    TiffFile map(side, side, TiffFile::Order::kDirectoryFirst);
    map.entry(254, 1, 0);
    return (channels == 1 ? map.grey32(samples) : map.rgb32(samples)).bytes();
}

ByteList psdRgb(std::uint32_t side, std::uint32_t seed) {
    ByteList planes;
    for (std::uint32_t plane = 0; plane < 3; ++plane)
        append(planes, paintedSamples<std::uint8_t>(side, 1, seed + plane));
    return PsdFile(side, side).resources(12).planes(planes);
}

ByteList psdGrey16(std::uint32_t side, std::uint32_t seed) {
    return PsdFile(side, side).grey16().planes(paintedSamples<std::uint8_t>(side, 2, seed));
}

ByteList bmp(std::uint32_t side, std::uint32_t seed) {
    return BmpFile(static_cast<std::int32_t>(side), static_cast<std::int32_t>(side))
        .pixels(paintedSamples<std::uint8_t>(side, 3, seed));
}

// A large map that is painted in two places far apart, one of them with holes in it.
ByteList tilePixels(std::size_t pixelBytes) {
    ByteList bytes;
    for (std::size_t pixel = 0; pixel < kLarge * kLarge; ++pixel) {
        const bool solid = pixel / 2000 == 3;
        const bool holed = pixel / 2000 == 30 && pixel % 4 != 0;
        bytes.insert(bytes.end(), pixelBytes, solid ? 9 : holed ? 5 : 7);
    }
    return bytes;
}

ByteList tileTiff() {
    return TiffFile(kLarge, kLarge, TiffFile::Order::kDirectoryFirst).rgb8(tilePixels(3)).bytes();
}

// Painted in its first pixel, too: there the map under it shows which colour its background has.
ByteList tilePsd() {
    ByteList planes;
    for (int plane = 0; plane < 3; ++plane) {
        ByteList pixels = tilePixels(1);
        pixels.front() = 9;
        append(planes, pixels);
    }
    return PsdFile(kLarge, kLarge).resources(12).planes(planes);
}

ByteList tileBmp() {
    return BmpFile(kLarge, kLarge).pixels(tilePixels(3));
}

// The first of them, and again from the start, until there are `count`.
template <typename Item>
std::vector<Item> inTurn(const std::vector<Item>& items, std::size_t count) {
    std::vector<Item> all;
    while (all.size() < count)
        all.push_back(items[all.size() % items.size()]);
    return all;
}

// Faces in the tiles 1001, 1002 and 1011, of two groups.
ByteList mesh(std::size_t faces = 3) {
    return VemoBuilder()
        .vertices({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}, {0.5f, 2, 0}})
        .faces(inTurn<VemoBuilder::Face>({{0, 1, 2, 3}, {3, 2, 4, -1}, {0, 2, 4, -1}}, faces))
        .flatFaceUvs(
            inTurn<std::array<float, 2>>({{0.5f, 0.5f}, {1.5f, 0.5f}, {0.25f, 1.75f}}, faces))
        .groups(inTurn<std::int16_t>({5, 5, 2}, faces))
        .closing()
        .bytes();
}

// More faces than are read at once.
ByteList meshOfOneTile() {
    const std::vector<std::array<float, 2>> uvs(10000, {0.5f, 0.25f});
    return VemoBuilder().vertices({{1, 2, 3}}).flatFaceUvs(uvs).closing().bytes();
}

// An image of one channel of half floats, 0 to 1, packed.
ByteList exr(Imf::Compression compression, int side = 40) {
    std::vector<half> samples;
    for (int i = 0; i < side * side; ++i)
        samples.emplace_back(static_cast<float>(i * 37 % 129) / 128.0f);
    Imf::Header header(side, side);
    header.compression() = compression;
    header.channels().insert("Y", Imf::Channel(Imf::HALF));
    Imf::FrameBuffer frame;
    frame.insert("Y", Imf::Slice(Imf::HALF, reinterpret_cast<char*>(samples.data()), sizeof(half),
                                 sizeof(half) * static_cast<std::size_t>(side)));

    const TempDir dir;
    const std::string path = dir.path("image.exr");
    {
        Imf::OutputFile file(path.c_str(), header);
        file.setFrameBuffer(frame);
        file.writePixels(side);
    }
    return readBytes(path);
}

using List = std::vector<Scenario>;

// Those without a name are named after their export.
List folderServices() {
    const ByteList old = bytesOf("old");
    const Call open = {"OpenFolder", "."};
    return {
        {.call = {"CreateFolder", "new"}, .written = {"new/"}},
        {.call = {"GetPublicFolder", "."}, .status = 1.0f},
        {.call = {"CheckFolder", "."}, .files = {{"a.tif", old}}},
        {.call = open, .files = {{"a.tif", old}}},
        {.call = {"GetFile", ""}, .files = {{"a.tif", old}}, .before = {open}},
        {.call = {"CloseFolder", ""}, .files = {{"a.tif", old}}, .before = {open}},
        {.call = {"EmptyFolder", "maps"},
         .files = {{"maps/a.tif", old}, {"maps/b.psd", old}, {"maps/noext", old}, {"c.tif", old}},
         .written = {"maps/a.tif", "maps/b.psd"}},
        {.call = {"FileDelete", "a.tif"}, .files = {{"a.tif", old}}, .written = {"a.tif"}},
        {.call = {"FileCopyTo", "a.tif", 0.0, "b.tif"},
         .files = {{"a.tif", bmp(60, 3)}, {"b.tif", old}},
         .written = {"b.tif"}},
        {.call = {"FileRename", "a.tif", 0.0, "b.tif"},
         .files = {{"a.tif", bmp(8, 3)}, {"b.tif", old}},
         .written = {"a.tif", "b.tif"}},
    };
}

List textServices() {
    return {{.call = {"Version", ""}, .status = 48.0f}, {.call = {"GetString", "abcdefgh", 2.0}}};
}

List tileFilters() {
    const Call set = {"setUVtilesOutput", "tiles.txt"};
    const Call count = {"getUVTile", "mesh.vws", 2.0};
    const Entries files = {
        {"mesh.vws", mesh()},
        {"tiles.txt", bytesOf("1002-1005, 1001, a rather long name that no mesh has")}};
    return {
        {.call = set, .files = files, .after = {count}},
        {.call = {"clearUVtilesOutput", ""}, .files = files, .before = {set}, .after = {count}},
        {"getUVTileFiltered", count, 2.0f, files, {set}},
    };
}

List meshServices() {
    const Call firstTile = {"getUVString", "", 0.0};
    const Call secondTile = {"getUVString", "", 1.0};
    const Call write = {"getUVs", "mesh.vws", 2.0, "tile.tif"};
    const Call writeMasks = {"getUVsMask", "mesh.vws", 2.0, "tile.tif"};
    const Entries files = {{"mesh.vws", mesh()}};
    const Entries oneTile = {{"mesh.vws", meshOfOneTile()}};
    const std::set<std::string> tiles = {"tile1001.Vemo", "tile1002.Vemo", "tile1011.Vemo"};
    return {
        {.call = {"getUVTile", "mesh.vws", 2.0}, .status = 3.0f, .files = files},
        {.call = {"getUVGroups", "mesh.vws"}, .status = 2.0f, .files = files},
        {.call = secondTile, .files = files, .before = {write}},
        {.call = {"clearUVString", ""}, .files = files, .before = {write}, .after = {firstTile}},
        {"getUVs", write, 3.0f, files, {}, {firstTile, secondTile}, tiles},
        {"getUVsOfOneTile", write, 1.0f, oneTile, {}, {firstTile}, {"tile1001.Vemo"}},
        {"getUVsMask", writeMasks, 3.0f, files, {}, {firstTile, secondTile}, tiles},
        {.name = "getUVsOverItself",
         .call = {"getUVs", "tile1002.Vemo", 2.0, "tile.tif"},
         .status = 3.0f,
         .files = {{"tile1002.Vemo", mesh()}},
         .written = tiles},
        {.call = {"mergeCrease", "mesh.vws", 0.0, "all.vws"},
         .files = {{"mesh.vws", mesh()}, {"all.vws", mesh()}},
         .written = {"all.vws"}},
    };
}

// A call on a map, named after its export and `kind`; `other` is in the place of a second map.
Scenario onMaps(const char* kind, const Call& call, const ByteList& map,
                const ByteList& other = bytesOf("old")) {
    const std::string& written = call.buffer1.empty() ? call.text : call.buffer1;
    return {.name = std::string(call.exportName) + kind,
            .call = call,
            .files = {{call.text, map}, {written, other}},
            .written = {written}};
}

List mergers() {
    const auto merge = [](const char* kind, const char* exportName, const ByteList& tile,
                          const ByteList& map) {
        return onMaps(kind, {exportName, "tile.map", 0.0, "all.map"}, tile, map);
    };
    return {
        merge("", "mergeMapsTIF", tiff8(kSmall, 3), tiff8(kSmall, 5)),
        merge("Large", "mergeMapsTIF", tiff8(kLarge, 3), tiff8(kLarge, 5)),
        merge("Tile", "mergeMapsTIF", tileTiff(), tiff8(kLarge, 5)),
        merge("", "mergeMapsPSD", psdRgb(kSmall, 3), psdRgb(kSmall, 5)),
        merge("Grey", "mergeMapsPSD", psdGrey16(kLarge, 3), psdGrey16(kLarge, 5)),
        merge("Tile", "mergeMapsPSD", tilePsd(), psdRgb(kLarge, 5)),
        merge("", "mergeMapsBMP", bmp(kSmall, 3), bmp(kSmall, 5)),
        merge("Large", "mergeMapsBMP", bmp(kLarge, 3), bmp(kLarge, 5)),
        merge("Tile", "mergeMapsBMP", tileBmp(), bmp(kLarge, 5)),
    };
}

List changesInPlace() {
    return {
        onMaps("", {"swapRGBTIF", "one.map", 2.0}, tiff8(kSmall, 3)),
        onMaps("Large", {"swapRGBTIF", "one.map", 1.0}, tiff8(kLarge, 3)),
        onMaps("", {"swapRGBPSD", "one.map", 2.0}, psdRgb(kSmall, 3)),
        onMaps("Large", {"swapRGBPSD", "one.map", 3.0}, psdRgb(kLarge, 3)),
        onMaps("", {"swapRGBBMP", "one.map", 2.0}, bmp(kSmall, 3)),
        onMaps("Large", {"swapRGBBMP", "one.map", 3.0}, bmp(kLarge, 3)),
        onMaps("", {"CreateThumbnailBMP", "one.map", 8.0}, bmp(kSmall, 3)),
        onMaps("Large", {"CreateThumbnailBMP", "one.map", 319.0}, bmp(kLarge, 3)),
        onMaps("OverItself", {"saveAsJpeg", "one.map", 50.0, "one.map"}, bmp(kSmall, 3)),
    };
}

List conversions() {
    const auto convert = [](const char* kind, const char* exportName, double value,
                            const ByteList& map, const char* target,
                            const ByteList& old = bytesOf("old")) {
        return onMaps(kind, {exportName, "one.map", value, target}, map, old);
    };
    const ByteList longer(20'000, 'o');
    return {
        convert("Grey", "convertTIFF16", 1.0, tiffFloat(kSmall, 1), "out.tif"),
        convert("Colour", "convertTIFF16", 3.0, tiffFloat(kLarge, 3), "out.tif"),
        convert("Psd", "convertTIFF16", 4.0, tiffFloat(kSmall, 3), "out.psd"),
        convert("OverALongerFile", "convertTIFF16", 1.0, tiffFloat(kSmall, 1), "out.tif", longer),
        convert("", "convertTIFFSingle", 0.0, tiffFloat(kLarge, 3), "out.tif"),
        convert("", "saveAsTarga", 0.0, tiff8(kSmall, 3), "out.tga"),
        convert("Large", "saveAsTarga", 0.0, tiff8(kLarge, 3), "out.tga"),
        convert("OverALongerFile", "saveAsTarga", 0.0, tiff8(kSmall, 3), "out.tga", longer),
        convert("", "saveAsJpeg", 50.0, bmp(kSmall, 3), "out.jpg"),
        convert("Large", "saveAsJpeg", 0.0, bmp(kLarge, 3), "out.jpg"),
    };
}

List measurements() {
    const Call range = {"OpenEXR", "one.exr"};
    return {
        // Of 205 and 252 levels, worked out step by step in single precision by Python.
        {"getScale", {"getScale", "one.map", 1}, 3040.59277f, {{"one.map", tiffFloat(kSmall, 1)}}},
        {"getScaleLarge",
         {"getScale", "one.map", 3},
         1166.90405f,
         {{"one.map", tiffFloat(kLarge, 3)}}},
        {"OpenEXR", range, 1.0f, {{"one.exr", exr(Imf::ZIP_COMPRESSION)}}},
        {"OpenEXRWavelets", range, 1.0f, {{"one.exr", exr(Imf::PIZ_COMPRESSION)}}},
    };
}

List named(List scenarios) {
    for (Scenario& scenario : scenarios) {
        if (scenario.name.empty()) scenario.name = scenario.call.exportName;
    }
    return scenarios;
}

List allScenarios() {
    List all;
    for (const auto family : {folderServices, textServices, tileFilters, meshServices, mergers,
                              changesInPlace, conversions, measurements})
        std::ranges::move(named(family()), std::back_inserter(all));
    return all;
}

List filesOfSize(std::uint32_t side) {
    const Entries source = {{"a.tif", bmp(side, 3)}};
    return {
        {.call = {"FileCopyTo", "a.tif", 0.0, "b.tif"}, .files = source, .written = {"b.tif"}},
        {.call = {"FileRename", "a.tif", 0.0, "b.tif"},
         .files = source,
         .written = {"a.tif", "b.tif"}},
    };
}

List meshesOfSize(std::uint32_t side) {
    const Call lastTile = {"getUVString", "", 2.0};
    const Call count = {"getUVTile", "mesh.vws", 2.0};
    const ByteList faces = mesh(std::max<std::size_t>(3, std::size_t{side} * side / 10));
    const Entries files = {{"mesh.vws", faces}};
    const std::set<std::string> tiles = {"tile1001.Vemo", "tile1002.Vemo", "tile1011.Vemo"};
    std::string filter = "1011";
    for (std::uint32_t tile = 0; tile < side; ++tile)
        filter += ", " + std::to_string(3000 + tile);
    return {
        {.call = {"setUVtilesOutput", "tiles.txt"},
         .files = {{"mesh.vws", faces}, {"tiles.txt", bytesOf(filter)}},
         .after = {count}},
        {.call = count, .files = files},
        {.call = {"getUVGroups", "mesh.vws"}, .files = files},
        {"", {"getUVs", "mesh.vws", 2.0, "tile.tif"}, 3.0f, files, {}, {lastTile}, tiles},
        {"", {"getUVsMask", "mesh.vws", 2.0, "tile.tif"}, 3.0f, files, {}, {lastTile}, tiles},
        {.call = {"mergeCrease", "mesh.vws", 0.0, "all.vws"},
         .files = {{"mesh.vws", faces}, {"all.vws", faces}},
         .written = {"all.vws"}},
    };
}

// A call that makes a file of another; its output is not there before.
Scenario newFile(const char* kind, const Call& call, const ByteList& map) {
    Scenario scenario = onMaps(kind, call, map);
    scenario.files.erase(call.buffer1);
    return scenario;
}

List mapsOfSize(std::uint32_t side) {
    const ByteList grey = tiffFloat(side, 1);
    const ByteList colour = tiffFloat(side, 3);
    return {
        onMaps("", {"mergeMapsTIF", "tile.map", 0.0, "all.map"}, tiff8(side, 3), tiff8(side, 5)),
        onMaps("", {"mergeMapsPSD", "tile.map", 0.0, "all.map"}, psdRgb(side, 3), psdRgb(side, 5)),
        onMaps("Grey", {"mergeMapsPSD", "tile.map", 0.0, "all.map"}, psdGrey16(side, 3),
               psdGrey16(side, 5)),
        onMaps("", {"mergeMapsBMP", "tile.map", 0.0, "all.map"}, bmp(side, 3), bmp(side, 5)),
        onMaps("", {"swapRGBTIF", "one.map", 2.0}, tiff8(side, 3)),
        onMaps("", {"swapRGBPSD", "one.map", 2.0}, psdRgb(side, 3)),
        onMaps("", {"swapRGBBMP", "one.map", 2.0}, bmp(side, 3)),
        onMaps("", {"CreateThumbnailBMP", "one.map", side / 2.0}, bmp(side, 3)),
        newFile("Grey", {"convertTIFF16", "one.map", 1.0, "out.tif"}, grey),
        newFile("Colour", {"convertTIFF16", "one.map", 3.0, "out.tif"}, colour),
        newFile("Psd", {"convertTIFF16", "one.map", 4.0, "out.psd"}, colour),
        newFile("", {"convertTIFFSingle", "one.map", 0.0, "out.tif"}, colour),
        newFile("", {"saveAsTarga", "one.map", 0.0, "out.tga"}, tiff8(side, 3)),
        newFile("", {"saveAsJpeg", "one.map", 50.0, "out.jpg"}, bmp(side, 3)),
        {.call = {"getScale", "one.map", 1.0}, .files = {{"one.map", grey}}},
        {.call = {"OpenEXR", "one.exr"},
         .files = {{"one.exr", exr(Imf::ZIP_COMPRESSION, static_cast<int>(side))}}},
        {"OpenEXRWavelets",
         {"OpenEXR", "one.exr"},
         0.0f,
         {{"one.exr", exr(Imf::PIZ_COMPRESSION, static_cast<int>(side))}}},
    };
}

}  // namespace

void PrintTo(const Scenario& scenario, std::ostream* out) {
    *out << scenario.name;
}

const std::vector<Scenario>& scenarios() {
    static const std::vector<Scenario> all = allScenarios();
    return all;
}

std::vector<Scenario> scenariosOfSize(std::uint32_t side) {
    List all;
    for (const auto family : {filesOfSize, meshesOfSize, mapsOfSize})
        std::ranges::move(named(family(side)), std::back_inserter(all));
    return all;
}

const Scenario& scenarioNamed(std::string_view name) {
    const auto found = std::ranges::find(scenarios(), name, &Scenario::name);
    if (found == scenarios().end()) throw std::out_of_range("no such scenario");
    return *found;
}

ByteList bytesOf(std::string_view text) {
    return {text.begin(), text.end()};
}

Stage::Stage(const std::string& place) : folder_(dir_.makeFolder(place)) {}

void Stage::prepare(const Scenario& scenario) {
    for (const fs::directory_entry& entry : fs::directory_iterator(folder_))
        fs::remove_all(entry.path());
    prepareOver(scenario);
}

void Stage::prepareOver(const Scenario& scenario) {
    forget();
    for (const auto& [name, bytes] : scenario.files) {
        fs::create_directories(fs::path(path(name)).parent_path());
        dir_.write(path(name), bytes);
    }
    for (const Call& call : scenario.before)
        make(call);
}

Result Stage::make(const Call& call) {
    const bool takesPath = std::string_view(call.exportName) != "GetString";
    const std::string text = takesPath ? path(call.text) : call.text;
    const std::string content = call.buffer1.empty() ? "untouched" : path(call.buffer1);
    std::vector<char> block(std::max<std::size_t>(4096, content.size() + 1));
    std::copy(content.begin(), content.end(), block.begin());
    const float status = invoke(
        call.exportName, {.text = text.c_str(), .value = call.value, .buffer1 = block.data()});
    return {status, block.data()};
}

Outcome Stage::outcome(const Scenario& scenario, const Result& result) {
    Outcome seen{result, {}, {}};
    for (const Call& call : scenario.after)
        seen.after.push_back(make(call));
    seen.entries = entries();
    return seen;
}

Outcome Stage::play(const Scenario& scenario) {
    prepare(scenario);
    return outcome(scenario, make(scenario.call));
}

void Stage::forget() {
    for (const char* name : {"CloseFolder", "clearUVtilesOutput", "clearUVString"})
        invoke(name, {});
}

Entries Stage::entries() const {
    Entries found;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(folder_)) {
        const std::string name = entry.path().string().substr(folder_.size() + 1);
        if (entry.is_symlink())
            found[name] = bytesOf("-> " + fs::read_symlink(entry.path()).string());
        else if (entry.is_directory())
            found[name + '/'] = {};
        else if (entry.is_regular_file())
            found[name] = readBytes(entry.path().string());
        else
            found[name] = bytesOf("neither file nor folder");
    }
    return found;
}

std::string Stage::path(const std::string& name) const {
    return name == "." ? folder_ : folder_ + '/' + name;
}

void Stage::letOthersIn() const {
    fs::permissions(fs::path(folder_).parent_path(), fs::perms::all);
    fs::permissions(folder_, fs::perms::all);
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(folder_))
        fs::permissions(entry.path(), fs::perms::all);
}
