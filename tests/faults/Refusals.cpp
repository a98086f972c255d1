#include "faults/Refusals.h"

#include <algorithm>
#include <set>
#include <utility>

#include "faults/ExrFile.h"
#include "support/BmpFile.h"
#include "support/PsdFile.h"
#include "support/TiffFile.h"
#include "support/VemoBuilder.h"

namespace {

// Maps of 8 x 8 pixels.
constexpr std::uint32_t kSide = 8;

TiffFile colour8() {
    return TiffFile(kSide, kSide).rgb8(ByteList(3 * kSide * kSide, 9));
}
TiffFile grey8() {
    return TiffFile(kSide, kSide).grey8(ByteList(kSide * kSide, 9));
}
TiffFile greyFloat() {
    return TiffFile(kSide, kSide).grey32(std::vector<float>(kSide * kSide, 0.5f));
}
TiffFile colourFloat() {
    return TiffFile(kSide, kSide).rgb32(std::vector<float>(3 * kSide * kSide, 0.5f));
}
PsdFile psd() {
    return PsdFile(kSide, kSide).filled(3 * kSide * kSide, 9);
}
BmpFile bmp() {
    return {kSide, kSide};
}

// Lists calls, of one export after the other.
class List {
public:
    // The calls that are added next are like this one.
    void of(const char* exportName, double value = 0.0, const std::string& target = {}) {
        call_ = {exportName, "one.map", value, target};
    }
    // One whose source or only file is refused.
    Scenario& add(const std::string& name, float status, const ByteList& source) {
        return all.emplace_back(Scenario{name, call_, status, {{call_.text, source}}});
    }
    // One that is accepted, and the entries that are then created, changed or removed.
    void accept(const std::string& name, const ByteList& source,
                const std::set<std::string>& written, float status = 0.0f) {
        add(name, status, source).written = written;
    }
    void accept(const std::string& name, const ByteList& source, const ByteList& target,
                const std::set<std::string>& written) {
        Scenario& accepted = add(name, 0.0f, source);
        accepted.files[call_.buffer1] = target;
        accepted.written = written;
    }
    // One of a merge.
    void add(const std::string& name, float status, const ByteList& source,
             const ByteList& target) {
        add(name, status, source).files[call_.buffer1] = target;
    }

    std::vector<Scenario> all;

private:
    Call call_{};
};

// Directories that each reader of any depth refuses, and each reader of float maps.
void addDirectories(List& list, float channelCount, TiffFile (*map)(), const TiffFile* target) {
    const auto add = [&](const char* name, float status, const TiffFile& bent) {
        Scenario& added = list.add(name, status, bent.bytes());
        if (target != nullptr) added.files["all.map"] = target->bytes();
    };
    add("two channels", channelCount, map().entry(258, 2, 8));
    add("compressed", -259, map().entry(259, 1, 5));
    add("a palette", -262, map().entry(262, 1, 3));
    add("two strips", -273, map().entry(273, 2, 8));
    add("two sample formats", -339, map().entry(339, 2, 1));
}

void addTiff(List& list) {
    const TiffFile good = colour8();
    list.of("mergeMapsTIF", 0.0, "all.map");
    addDirectories(list, 258, colour8, &good);
    list.add("another height", -30, TiffFile(kSide, 9).rgb8(ByteList(3 * kSide * 9, 9)).bytes(),
             good.bytes());
    list.add("grey and colour", -40, grey8().bytes(), good.bytes());

    list.of("swapRGBTIF", 2.0);
    addDirectories(list, 258, colour8, nullptr);
    list.add("no strip", -273, colour8().without(273).bytes());

    const auto addFloat = [&](TiffFile (*map)()) {
        addDirectories(list, -258, map, nullptr);
        list.add("8 bits", -32, colour8().bytes());
        list.add("a strip from 2 GiB on", -274, map().entry(273, 1, 0x80000000).bytes());
        list.add("a row too few", -279, map().entry(257, 1, kSide + 9).bytes());
    };
    list.of("convertTIFF16", 1.0, "out.tif");
    addFloat(greyFloat);
    list.add("the directory at its end", -257, greyFloat().bytes());
    list.of("convertTIFFSingle", 0.0, "out.tif");
    addFloat(colourFloat);
    list.add("one channel", -279, greyFloat().bytes());
    list.of("getScale", 1.0);
    addFloat(greyFloat);
    list.add("no width", -1, greyFloat().entry(256, 1, 0).bytes());

    list.of("saveAsTarga", 0.0, "out.tga");
    addDirectories(list, 258, colour8, nullptr);
    list.add("no directory", -257, bytesOf("neither map nor image"));
    list.add("a hundred million rows", -279, colour8().entry(257, 1, 100'000'000).bytes());
}

void addPsd(List& list) {
    list.of("mergeMapsPSD", 0.0, "all.map");
    list.add("another file", -1, psd(), bytesOf("no image"));
    list.add("large document", -2, psd().version(2), psd());
    list.add("a colour table", -3, psd().colourTable(4), psd());
    list.add("compressed", -4, psd().compression(1), psd());
    list.add("another height", -6, PsdFile(kSide, 9).filled(3 * kSide * 9, 9), psd());
    list.add("8-bit grey", 36, psd().channels(1).colourMode(1), psd());

    list.of("swapRGBPSD", 2.0);
    list.add("another file", -1, bytesOf("no image"));
    list.add("large document", -2, psd().version(2));
    list.add("a colour table", -3, psd().colourTable(4));
    list.add("compressed", -4, psd().compression(1));
    list.add("an alpha channel", -56, psd().channels(4).filled(4 * kSide * kSide, 9));
}

void addBmp(List& list) {
    list.of("mergeMapsBMP", 0.0, "all.map");
    list.add("another source", -7, bytesOf("no image"), bmp());
    list.add("another height", -30, BmpFile(kSide, 9), bmp());
    list.add("another depth", -40, bmp().bitsPerPixel(32), bmp());
    list.of("swapRGBBMP", 2.0);
    list.add("another file", -7, bytesOf("no image"));
    list.of("CreateThumbnailBMP", 4.0);
    list.add("another file", -2, bytesOf("no image"));
    list.add("cut in its headers", -7, bmp().cut(53));
    list.add("top-down", -9, bmp().claimSize(kSide, -8));
    list.of("saveAsJpeg", 50.0, "out.jpg");
    list.add("cut in its headers", 4, bmp().cut(53));
    list.add("another file", 5, ByteList(54, 'x'));
    list.add("65529 pixels wide", -9, bmp().claimSize(65529, kSide));
}

void addExr(List& list) {
    list.of("OpenEXR");
    list.add("another file", -1, bytesOf("neither map nor image"));
    list.add("version 3", -2, ExrFile{.version = 3}.bytes());
    list.add("deep", -4, ExrFile{.flags = 8}.bytes());
    list.add("24-bit floats", -8, ExrFile{.compression = 5}.bytes());
    list.add("no line order", -9, ExrFile{.lineOrder = "noOrder"}.bytes());
    list.add("subsampled", -10, ExrFile{.sampling = 2}.bytes());
    list.add("NaN alone", -131070, ExrFile{.sample = 0x7E00}.bytes());
}

void addMeshes(List& list) {
    const ByteList without =
        VemoBuilder().vertices({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}}).closing().bytes();
    for (const char* exportName : {"getUVTile", "getUVGroups", "getUVs"}) {
        list.of(exportName, 2.0, "tile.tif");
        list.add("neither UVs nor groups", -18, without);
    }
    list.of("getUVsMask", 2.0, "tile.tif");
    list.add("no vertices", -18, VemoBuilder().closing().bytes());
    list.add("no faces", -19, without);
    list.of("mergeCrease", 0.0, "all.map");
    list.add("a short source", -18, ByteList(13, 0), without);
}

std::vector<Scenario> allFiles() {
    List list;
    addTiff(list);
    addPsd(list);
    addBmp(list);
    addExr(list);
    addMeshes(list);
    return std::move(list.all);
}

// Maps whose directory is not found: another byte order, a strip of 1728 bytes before it, no map at all.
void acceptWithoutDirectory(List& list, const std::set<std::string>& written) {
    ByteList bigEndian = colour8();
    bigEndian[0] = bigEndian[1] = 'M';
    std::swap(bigEndian[2], bigEndian[3]);
    std::reverse(&bigEndian[4], &bigEndian[8]);
    list.accept("big-endian", bigEndian, written);
    list.accept("a late directory", TiffFile(24, 24).rgb8(ByteList(24 * 24 * 3, 9)), written);
    list.accept("a PSD", psd(), written);
    list.accept("a BMP", bmp(), written);
    list.accept("a text", bytesOf("neither map nor image"), written);
    list.accept("nothing", {}, written);
}

void acceptTiff(List& list) {
    list.of("mergeMapsTIF", 0.0, "all.map");
    list.accept("64 bits", grey8().entry(258, 1, 64), grey8().entry(258, 1, 64), {});
    list.accept("two BMPs", bmp(), bmp(), {});
    list.of("swapRGBTIF", 2.0);
    acceptWithoutDirectory(list, {});
    list.accept("64 bits", grey8().entry(258, 1, 64), {});
    list.of("convertTIFF16", 1.0, "out.tif");
    acceptWithoutDirectory(list, {"out.tif"});
    list.accept("the directory first, without tag 254",
                TiffFile(kSide, kSide, TiffFile::Order::kDirectoryFirst)
                    .grey32(std::vector<float>(kSide * kSide, 0.5f)),
                {"out.tif"});
    list.of("convertTIFFSingle", 0.0, "out.tif");
    acceptWithoutDirectory(list, {"out.tif"});
    list.of("saveAsTarga", 0.0, "out.tga");
    list.accept("floats", colourFloat(), {"out.tga"});
    list.accept("a row too few", colour8().entry(257, 1, kSide + 9), {"out.tga"});
    list.accept("no width", colour8().entry(256, 1, 0), {"out.tga"});
}

void acceptOthers(List& list) {
    list.of("mergeMapsPSD", 0.0, "all.map");
    list.accept("the data at two places", psd().resources(12), psd(), {"all.map"});
    list.of("swapRGBPSD", 1.0);
    ByteList planes(3 * kSide * kSide, 9);
    planes.back() = 1;
    list.accept("Lab", psd().colourMode(9).planes(planes), {"one.map"});
    list.accept("layers", psd().layers(8).planes(planes), {"one.map"});

    const BmpFile topDown = bmp().claimSize(kSide, -8);
    list.of("mergeMapsBMP", 0.0, "all.map");
    list.accept("top-down", topDown, topDown, {});
    list.of("swapRGBBMP", 2.0);
    list.accept("top-down", topDown, {});
    list.accept("32 bits", bmp().bitsPerPixel(32), {"one.map"});
    list.accept("cut short", bmp().cut(200), {"one.map"});
    list.of("CreateThumbnailBMP", 9.0);
    list.accept("a narrow top-down image", topDown, {});
    list.of("CreateThumbnailBMP", 8.0);
    list.accept("of that size already", bmp(), {"one.map"});
    list.of("CreateThumbnailBMP", 4.0);
    list.accept("a side that becomes 0", BmpFile(kSide, 1), {"one.map"});
    list.of("saveAsJpeg", 50.0, "out.jpg");
    list.accept("65544 pixels wide", bmp().claimSize(65544, kSide), {"out.jpg"});
    list.accept("pixels at byte 60", bmp().pixelOffset(60), {"out.jpg"});
    list.accept("no pixels", bmp().cut(54), {"out.jpg"});
}

void acceptMeshes(List& list) {
    const auto uvs = [] { return VemoBuilder().flatFaceUvs({{0, 1}, {10, 0}}); };
    const ByteList emptyFirst = VemoBuilder().chunk(777, 0, 0).groups({1, 2}).bytes();
    ByteList cut = uvs().bytes();
    cut.pop_back();
    list.of("getUVTile", 2.0);
    list.accept("two tiles called 1011", uvs().bytes(), {}, 1);
    list.accept("a byte short", cut, {}, 1);
    list.of("getUVGroups");
    list.accept("a chunk of length 0 first", emptyFirst, {}, 2);
    list.of("getUVs", 2.0, "folder.d/mesh");
    list.accept("a dot in the folder's name", uvs().bytes(), {"folder1011.Vemo"}, 1);
    list.of("mergeCrease", 0.0, "all.map");
    list.accept("no meshes", ByteList(14, 'x'), ByteList(20, 'y'), {"all.map"});
}

std::vector<Scenario> allAccepted() {
    List list;
    acceptTiff(list);
    acceptOthers(list);
    acceptMeshes(list);
    return std::move(list.all);
}

}  // namespace

const std::vector<Scenario>& refusedFiles() {
    static const std::vector<Scenario> all = allFiles();
    return all;
}

const std::vector<Scenario>& acceptedFiles() {
    static const std::vector<Scenario> all = allAccepted();
    return all;
}
