#include "seeds/SeedFiles.h"

#include <numeric>

#include "support/BmpFile.h"
#include "support/PsdFile.h"
#include "support/TiffFile.h"
#include "support/VemoBuilder.h"

namespace {

// Increasing values, so that no two neighbours are equal.
template <typename Sample>
std::vector<Sample> rising(std::size_t count) {
    std::vector<Sample> samples(count);
    std::iota(samples.begin(), samples.end(), Sample{1});
    return samples;
}

std::vector<float> fractions(std::size_t count) {
    std::vector<float> samples;
    for (std::size_t i = 0; i < count; ++i)
        samples.push_back(static_cast<float>(i) / static_cast<float>(count));
    return samples;
}

ByteList bytesOf(std::string_view text) {
    return ByteList(text.begin(), text.end());
}

VemoBuilder twoFaces() {
    return VemoBuilder().vertices(
        {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0.5f}, {-2.5e-7f, 3e8f, 1}});
}

}  // namespace

SeedFiles bmpSeeds() {
    return {{"2x2", BmpFile(2, 2)},
            {"5x3", BmpFile(5, 3)},
            {"plain", BmpFile(4, 4).plain(9, 9, 9).pixel(1, 1, 1, 2, 3)},
            {"gap", BmpFile(3, 4).pixelOffset(60)},
            {"17x9", BmpFile(17, 9)},
            {"cut", BmpFile(6, 6).cut(90)},
            {"wide", BmpFile(9, 9).claimSize(21900, 2)},  // beyond 65535 bytes a row
            {"no-rows", BmpFile(1, 1).claimSize(1, 0)},
            {"top-down", BmpFile(2, 2).claimSize(2, -2)}};
}

SeedFiles psdSeeds() {
    return {{"rgb8", PsdFile(3, 2).planes(rising<std::uint8_t>(18))},
            {"rgba8", PsdFile(2, 2).channels(4).planes(rising<std::uint8_t>(16))},
            {"grey16", PsdFile(3, 3).grey16().planes(rising<std::uint8_t>(18))},
            {"grey8", PsdFile(4, 1).channels(1).colourMode(1).filled(4, 200)},
            {"blocks", PsdFile(2, 3).resources(5).layers(7).filled(18, 9)},
            {"cut", PsdFile(9, 9).filled(20, 1)},
            {"no-planes", PsdFile(1, 1)},
            // For the repair of borders, which needs 100 pixels a side: planes are filler.
            {"100x100", PsdFile(100, 100)},
            {"120x101", PsdFile(120, 101)}};
}

SeedFiles textSeeds() {
    return {{"names", bytesOf("1001,1002\n1011")},
            {"ranges", bytesOf("1001-1003, 1010 - 1012\n1001-2147483647\n")},
            {"odd", bytesOf("-5-3,,u0v0,  ,99999999999999-1,12-\r\n-\n")}};
}

SeedFiles tiffSeeds() {
    using enum TiffFile::Order;
    return {
        {"grey8", TiffFile(4, 3).grey8(rising<std::uint8_t>(12)).bytes()},
        {"rgb8", TiffFile(4, 3).rgb8(rising<std::uint8_t>(36)).bytes()},
        {"no-strip", TiffFile(4, 3).rgb8(rising<std::uint8_t>(36)).without(273).bytes()},
        {"grey16", TiffFile(3, 3).grey16(rising<std::uint16_t>(9)).bytes()},
        {"rgb16", TiffFile(3, 2).rgb16(rising<std::uint16_t>(18)).bytes()},
        {"grey32", TiffFile(4, 4).grey32(fractions(16)).bytes()},
        {"rgb32", TiffFile(3, 3).rgb32(fractions(27)).bytes()},
        {"grey32-directory-first", TiffFile(4, 4, kDirectoryFirst).grey32(fractions(16)).bytes()},
        {"rgb32-directory-first", TiffFile(3, 3, kDirectoryFirst).rgb32(fractions(27)).bytes()},
        {"rgb8-directory-first",
         TiffFile(8, 9, kDirectoryFirst).rgb8(rising<std::uint8_t>(216)).bytes()},
        {"no-directory", TiffFile(2, 2).grey8(ByteList(4, 9)).claimEntries(0).bytes()}};
}

SeedFiles vemoSeeds() {
    const std::vector<VemoBuilder::Face> faces = {{0, 1, 2, 3}, {2, 3, 4, -1}};
    const std::vector<std::array<float, 2>> uvs = {{0.25f, 0.5f}, {1.5f, -0.25f}};
    const std::vector<VemoBuilder::Colour> colours(5, {0x10, 0x20, 0x30, 0xFF});
    return {{"mesh", twoFaces().faces(faces).flatFaceUvs(uvs).groups({5, -1}).closing().bytes()},
            {"painted", twoFaces().vertexColours(colours).faces(faces).closing().bytes()},
            {"straddling",
             VemoBuilder().faceUvs({{0.9f, 0, 1.1f, 0, 1.1f, 1, 0.9f, 1}}).closing().bytes()},
            {"faces", VemoBuilder().faces(faces).closing().bytes()},
            {"colours",
             VemoBuilder().vertexColours(std::vector<VemoBuilder::Colour>(33)).closing().bytes()},
            {"groups", VemoBuilder().groups({5, 5, 2, -1}).closing().bytes()},
            {"empty", VemoBuilder().faceUvs({}).closing().bytes()}};
}
