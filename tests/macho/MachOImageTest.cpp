// The library that macOS loads, called without macOS. The test macho.exports compares what its exports
// do with files; these tests cover the rest.

#include "macho/MachOImage.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>

#include "export/Quillon.h"
#include "macho/MacFoundation.h"
#include "macho/MacStandIns.h"
#include "support/Plugin.h"
#include "support/TempDir.h"

namespace {

using testing::ThrowsMessage;

// One for all tests: the libraries stay loaded as in the host.
const MachOImage& cppLibrary() {
    static const MachOImage loaded(QUILLON_MACHO_CPP_LIBRARY);
    return loaded;
}
const MachOImage& image() {
    static const MachOImage loaded(QUILLON_MACHO, &cppLibrary());
    return loaded;
}

float call(const char* name, const Arguments& arguments = {}) {
    const auto function = reinterpret_cast<ExportFunction*>(image().symbol(name));
    return function(arguments.text, arguments.value, arguments.buffer1, 0, nullptr, 0, nullptr);
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

TEST(MachOImage, RefusesAMissingFile) {
    EXPECT_THAT([] { MachOImage("/no/library"); },
                ThrowsMessage<std::runtime_error>("cannot read /no/library"));
}

TEST(MachOImage, RunsAFunctionWithAMangledName) {
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

// A path without a dot throws an exception through the library's functions.
TEST(MachOImage, LetsExceptionsTravel) {
    Block noDot("map");
    EXPECT_ANY_THROW(call("convertTIFF16", {.text = "a.tif", .value = 1, .buffer1 = noDot}));
    EXPECT_EQ(call("Version"), 48.0f);
}

// The plug-in's std::out_of_range is the C++ library's, as that of another program of macOS is: Catcher.cpp.
TEST(MachOImage, ThrowsWhatAHostCatchesByItsType) {
    const MachOImage host(QUILLON_MACHO_CATCHER, &cppLibrary());
    const auto callAndCatch =
        reinterpret_cast<int (*)(ExportFunction*, const char*, double, char*)>(
            host.symbol("callAndCatch"));
    const auto convert = reinterpret_cast<ExportFunction*>(image().symbol("convertTIFF16"));
    Block noDot("map");
    EXPECT_EQ(callAndCatch(convert, "a.tif", 1, noDot), 1);
    Block withDot("map.tif");
    EXPECT_EQ(callAndCatch(convert, "/no/a.tif", 1, withDot), 0);
}

TEST(MachOImageDeathTest, NoticesASmashedStack) {
    const TempDir dir;
    const std::string map = dir.write("map.tif", {1, 2, 3});
    EXPECT_LT(call("getScale", {.text = map.c_str(), .value = 1}), 0.0f);
    EXPECT_DEATH(
        {
            overrunNextFstat();
            call("getScale", {.text = map.c_str(), .value = 1});
        },
        "the library found its stack smashed");
}

}  // namespace
