// The page of an export and of a tour: its text, and its pictures as ImageMagick reads them.

#include <gmock/gmock.h>

#include <regex>

#include "host/ExportedQuads.h"
#include "host/MagickPicture.h"

namespace {

using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

ByteList bytesOf(const std::string& base64) {
    constexpr std::string_view kDigits =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    ByteList bytes;
    std::uint32_t bits = 0;
    int count = 0;
    for (const char digit : base64) {
        if (digit == '=') break;
        bits = bits << 6 | static_cast<std::uint32_t>(kDigits.find(digit));
        count += 6;
        if (count < 8) continue;
        count -= 8;
        bytes.push_back(static_cast<std::uint8_t>(bits >> count));
    }
    return bytes;
}

struct Shown {
    std::string name;  // the alternative text
    std::size_t width;
    ByteList jpeg;
};

std::vector<Shown> picturesIn(const std::string& page) {
    std::vector<Shown> pictures;
    for (std::size_t at = page.find("<img"); at != page.npos; at = page.find("<img", at + 1)) {
        const std::string tag = page.substr(at, page.find('>', at) + 1 - at);
        const std::string source = "<img src=\"data:image/jpeg;base64,";
        EXPECT_THAT(tag, StartsWith(source));
        const std::size_t end = tag.find('"', source.size());
        const std::string rest = tag.substr(end);
        std::smatch parts;
        EXPECT_TRUE(std::regex_match(
            rest, parts, std::regex("\" alt=\"([^\"]+)\" width=\"([0-9]+)\" height=\"[0-9]+\" />")))
            << rest;
        if (parts.size() < 3) return pictures;
        pictures.push_back({parts[1], std::stoul(parts[2]),
                            bytesOf(tag.substr(source.size(), end - source.size()))});
    }
    return pictures;
}

// The names of elements that are opened but not closed, or closed where others are open.
std::vector<std::string> unbalancedIn(const std::string& page) {
    std::vector<std::string> open;
    for (std::size_t at = page.find('<'); at != page.npos; at = page.find('<', at + 1)) {
        const std::size_t end = page.find('>', at);
        std::string tag = page.substr(at + 1, end - at - 1);
        if (tag.starts_with('!') || tag.ends_with('/')) continue;
        tag = tag.substr(0, tag.find(' '));
        if (!tag.starts_with('/'))
            open.push_back(tag);
        else if (!open.empty() && open.back() == tag.substr(1))
            open.pop_back();
        else
            return {tag};
    }
    return open;
}

struct Page : ExportedQuads {
    Page() { size = "64"; }

    std::string pageOf(const std::vector<std::string>& options, const std::string& file) {
        std::vector<std::string> all = options;
        all.emplace_back("--page");
        succeed(all);
        return read(file);
    }
    std::string read(const std::string& file) const {
        const ByteList bytes = readBytes(out + '/' + file);
        return {bytes.begin(), bytes.end()};
    }
    Ended tour(const std::vector<std::string>& options = {}) const {
        std::vector<std::string> arguments = {"tour", mesh, "--out", out, "--size", size};
        arguments.insert(arguments.end(), options.begin(), options.end());
        return quillon(arguments);
    }
    Picture decoded(const Shown& shown) const {
        const std::string path = dir.write("shown.jpg", shown.jpeg);
        Picture picture(dir, path, shown.width);
        std::filesystem::remove(path);
        return picture;
    }
};

std::vector<std::string> namesOf(const std::vector<Shown>& pictures) {
    std::vector<std::string> names;
    for (const Shown& picture : pictures)
        names.push_back(picture.name);
    return names;
}

// A JPEG comes close to a picture's colours.
testing::AssertionResult isNear(const Rgb& have, const Rgb& want) {
    for (std::size_t channel = 0; channel < 3; ++channel) {
        if (std::abs(have[channel] - want[channel]) > 8)
            return testing::AssertionFailure() << testing::PrintToString(have) << " is not near "
                                               << testing::PrintToString(want);
    }
    return testing::AssertionSuccess();
}

TEST_F(Page, ShowsTheModelTheTilesAndTheSheetAfterEveryStep) {
    const std::string page = pageOf(
        {"--format", "bmp", "--order", "rbg", "--thumbnail", "16", "--jpeg"}, "two_normal.html");
    EXPECT_THAT(
        namesOf(picturesIn(page)),
        ElementsAre("The model, each UV tile in its colour", "UVs of 1001",
                    "Normals as BMP of 1001", "UVs of 1002", "Normals as BMP of 1002", "1001",
                    "+ 1002", "two_normal.bmp: 64 x 32 pixels of 24 bits, 6,198 bytes",
                    "two_normal.bmp: 64 x 32 pixels of 24 bits, 6,198 bytes",
                    "two_normal_thumbnail.bmp: 16 x 8 pixels of 24 bits, 438 bytes",
                    HasSubstr("two_normal.jpg: 64 x 32 pixels of 24 bits, ")));
    EXPECT_THAT(page, HasSubstr("2 faces on 2 UV tiles, a colour each; "));
}

// The middles of the two tiles, before the second is there and after.
TEST_F(Page, TheSheetGrowsByATileWithEveryMerge) {
    const std::vector<Shown> pictures = picturesIn(pageOf({}, "two_normal.html"));
    ASSERT_EQ(pictures.size(), 8u);
    const Picture first = decoded(pictures[5]);
    EXPECT_TRUE(isNear(first.at(16, 16), kFacesZ));
    EXPECT_TRUE(isNear(first.at(48, 16), kBackground));
    const Picture second = decoded(pictures[6]);
    EXPECT_TRUE(isNear(second.at(16, 16), kFacesZ));
    EXPECT_TRUE(isNear(second.at(48, 16), kFacesX));
}

TEST_F(Page, ShowsASwapBeforeAndAfter) {
    const std::vector<Shown> pictures = picturesIn(pageOf({"--order", "rbg"}, "two_normal.html"));
    ASSERT_EQ(pictures.size(), 9u);
    EXPECT_TRUE(isNear(decoded(pictures[7]).at(16, 16), {128, 128, 255}));
    EXPECT_TRUE(isNear(decoded(pictures[8]).at(16, 16), {128, 255, 128}));
}

// The merged sheet of each kind of file, in the middle of the first tile and outside of its quad.
// Heights are 1/2 of a half there: a quarter of 255.
TEST_F(Page, ReadsEveryKindOfMap) {
    const struct {
        std::vector<std::string> options;
        const char* file;
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
        const std::vector<Shown> pictures = picturesIn(pageOf(row.options, row.file));
        ASSERT_GE(pictures.size(), 8u);
        const Picture sheet = decoded(pictures.back());
        EXPECT_TRUE(isNear(sheet.at(16, 16), row.middle)) << row.options.back();
        EXPECT_TRUE(isNear(sheet.at(4, 16), kBackground)) << row.options.back();
    }
}

TEST_F(Page, ShowsALargeSheetInFewerPixels) {
    size = "4100";
    const std::vector<Shown> pictures = picturesIn(pageOf({}, "two_normal.html"));
    ASSERT_EQ(pictures.size(), 8u);
    EXPECT_EQ(pictures[6].width, 456u);   // every ninth pixel of 4,100
    EXPECT_EQ(pictures[7].width, 2050u);  // every second
    EXPECT_TRUE(isNear(decoded(pictures[6]).at(342, 114), kFacesX));
    EXPECT_TRUE(isNear(decoded(pictures[7]).at(1537, 512), kFacesX));
}

// A quad fills the middle half of each tile; between its lines is a third of its colour.
TEST_F(Page, ATileShowsItsFacesInItsOwnColour) {
    const std::string page = pageOf({}, "two_normal.html");
    const std::vector<Shown> pictures = picturesIn(page);
    ASSERT_EQ(pictures.size(), 8u);
    const Picture first = decoded(pictures[1]);
    const Picture second = decoded(pictures[3]);
    const Rgb backdrop{27, 31, 38};
    EXPECT_TRUE(isNear(first.at(20, 20), backdrop));
    EXPECT_FALSE(isNear(first.at(150, 100), backdrop));
    EXPECT_FALSE(isNear(first.at(150, 100), second.at(150, 100)));
    // Both triangles of the quad, and the line between them, which is no side of a face.
    EXPECT_TRUE(isNear(first.at(90, 140), first.at(150, 100)));
    EXPECT_TRUE(isNear(first.at(120, 120), first.at(150, 100)));
    EXPECT_THAT(page, HasSubstr("<span class=\"dot\" style=\"background:#"));
}

TEST_F(Page, TheModelIsLitOnItsBackdrop) {
    const std::vector<Shown> pictures = picturesIn(pageOf({}, "two_normal.html"));
    ASSERT_FALSE(pictures.empty());
    EXPECT_EQ(pictures[0].width, 1600u);
    const Picture model = decoded(pictures[0]);
    const Rgb backdrop{27, 31, 38};
    EXPECT_TRUE(isNear(model.at(5, 5), backdrop));
    std::size_t painted = 0;
    for (std::size_t x = 0; x < 1600; x += 10) {
        for (std::size_t y = 0; y < 800; y += 10)
            painted += isNear(model.at(x, y), backdrop) ? 0 : 1;
    }
    EXPECT_GT(painted, 12800u / 20);
    EXPECT_LT(painted, 12800u / 2);
}

TEST_F(Page, ShowsTheTimeOfACallBesideThatOfCopying) {
    const std::string page = pageOf({"--order", "bgr"}, "two_normal.html");
    const std::string comparison =
        page.substr(page.find("<h2>Time beside copying"), page.find("<details>"));
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
    const std::string page = pageOf({"--format", "bmp"}, "two_normal.html");
    const std::string calls = page.substr(page.find("<details>"));
    EXPECT_THAT(calls, HasSubstr("<summary>All 11 calls</summary>"));
    EXPECT_THAT(calls, HasSubstr("<td class=\"name\">getUVString &#215; 2</td>"));
    EXPECT_THAT(calls, Not(HasSubstr("saveAsJpeg")));
}

TEST_F(Page, IsOneFileWithoutScripts) {
    const std::string page = pageOf({}, "two_normal.html");
    EXPECT_THAT(page, StartsWith("<!DOCTYPE html>\n<html lang=\"en\">\n"));
    EXPECT_THAT(page, EndsWith("</html>\n"));
    EXPECT_THAT(page, HasSubstr("prefers-color-scheme: dark"));
    EXPECT_THAT(page, Not(HasSubstr("<script")));
    EXPECT_THAT(page, Not(HasSubstr("http")));
    EXPECT_THAT(page, Not(HasSubstr("url(")));
    EXPECT_THAT(unbalancedIn(page), ElementsAre());
}

TEST_F(Page, SpecialCharactersOfHtmlAreEscaped) {
    mesh = dir.write("a<b & c.Vemo", twoQuads());
    EXPECT_THAT(pageOf({}, "a<b & c_normal.html"),
                HasSubstr("<h1>The maps of a&lt;b &amp; c</h1>"));
}

TEST_F(Page, LeavesNoWorkingFiles) {
    pageOf({}, "two_normal.html");
    EXPECT_FALSE(dir.has("maps/working"));
    EXPECT_TRUE(dir.has("maps/two_normal.tif"));
}

TEST_F(Page, MoreTilesThanItShowsAreReported) {
    Words file;
    file.u32({0, 0, 0, 0, 0, 0, 0, 0}).u32({10001, 16 + 4 * 12, 4, 0});
    file.floats({0, 0, 0, 2, 0, 0, 2, 2, 0, 0, 2, 0}).u32({20001, 16 + 201 * 16, 201, 0});
    for (int tile = 0; tile < 201; ++tile)
        file.u32({0, 1, 2, 3});
    file.u32({25001, 16 + 201 * 32, 201, 0});
    for (int tile = 0; tile < 201; ++tile) {
        const float u = 0.25f + static_cast<float>(tile);
        file.floats({u, 0.25f, u + 0.5f, 0.25f, u + 0.5f, 0.75f, u, 0.75f});
    }
    mesh = dir.write("many.Vemo", file.u32({0, 0, 0, 0}).bytes());
    EXPECT_THAT(fail({"--page", "--naming", "3"}),
                HasSubstr("has 201 tiles to export, and a page shows up to 200"));
}

TEST_F(Page, ATourShowsTwoExportsOnOnePage) {
    const Ended ended = tour();
    EXPECT_EQ(ended.exitStatus, 0) << ended.err;
    EXPECT_THAT(ended.out, HasSubstr('\n' + out + "/two.html  "));
    EXPECT_THAT(namesIn(out),
                ElementsAre("two.html", "two_height.tif", "two_height_16bit.tif", "two_normal.bmp",
                            "two_normal.jpg", "two_normal_thumbnail.bmp"));
    const std::string page = read("two.html");
    for (const char* part :
         {"<h1>The maps of two</h1>", "<h2>Normals as BMP</h2>", "<h2>Heights as TIFF</h2>",
          "<code>mergeMapsBMP</code>", "<code>swapRGBBMP</code>", "<code>CreateThumbnailBMP</code>",
          "<code>saveAsJpeg</code>", "<code>mergeMapsTIF</code>", "<code>getScale</code>",
          "<code>convertTIFF16</code>"})
        EXPECT_THAT(page, HasSubstr(part));
    // The model; three pictures a tile; of the normals two sheets that grow and four steps, of the
    // heights two and two.
    EXPECT_EQ(picturesIn(page).size(), 1u + 2 * 3 + 2 + 4 + 2 + 2);
    EXPECT_THAT(unbalancedIn(page), ElementsAre());
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
