#include "golden/ExportCases.h"

#include <algorithm>
#include <bit>
#include <cstdio>
#include <cstring>
#include <deque>
#include <filesystem>
#include <set>
#include <stdexcept>
#include <vector>

#include "export/Quillon.h"
#include "golden/Inputs.h"
#include "golden/Random.h"
#include "golden/Record.h"
#include "support/CaptureStdout.h"
#include "support/TempDir.h"

namespace {

constexpr int kCases = 240;

// The host's block: room for any path. What a call does not write stays.
constexpr std::size_t kBlockBytes = 8192;
constexpr char kUntouched = '\x5C';

class Case {
public:
    Case(const FindSymbol& find, const char* name, int number)
        : random(seedOf(name) + static_cast<std::uint64_t>(number)),
          find_(find),
          name_(name),
          block_(kBlockBytes, kUntouched) {
        callQuietly("clearUVtilesOutput");
        callQuietly("clearUVString");
        callQuietly("CloseFolder");
    }

    Random random;

    // A path in the case's folder, which need not exist.
    std::string path(std::string_view name) const { return dir_.path() + "/" + std::string(name); }
    std::string write(std::string_view name, const ByteList& bytes) const {
        return dir_.write(name, bytes);
    }
    const TempDir& folder() const { return dir_; }

    // The path as an export gets it, or now and then what a script gives by mistake: a path to
    // nothing, a folder, no path at all.
    const char* mostly(const std::string& path) {
        if (!random.oneIn(16)) return kept(path);
        switch (random.below(3)) {
            case 0:
                return nullptr;
            case 1:
                return kept(this->path("missing/file.tif"));
            default:
                return kept(dir_.path());
        }
    }
    const char* kept(const std::string& path) { return texts_.emplace_back(path).c_str(); }

    // Calls the case's export with a second path, or with the empty block.
    void call(const char* text, double value, const char* secondPath) {
        callOther(name_, text, value, secondPath == nullptr ? nullptr : blockWith(secondPath));
    }
    void call(const char* text, double value) { callOther(name_, text, value, emptyBlock()); }
    void call(const char* text) { call(text, random.scriptNumber()); }

    // Calls any export and notes what came of it.
    float callOther(const char* name, const char* text, double value, char* block) {
        const float status = function(name)(text, value, block, -1, nullptr, -1, nullptr);
        const std::string bits = hexadecimal(std::bit_cast<std::uint32_t>(status), 8);
        calls_.append(1, ' ').append(bits).append(1, '/');
        calls_ += block == nullptr ? "=" : whatBlockTook();
        return status;
    }
    // The same without noting it.
    float callUnnoted(const char* text, double value, char* block) const {
        return function(name_)(text, value, block, -1, nullptr, -1, nullptr);
    }
    char* emptyBlock() {
        given_.assign(kBlockBytes, kUntouched);
        block_ = given_;
        return block_.data();
    }
    char* blockWith(const std::string& text) {
        emptyBlock();
        std::memcpy(block_.data(), text.c_str(), text.size() + 1);
        given_ = block_;
        return block_.data();
    }
    // What the last call wrote there as text.
    std::string blockText() const { return block_.data(); }

    // The names of an open listing, in an order that no file system chose.
    void listEntries() {
        std::multiset<std::string> names;
        emptyBlock();
        while (function("GetFile")(nullptr, 0.0, block_.data(), -1, nullptr, -1, nullptr) == 0.0f)
            names.insert(blockText());
        for (const std::string& name : names)
            note(name);
    }
    void note(std::string_view text) { calls_.append(1, ' ').append(shown(text)); }

    std::string line(int number, const std::string& printed) const {
        return std::string(name_) + " " + std::to_string(number) + calls_ +
               " stdout=" + shown(printed) + " files=" + shownFolder(dir_.path());
    }

private:
    static std::uint64_t seedOf(std::string_view name) {
        Digest digest;
        digest.add(name);
        return digest.value();
    }

    ExportFunction* function(const char* name) const {
        void* address = find_(name);
        if (address == nullptr) throw std::runtime_error(std::string("no export ") + name);
        return reinterpret_cast<ExportFunction*>(address);
    }
    void callQuietly(const char* name) const {
        function(name)(nullptr, 0.0, nullptr, -1, nullptr, -1, nullptr);
    }

    std::string whatBlockTook() const {
        if (block_ == given_) return "=";
        const auto last = std::find_if(block_.rbegin(), block_.rend(),
                                       [](char byte) { return byte != kUntouched; });
        return shown({block_.data(), static_cast<std::size_t>(block_.rend() - last)});
    }

    const FindSymbol& find_;
    const char* name_;
    TempDir dir_;
    std::deque<std::string> texts_;  // stay where they are
    std::vector<char> block_;
    std::vector<char> given_;  // the block before the call
    std::string calls_;
};

// Names that a folder's file may have.
std::string fileName(Random& random) {
    return random.pick<const char*>({"a.tif", "map.1001.tif", "no_dot", "größe 高さ.psd", ".hidden",
                                     "x.", "s p.bmp", "it's.vws", "back\\slash.tif", "UPPER.PSD"});
}

// Files and folders, some of which have a dot in their name.
void fillFolder(Case& test, const std::string& folder) {
    namespace fs = std::filesystem;
    fs::create_directories(test.path(folder));
    const std::uint32_t entries = test.random.below(6);
    for (std::uint32_t i = 0; i < entries; ++i) {
        const std::string name = folder + "/" + fileName(test.random);
        if (fs::exists(test.path(name))) continue;
        const std::uint32_t kind = test.random.below(6);
        if (kind > 1) test.write(name, randomBytes(test.random, 3));
        if (kind <= 1) fs::create_directories(test.path(name));
        if (kind == 1) test.write(name + "/inside.tif", randomBytes(test.random, 2));
    }
}

std::string someFolder(Case& test) {
    fillFolder(test, "folder");
    test.write("file.tif", {1, 2, 3});
    return test.path(
        test.random.pick<const char*>({"folder", "folder", "folder", "folder/", "folder//",
                                       "missing", "file.tif", "folder/../folder"}));
}

void createFolder(Case& test) {
    someFolder(test);
    test.call(test.mostly(test.path(
        test.random.pick<const char*>({"new", "new/", "größe 高さ", "folder", "missing/new",
                                       "file.tif", "folder/new.d", "file.tif/new", "a\\b"}))));
}

// Where the shared folder lies is the machine's own affair; that the block holds an absolute path when
// the status says so is not.
void getPublicFolder(Case& test) {
    const bool withBlock = !test.random.oneIn(4);
    char* block = withBlock ? test.emptyBlock() : nullptr;
    const char* text = test.random.oneIn(2) ? nullptr : test.kept("anything");
    const float status = test.callUnnoted(text, test.random.scriptNumber(), block);
    const bool copied = withBlock && test.blockText().front() == '/';
    test.note(copied == (status == 1.0f) ? "the status says what the block holds"
                                         : "the status is wrong");
}

void checkFolder(Case& test) {
    if (test.random.oneIn(2))
        test.callOther("OpenFolder", test.kept(test.folder().path()), 0.0, nullptr);
    test.call(test.mostly(someFolder(test)));
    test.callOther("CloseFolder", nullptr, 0.0, nullptr);
}

void openFolder(Case& test) {
    const std::string first = someFolder(test);
    if (test.random.oneIn(4))
        test.callOther("OpenFolder", test.kept(test.folder().path()), 0.0, nullptr);
    test.call(test.mostly(first));
    test.listEntries();
    test.callOther("CloseFolder", nullptr, 0.0, nullptr);
}

void getFile(Case& test) {
    const std::string folder = someFolder(test);
    if (!test.random.oneIn(5)) test.callOther("OpenFolder", test.mostly(folder), 0.0, nullptr);
    if (test.random.oneIn(8)) test.call(nullptr, 0.0, nullptr);
    test.listEntries();
    test.call(nullptr);
    if (test.random.oneIn(2)) test.callOther("CloseFolder", nullptr, 0.0, nullptr);
    test.call(nullptr);
}

void closeFolder(Case& test) {
    const std::string folder = someFolder(test);
    if (!test.random.oneIn(3)) test.callOther("OpenFolder", test.mostly(folder), 0.0, nullptr);
    test.call(nullptr);
    test.call(nullptr);
}

void emptyFolder(Case& test) {
    test.call(test.mostly(someFolder(test)));
}

void fileDelete(Case& test) {
    const std::string folder = someFolder(test);
    test.call(test.mostly(test.random.oneIn(3) ? folder : test.path("file.tif")));
}

void fileCopyTo(Case& test) {
    const std::uint32_t size =
        test.random.oneIn(2) ? test.random.below(600)
                             : test.random.pick({0u, 1u, 3999u, 4000u, 4001u, 8000u, 262145u});
    const std::string source = test.write("file.tif", randomBytes(test.random, size));
    if (test.random.oneIn(2)) test.write("old.tif", randomBytes(test.random, 9000));
    const char* text = test.mostly(source);
    const std::string target = test.path(test.random.pick<const char*>(
        {"old.tif", "old.tif", "old.tif", "größe.tif", "größe.tif", "missing/x", "file.tif"}));
    test.call(text, 0.0, test.mostly(target));
}

void fileRename(Case& test) {
    const std::string folder = someFolder(test);
    test.write("other.tif", {9});
    const char* text = test.mostly(test.random.oneIn(4) ? folder : test.path("file.tif"));
    const std::string target = test.path(test.random.pick<const char*>(
        {"new.tif", "other.tif", "größe", "missing/x", "file.tif", "folder"}));
    test.call(text, 0.0, test.mostly(target));
}

void getString(Case& test) {
    const std::uint32_t length = test.random.below(30);
    std::string text;
    for (std::uint32_t i = 0; i < length; ++i)
        text += static_cast<char>(1 + test.random.below(255));
    test.call(test.random.oneIn(20) ? nullptr : test.kept(text));
}

std::string mesh(Case& test) {
    return test.write("mesh.Vemo", vemoMesh(test.random));
}

void setFilter(Case& test) {
    const std::string filter = test.write("filter.txt", filterText(test.random));
    test.callOther("setUVtilesOutput", test.mostly(filter), 0.0, nullptr);
}

void setUVtilesOutput(Case& test) {
    setFilter(test);
    const std::string path = mesh(test);
    test.callOther("getUVTile", test.kept(path), 2.0, test.emptyBlock());
}

void clearUVtilesOutput(Case& test) {
    setFilter(test);
    test.call(nullptr);
    const std::string path = mesh(test);
    test.callOther("getUVTile", test.kept(path), 2.0, test.emptyBlock());
}

void getUVTile(Case& test) {
    if (test.random.oneIn(3)) setFilter(test);
    test.call(test.mostly(mesh(test)));
}

void meshAlone(Case& test) {
    test.call(test.mostly(mesh(test)));
}

void exportTiles(Case& test, const char* name) {
    if (test.random.oneIn(3)) setFilter(test);
    const char* text = test.mostly(mesh(test));
    const double mode = test.random.scriptNumber();
    const std::string out = test.path(test.random.pick<const char*>(
        {"out.Vemo", "out.Vemo", "o ut.tiles.x", "größe.Vemo", "größe.Vemo", "missing/out.Vemo"}));
    char* block = test.random.oneIn(20) ? nullptr : test.blockWith(out);
    test.callOther(name, text, mode, block);
}

void getUVs(Case& test) {
    exportTiles(test, "getUVs");
    for (int tile = 0; tile < 3; ++tile)
        test.callOther("getUVString", nullptr, tile, test.emptyBlock());
}

void getUVsMask(Case& test) {
    exportTiles(test, "getUVsMask");
    for (int tile = 0; tile < 3; ++tile)
        test.callOther("getUVString", nullptr, tile, test.emptyBlock());
}

void getUVString(Case& test) {
    exportTiles(test, test.random.pick<const char*>({"getUVs", "getUVsMask"}));
    test.call(nullptr);
    test.call(nullptr, test.random.scriptNumber(), nullptr);
}

void clearUVString(Case& test) {
    exportTiles(test, "getUVs");
    test.call(nullptr);
    test.callOther("getUVString", nullptr, 0.0, test.emptyBlock());
}

// Two files, of which the second is mostly made in the shape of the first; now and then they are one.
template <typename Shape>
void merge(Case& test, Shape (*shape)(Random&), ByteList (*make)(Random&, const Shape&)) {
    const Shape first = shape(test.random);
    const Shape second = perhapsAnother(test.random, first, shape);
    const std::string source = test.write("source.map", make(test.random, first));
    const std::string target = test.write("target.map", make(test.random, second));
    const char* text = test.mostly(source);
    const double value = test.random.scriptNumber();
    test.call(text, value, test.mostly(test.random.oneIn(25) ? source : target));
}

void mergeCrease(Case& test) {
    const std::string first = test.write("first.crease", vemoMesh(test.random));
    const std::string second = test.write("second.crease", vemoMesh(test.random));
    const char* text = test.mostly(first);
    test.call(text, 0.0, test.mostly(test.random.oneIn(25) ? first : second));
}

void mergeMapsTIF(Case& test) {
    merge(test, tiffShape, tiffMap);
}
void mergeMapsPSD(Case& test) {
    merge(test, psdShape, psdMap);
}
void mergeMapsBMP(Case& test) {
    merge(test, bmpShape, bmpMap);
}

// A value that most swaps take.
double swapValue(Random& random) {
    return random.oneIn(4) ? random.scriptNumber() : random.between(1, 7) / 2.0;
}

template <typename Shape>
void swap(Case& test, Shape (*shape)(Random&), ByteList (*make)(Random&, const Shape&)) {
    const std::string path = test.write("map", make(test.random, shape(test.random)));
    const double value = swapValue(test.random);
    test.call(test.mostly(path), value);
}

void swapRGBTIF(Case& test) {
    swap(test, tiffShape, tiffMap);
}
void swapRGBPSD(Case& test) {
    swap(test, psdShape, psdMap);
}
void swapRGBBMP(Case& test) {
    swap(test, bmpShape, bmpMap);
}

std::string floatMap(Case& test, bool mostlyGrey) {
    TiffShape shape = floatTiffShape(test.random);
    if (test.random.oneIn(3)) shape.width = 20 + test.random.below(100);  // for many levels
    if (!test.random.oneIn(8)) shape.grey = mostlyGrey;
    return test.write("map.tif", tiffMap(test.random, shape));
}

void convertTIFF16(Case& test) {
    const double layout = test.random.pick({1.0, 3.0, 4.0});
    const char* text = test.mostly(floatMap(test, layout == 1.0));
    const std::string out = test.path(
        test.random.pick<const char*>({"out.tif", "out.tif", "out.psd", "out.psd", "out.PSD",
                                       "out.Psd", "größe.x", "missing/out.tif"}));
    const double value = test.random.oneIn(10) ? test.random.scriptNumber() : layout;
    test.call(text, value, test.random.oneIn(20) ? nullptr : test.kept(out));
}

void convertTIFFSingle(Case& test) {
    const char* text = test.mostly(floatMap(test, false));
    test.call(text, 0.0,
              test.mostly(test.path(test.random.pick<const char*>(
                  {"out.tif", "out.tif", "out.tif", "out.tif", "größe", "missing/out.tif"}))));
}

void getScale(Case& test) {
    const double channels = test.random.pick({1.0, 3.0});
    const char* text = test.mostly(floatMap(test, channels == 1.0));
    test.call(text, test.random.oneIn(10) ? test.random.scriptNumber() : channels);
}

void saveAsTarga(Case& test) {
    TiffShape shape = tiffShape(test.random);
    if (!test.random.oneIn(8)) shape.bits = 8;
    const char* text = test.mostly(test.write("map.tif", tiffMap(test.random, shape)));
    test.call(text, 0.0,
              test.mostly(test.path(test.random.pick<const char*>(
                  {"out.tga", "out.tga", "out.tga", "out.tga", "größe", "missing/out.tga"}))));
}

void saveAsJpeg(Case& test) {
    const std::string path = test.write("map.bmp", bmpMap(test.random, bmpShape(test.random)));
    const char* text = test.mostly(path);
    const double quality =
        test.random.oneIn(3) ? test.random.scriptNumber() : test.random.between(0, 100);
    const std::string out = test.path(test.random.pick<const char*>(
        {"out.jpg", "out.jpg", "out.jpg", "out.jpg", "größe", "missing/out.jpg"}));
    test.call(text, quality, test.mostly(test.random.oneIn(25) ? path : out));
}

void createThumbnailBMP(Case& test) {
    const std::string path = test.write("map.bmp", bmpMap(test.random, bmpShape(test.random)));
    const char* text = test.mostly(path);
    test.call(text, test.random.oneIn(3) ? test.random.scriptNumber() : test.random.between(1, 16));
}

// Of three files in ten, one that OpenEXR's own library has deflated or packed as wavelets.
void openExr(Case& test) {
    ByteList file = exrPicture(test.random);
    if (test.random.below(10) < 3) {
        const char* seed =
            test.random.pick<const char*>({"piz-half.exr", "piz-float.exr", "zip-half.exr"});
        file = perhapsDamaged(test.random, readBytes(std::string(QUILLON_GOLDEN_SEEDS "/") + seed));
    }
    test.call(test.mostly(test.write("map.exr", file)));
}

void version(Case& test) {
    const char* text = test.random.oneIn(2) ? nullptr : test.kept("anything");
    const double value = test.random.scriptNumber();
    test.call(text, value, test.random.oneIn(2) ? nullptr : "anything");
}

struct Export {
    const char* name;
    void (*runCase)(Case& test);
};

constexpr Export kExports[] = {
    {"Version", version},
    {"CreateFolder", createFolder},
    {"GetPublicFolder", getPublicFolder},
    {"CheckFolder", checkFolder},
    {"OpenFolder", openFolder},
    {"GetFile", getFile},
    {"CloseFolder", closeFolder},
    {"EmptyFolder", emptyFolder},
    {"FileDelete", fileDelete},
    {"FileCopyTo", fileCopyTo},
    {"FileRename", fileRename},
    {"GetString", getString},
    {"clearUVtilesOutput", clearUVtilesOutput},
    {"setUVtilesOutput", setUVtilesOutput},
    {"getUVTile", getUVTile},
    {"getUVGroups", meshAlone},
    {"getUVString", getUVString},
    {"clearUVString", clearUVString},
    {"getUVs", getUVs},
    {"getUVsMask", getUVsMask},
    {"mergeCrease", mergeCrease},
    {"mergeMapsTIF", mergeMapsTIF},
    {"mergeMapsPSD", mergeMapsPSD},
    {"mergeMapsBMP", mergeMapsBMP},
    {"swapRGBTIF", swapRGBTIF},
    {"swapRGBPSD", swapRGBPSD},
    {"swapRGBBMP", swapRGBBMP},
    {"convertTIFF16", convertTIFF16},
    {"convertTIFFSingle", convertTIFFSingle},
    {"getScale", getScale},
    {"saveAsTarga", saveAsTarga},
    {"saveAsJpeg", saveAsJpeg},
    {"CreateThumbnailBMP", createThumbnailBMP},
    {"OpenEXR", openExr},
};

}  // namespace

void writeExportCases(const FindSymbol& find, std::ostream& lines) {
    for (const auto& [name, runCase] : kExports) {
        for (int number = 0; number < kCases; ++number) {
            const CaptureStdout captured;
            Case test(find, name, number);
            runCase(test);
            std::fflush(stdout);
            lines << test.line(number, captured.text()) << '\n';
        }
    }
}
