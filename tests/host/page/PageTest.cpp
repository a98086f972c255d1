// The pages of exports and tours: text, and pictures as ImageMagick reads them.

#include <gmock/gmock.h>

#include <regex>
#include <sstream>

#include "host/ExportedQuads.h"
#include "host/MagickPicture.h"

namespace {

using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

// Reads a page, which is well-formed XML. Prints the width and the name of each picture and writes its
// data to a file: PAGE.0, PAGE.1 and so on.
constexpr const char* kReadPage = R"python(
import sys, xml.etree.ElementTree
page = sys.argv[1]
for number, image in enumerate(xml.etree.ElementTree.parse(page).iter("img")):
    print(image.get("width"), image.get("alt"))
    open(f"{page}.{number}", "w").write(image.get("src"))
)python";

struct Shown {
    std::size_t width;
    std::string name;  // the alternative text
    std::string file;  // of the data
};

std::vector<Shown> picturesIn(const std::string& page) {
    const Ended ended = run({"/usr/bin/python3", "-c", kReadPage, page});
    EXPECT_EQ(ended.exitStatus, 0) << ended.err;
    std::istringstream lines(ended.out);
    std::vector<Shown> pictures;
    std::size_t width = 0;
    std::string name;
    while (lines >> width && std::getline(lines >> std::ws, name))
        pictures.push_back({width, name, page + '.' + std::to_string(pictures.size())});
    return pictures;
}

std::vector<std::string> namesOf(const std::vector<Shown>& pictures) {
    std::vector<std::string> names;
    for (const Shown& picture : pictures)
        names.push_back(picture.name);
    return names;
}

struct Page : ExportedQuads {
    Page() { size = "64"; }

    // The page's path and text.
    std::string page(const std::string& name = "two_normal.html") const { return out + '/' + name; }
    std::string text(const std::string& name = "two_normal.html") const {
        const ByteList bytes = readBytes(page(name));
        return {bytes.begin(), bytes.end()};
    }
    // Exports with a page and returns its pictures.
    std::vector<Shown> picturesOf(Words options,
                                  const std::string& name = "two_normal.html") const {
        options.emplace_back("--page");
        succeed(options);
        return picturesIn(page(name));
    }
    Ended tour(const Words& options = {}) const {
        return quillon({"tour", mesh, "--out", out, "--size", size}, options);
    }
    MagickPicture decoded(const Shown& shown) const {
        return MagickPicture(dir, "inline:" + shown.file, shown.width);
    }
};

// A JPEG has nearly the colours of its picture.
testing::AssertionResult isNear(const Rgb& have, const Rgb& want) {
    for (std::size_t channel = 0; channel < 3; ++channel) {
        if (std::abs(have[channel] - want[channel]) > 8)
            return testing::AssertionFailure() << testing::PrintToString(have) << " is not near "
                                               << testing::PrintToString(want);
    }
    return testing::AssertionSuccess();
}

constexpr Rgb kBackdrop{27, 31, 38};

TEST_F(Page, ShowsTheModelTheTilesAndTheSheetAfterEveryStep) {
    const std::vector<Shown> pictures =
        picturesOf({"--page", "--format", "bmp", "--order", "rbg", "--thumbnail", "16", "--jpeg"});
    ASSERT_THAT(
        namesOf(pictures),
        ElementsAre("The model, each UV tile in its colour", "UVs of 1001",
                    "Normals as BMP of 1001", "UVs of 1002", "Normals as BMP of 1002", "1001",
                    "+ 1002", "two_normal.bmp: 64 x 32 pixels of 24 bits, 6,198 bytes",
                    "two_normal.bmp: 64 x 32 pixels of 24 bits, 6,198 bytes",
                    "two_normal_thumbnail.bmp: 16 x 8 pixels of 24 bits, 438 bytes",
                    HasSubstr("two_normal.jpg: 64 x 32 pixels of 24 bits, ")));
    EXPECT_THAT(text(), HasSubstr("2 faces on 2 UV tiles, a colour each; "));
    EXPECT_TRUE(isNear(decoded(pictures[7]).at(16, 16), kFacesZ));  // before the swap
    EXPECT_TRUE(isNear(decoded(pictures[8]).at(16, 16), {128, 255, 128}));
}

// The face of group 7 reaches from the second tile into the next.
TEST_F(Page, SaysWhichGroupsATileHasAndHowManyFacesNoMapShows) {
    ByteList bytes = twoQuads(kMiddleOf1001, {1.5f, 0.25f, 2.5f, 0.25f, 2.5f, 0.75f, 1.5f, 0.75f});
    const ByteList groups = VemoBuilder().groups({3, 7}).closing().bytes();
    bytes.resize(bytes.size() - 16);  // the closing header
    bytes.insert(bytes.end(), groups.begin() + 32, groups.end());
    dir.write("two.Vemo", bytes);
    EXPECT_EQ(quillon(words(), {"--page"}).exitStatus, 0);
    EXPECT_THAT(text(), HasSubstr("</span>1001: group 3</figcaption>"));
    EXPECT_THAT(text(), HasSubstr("</span>1002: group 7</figcaption>"));
    EXPECT_THAT(text(), HasSubstr(" ms. No map shows 1 face with corners in several tiles."));
}

// The middles of the two tiles, before the second is there and after.
TEST_F(Page, TheSheetGrowsByATileWithEveryMerge) {
    const std::vector<Shown> pictures = picturesOf({});
    const MagickPicture first = decoded(pictures.at(5));
    EXPECT_TRUE(isNear(first.at(16, 16), kFacesZ));
    EXPECT_TRUE(isNear(first.at(48, 16), kBackground));
    const MagickPicture second = decoded(pictures.at(6));
    EXPECT_TRUE(isNear(second.at(16, 16), kFacesZ));
    EXPECT_TRUE(isNear(second.at(48, 16), kFacesX));
}

// The merged sheet of each kind of file, in the middle of the first tile and outside of its quad.
// Heights are 1/2 of a half there: a quarter of 255.
TEST_F(Page, ReadsEveryKindOfMap) {
    const struct {
        Words options;
        const char* page;
        Rgb middle;
    } kCases[] = {
        {{"--format", "tiff"}, "two_normal.html", kFacesZ},
        {{"--format", "psd"}, "two_normal.html", kFacesZ},
        {{"--format", "bmp"}, "two_normal.html", kFacesZ},
        {{"--map", "height", "--format", "tiff"}, "two_height.html", {64, 64, 64}},
        {{"--map", "height", "--format", "psd"}, "two_height.html", {64, 64, 64}},
        {{"--map", "height", "--bits", "16"}, "two_height.html", {64, 64, 64}},
    };
    for (const auto& row : kCases) {
        const std::vector<Shown> pictures = picturesOf(row.options, row.page);
        ASSERT_GE(pictures.size(), 8u);
        const MagickPicture sheet = decoded(pictures.back());
        EXPECT_TRUE(isNear(sheet.at(16, 16), row.middle)) << row.options.back();
        EXPECT_TRUE(isNear(sheet.at(4, 16), kBackground)) << row.options.back();
    }
}

TEST_F(Page, ShowsALargeSheetInFewerPixels) {
    size = "4100";
    const std::vector<Shown> pictures = picturesOf({});
    EXPECT_EQ(pictures.at(6).width, 456u);   // every ninth pixel of 4,100
    EXPECT_EQ(pictures.at(7).width, 2050u);  // every second
    EXPECT_TRUE(isNear(decoded(pictures.at(6)).at(342, 114), kFacesX));
    EXPECT_TRUE(isNear(decoded(pictures.at(7)).at(1537, 512), kFacesX));
}

// A quad fills the middle half of each tile; between its lines is a third of its colour.
TEST_F(Page, ATileShowsItsFacesInItsOwnColour) {
    const std::vector<Shown> pictures = picturesOf({});
    const MagickPicture first = decoded(pictures.at(1));
    const MagickPicture second = decoded(pictures.at(3));
    EXPECT_TRUE(isNear(first.at(20, 20), kBackdrop));
    EXPECT_FALSE(isNear(first.at(150, 100), kBackdrop));
    EXPECT_FALSE(isNear(first.at(150, 100), second.at(150, 100)));
    // Both triangles of the quad, and the line between them, which is no side of a face.
    EXPECT_TRUE(isNear(first.at(90, 140), first.at(150, 100)));
    EXPECT_TRUE(isNear(first.at(120, 120), first.at(150, 100)));
    EXPECT_THAT(text(), HasSubstr("<span class=\"dot\" style=\"background:#"));
}

TEST_F(Page, TheModelIsLitOnItsBackdrop) {
    const std::vector<Shown> pictures = picturesOf({});
    EXPECT_EQ(pictures.at(0).width, 1600u);
    const MagickPicture model = decoded(pictures.at(0));
    EXPECT_TRUE(isNear(model.at(5, 5), kBackdrop));
    std::size_t painted = 0;
    for (std::size_t x = 0; x < 1600; x += 10) {
        for (std::size_t y = 0; y < 800; y += 10)
            painted += isNear(model.at(x, y), kBackdrop) ? 0 : 1;
    }
    EXPECT_GT(painted, 12800u / 20);
    EXPECT_LT(painted, 12800u / 2);
}

TEST_F(Page, ShowsTheTimeOfACallBesideThatOfCopying) {
    succeed({"--page", "--order", "bgr"});
    const std::string html = text();
    const std::string comparison =
        html.substr(html.find("<h2>Time beside copying"), html.find("<details>"));
    for (const std::string name : {"getUVs", "FileCopyTo", "mergeMapsTIF", "swapRGBTIF"})
        EXPECT_TRUE(std::regex_search(
            comparison,
            std::regex("<tr><td class=\"name\">" + name +
                       "</td><td class=\"bars\"><span class=\"bar\" style=\"width:[0-9.]+%\">"
                       "</span><span class=\"bar copy\" style=\"width:[0-9.]+%\"></span></td>"
                       "<td class=\"number\">[0-9]+\\.[0-9]+ ms</td>"
                       "<td class=\"number\">[0-9]+\\.[0-9]+ ms</td>"
                       "<td class=\"number\">[0-9]+\\.[0-9]</td></tr>")))
            << name;
}

TEST_F(Page, ListsTheCallsButNotThoseForItsPictures) {
    succeed({"--page", "--format", "bmp"});
    const std::string html = text();
    const std::string calls = html.substr(html.find("<details>"));
    EXPECT_THAT(calls, HasSubstr("<summary>All 11 calls</summary>"));
    EXPECT_THAT(calls, HasSubstr("<td class=\"name\">getUVString &#215; 2</td>"));
    EXPECT_THAT(calls, Not(HasSubstr("saveAsJpeg")));
}

TEST_F(Page, IsOneFileWithoutScripts) {
    succeed({"--page"});
    EXPECT_THAT(namesIn(out), ElementsAre("two_normal.html", "two_normal.tif"));
    EXPECT_THAT(text(), StartsWith("<!DOCTYPE html>\n<html lang=\"en\">\n"));
    EXPECT_THAT(text(), EndsWith("</html>\n"));
    EXPECT_THAT(text(), HasSubstr("prefers-color-scheme: dark"));
    for (const char* part : {"<script", "http", "url("})
        EXPECT_THAT(text(), Not(HasSubstr(part)));
}

TEST_F(Page, SpecialCharactersOfHtmlAreEscaped) {
    mesh = dir.write("a<b & c.Vemo", twoQuads());
    succeed({"--page"});
    EXPECT_THAT(text("a<b & c_normal.html"), HasSubstr("<h1>The maps of a&lt;b &amp; c</h1>"));
}

TEST_F(Page, MoreTilesThanItShowsAreReported) {
    std::vector<VemoBuilder::FaceUvs> uvs;
    for (int tile = 0; tile < 201; ++tile) {
        const float u = 0.25f + static_cast<float>(tile);
        uvs.push_back({u, 0.25f, u + 0.5f, 0.25f, u + 0.5f, 0.75f, u, 0.75f});
    }
    const VemoBuilder::Face face = {0, 1, 2, 3};
    dir.write("two.Vemo", VemoBuilder()
                              .vertices({{0, 0, 0}, {2, 0, 0}, {2, 2, 0}, {0, 2, 0}})
                              .faces(std::vector(uvs.size(), face))
                              .faceUvs(uvs)
                              .closing()
                              .bytes());
    EXPECT_THAT(fail({"--page", "--naming", "3"}),
                HasSubstr("has 201 tiles to export, and a page shows up to 200"));
}

TEST_F(Page, ATourShowsTwoExportsOnOnePage) {
    const Ended ended = tour();
    EXPECT_EQ(ended.exitStatus, 0) << ended.err;
    EXPECT_THAT(ended.out, HasSubstr('\n' + page("two.html") + "  "));
    EXPECT_THAT(namesIn(out),
                ElementsAre("two.html", "two_height.tif", "two_height_16bit.tif", "two_normal.bmp",
                            "two_normal.jpg", "two_normal_thumbnail.bmp"));
    const std::string html = text("two.html");
    for (const char* part :
         {"<h1>The maps of two</h1>", "<h2>Normals as BMP</h2>", "<h2>Heights as TIFF</h2>",
          "<code>mergeMapsBMP</code>", "<code>swapRGBBMP</code>", "<code>CreateThumbnailBMP</code>",
          "<code>saveAsJpeg</code>", "<code>mergeMapsTIF</code>", "<code>getScale</code>",
          "<code>convertTIFF16</code>"})
        EXPECT_THAT(html, HasSubstr(part));
    // The model; three pictures a tile; of the normals two sheets that grow and four steps, of the
    // heights two and two.
    EXPECT_EQ(picturesIn(page("two.html")).size(), 1u + 2 * 3 + 2 + 4 + 2 + 2);
}

TEST_F(Page, AFolderInPlaceOfTheToursPageStopsItAtOnce) {
    dir.makeFolder("maps/two.html");
    const Ended ended = tour();
    EXPECT_EQ(ended.exitStatus, 1);
    EXPECT_THAT(ended.err,
                EndsWith("two.html exists and is not a file; move it or choose another folder\n"));
    EXPECT_FALSE(dir.has("maps/two_normal.bmp"));
}

TEST_F(Page, ATourReportsBothExportsAsJson) {
    const std::string report = tour({"--json"}).out;
    EXPECT_THAT(report, StartsWith("{\"success\":true,"));
    for (const char* file : {"/two_normal.bmp", "/two_height_16bit.tif", "/two.html"})
        EXPECT_THAT(report, HasSubstr("\"path\":\"" + out + file));
}

}  // namespace
