#include "faults/Scenarios.h"

#include <ImfChannelList.h>
#include <ImfFrameBuffer.h>
#include <ImfHeader.h>
#include <ImfOutputFile.h>

#include <algorithm>
#include <filesystem>
#include <stdexcept>

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
    return PsdFile(side, side).resources(12).planes(paintedSamples<std::uint8_t>(side, 3, seed));
}

ByteList psdGrey16(std::uint32_t side, std::uint32_t seed) {
    return PsdFile(side, side).grey16().planes(paintedSamples<std::uint8_t>(side, 2, seed));
}

ByteList bmp(std::uint32_t side, std::uint32_t seed) {
    return BmpFile(static_cast<std::int32_t>(side), static_cast<std::int32_t>(side))
        .pixels(paintedSamples<std::uint8_t>(side, 3, seed));
}

// Three faces in the tiles 1001, 1002 and 1011, of two groups.
ByteList mesh() {
    return VemoBuilder()
        .vertices({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}, {0.5f, 2, 0}})
        .faces({{0, 1, 2, 3}, {3, 2, 4, -1}, {0, 2, 4, -1}})
        .flatFaceUvs({{0.5f, 0.5f}, {1.5f, 0.5f}, {0.25f, 1.75f}})
        .groups({5, 5, 2})
        .closing()
        .bytes();
}

// An image of one channel of half floats, 0 to 1, packed.
ByteList exr(Imf::Compression compression) {
    constexpr int kSide = 40;
    std::vector<half> samples;
    for (int i = 0; i < kSide * kSide; ++i)
        samples.emplace_back(static_cast<float>(i * 37 % 129) / 128.0f);
    Imf::Header header(kSide, kSide);
    header.compression() = compression;
    header.channels().insert("Y", Imf::Channel(Imf::HALF));
    Imf::FrameBuffer frame;
    frame.insert("Y", Imf::Slice(Imf::HALF, reinterpret_cast<char*>(samples.data()), sizeof(half),
                                 sizeof(half) * kSide));

    const TempDir dir;
    const std::string path = dir.path("image.exr");
    {
        Imf::OutputFile file(path.c_str(), header);
        file.setFrameBuffer(frame);
        file.writePixels(kSide);
    }
    return readBytes(path);
}

// The scenarios in the making.
class List {
public:
    Scenario& add(const std::string& name, const Call& call, float status = 0.0f) {
        return all.emplace_back(Scenario{name, call, status});
    }
    // One that is named after its export.
    Scenario& add(const Call& call, float status = 0.0f) {
        return add(call.exportName, call, status);
    }

    std::vector<Scenario> all;
};

void addFolderServices(List& list) {
    const ByteList old = bytesOf("old");
    list.add({"CreateFolder", "new"}).writes({"new/"});
    list.add({"GetPublicFolder", "."}, 1.0f);
    list.add({"CheckFolder", "."}).on("a.tif", old);
    list.add({"OpenFolder", "."}).on("a.tif", old);
    list.add({"GetFile", ""}).on("a.tif", old).precededBy({"OpenFolder", "."});
    list.add({"CloseFolder", ""}).on("a.tif", old).precededBy({"OpenFolder", "."});
    list.add({"EmptyFolder", "maps"})
        .on("maps/a.tif", old)
        .on("maps/b.psd", old)
        .on("maps/noext", old)
        .on("c.tif", old)
        .writes({"maps/a.tif", "maps/b.psd"});
    list.add({"FileDelete", "a.tif"}).on("a.tif", old).writes({"a.tif"});
    list.add({"FileCopyTo", "a.tif", 0.0, "b.tif"})
        .on("a.tif", bmp(60, 3))
        .on("b.tif", old)
        .writes({"b.tif"});
    list.add({"FileRename", "a.tif", 0.0, "b.tif"})
        .on("a.tif", bmp(8, 3))
        .on("b.tif", old)
        .writes({"a.tif", "b.tif"});
}

void addTextServices(List& list) {
    list.add({"Version", ""}, 48.0f);
    list.add({"GetString", "abcdefgh", 2.0});
}

void addTileFilter(List& list) {
    const Call set = {"setUVtilesOutput", "tiles.txt"};
    const Call count = {"getUVTile", "mesh.vws", 2.0};
    const ByteList tiles = bytesOf("1002-1005, 1001, a rather long name that no mesh has");
    list.add(set).on("mesh.vws", mesh()).on("tiles.txt", tiles).shownBy(count);
    list.add({"clearUVtilesOutput", ""})
        .on("mesh.vws", mesh())
        .on("tiles.txt", tiles)
        .precededBy(set)
        .shownBy(count);
    list.add("getUVTileFiltered", count, 2.0f)
        .on("mesh.vws", mesh())
        .on("tiles.txt", tiles)
        .precededBy(set);
}

void addMeshServices(List& list) {
    const Call firstTile = {"getUVString", "", 0.0};
    const Call secondTile = {"getUVString", "", 1.0};
    const Call write = {"getUVs", "mesh.vws", 2.0, "tile.tif"};
    const Call writeMasks = {"getUVsMask", "mesh.vws", 2.0, "tile.tif"};
    const std::set<std::string> tiles = {"tile1001.Vemo", "tile1002.Vemo", "tile1011.Vemo"};
    list.add({"getUVTile", "mesh.vws", 2.0}, 3.0f).on("mesh.vws", mesh());
    list.add({"getUVGroups", "mesh.vws"}, 2.0f).on("mesh.vws", mesh());
    list.add(secondTile).on("mesh.vws", mesh()).precededBy(write);
    list.add({"clearUVString", ""}).on("mesh.vws", mesh()).precededBy(write).shownBy(firstTile);
    for (const Call& call : {write, writeMasks}) {
        list.add(call, 3.0f)
            .on("mesh.vws", mesh())
            .writes(tiles)
            .shownBy(firstTile)
            .shownBy(secondTile);
    }
    list.add("getUVsOverItself", {"getUVs", "tile1002.Vemo", 2.0, "tile.tif"}, 3.0f)
        .on("tile1002.Vemo", mesh())
        .writes(tiles);
    list.add({"mergeCrease", "mesh.vws", 0.0, "all.vws"})
        .on("mesh.vws", mesh())
        .on("all.vws", mesh())
        .writes({"all.vws"});
}

void addMergers(List& list) {
    const auto add = [&](const char* kind, const char* exportName, const ByteList& tile,
                         const ByteList& map) {
        list.add(std::string(exportName) + kind, {exportName, "tile.map", 0.0, "all.map"})
            .on("tile.map", tile)
            .on("all.map", map)
            .writes({"all.map"});
    };
    add("", "mergeMapsTIF", tiff8(kSmall, 3), tiff8(kSmall, 5));
    add("Large", "mergeMapsTIF", tiff8(kLarge, 3), tiff8(kLarge, 5));
    add("", "mergeMapsPSD", psdRgb(kSmall, 3), psdRgb(kSmall, 5));
    add("Grey", "mergeMapsPSD", psdGrey16(kLarge, 3), psdGrey16(kLarge, 5));
    add("", "mergeMapsBMP", bmp(kSmall, 3), bmp(kSmall, 5));
    add("Large", "mergeMapsBMP", bmp(kLarge, 3), bmp(kLarge, 5));
}

void addChangesInPlace(List& list) {
    const auto add = [&](const char* kind, const char* exportName, double value,
                         const ByteList& map) {
        list.add(std::string(exportName) + kind, {exportName, "one.map", value})
            .on("one.map", map)
            .writes({"one.map"});
    };
    add("", "swapRGBTIF", 2.0, tiff8(kSmall, 3));
    add("Large", "swapRGBTIF", 1.0, tiff8(kLarge, 3));
    add("", "swapRGBPSD", 2.0, psdRgb(kSmall, 3));
    add("Large", "swapRGBPSD", 3.0, psdRgb(kLarge, 3));
    add("", "swapRGBBMP", 2.0, bmp(kSmall, 3));
    add("Large", "swapRGBBMP", 3.0, bmp(kLarge, 3));
    add("", "CreateThumbnailBMP", 8.0, bmp(kSmall, 3));
    add("Large", "CreateThumbnailBMP", 319.0, bmp(kLarge, 3));
}

void addConversions(List& list) {
    const auto add = [&](const char* kind, const char* exportName, double value,
                         const ByteList& map, const std::string& target,
                         const ByteList& old = bytesOf("old")) {
        list.add(std::string(exportName) + kind, {exportName, "one.map", value, target})
            .on("one.map", map)
            .on(target, old)
            .writes({target});
    };
    const ByteList longer(20'000, 'o');
    add("Grey", "convertTIFF16", 1.0, tiffFloat(kSmall, 1), "out.tif");
    add("Colour", "convertTIFF16", 3.0, tiffFloat(kLarge, 3), "out.tif");
    add("Psd", "convertTIFF16", 4.0, tiffFloat(kSmall, 3), "out.psd");
    add("OverALongerFile", "convertTIFF16", 1.0, tiffFloat(kSmall, 1), "out.tif", longer);
    add("", "convertTIFFSingle", 0.0, tiffFloat(kLarge, 3), "out.tif");
    add("", "saveAsTarga", 0.0, tiff8(kSmall, 3), "out.tga");
    add("Large", "saveAsTarga", 0.0, tiff8(kLarge, 3), "out.tga");
    add("OverALongerFile", "saveAsTarga", 0.0, tiff8(kSmall, 3), "out.tga", longer);
    add("", "saveAsJpeg", 50.0, bmp(kSmall, 3), "out.jpg");
    add("Large", "saveAsJpeg", 0.0, bmp(kLarge, 3), "out.jpg");
    list.add("saveAsJpegOverItself", {"saveAsJpeg", "one.map", 50.0, "one.map"})
        .on("one.map", bmp(kSmall, 3))
        .writes({"one.map"});
}

void addMeasurements(List& list) {
    // Of 205 and 252 levels, worked out step by step in single precision by Python.
    list.add("getScale", {"getScale", "one.map", 1.0}, 3040.59277f)
        .on("one.map", tiffFloat(kSmall, 1));
    list.add("getScaleLarge", {"getScale", "one.map", 3.0}, 1166.90405f)
        .on("one.map", tiffFloat(kLarge, 3));
    list.add("OpenEXR", {"OpenEXR", "one.exr"}, 1.0f).on("one.exr", exr(Imf::ZIP_COMPRESSION));
    list.add("OpenEXRWavelets", {"OpenEXR", "one.exr"}, 1.0f)
        .on("one.exr", exr(Imf::PIZ_COMPRESSION));
}

std::vector<Scenario> allScenarios() {
    List list;
    addFolderServices(list);
    addTextServices(list);
    addTileFilter(list);
    addMeshServices(list);
    addMergers(list);
    addChangesInPlace(list);
    addConversions(list);
    addMeasurements(list);
    return list.all;
}

}  // namespace

void PrintTo(const Scenario& scenario, std::ostream* out) {
    *out << scenario.name;
}

Scenario& Scenario::on(const std::string& file, const ByteList& bytes) {
    files[file] = bytes;
    return *this;
}

Scenario& Scenario::writes(const std::set<std::string>& entries) {
    written = entries;
    return *this;
}

Scenario& Scenario::precededBy(const Call& earlier) {
    before.push_back(earlier);
    return *this;
}

Scenario& Scenario::shownBy(const Call& later) {
    after.push_back(later);
    return *this;
}

const std::vector<Scenario>& scenarios() {
    static const std::vector<Scenario> all = allScenarios();
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
    forget();
    for (const fs::directory_entry& entry : fs::directory_iterator(folder_))
        fs::remove_all(entry.path());
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
