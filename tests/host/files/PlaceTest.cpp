// quillon inspect --at: what each byte of a file belongs to. All offsets are counted by hand.

#include <gmock/gmock.h>

#include <nlohmann/json.hpp>

#include "host/Quillon.h"
#include "support/BmpFile.h"
#include "support/PsdFile.h"
#include "support/TiffFile.h"
#include "support/VemoBuilder.h"

namespace {

using nlohmann::json;
using ::testing::EndsWith;
using ::testing::HasSubstr;

struct Place : ::testing::Test {
    // The second of the lines that are printed, which names the place.
    std::string at(const std::string& offset) const {
        const Ended ended = quillon({"inspect", file, "--at", offset});
        EXPECT_EQ(ended.exitStatus, 0) << ended.err;
        std::istringstream lines(ended.out);
        std::string line;
        std::getline(lines, line);
        std::getline(lines >> std::ws, line);
        return line;
    }
    void expect(const std::vector<std::pair<const char*, const char*>>& places) const {
        for (const auto& [offset, place] : places)
            EXPECT_EQ(at(offset), place) << offset;
    }
    json jsonAt(const std::string& offset) const {
        json object = json::parse(quillon({"inspect", file, "--at", offset, "--json"}).out);
        EXPECT_EQ(object["file"], file);
        object.erase("file");
        return object;
    }

    TempDir dir;
    std::string file;
};

// The directory of 11 entries is at byte 8: its count, entries from 10 to 141, the next directory at
// 142, three depths at 146, three sample formats at 152, and the strip at 158.
TEST_F(Place, OfATiffWithItsDirectoryFirst) {
    file = dir.write("map.tif", TiffFile(3, 2, TiffFile::Order::kDirectoryFirst)
                                    .rgb8({1, 2, 3, 4, 5, 6, 7, 8, 9,  //
                                           10, 11, 12, 13, 14, 15, 16, 17, 18})
                                    .bytes());
    expect({{"0", "byte order = II"},
            {"7", "directory = 8"},
            {"8", "entries = 11"},
            {"10", "entry 256 width, tag = 256"},
            {"13", "entry 256 width, type = 3"},
            {"14", "entry 256 width, count = 1"},
            {"0x12", "entry 256 width, value = 3"},
            {"42", "entry 258 bits per sample, value = 146"},
            {"81", "entry 273 strip offset, value = 158"},
            {"148", "values of entry 258 bits per sample, value 1 = 8"},
            {"143", "no field that Quillon knows"},
            {"157", "values of entry 339 sample format, value 2 = 1"},
            {"158", "pixels, x 0, y 0, red = 1"},
            {"162", "pixels, x 1, y 0, green = 5"},
            {"0xAF", "pixels, x 2, y 1, blue = 18"}});
}

// The strip at byte 8 takes 16 bytes; behind it are the directory and its entries.
TEST_F(Place, OfATiffOfFloats) {
    file = dir.write("map.tif", TiffFile(2, 2).grey32({0.5f, -1, 0.25f, 3}).bytes());
    expect({{"8", "pixels, x 0, y 0, grey = 0.5"},
            {"15", "pixels, x 1, y 0, grey = -1"},
            {"16", "pixels, x 0, y 1, grey = 0.25"},
            {"24", "entries = 11"}});
}

TEST_F(Place, OfATiffWhoseSamplesAreCompressed) {
    file = dir.write("map.tif", TiffFile(2, 1).grey8({7, 8}).entry(259, 1, 5).bytes());
    EXPECT_EQ(at("8"), "no field that Quillon knows");
}

// Resources of 12 bytes at 34, no layers; planes of 6 bytes from byte 52 on.
TEST_F(Place, OfAPsd) {
    file = dir.write("map.psd", PsdFile(3, 2).resources(12).planes(
                                    {100, 101, 102, 103, 104, 105, 106, 107, 108,  //
                                     109, 110, 111, 112, 113, 114, 115, 116, 117}));
    expect({{"3", "signature = 8BPS"},
            {"17", "height = 2"},
            {"21", "width = 3"},
            {"31", "resource bytes = 12"},
            {"36", "resources"},
            {"51", "compression = 0"},
            {"52", "pixels, x 0, y 0, red = 100"},
            {"56", "pixels, x 1, y 1, red = 104"},
            {"58", "pixels, x 0, y 0, green = 106"},
            {"69", "pixels, x 2, y 1, blue = 117"}});
}

// 16 bits, the high byte first, from byte 40 on.
TEST_F(Place, OfAPsdOfHeights) {
    file = dir.write("map.psd", PsdFile(2, 1).grey16().planes({1, 2, 0xFF, 0xFE}));
    expect({{"41", "pixels, x 0, y 0, grey = 258"}, {"42", "pixels, x 1, y 0, grey = 65534"}});
}

// Rows of 9 bytes and 3 of padding, the bottom one at byte 54.
TEST_F(Place, OfABmp) {
    file = dir.write("map.bmp", BmpFile(3, 2).pixels({1, 2, 3, 4, 5, 6, 7, 8, 9,  //
                                                      10, 11, 12, 13, 14, 15, 16, 17, 18}));
    expect({{"1", "signature = BM"},
            {"10", "pixel offset = 54"},
            {"18", "width = 3"},
            {"28", "bits per pixel = 24"},
            {"40", "no field that Quillon knows"},
            {"54", "pixels, x 0, y 1, blue = 1"},
            {"59", "pixels, x 1, y 1, red = 6"},
            {"63", "padding, y 1"},
            {"65", "padding, y 1"},
            {"66", "pixels, x 0, y 0, blue = 10"},
            {"74", "pixels, x 2, y 0, red = 18"},
            {"77", "padding, y 0"}});
}

// Chunks at bytes 32, 144, 192 and the closing header at 272, as twoQuads() has them.
TEST_F(Place, OfAMesh) {
    file = dir.write("two.Vemo", twoQuads());
    expect({{"31", "header = not read"},
            {"32", "vertex chunk, id = 10001"},
            {"36", "vertex chunk, length = 112"},
            {"40", "vertex chunk, element count = 8"},
            {"44", "vertex chunk, unused = 0"},
            {"60", "vertex chunk, vertex 1, x = 2"},
            {"71", "vertex chunk, vertex 1, z = 0"},
            {"64", "vertex chunk, vertex 1, y = 0"},
            {"160", "face chunk, face 0, corner 0, vertex = 0"},
            {"188", "face chunk, face 1, corner 3, vertex = 7"},
            {"0xD0", "face UV chunk, face 0, corner 0, u = 0.25"},
            {"260", "face UV chunk, face 1, corner 2, v = 0.75"},
            {"272", "closing header, id = 0"}});
}

TEST_F(Place, OfTheRareChunksOfAMesh) {
    const ByteList mesh = VemoBuilder()
                              .vertexColours({{1, 2, 3, 4}})
                              .groups({5, -6})
                              .chunk(30001, 18, 2, {0, 255})
                              .chunk(77, 18, 2, {8, 9})
                              .bytes();
    file = dir.write("rare.Vemo", mesh);
    expect({{"48", "vertex colour chunk, vertex 0, blue = 1"},
            {"50", "vertex colour chunk, vertex 0, red = 3"},
            {"70", "face group chunk, face 1, group = -6"},
            {"89", "mask chunk, vertex 1, mask = 255"},
            {"106", "77"}});
}

TEST_F(Place, OfAValueThatTheFileCutsShort) {
    ByteList bytes = twoQuads();
    bytes.resize(262);
    file = dir.write("two.Vemo", bytes);
    EXPECT_EQ(at("260"), "face UV chunk, face 1, corner 2, v = cut short by the end of the file");
}

TEST_F(Place, OfAFileOfNoKnownKind) {
    file = dir.write("notes.txt", "AB");
    EXPECT_EQ(quillon({"inspect", file, "--at", "1"}).out,
              file +
                  ": no format that Quillon knows, byte 1 (0x1) of 2 is 66 (0x42)\n"
                  "  no field that Quillon knows\n");
}

TEST_F(Place, SaysWhereTheValueStarts) {
    file = dir.write("two.Vemo", twoQuads());
    EXPECT_EQ(quillon({"inspect", file, "--at", "263"}).out,
              file +
                  ": Vemo mesh, byte 263 (0x107) of 288 is 63 (0x3F)\n"
                  "  face UV chunk, face 1, corner 2, v = 0.75\n"
                  "  byte 3 of 4 from offset 260 on\n");
}

TEST_F(Place, IsAnObjectAsJson) {
    file = dir.write("two.Vemo", twoQuads());
    EXPECT_EQ(jsonAt("0x104"),
              json::parse(R"({"success": true, "format": "Vemo mesh", "bytes": 288, "at": 260,
                  "byte": 0, "part": "face UV chunk", "face": 1, "corner": 2, "component": "v",
                  "value": "0.75", "valueOffset": 260, "valueBytes": 4})"));
    file = dir.write("map.bmp", BmpFile(3, 2));
    EXPECT_EQ(jsonAt("59"),
              json::parse(R"({"success": true, "format": "BMP", "bytes": 78, "at": 59, "byte": 6,
                  "part": "pixels", "x": 1, "y": 1, "channel": "red", "value": "6",
                  "valueOffset": 59, "valueBytes": 1})"));
}

TEST_F(Place, BeyondTheEndIsReported) {
    file = dir.write("two.Vemo", twoQuads());
    const Ended ended = quillon({"inspect", file, "--at", "288"});
    EXPECT_EQ(ended.exitStatus, 1);
    EXPECT_EQ(ended.out, "");
    EXPECT_EQ(ended.err,
              "quillon: " + file + " has no byte 288: it has 288 bytes, counted from 0\n");
    EXPECT_THAT(quillon({"inspect", file, "--at", "0xFFFFFFFFFFFFFFFF", "--json"}).out,
                HasSubstr("\"success\":false,\"error\":"));
}

TEST_F(Place, NeedsANumber) {
    file = dir.write("two.Vemo", twoQuads());
    for (const char* offset : {"", "x", "-1", "1.5", "12x", "0x", "0xG", "99999999999999999999"}) {
        const Ended ended = quillon({"inspect", file, "--at", offset});
        EXPECT_EQ(ended.exitStatus, 2) << offset;
        EXPECT_EQ(ended.out, "");
    }
    EXPECT_THAT(quillon({"inspect", file, "--at", "12x"}).err,
                EndsWith("--at 12x is no offset; give a number such as 500 or 0x1F4; see quillon "
                         "inspect --help\n"));
}

}  // namespace
