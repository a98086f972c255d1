// The library that macOS loads, called without macOS, beside the one for this machine: both must do
// the same.

#include "macho/MachOImage.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "export/Quillon.h"
#include "macho/MacFoundation.h"
#include "support/BmpFile.h"
#include "support/CaptureStdout.h"
#include "support/Plugin.h"
#include "support/TempDir.h"
#include "support/TiffFile.h"
#include "support/VemoBuilder.h"

namespace {

using testing::HasSubstr;
using testing::ThrowsMessage;
using testing::UnorderedElementsAre;

// One for all tests: the library stays loaded as in the host.
const MachOImage& image() {
    static const MachOImage loaded(QUILLON_MACHO);
    return loaded;
}

float call(const char* name, const Arguments& arguments = {}) {
    const auto function = reinterpret_cast<ExportFunction*>(image().symbol(name));
    return function(arguments.text, arguments.value, arguments.buffer1, 0, nullptr, 0, nullptr);
}

// Two folders with the same files; the library for macOS works in one, ours in the other.
class BothLibraries {
public:
    void write(const std::string& name, const ByteList& bytes) {
        mac_.write(name, bytes);
        linux_.write(name, bytes);
    }

    // Calls an export of both with paths in their folders and expects one status and the same files.
    float same(const char* name, const std::string& text, double value,
               const std::string& second = "") {
        const float onMac = callIn(mac_, text, value, second, [&](const Arguments& arguments) {
            return call(name, arguments);
        });
        const float onLinux = callIn(linux_, text, value, second, [&](const Arguments& arguments) {
            return plugin_.call(name, arguments);
        });
        EXPECT_EQ(onMac, onLinux) << name;
        EXPECT_EQ(mac_.names(), linux_.names()) << name;
        for (const std::string& file : linux_.names())
            EXPECT_EQ(readBytes(mac_.path(file)), readBytes(linux_.path(file))) << name;
        return onMac;
    }

private:
    template <typename Call>
    static float callIn(const TempDir& dir, const std::string& text, double value,
                        const std::string& second, Call callExport) {
        const std::string path = dir.path(text);
        Block block(dir.path(second));
        return callExport({.text = path.c_str(), .value = value, .buffer1 = block});
    }

    TempDir mac_;
    TempDir linux_;
    Plugin plugin_;
};

std::vector<float> rampOf(std::size_t count) {
    std::vector<float> samples(count);
    for (std::size_t i = 0; i < count; ++i)
        samples[i] = static_cast<float>(i) / 1000.0f;
    return samples;
}

TEST(MachOImage, GivesEveryExport) {
    std::ifstream list(QUILLON_EXPORT_LIST);
    int found = 0;
    for (std::string name; std::getline(list, name); ++found)
        EXPECT_NO_THROW(image().symbol(name)) << name;
    EXPECT_EQ(found, 37);
    EXPECT_THAT([] { image().symbol("Versions"); },
                ThrowsMessage<std::runtime_error>("no export Versions"));
}

TEST(MachOImage, RefusesAFileThatIsNotThere) {
    EXPECT_THAT([] { MachOImage("/no/library"); },
                ThrowsMessage<std::runtime_error>("cannot read /no/library"));
}

TEST(MachOImage, AnswersAndCopiesText) {
    EXPECT_EQ(call("Version"), 48.0f);
    Block block;
    EXPECT_EQ(call("GetString", {.text = "0123456789abc", .value = 10, .buffer1 = block}), 0.0f);
    EXPECT_EQ(block.text(), "abc");
    char text[] = "abc";
    const auto substring =
        reinterpret_cast<char* (*)(char*, int)>(image().symbol("_Z10get_substrPci"));
    EXPECT_EQ(substring(text, 2), text + 2);
}

TEST(MachOImage, CreatesFoldersThroughFoundation) {
    const TempDir dir;
    const std::string folder = dir.path("größe 高さ");
    EXPECT_EQ(call("CreateFolder", {.text = folder.c_str()}), 0.0f);
    EXPECT_TRUE(std::filesystem::is_directory(folder));
    EXPECT_EQ(call("CreateFolder", {.text = folder.c_str()}), -1.0f);
    EXPECT_EQ(call("CreateFolder", {.text = dir.path("no/folder").c_str()}), -1.0f);
    EXPECT_EQ(mac::liveObjects(), 0u);
}

TEST(MachOImage, FindsTheSharedFolderThroughFoundation) {
    Block block;
    EXPECT_EQ(call("GetPublicFolder", {.buffer1 = block}), 1.0f);
    EXPECT_EQ(block.text(), "/Users");
    EXPECT_EQ(mac::liveObjects(), 0u);
}

TEST(MachOImage, ListsAndEmptiesFolders) {
    const TempDir dir;
    dir.write("a.tif", ByteList{1});
    dir.write("noext", ByteList{2});
    EXPECT_EQ(call("OpenFolder", {.text = dir.path().c_str()}), 0.0f);
    std::vector<std::string> names;
    for (Block name; call("GetFile", {.buffer1 = name}) == 0.0f;)
        names.push_back(name.text());
    EXPECT_THAT(names, UnorderedElementsAre(".", "..", "a.tif", "noext"));
    EXPECT_EQ(call("CloseFolder"), 0.0f);
    EXPECT_EQ(call("EmptyFolder", {.text = dir.path().c_str()}), 0.0f);
    EXPECT_THAT(dir.names(), UnorderedElementsAre("noext"));
}

TEST(MachOImage, MovesFiles) {
    BothLibraries both;
    both.write("a.bin", ByteList(10'000, 7));
    EXPECT_EQ(both.same("FileCopyTo", "a.bin", 0, "b.bin"), 0.0f);
    EXPECT_EQ(both.same("FileRename", "b.bin", 0, "c.bin"), 0.0f);
    EXPECT_EQ(both.same("FileDelete", "a.bin", 0), 0.0f);
    EXPECT_EQ(both.same("FileDelete", "a.bin", 0), -1.0f);
}

// printf takes its arguments another way on macOS's ARM64.
TEST(MachOImage, PrintsStatuses) {
    const TempDir dir;
    const std::string tile = dir.write("tile.tif", TiffFile(1, 1).grey8({9}).bytes());
    Block missing(dir.path("missing.tif"));
    const CaptureStdout output;
    EXPECT_EQ(call("mergeMapsTIF", {.text = tile.c_str(), .buffer1 = missing}), -20.0f);
    std::fflush(stdout);
    EXPECT_EQ(output.text(), "-20\n");
}

TEST(MachOImage, WorksOnTiffMapsAsOnLinux) {
    BothLibraries both;
    both.write("rgb.tif", TiffFile(2, 2).rgb8({1, 2, 3, 4, 5, 6, 7, 8, 9, 9, 8, 7}).bytes());
    both.write("all.tif", TiffFile(2, 2).rgb8({1, 2, 3, 1, 2, 3, 5, 5, 5, 1, 2, 3}).bytes());
    both.write("grey.tif",
               TiffFile(40, 25, TiffFile::Order::kDirectoryFirst).grey32(rampOf(1000)).bytes());
    EXPECT_EQ(both.same("swapRGBTIF", "rgb.tif", 1), 0.0f);
    EXPECT_EQ(both.same("mergeMapsTIF", "rgb.tif", 0, "all.tif"), 0.0f);
    EXPECT_EQ(both.same("saveAsTarga", "all.tif", 0, "all.tga"), 0.0f);
    EXPECT_GT(both.same("getScale", "grey.tif", 1), 0.0f);
    EXPECT_EQ(both.same("convertTIFF16", "grey.tif", 1, "grey16.psd"), 0.0f);
}

TEST(MachOImage, WorksOnBmpImagesAsOnLinux) {
    BothLibraries both;
    both.write("image.bmp", BmpFile(37, 21));
    EXPECT_EQ(both.same("saveAsJpeg", "image.bmp", 80, "image.jpg"), 0.0f);
    EXPECT_EQ(both.same("swapRGBBMP", "image.bmp", 2), 0.0f);
    EXPECT_EQ(both.same("CreateThumbnailBMP", "image.bmp", 8), 0.0f);
}

TEST(MachOImage, WorksOnMeshesAsOnLinux) {
    BothLibraries both;
    both.write("mesh.vemo", VemoBuilder()
                                .vertices({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}})
                                .faces({{0, 1, 2, -1}, {0, 1, 2, -1}})
                                .flatFaceUvs({{0.5f, 0.5f}, {1.5f, 0.5f}})
                                .closing()
                                .bytes());
    EXPECT_EQ(both.same("getUVTile", "mesh.vemo", 0, "unused"), 2.0f);
    EXPECT_EQ(both.same("getUVs", "mesh.vemo", 0, "tile.vemo"), 2.0f);
}

// Neither memory that runs out nor a path without a dot may end the program: an exception is thrown,
// and caught, in the library's own way.
TEST(MachOImage, LetsExceptionsTravel) {
    const TempDir dir;
    Block noDot("map");
    EXPECT_ANY_THROW(call("convertTIFF16", {.text = "a.tif", .value = 1, .buffer1 = noDot}));
    EXPECT_EQ(call("Version"), 48.0f);
}

}  // namespace
