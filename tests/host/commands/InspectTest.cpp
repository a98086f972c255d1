#include <gmock/gmock.h>

#include <nlohmann/json.hpp>

#include "host/Quillon.h"
#include "host/Terminal.h"
#include "support/BmpFile.h"
#include "support/PsdFile.h"
#include "support/TiffFile.h"
#include "support/VemoBuilder.h"

namespace {

using nlohmann::json;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::StartsWith;

struct Inspect : ::testing::Test {
    json inspect(const std::string& file) {
        const Ended ended = quillon({"inspect", file, "--json"});
        EXPECT_EQ(ended.exitStatus, 0) << ended.err;
        return json::parse(ended.out);
    }
    json inspect(std::string_view name, const ByteList& bytes) {
        return inspect(dir.write(name, bytes));
    }
    // How many lines are printed of these files.
    static std::ptrdiff_t linesOf(const Words& words, const Words& files, int exitStatus) {
        const Ended ended = quillon(words, files);
        EXPECT_EQ(ended.exitStatus, exitStatus) << ended.err;
        return std::ranges::count(ended.out, '\n');
    }
    // The field of that name as "offset bytes value".
    static std::string field(const json& file, const std::string& name) {
        for (const json& field : file["fields"]) {
            if (field["name"] == name)
                return std::to_string(field["offset"].get<int>()) + ' ' +
                       std::to_string(field["bytes"].get<int>()) + ' ' +
                       field["value"].get<std::string>();
        }
        return "no such field";
    }
    // What the exports returned: "name status", with "!" before a refusal, and what they did not do.
    static Words verdicts(const json& file) {
        Words all;
        for (const json& trial : file["exports"]) {
            std::string name = trial["export"];
            if (!trial["accepted"]) name.insert(0, 1, '!');
            name += ' ' + trial["status"].dump();
            if (trial["changesNothing"]) name += " unchanged";
            if (trial["wrongResult"]) name += " wrong";
            all.push_back(name);
        }
        return all;
    }

    TempDir dir;
};

TEST_F(Inspect, AMeshShowsItsChunks) {
    const json file = inspect("two.Vemo", twoQuads());
    EXPECT_EQ(file["format"], "Vemo mesh");
    EXPECT_EQ(file["bytes"], 288);
    EXPECT_EQ(field(file, "10001 vertices"), "32 112 8 elements");
    EXPECT_EQ(field(file, "20001 faces"), "144 48 2 elements");
    EXPECT_EQ(field(file, "25001 face UVs"), "192 80 2 elements");
    EXPECT_EQ(field(file, "closing header"), "272 16 ");
    EXPECT_THAT(verdicts(file), ElementsAre("getUVTile 2", "!getUVGroups -18", "getUVs 2",
                                            "getUVsMask 2", "mergeCrease 0"));
}

TEST_F(Inspect, ABrokenMeshShowsWhatItHas) {
    ByteList bytes = twoQuads();
    bytes.resize(250);
    const json cut = inspect("cut.Vemo", bytes);
    EXPECT_EQ(field(cut, "25001 face UVs"), "192 80 2 elements");
    EXPECT_THAT(verdicts(cut), ElementsAre("!getUVTile -18", "!getUVGroups -18", "!getUVs -18",
                                           "!getUVsMask -18", "mergeCrease 0"));
    const json still =
        inspect("still.Vemo", VemoBuilder().chunk(10001, 0, 5).chunk(20001, 16, 0).bytes());
    EXPECT_EQ(still["fields"].size(), 2u);
    EXPECT_EQ(
        field(inspect("rest.Vemo", VemoBuilder().chunk(10001, 16, 0, {1, 2}).bytes()), "rest"),
        "48 2 too short for a chunk");
    EXPECT_THAT(inspect("empty.Vemo", ByteList{})["fields"].size(), 1u);
}

TEST_F(Inspect, AThousandFieldsAreEnough) {
    VemoBuilder mesh;
    for (int i = 0; i < 3000; ++i)
        mesh.chunk(10001, 16, 0);
    EXPECT_EQ(inspect("long.Vemo", mesh.bytes())["fields"].size(), 1000u);
}

TEST_F(Inspect, AColourMapShowsItsTags) {
    const TiffFile map = TiffFile(16, 2, TiffFile::Order::kDirectoryFirst).rgb8(ByteList(96, 9));
    const json file = inspect("map.tif", map.bytes());
    EXPECT_EQ(file["format"], "TIFF");
    EXPECT_EQ(file["width"], 16);
    EXPECT_EQ(file["height"], 2);
    EXPECT_EQ(file["channels"], 3);
    EXPECT_EQ(file["depth"], 8);
    EXPECT_EQ(field(file, "byte order"), "0 2 II");
    EXPECT_EQ(field(file, "directory"), "4 4 8");
    EXPECT_EQ(field(file, "256 width"), "10 12 16");
    EXPECT_THAT(field(file, "258 bits per sample"), EndsWith(": 8, 8, 8"));
    EXPECT_THAT(verdicts(file),
                ElementsAre("mergeMapsTIF 0 unchanged", "swapRGBTIF 0", "!convertTIFF16 -32",
                            "!convertTIFF16 -32", "!convertTIFF16 -32", "!convertTIFFSingle -32",
                            "!getScale -32", "saveAsTarga 0"));
}

TEST_F(Inspect, AFloatMapIsTriedWithItsOwnChannels) {
    const json grey = inspect(
        "grey.tif",
        TiffFile(2, 2, TiffFile::Order::kDirectoryFirst).grey32({0, 0.25f, 0.5f, 1}).bytes());
    EXPECT_EQ(grey["depth"], 32);
    EXPECT_THAT(verdicts(grey), Contains("getScale \"inf\""));
    EXPECT_EQ(grey["exports"][2]["how"], "layout 1 to TIFF");
    EXPECT_EQ(grey["exports"][2]["status"], 0);
    EXPECT_EQ(grey["exports"][3]["how"], "layout 1 to PSD");
    EXPECT_THAT(verdicts(grey), Contains("!convertTIFFSingle -279"));
    const json colour = inspect(
        "colour.tif", TiffFile(1, 1, TiffFile::Order::kDirectoryFirst).rgb32({0, 0.5f, 1}).bytes());
    EXPECT_THAT(verdicts(colour), Contains("convertTIFFSingle 0"));
    EXPECT_EQ(colour["exports"][2]["how"], "layout 3 to TIFF");
}

TEST_F(Inspect, ARefusalSaysWhy) {
    const json file =
        inspect("packed.tif", TiffFile(3, 1).grey32({0, 1, 2}).entry(259, 1, 5).bytes());
    EXPECT_THAT(field(file, "259 compression"), EndsWith("12 5"));
    for (const json& trial : file["exports"]) {
        EXPECT_EQ(trial["status"], -259);
        EXPECT_THAT(trial["meaning"].get<std::string>(), HasSubstr("map is compressed"));
    }
}

TEST_F(Inspect, APsdShowsItsHeader) {
    const json file = inspect("map.psd", PsdFile(3, 2).resources(12).filled(18, 9));
    EXPECT_EQ(file["width"], 3);
    EXPECT_EQ(file["height"], 2);
    EXPECT_EQ(field(file, "resource bytes"), "30 4 12");
    EXPECT_EQ(field(file, "layer bytes"), "46 4 0");
    EXPECT_EQ(field(file, "compression"), "50 2 0");
    EXPECT_EQ(field(file, "image data"), "52 18 ");
    EXPECT_THAT(verdicts(file), ElementsAre("mergeMapsPSD 0 unchanged", "swapRGBPSD 0"));
    EXPECT_THAT(verdicts(inspect("grey.psd", PsdFile(3, 2).grey16().filled(12, 9))),
                ElementsAre("mergeMapsPSD 0 unchanged", "!swapRGBPSD -56"));
}

TEST_F(Inspect, ABmpShowsItsHeader) {
    const json file = inspect("map.bmp", BmpFile(3, 2).claimSize(3, -2));
    EXPECT_EQ(field(file, "width"), "18 4 3");
    EXPECT_EQ(field(file, "height"), "22 4 -2");
    EXPECT_EQ(field(file, "pixel offset"), "10 4 54");
    EXPECT_THAT(verdicts(inspect("deep.bmp", BmpFile(3, 2).bitsPerPixel(32))),
                ElementsAre("mergeMapsBMP 0 wrong", "swapRGBBMP 0 wrong", "!saveAsJpeg 5",
                            "CreateThumbnailBMP 0 wrong"));
}

// A header that lacks most attributes.
TEST_F(Inspect, AnExrShowsItsAttributes) {
    using namespace std::string_view_literals;
    const std::string_view text =
        "\x76\x2F\x31\x01\2\0\0\0"
        "compression\0compression\0\1\0\0\0\3"
        "dataWindow\0box2i\0\x10\0\0\0\0\0\0\0\1\0\0\0\6\0\0\0\3\0\0\0"
        "\0"sv;
    const ByteList bytes(text.begin(), text.end());
    const json file = inspect("half.exr", bytes);
    EXPECT_EQ(field(file, "compression"), "8 29 3 (ZIP)");
    EXPECT_EQ(field(file, "dataWindow"), "37 37 0 1 6 3");
    EXPECT_EQ(file["width"], 7);
    EXPECT_EQ(file["height"], 3);
    EXPECT_THAT(verdicts(file), ElementsAre("!OpenEXR -9"));
}

TEST_F(Inspect, PicturesThatQuillonMadeShowTheirHeaders) {
    const std::string bmp = dir.write("map.bmp", BmpFile(9, 5));
    const std::string tif = dir.write("map.tif", TiffFile(9, 5).rgb8(ByteList(135, 9)).bytes());
    quillon({"call", "saveAsJpeg", bmp, "--buffer", dir.path("map.jpg")});
    quillon({"call", "saveAsTarga", tif, "--buffer", dir.path("map.tga")});
    const json jpeg = inspect(dir.path("map.jpg"));
    EXPECT_EQ(jpeg["format"], "JPEG");
    EXPECT_EQ(jpeg["width"], 9);
    EXPECT_EQ(jpeg["height"], 5);
    EXPECT_EQ(field(jpeg, "FFE0"), "2 18 ");
    EXPECT_THAT(field(jpeg, "FFC0"), EndsWith("frame of 9 x 5 pixels"));
    EXPECT_THAT(jpeg["exports"], IsEmpty());
    const json targa = inspect(dir.path("map.tga"));
    EXPECT_EQ(targa["format"], "Targa");
    EXPECT_EQ(field(targa, "width"), "12 2 9");
    EXPECT_EQ(field(targa, "pixels"), "18 135 ");
}

TEST_F(Inspect, ABrokenStartIsKnownByTheExtension) {
    EXPECT_EQ(field(inspect("map.PSD", PsdFile(3, 1).signature("8BPX").filled(9, 9)), "signature"),
              "0 4 8BPX");
    EXPECT_THAT(verdicts(inspect("no.bmp", ByteList{'x'})),
                ElementsAre("!mergeMapsBMP -7", "!swapRGBBMP -7", "!saveAsJpeg 4",
                            "!CreateThumbnailBMP -2"));
}

TEST_F(Inspect, AFileOfNoKnownKindIsAFailure) {
    const std::string file = dir.write("notes.txt", "hello");
    const Ended ended = quillon({"inspect", file, "--fields"});
    EXPECT_EQ(ended.exitStatus, 1);
    EXPECT_EQ(ended.err, "quillon: " + file +
                             " is no file that Quillon knows: neither its first bytes nor its "
                             "extension are those of TIFF, PSD, BMP, OpenEXR, JPEG, Targa or Vemo "
                             "mesh\n");
}

TEST_F(Inspect, AMissingFolderForCopiesIsReported) {
    const std::string map = dir.write("map.bmp", BmpFile(2, 2));
    EXPECT_EQ(
        quillonInShell("TMPDIR=/nowhere \"$@\"", {"inspect", map}).err,
        "quillon: cannot make a folder for copies in /nowhere: No such file or directory; set "
        "TMPDIR to a folder that can be written to\n");
}

// Lengths of a small file of each kind: nothing is ever read past its end.
TEST_F(Inspect, FilesCutShortAnywhereAreShownAsFarAsTheyGo) {
    const std::vector<std::pair<std::string, ByteList>> kFiles = {
        {"a.Vemo", twoQuads()},
        {"a.tif", TiffFile(3, 1).rgb8(ByteList(9, 9)).bytes()},
        {"a.psd", PsdFile(3, 1).filled(9, 9).bytes()},
        {"a.bmp", BmpFile(3, 1)},
        {"a.tga", ByteList(20, 3)}};
    Words files;
    for (const auto& [name, bytes] : kFiles) {
        for (std::size_t length = 0; length < bytes.size(); length += 3)
            files.push_back(dir.write(
                std::to_string(length) + name,
                ByteList(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(length))));
    }
    EXPECT_EQ(linesOf({"inspect", "--json", "--fields"}, files, 0), std::ssize(files));
    // Bytes within and beyond the files; an empty one has none.
    for (const char* offset : {"0", "9", "21", "47", "62", "165", "239"})
        EXPECT_EQ(linesOf({"inspect", "--json", "--at", offset}, files, 1), std::ssize(files));
}

TEST_F(Inspect, TheFileIsOnlyReadAndNoCopyStays) {
    const TempDir copies;
    const std::string map = dir.write("map.bmp", BmpFile(200, 100));
    const ByteList before = readBytes(map);
    const Ended ended = quillonInShell("TMPDIR=" + copies.path() + " \"$@\"", {"inspect", map});
    EXPECT_THAT(ended.out,
                HasSubstr("CreateThumbnailBMP                                 0  accepted\n"));
    EXPECT_EQ(readBytes(map), before);
    EXPECT_THAT(dir.names(), ElementsAre("map.bmp"));
    EXPECT_THAT(copies.names(), IsEmpty());
}

TEST_F(Inspect, FieldsTriesNoExport) {
    const std::string map = dir.write("map.bmp", BmpFile(2, 2));
    const Ended ended = quillonInShell("TMPDIR=/nowhere \"$@\"", {"inspect", map, "--fields"});
    EXPECT_EQ(ended.exitStatus, 0);
    EXPECT_THAT(ended.out, Not(HasSubstr("swapRGBBMP")));
    EXPECT_FALSE(
        json::parse(quillon({"inspect", map, "--fields", "--json"}).out).contains("exports"));
}

TEST_F(Inspect, LinesSayTheSame) {
    const std::string map = dir.write("map.psd", PsdFile(3, 1).grey16().planes({9, 9, 9, 9, 9, 8}));
    const Ended ended = quillon({"inspect", map});
    EXPECT_EQ(ended.exitStatus, 0);
    EXPECT_EQ(ended.err, "");
    EXPECT_THAT(ended.out,
                StartsWith(map + ": PSD, 46 bytes, 3 x 1 pixels, 1 channel of 16 bits\n"
                                 "      offset      bytes  field                  value\n"
                                 "           0          4  signature              8BPS\n"));
    EXPECT_THAT(ended.out,
                EndsWith("swapRGBPSD                                       -56  refused: the "
                         "map does not have three channels of 8 bits\n"));
    const std::string shown = quillonOnTerminal({"inspect", map}).shown;
    EXPECT_THAT(shown, HasSubstr("0  \x1B[32maccepted\x1B[0m\r\n"));
    EXPECT_THAT(shown, HasSubstr("-56  \x1B[31mrefused\x1B[0m: "));
}

TEST_F(Inspect, ContinuesAfterAMissingFile) {
    const std::string map = dir.write("map.bmp", BmpFile(2, 2));
    const Ended ended = quillon({"inspect", dir.path("none"), map, dir.path(), "--json"});
    EXPECT_EQ(ended.exitStatus, 1);
    EXPECT_THAT(ended.out, StartsWith("{\"file\":\"" + dir.path("none") + "\",\"success\":false,"));
    EXPECT_THAT(ended.out, HasSubstr("\n{\"file\":\"" + map + "\",\"success\":true,"));
    EXPECT_EQ(ended.err, "quillon: there is no file " + dir.path("none") +
                             "\nquillon: " + dir.path() + " is not a file\n");
}

}  // namespace
