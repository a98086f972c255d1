// What quillon inspect says about files that the exports do not expect. The files are written by
// tifffile, Pillow, ImageMagick and OpenEXR's own library.

#include <gmock/gmock.h>

#include <nlohmann/json.hpp>

#include "host/ExrFile.h"
#include "host/Quillon.h"
#include "support/BmpFile.h"
#include "support/PsdFile.h"
#include "support/TiffFile.h"

namespace {

using nlohmann::json;
using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::StartsWith;

constexpr const char* kTifffile = R"(import sys, numpy, tifffile
from PIL import Image
rgb = numpy.arange(64 * 64 * 3, dtype=numpy.uint8).reshape(64, 64, 3)
grey = numpy.linspace(0, 1, 64 * 64).reshape(64, 64)
def write(name, pixels, **options):
    tifffile.imwrite(f"{sys.argv[1]}/{name}.tif", pixels,
                     **{"rowsperstrip": 64, "metadata": None, **options})
write("right", rgb)
write("big", rgb, byteorder=">")
write("bigtiff", rgb, bigtiff=True)
write("tiles", rgb, tile=(16, 16))
write("strips", rgb, rowsperstrip=8)
write("half", grey.astype(numpy.float16))
write("float", grey.astype(numpy.float32))
write("double", grey)
write("int", (grey * 1000).astype(numpy.int32))
write("white", rgb[:, :, 0], photometric="miniswhite")
Image.fromarray(rgb).convert("P").save(f"{sys.argv[1]}/palette.bmp")
Image.fromarray(rgb).convert("CMYK").save(f"{sys.argv[1]}/cmyk.tif")
)";

constexpr const char* kMagick = R"(cd "$1"; image="-size 64x64 gradient:red-blue"
strip="-type TrueColor -depth 8 -endian LSB -define tiff:rows-per-strip=64"
convert $image $strip -compress none late.tif
convert $image $strip -compress LZW lzw.tif
convert $image -depth 8 -colors 8 -type Palette -compress RLE rle.bmp
convert $image -type TrueColor -compress none v4.bmp
convert $image -type TrueColor -compress none BMP2:old.bmp
convert $image -type TrueColor -depth 8 -compress RLE packed.psd
convert $image -colorspace CMYK -depth 8 -compress none cmyk.psd
)";

// What a file has: a part of each note, and what became of each trial: "=" accepted, "!" refused,
// "~" accepted without any change, "x" accepted with a wrong result.
struct Diagnosed {
    const char* file;
    Words notes;
    const char* outcomes;
};

struct Diagnosis : ::testing::Test {
    json inspected(const std::string& file) const {
        const Ended ended = quillon({"inspect", file, "--json"});
        EXPECT_EQ(ended.exitStatus, 0) << ended.err;
        return json::parse(ended.out);
    }
    static std::string outcomes(const json& file) {
        std::string all;
        for (const json& trial : file["exports"]) {
            all += all.empty() ? "" : " ";
            all += !trial["accepted"]        ? "!"
                   : trial["changesNothing"] ? "~"
                   : trial["wrongResult"]    ? "x"
                                             : "=";
        }
        return all;
    }
    void expect(const std::vector<Diagnosed>& files) const {
        for (const Diagnosed& file : files) {
            const json found = inspected(dir.path(file.file));
            ASSERT_EQ(found["notes"].size(), file.notes.size()) << file.file << found["notes"];
            for (std::size_t i = 0; i < file.notes.size(); ++i)
                EXPECT_THAT(found["notes"][i].get<std::string>(), HasSubstr(file.notes[i]));
            EXPECT_EQ(outcomes(found), file.outcomes) << file.file << found["exports"];
        }
    }
    TempDir dir;
};

// Maps of 64 x 64 pixels: merge, swap, conversions to 16 bits, first channel, scale and Targa.
TEST_F(Diagnosis, OfTiffFiles) {
    ASSERT_EQ(run({"/usr/bin/python3", "-c", kTifffile, dir.path()}).exitStatus, 0);
    ASSERT_EQ(run({"/bin/sh", "-c", kMagick, "sh", dir.path()}).exitStatus, 0);
    expect({
        {"right.tif", {}, "= = ! ! ! ! ! ="},
        {"late.tif",
         {"The directory at byte 12296", "The pixels are not the last bytes of the file"},
         "! ~ x x x x ! !"},
        {"big.tif", {"The file is big-endian; the exports find no"}, "! ~ x x x x ! !"},
        {"bigtiff.tif", {"The file is a BigTIFF"}, "x ~ x x x ! !"},
        {"tiles.tif", {"The pixels are in tiles"}, "x ! ! ! ! ! ! x"},
        {"strips.tif", {"The pixels are in 8 strips"}, "! ! ! ! ! ! ! !"},
        {"lzw.tif", {"The pixels are compressed, method 5 (LZW)"}, "! ! ! ! ! ! ! !"},
        {"cmyk.tif", {"The map has 4 channels", "of kind 5 (CMYK)"}, "! ! ! ! ! ! !"},
        {"white.tif", {"0 is white"}, "= ~ ! ! ! ! x"},
        {"half.tif", {"16-bit floats", "16 bits; saveAsTarga"}, "= ~ ! ! ! ! x"},
        {"float.tif",
         {"32 bits; saveAsTarga", "not at byte 8 with the tags 254, 256 to 259"},
         "= ~ x = ! = x"},
        {"int.tif",
         {"32-bit whole numbers", "32 bits; saveAsTarga", "not at byte 8"},
         "= ~ x x ! x x"},
        {"double.tif", {"64 bits, with which mergeMapsTIF", "64 bits; saveAsT"}, "~ ~ ! ! ! ! x"},
    });
    EXPECT_EQ(inspected(dir.path("big.tif"))["width"], 64);
    for (const char* map : {"half.tif", "double.tif"})
        EXPECT_EQ(inspected(dir.path(map))["samples"][0]["maximum"], 1);
}

// Merge, swap, JPEG and thumbnail.
TEST_F(Diagnosis, OfBmpFiles) {
    ASSERT_EQ(run({"/usr/bin/python3", "-c", kTifffile, dir.path()}).exitStatus, 0);
    ASSERT_EQ(run({"/bin/sh", "-c", kMagick, "sh", dir.path()}).exitStatus, 0);
    dir.write("right.bmp", BmpFile(5, 3));
    dir.write("down.bmp", BmpFile(5, 3).claimSize(5, -3));
    dir.write("cut.bmp", BmpFile(5, 3).cut(80));
    expect({
        {"right.bmp", {}, "= = = ="},
        {"palette.bmp", {"8 bits a pixel and a palette"}, "x x ! x"},
        {"rle.bmp", {"method 1 (RLE of 8 bits)", "8 bits a pixel and a palette"}, "x x ! x"},
        {"old.bmp", {"The header has 12 bytes", "start at byte 26"}, "x x ! x"},
        {"v4.bmp", {"start at byte 138; saveAsJpeg reads them from byte 54"}, "= = x ="},
        {"cut.bmp", {"The file ends before its last pixel. Make it again."}, "x x x x"},
    });
    const json down = inspected(dir.path("down.bmp"));
    EXPECT_THAT(down["notes"].dump(), HasSubstr("The top row comes first"));
    EXPECT_THAT(outcomes(down), StartsWith("~ ~ "));
    EXPECT_EQ(down["height"], 3);
    EXPECT_EQ(inspected(dir.path("old.bmp"))["width"], 64);
    EXPECT_THAT(quillon({"inspect", dir.path("down.bmp"), "--at", "54"}).out,
                HasSubstr("x 0, y 0"));
}

// Merge and swap.
TEST_F(Diagnosis, OfPsdFiles) {
    ASSERT_EQ(run({"/bin/sh", "-c", kMagick, "sh", dir.path()}).exitStatus, 0);
    const ByteList planes = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12};
    dir.write("right.psd", PsdFile(2, 2).planes(planes));
    dir.write("lab.psd", PsdFile(2, 2).colourMode(9).planes(planes));
    dir.write("layers.psd", PsdFile(2, 2).layers(20).planes(planes));
    dir.write("large.psd", PsdFile(2, 2).version(2).planes(planes));
    dir.write("alpha.psd", PsdFile(3, 1).channels(4).planes(planes));
    dir.write("float.psd", PsdFile(3, 1).channels(1).depth(32).colourMode(1).planes(planes));
    dir.write("cut.psd", PsdFile(3, 2).planes(planes));
    expect({
        {"right.psd", {}, "= ="},
        {"packed.psd", {"compressed, method 1 (RLE)", "The file has layers"}, "! !"},
        {"cmyk.psd", {"The colour mode is 4 (CMYK)", "The file has layers"}, "! !"},
        {"lab.psd", {"The colour mode is 9 (Lab)"}, "! x"},
        {"layers.psd", {"The file has layers"}, "= ="},
        {"large.psd", {"The file is a large document (PSB)"}, "! !"},
        {"alpha.psd", {"Of 4 channels mergeMapsPSD merges the first 3"}, "= !"},
        {"float.psd", {"The samples have 32 bits"}, "! !"},
        {"cut.psd", {"The file ends before its last pixel"}, "! !"},
    });
}

TEST_F(Diagnosis, OfOpenExrFiles) {
    const std::vector<float> two = {0, 1};
    writeExr(dir.path("one.exr"), 2, 1, {{"Y", two}});
    writeExr(dir.path("colour.exr"), 2, 1, {{"R", two}, {"G", two}, {"B", two}});
    writeExr(dir.path("alpha.exr"), 2, 1, {{"R", two}, {"A", two}}, Imf::PXR24_COMPRESSION);
    expect({
        {"one.exr", {}, "="},
        {"colour.exr", {"The export OpenEXR measures the first channel only, B. To measure"}, "="},
        {"alpha.exr", {"only, A, which is alpha. To measure", "The compression is 5 (PXR24)"}, "!"},
    });
}

// A merge of a map that is all background does nothing, and neither does one of a tiny map.
TEST_F(Diagnosis, OfMapsOfWhichAMergeTakesNothing) {
    const TiffFile plain = TiffFile(9, 9).rgb8(ByteList(243, 7));
    const json background = inspected(dir.write("plain.tif", plain.bytes()))["exports"][0];
    EXPECT_TRUE(background["changesNothing"]);
    EXPECT_EQ(background["meaning"],
              "each pixel has the value of the first, which is the background");
    const TiffFile tiny = TiffFile(2, 1, TiffFile::Order::kDirectoryFirst).rgb8({1, 2, 3, 4, 5, 6});
    const std::string file = dir.write("tiny.tif", tiny.bytes());
    EXPECT_EQ(inspected(file)["exports"][0]["meaning"], "the target stays as it was");
    EXPECT_THAT(quillon({"inspect", file}).out,
                AllOf(HasSubstr("note: The pixels start at byte 158, not below their length of 6; "
                                "mergeMapsTIF leaves so small a map as it is.\n"),
                      HasSubstr("0  accepted, changes nothing: the target stays as it was\n")));
}

}  // namespace
