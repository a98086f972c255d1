#include "golden/ExportCases.h"

#include <algorithm>
#include <bit>
#include <cstdio>
#include <cstring>
#include <deque>
#include <filesystem>
#include <fstream>
#include <set>
#include <stdexcept>
#include <vector>

#include "export/Quillon.h"
#include "golden/Digest.h"
#include "golden/Inputs.h"
#include "golden/Random.h"
#include "support/CaptureStdout.h"
#include "support/TempDir.h"

namespace {

constexpr int kCases = 240;

// The host's memory block: room for any path. What a call does not write stays.
constexpr std::size_t kBlockBytes = 8192;
constexpr char kUntouched = '\x5C';

class Case {
public:
    Case(const FindSymbol& find, const char* name, int number)
        : random(seedOf(name) + static_cast<std::uint64_t>(number)),
          find_(find),
          name_(name),
          block_(kBlockBytes, kUntouched) {
        for (const char* forgetting : {"clearUVtilesOutput", "clearUVString", "CloseFolder"})
            callUnnoted(forgetting, nullptr, 0.0, nullptr);
    }

    Random random;

    // A path in the case's folder, which need not exist.
    std::string path(std::string_view name) const { return dir_.path(name); }
    // The path of one of these names.
    std::string anyPath(std::initializer_list<const char*> names) {
        return path(random.pick<const char*>(names));
    }
    // A path for an output: mostly this name, otherwise one beyond ASCII, or in a missing folder.
    std::string outPath(const std::string& name) {
        return anyPath({name.c_str(), name.c_str(), name.c_str(), name.c_str(), "größe",
                        ("missing/" + name).c_str()});
    }
    std::string write(std::string_view name, const ByteList& bytes) const {
        return dir_.write(name, bytes);
    }
    const char* exportName() const { return name_; }

    // The path as an export gets it or, once in 16, a script's mistake: a missing file, a folder, no path
    // at all.
    const char* mostly(const std::string& path) {
        if (!random.oneIn(16)) return kept(path);
        const std::uint32_t mistake = random.below(3);
        if (mistake == 0) return nullptr;
        return kept(this->path(mistake == 1 ? "missing/file.tif" : ""));
    }
    const char* kept(const std::string& path) { return texts_.emplace_back(path).c_str(); }

    // Calls the case's export with a second path, or with the empty block.
    void call(const char* text, double value, const char* secondPath) {
        callOther(name_, text, value, secondPath == nullptr ? nullptr : blockWith(secondPath));
    }
    void call(const char* text, double value) { callOther(name_, text, value, emptyBlock()); }
    void call(const char* text) { call(text, random.scriptNumber()); }

    // Calls any export and notes its status and what it wrote into the block.
    float callOther(const char* name, const char* text, double value, char* block) {
        const float status = callUnnoted(name, text, value, block);
        const std::string bits = hexadecimal(std::bit_cast<std::uint32_t>(status), 8);
        calls_.append(1, ' ').append(bits).append(1, '/');
        calls_ += block == nullptr ? "=" : whatBlockTook();
        return status;
    }
    // The same without noting it.
    float callUnnoted(const char* name, const char* text, double value, char* block) const {
        void* address = find_(name);
        if (address == nullptr) throw std::runtime_error(std::string("no export ") + name);
        return reinterpret_cast<ExportFunction*>(address)(text, value, block, -1, nullptr, -1,
                                                          nullptr);
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

    // Notes the names of an open listing, sorted: file systems have orders of their own.
    void listEntries() {
        std::multiset<std::string> names;
        emptyBlock();
        while (callUnnoted("GetFile", nullptr, 0.0, block_.data()) == 0.0f)
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
    return test.anyPath({"folder", "folder", "folder", "folder/", "folder//", "missing", "file.tif",
                         "folder/../folder"});
}

void createFolder(Case& test) {
    someFolder(test);
    test.call(test.mostly(test.anyPath({"new", "new/", "größe 高さ", "folder", "missing/new",
                                        "file.tif", "folder/new.d", "file.tif/new", "a\\b"})));
}

// The shared folder differs between machines, but the block must hold an absolute path exactly if the
// status says so.
void getPublicFolder(Case& test) {
    const bool withBlock = !test.random.oneIn(4);
    char* block = withBlock ? test.emptyBlock() : nullptr;
    const char* text = test.random.oneIn(2) ? nullptr : test.kept("anything");
    const float status =
        test.callUnnoted("GetPublicFolder", text, test.random.scriptNumber(), block);
    const bool copied = withBlock && test.blockText().front() == '/';
    test.note(copied == (status == 1.0f) ? "the status says what the block holds"
                                         : "the status is wrong");
}

void checkFolder(Case& test) {
    if (test.random.oneIn(2)) test.callOther("OpenFolder", test.kept(test.path("")), 0.0, nullptr);
    test.call(test.mostly(someFolder(test)));
    test.callOther("CloseFolder", nullptr, 0.0, nullptr);
}

void openFolder(Case& test) {
    const std::string first = someFolder(test);
    if (test.random.oneIn(4)) test.callOther("OpenFolder", test.kept(test.path("")), 0.0, nullptr);
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
    const std::string target = test.anyPath(
        {"old.tif", "old.tif", "old.tif", "größe.tif", "größe.tif", "missing/x", "file.tif"});
    test.call(text, 0.0, test.mostly(target));
}

void fileRename(Case& test) {
    const std::string folder = someFolder(test);
    test.write("other.tif", {9});
    const char* text = test.mostly(test.random.oneIn(4) ? folder : test.path("file.tif"));
    const std::string target =
        test.anyPath({"new.tif", "other.tif", "größe", "missing/x", "file.tif", "folder"});
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
    const std::string out = test.anyPath(
        {"out.Vemo", "out.Vemo", "o ut.tiles.x", "größe.Vemo", "größe.Vemo", "missing/out.Vemo"});
    char* block = test.random.oneIn(20) ? nullptr : test.blockWith(out);
    test.callOther(name, text, mode, block);
}

void exportAndNameTiles(Case& test) {
    exportTiles(test, test.exportName());
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

// Two files, mostly of the same shape; once in 25 calls they are the same file.
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

std::string floatMap(Case& test, bool mostlyGrey) {
    TiffShape shape = floatTiffShape(test.random);
    if (test.random.oneIn(3)) shape.width = 20 + test.random.below(100);  // for many levels
    if (!test.random.oneIn(8)) shape.grey = mostlyGrey;
    return test.write("map.tif", tiffMap(test.random, shape));
}

void convertTIFF16(Case& test) {
    const double layout = test.random.pick({1.0, 3.0, 4.0});
    const char* text = test.mostly(floatMap(test, layout == 1.0));
    const std::string out = test.anyPath({"out.tif", "out.tif", "out.psd", "out.psd", "out.PSD",
                                          "out.Psd", "größe.x", "missing/out.tif"});
    const double value = test.random.oneIn(10) ? test.random.scriptNumber() : layout;
    test.call(text, value, test.random.oneIn(20) ? nullptr : test.kept(out));
}

void convertTIFFSingle(Case& test) {
    const char* text = test.mostly(floatMap(test, false));
    test.call(text, 0.0, test.mostly(test.outPath("out.tif")));
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
    test.call(text, 0.0, test.mostly(test.outPath("out.tga")));
}

void saveAsJpeg(Case& test) {
    const std::string path = test.write("map.bmp", bmpMap(test.random, bmpShape(test.random)));
    const char* text = test.mostly(path);
    const double quality =
        test.random.oneIn(3) ? test.random.scriptNumber() : test.random.between(0, 100);
    const std::string out = test.outPath("out.jpg");
    test.call(text, quality, test.mostly(test.random.oneIn(25) ? path : out));
}

void createThumbnailBMP(Case& test) {
    const std::string path = test.write("map.bmp", bmpMap(test.random, bmpShape(test.random)));
    const char* text = test.mostly(path);
    test.call(text, test.random.oneIn(3) ? test.random.scriptNumber() : test.random.between(1, 16));
}

// The file is one that OpenEXR's own library wrote, in one case of two damaged.
void openExr(Case& test) {
    const std::string seed = test.random.pick<const char*>(
        {"none-float-any", "none-half-any", "none-uint-any", "rle-half", "rle-half-tiles",
         "zips-uint", "zip-half", "zip-float-tiles", "piz-half", "piz-float"});
    ByteList file = readBytes(QUILLON_GOLDEN_SEEDS "/" + seed + ".exr");
    if (test.random.oneIn(2)) file = damaged(test.random, file);
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
    {"getUVs", exportAndNameTiles},
    {"getUVsMask", exportAndNameTiles},
    {"mergeCrease", mergeCrease},
    {"mergeMapsTIF", [](Case& test) { merge(test, tiffShape, tiffMap); }},
    {"mergeMapsPSD", [](Case& test) { merge(test, psdShape, psdMap); }},
    {"mergeMapsBMP", [](Case& test) { merge(test, bmpShape, bmpMap); }},
    {"swapRGBTIF", [](Case& test) { swap(test, tiffShape, tiffMap); }},
    {"swapRGBPSD", [](Case& test) { swap(test, psdShape, psdMap); }},
    {"swapRGBBMP", [](Case& test) { swap(test, bmpShape, bmpMap); }},
    {"convertTIFF16", convertTIFF16},
    {"convertTIFFSingle", convertTIFFSingle},
    {"getScale", getScale},
    {"saveAsTarga", saveAsTarga},
    {"saveAsJpeg", saveAsJpeg},
    {"CreateThumbnailBMP", createThumbnailBMP},
    {"OpenEXR", openExr},
};

}  // namespace

void writeExportCases(const FindSymbol& find, const std::string& transcript) {
    std::ofstream lines(transcript);
    for (const auto& [name, runCase] : kExports) {
        for (int number = 0; number < kCases; ++number) {
            const CaptureStdout captured;
            Case test(find, name, number);
            runCase(test);
            std::fflush(stdout);
            lines << test.line(number, captured.text()) << '\n';
        }
    }
    if (!lines.flush()) throw std::runtime_error("cannot write " + transcript);
}
