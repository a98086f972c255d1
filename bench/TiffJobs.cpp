#include <cstdint>

#include "Files.h"
#include "Job.h"
#include "Literals.h"
#include "Numpy.h"
#include "Pictures.h"
#include "TiffPeers.h"
#include "TiffWriter.h"

namespace {

using enum Traffic::Kind;

RowLayout layoutOf(std::uint32_t side, std::size_t pixelBytes) {
    return {kTiffPixelOffset, side * static_cast<std::uint32_t>(pixelBytes), side, side};
}

std::uint64_t fileBytes(std::uint32_t side, std::size_t pixelBytes) {
    return kTiffPixelOffset + std::uint64_t{side} * side * pixelBytes;
}

using WriteMap = void (*)(const std::string&, const MapSpec&, Tile);

struct MergeTargets {
    double limit;
    double libtiff;
};

Race mergeRace(const Setup& setup, WriteMap writeMap, std::size_t pixelBytes,
               const MergeTargets& targets) {
    const std::string tile = setup.folder + "/tile.tif";
    const std::string map = setup.folder + "/map.tif";
    const std::string original = setup.folder + "/original.tif";
    writeMap(tile, specOf(setup), Tile::kFirst);
    writeMap(original, specOf(setup), Tile::kSecond);

    const std::uint64_t bytes = fileBytes(setup.side, pixelBytes);
    const RowLayout layout = layoutOf(setup.side, pixelBytes);
    Race race{.amount = megapixels(setup.side),
              .bytesWritten = static_cast<double>(bytes),
              .rewritten = {{map, original}},
              .resultDigest = [map] { return digestOf(map); },
              .contenders = exportContenders(setup, {"mergeMapsTIF", tile, 0, map})};
    race.contenders.push_back(
        {Role::kPeer, "libtiff", [=] { return mergeByLibtiff(tile, map); }, targets.libtiff});
    race.contenders.push_back(limit({{kRead, tile, bytes}, {kRewrite, map, bytes}}, targets.limit));
    race.contenders.push_back(
        {Role::kLiteral, "literal", [=] { return literalMerge(tile, map, layout, pixelBytes); }});
    return race;
}

Race merge8(const Setup& setup) {
    return mergeRace(setup, writeTiff8, 3, {.limit = 1.5, .libtiff = 0.5});
}

Race mergeFloat(const Setup& setup) {
    return mergeRace(setup, writeTiffFloat, 12, {.limit = 1.5, .libtiff = 0.8});
}

Race swap(const Setup& setup) {
    const std::string map = setup.folder + "/map.tif";
    const std::string original = setup.folder + "/original.tif";
    writeTiff8(original, specOf(setup), Tile::kFirst);

    const std::uint64_t bytes = fileBytes(setup.side, 3);
    const RowLayout layout = layoutOf(setup.side, 3);
    Race race{.amount = megapixels(setup.side),
              .bytesWritten = static_cast<double>(bytes),
              .rewritten = {{map, original}},
              .resultDigest = [map] { return digestOf(map); },
              .contenders = exportContenders(setup, {"swapRGBTIF", map, 2})};
    race.contenders.push_back({Role::kPeer, "libtiff", [=] { return swapByLibtiff(map); }, 0.6});
    race.contenders.push_back(limit({{kRewrite, map, bytes}}, 1.7));
    race.contenders.push_back(
        {Role::kLiteral, "literal", [=] { return literalSwap(map, layout); }});
    return race;
}

Race convert(const Setup& setup) {
    const std::string in = setup.folder + "/map.tif";
    const std::string out = setup.folder + "/converted.tif";
    writeTiffFloat(in, specOf(setup), Tile::kFirst);

    const RowLayout layout = layoutOf(setup.side, 12);
    Race race{.amount = megapixels(setup.side),
              .bytesWritten = static_cast<double>(fileBytes(setup.side, 6)),
              .created = {out},
              .resultDigest = [out] { return digestOfPixels(out); },
              .contenders = exportContenders(setup, {"convertTIFF16", in, 3, out})};
    race.contenders.push_back(
        {Role::kPeer, "libtiff", [=] { return convertByLibtiff(in, out); }, 0.55});
    race.contenders.push_back(limit(
        {{kRead, in, fileBytes(setup.side, 12)}, {kWrite, out, fileBytes(setup.side, 6)}}, 1.2));
    race.contenders.push_back(
        {Role::kLiteral, "literal", [=] { return literalConvert(in, out, layout); }});
    return race;
}

Race firstChannel(const Setup& setup) {
    const std::string in = setup.folder + "/map.tif";
    const std::string out = setup.folder + "/single.tif";
    writeTiffFloat(in, specOf(setup), Tile::kFirst);

    const RowLayout layout = layoutOf(setup.side, 12);
    Race race{.amount = megapixels(setup.side),
              .bytesWritten = static_cast<double>(fileBytes(setup.side, 4)),
              .created = {out},
              .resultDigest = [out] { return digestOfPixels(out); },
              .contenders = exportContenders(setup, {"convertTIFFSingle", in, 0, out})};
    for (const char* variant : {"whole", "pieces"})
        race.contenders.push_back(firstChannelByNumpy(in, out, setup.side, variant, 0.75));
    race.contenders.push_back(limit(
        {{kRead, in, fileBytes(setup.side, 12)}, {kWrite, out, fileBytes(setup.side, 4)}}, 1.15));
    race.contenders.push_back(
        {Role::kLiteral, "literal", [=] { return literalFirstChannel(in, out, layout); }});
    return race;
}

Race scale(const Setup& setup) {
    const std::string map = setup.folder + "/map.tif";
    writeTiffFloat(map, specOf(setup), Tile::kFirst);

    const RowLayout layout = layoutOf(setup.side, 12);
    Race race{.amount = megapixels(setup.side),
              .contenders = exportContenders(setup, {"getScale", map, 3})};
    race.contenders.push_back({Role::kPeer, "libtiff", [=] { return scaleByLibtiff(map); }, 0.5});
    race.contenders.push_back(limit({{kRead, map, fileBytes(setup.side, 12)}}, 2.0));
    race.contenders.push_back(
        {Role::kLiteral, "literal", [=] { return literalScale(map, layout); }});
    return race;
}

Race targa(const Setup& setup) {
    const std::string in = setup.folder + "/map.tif";
    const std::string out = setup.folder + "/map.tga";
    writeTiff8(in, specOf(setup), Tile::kFirst);

    const std::uint64_t bytes = fileBytes(setup.side, 3);
    const RowLayout layout = layoutOf(setup.side, 3);
    Race race{.amount = megapixels(setup.side),
              .bytesWritten = static_cast<double>(bytes),
              .created = {out},
              .resultDigest = [out] { return digestOf(out); },
              .contenders = exportContenders(setup, {"saveAsTarga", in, 0, out})};
    race.contenders.push_back(
        {Role::kPeer, "libtiff", [=] { return targaByLibtiff(in, out); }, 0.95});
    race.contenders.push_back(limit({{kRead, in, bytes}, {kWrite, out, bytes}}, 1.3));
    race.contenders.push_back(
        {Role::kLiteral, "literal", [=] { return literalTarga(in, out, layout); }});
    return race;
}

}  // namespace

std::vector<Job> tiffJobs() {
    constexpr std::uint32_t kLargestStrip =
        13312;  // the side of a strip below 2 GiB, 12 bytes a pixel
    return {
        {.name = "mergeMapsTIF 8-bit RGB", .unit = "MP", .prepare = merge8, .diskPerPixel = 9},
        {.name = "mergeMapsTIF float RGB",
         .unit = "MP",
         .prepare = mergeFloat,
         .diskPerPixel = 36,
         .largestSide = kLargestStrip},
        {.name = "swapRGBTIF", .unit = "MP", .prepare = swap, .diskPerPixel = 6},
        {.name = "convertTIFF16 mode 3", .unit = "MP", .prepare = convert, .diskPerPixel = 18},
        {.name = "convertTIFFSingle", .unit = "MP", .prepare = firstChannel, .diskPerPixel = 16},
        {.name = "getScale", .unit = "MP", .prepare = scale, .diskPerPixel = 12},
        {.name = "saveAsTarga", .unit = "MP", .prepare = targa, .diskPerPixel = 6},
    };
}
