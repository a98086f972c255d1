// Little memory and headers that claim much of it: an export gets 64 MiB more than it has before it
// starts, and that is plenty for all of these files. The sanitizers need more than that for
// themselves, so they let each call have what it wants.

#include <gmock/gmock.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <limits>
#include <string>

#include "faults/ExrFile.h"
#include "faults/Scenarios.h"
#include "support/BmpFile.h"
#include "support/PsdFile.h"
#include "support/TiffFile.h"
#include "support/VemoBuilder.h"

namespace {

#ifdef QUILLON_SANITIZED
void limitMemory() {}
#else
rlim_t addressSpaceInUse() {
    std::ifstream status("/proc/self/statm");
    rlim_t pages = 0;
    status >> pages;
    return pages * static_cast<rlim_t>(::sysconf(_SC_PAGESIZE));
}

void limitMemory() {
    constexpr rlim_t kAllowance = rlim_t{64} * 1024 * 1024;
    const rlim_t bytes = addressSpaceInUse() + kAllowance;
    const rlimit limit{bytes, bytes};
    if (::setrlimit(RLIMIT_AS, &limit) != 0) ::_exit(2);
}
#endif

// The status of a call in a process of its own; NaN when that does not end by itself within a
// minute.
float statusWithLittleMemory(Stage& stage, const Call& call) {
    int ends[2];
    EXPECT_EQ(::pipe(ends), 0);
    const pid_t child = ::fork();
    if (child == 0) {
        ::alarm(60);
        limitMemory();
        const float status = stage.make(call).status;
        const bool sent = ::write(ends[1], &status, sizeof status) == sizeof status;
        ::_exit(sent ? 0 : 2);
    }
    ::close(ends[1]);
    float status = std::numeric_limits<float>::quiet_NaN();
    EXPECT_EQ(::read(ends[0], &status, sizeof status), static_cast<ssize_t>(sizeof status));
    ::close(ends[0]);
    int end = 0;
    EXPECT_EQ(::waitpid(child, &end, 0), child);
    EXPECT_TRUE(WIFEXITED(end) && WEXITSTATUS(end) == 0);
    return status;
}

// A header of 32 bytes and one chunk that claims a huge number of elements.
ByteList greedyMesh(std::uint32_t id, std::uint32_t count) {
    return VemoBuilder().chunk(id, 0xFFFFFFFF, count, ByteList(64)).bytes();
}

ByteList greedyTiff(std::uint32_t width, std::uint32_t length, std::uint32_t bits,
                    std::uint32_t channels) {
    TiffFile map(width, length, TiffFile::Order::kDirectoryFirst);
    if (bits == 8)
        map.rgb8(ByteList(30));
    else if (channels == 1)
        map.grey32(std::vector<float>(10));
    else
        map.rgb32(std::vector<float>(30));
    return map.entry(254, 1, 0).entry(279, 1, 0x7FFFFFFF).bytes();
}

struct Greedy {
    const char* name;
    Call call;
    Entries files;
    float status;
    bool changesFiles = false;
};

const std::uint32_t kHuge = 0x7FFFFFFF;

std::vector<Greedy> greedyFiles() {
    const ByteList mesh = greedyMesh(25001, 0x08000000);
    const ByteList bmp = BmpFile(4, 4).claimSize(60000, 60000);
    const ByteList hugeBmp = BmpFile(4, 4).claimSize(kHuge, kHuge);
    const ByteList tiff = greedyTiff(60000, 60000, 8, 3);
    const ByteList psd = PsdFile(30000, 30000).filled(30, 1);
    const ByteList hugePsd = PsdFile(0xFFFFFFFF, 0xFFFFFFFF).filled(30, 1);
    const ByteList resources = PsdFile(4, 4).filled(48, 1).announceResources(0xFFFFFFF0);
    const ByteList grey = greedyTiff(60000, 60000, 32, 1);
    const ByteList colour = greedyTiff(60000, 60000, 32, 3);
    const ByteList numbers = bytesOf("1-2147483647,-2147483648-5");
    return {
        {"tileFilter", {"setUVtilesOutput", "a"}, {{"a", numbers}}, 0},
        {"tiles", {"getUVTile", "a", 2.0}, {{"a", mesh}}, -18},
        {"groups", {"getUVGroups", "a"}, {{"a", greedyMesh(40001, 0xFFFFFFFF)}}, -18},
        {"uvs", {"getUVs", "a", 2.0, "o.x"}, {{"a", mesh}}, -18},
        {"masks", {"getUVsMask", "a", 2.0, "o.x"}, {{"a", greedyMesh(10001, kHuge)}}, -19},
        {"tiffMerge", {"mergeMapsTIF", "a", 0.0, "b"}, {{"a", tiff}, {"b", tiff}}, 0},
        {"tiffSwap", {"swapRGBTIF", "a", 1.0}, {{"a", tiff}}, 0},
        {"tiffTo16", {"convertTIFF16", "a", 1.0, "o.tif"}, {{"a", grey}}, -279},
        {"tiffToPsd", {"convertTIFF16", "a", 4.0, "o.psd"}, {{"a", colour}}, -279},
        {"tiffSingle", {"convertTIFFSingle", "a", 0.0, "o.tif"}, {{"a", colour}}, -279},
        {"tiffScale", {"getScale", "a", 1.0}, {{"a", greedyTiff(kHuge, kHuge, 32, 1)}}, -279},
        {"targa", {"saveAsTarga", "a", 0.0, "o.tga"}, {{"a", tiff}}, -279},
        {"targaRow", {"saveAsTarga", "a", 0.0, "o.tga"}, {{"a", greedyTiff(kHuge, 1, 8, 3)}}, -279},
        {"psdMerge", {"mergeMapsPSD", "a", 0.0, "b"}, {{"a", psd}, {"b", psd}}, -1},
        {"psdMergeHuge", {"mergeMapsPSD", "a", 0.0, "b"}, {{"a", hugePsd}, {"b", hugePsd}}, -1},
        {"psdSwap", {"swapRGBPSD", "a", 1.0}, {{"a", hugePsd}}, -1},
        {"psdResources", {"swapRGBPSD", "a", 1.0}, {{"a", resources}}, -1},
        {"bmpMerge", {"mergeMapsBMP", "a", 0.0, "b"}, {{"a", bmp}, {"b", bmp}}, 0},
        {"bmpMergeHuge", {"mergeMapsBMP", "a", 0.0, "b"}, {{"a", hugeBmp}, {"b", hugeBmp}}, 0},
        {"bmpSwap", {"swapRGBBMP", "a", 1.0}, {{"a", hugeBmp}}, 0, true},
        {"bmpThumb", {"CreateThumbnailBMP", "a", 2e9}, {{"a", hugeBmp}}, -9},
        {"bmpThumbOffset",
         {"CreateThumbnailBMP", "a", 2.0},
         {{"a", BmpFile(4, 4).claimPixelOffset(0xFFFFFFF0)}},
         -7},
        {"jpeg",
         {"saveAsJpeg", "a", 50.0, "o.jpg"},
         {{"a", BmpFile(4, 4).claimSize(65528, 8000)}},
         0,
         true},
        {"exr", {"OpenEXR", "a"}, {{"a", ExrFile{.width = 60000, .height = 60000}.bytes()}}, -4},
        {"exrHuge",
         {"OpenEXR", "a"},
         {{"a", ExrFile{.width = kHuge, .height = kHuge}.bytes()}},
         -4},
    };
}

void PrintTo(const Greedy& greedy, std::ostream* out) {
    *out << greedy.name;
}

class LittleMemory : public testing::TestWithParam<Greedy> {
protected:
    Stage stage;
};

TEST_P(LittleMemory, IsEnoughForAFileThatClaimsMuch) {
    stage.prepare({"", GetParam().call, 0.0f, GetParam().files});
    const Entries before = stage.entries();
    EXPECT_EQ(statusWithLittleMemory(stage, GetParam().call), GetParam().status);
    if (!GetParam().changesFiles) {
        EXPECT_TRUE(stage.entries() == before);
    }
}

INSTANTIATE_TEST_SUITE_P(Files, LittleMemory, testing::ValuesIn(greedyFiles()),
                         [](const auto& greedy) { return greedy.param.name; });

TEST(LittleMemory, IsEnoughForEveryScenario) {
    Stage stage;
    for (const Scenario& scenario : scenarios()) {
        SCOPED_TRACE(scenario.name);
        stage.prepare(scenario);
        EXPECT_EQ(statusWithLittleMemory(stage, scenario.call), scenario.status);
    }
}

#ifndef QUILLON_SANITIZED

// A file that really is larger than the memory: what must hold it whole refuses it, what works in
// pieces works on it. Nothing is changed.
TEST(LittleMemory, IsEnoughForAFileLargerThanIt) {
    const struct {
        Call call;
        float status;
    } rows[] = {
        {{"setUVtilesOutput", "huge"}, -1},
        {{"getUVTile", "huge"}, -18},
        {{"getUVGroups", "huge"}, -18},
        {{"getUVs", "huge", 2.0, "o.x"}, -18},
        {{"getUVsMask", "huge", 2.0, "o.x"}, -1760},
        {{"mergeCrease", "huge", 0.0, "small"}, -1760},
        {{"mergeCrease", "small", 0.0, "huge"}, -2760},
        {{"mergeMapsPSD", "small", 0.0, "huge"}, -1},
        {{"swapRGBPSD", "huge", 1.0}, -1},
        {{"CreateThumbnailBMP", "huge", 9.0}, 0},
        {{"OpenEXR", "huge"}, -7},
        {{"mergeMapsBMP", "huge", 0.0, "huge"}, 0},
        {{"swapRGBTIF", "huge", 1.0}, 0},
        {{"saveAsJpeg", "huge", 50.0, "small"}, 0},
    };
    Stage stage;
    for (const auto& row : rows) {
        SCOPED_TRACE(std::string(row.call.exportName) + ' ' + row.call.buffer1);
        const ByteList image = BmpFile(8, 8);
        stage.prepare({"", row.call, 0.0f, {{"huge", image}, {"small", image}}});
        std::filesystem::resize_file(stage.path("huge"), std::uintmax_t{6} << 30);
        EXPECT_EQ(statusWithLittleMemory(stage, row.call), row.status);
        EXPECT_EQ(std::filesystem::file_size(stage.path("huge")), std::uintmax_t{6} << 30);
    }
}

#endif

}  // namespace
