#include "Races.h"

#include <utility>

using enum Traffic::Kind;

MapPaths::MapPaths(const Setup& setup, const std::string& extension)
    : tile(setup.folder + "/tile" + extension),
      map(setup.folder + "/map" + extension),
      original(setup.folder + "/original" + extension) {}

Race mergeRace(const Setup& setup, const MapPaths& paths, const char* exportName, WriteMap writeMap,
               double limitTarget) {
    Race race = rewriteRace(setup, paths, {exportName, paths.tile, 0, paths.map}, writeMap);
    writeMap(paths.tile, {setup.side, setup.sparse}, Tile::kSecond);
    const std::uint64_t bytes = fileBytes(paths.tile);
    race.contenders.push_back(
        limit({{kRead, paths.tile, bytes}, {kRewrite, paths.map, bytes}}, limitTarget));
    return race;
}

Race rewriteRace(const Setup& setup, const MapPaths& paths, const ExportCall& call,
                 WriteMap writeMap) {
    writeMap(paths.original, {setup.side, setup.sparse}, Tile::kFirst);
    return {.amount = static_cast<double>(pixelsOf(setup)) * 1e-6,
            .bytesWritten = static_cast<double>(fileBytes(paths.original)),
            .rewritten = {{paths.map, paths.original}},
            .resultDigest = [map = paths.map] { return digestOf(map); },
            .contenders = exportContenders(setup, call)};
}

Race makeRace(const Setup& setup, const MapPaths& paths, const ExportCall& call, WriteMap writeMap,
              const MadeFile& made) {
    writeMap(paths.map, {setup.side, setup.sparse}, Tile::kFirst);
    const double bytes = made.bytesPerPixel * static_cast<double>(pixelsOf(setup));
    Race race{.amount = static_cast<double>(pixelsOf(setup)) * 1e-6,
              .bytesWritten = bytes,
              .created = {call.buffer},
              .resultDigest = [out = call.buffer] { return digestOf(out); },
              .contenders = exportContenders(setup, call)};
    if (made.limitTarget != 0.0)
        race.contenders.push_back(limit({{kRead, paths.map, fileBytes(paths.map)},
                                         {kWrite, call.buffer, static_cast<std::uint64_t>(bytes)}},
                                        made.limitTarget));
    return race;
}

Contender rewriteLimit(const MapPaths& paths, double target) {
    return limit({{kRewrite, paths.map, fileBytes(paths.original)}}, target);
}

Contender peer(const std::string& name, double target, std::function<float()> work) {
    return {.role = Role::kPeer, .name = name, .work = std::move(work), .target = target};
}

std::uint64_t fileBytes(const std::string& path) {
    return OpenFile::forReading(path).size();
}

std::size_t pixelsOf(const Setup& setup) {
    return std::size_t{setup.side} * setup.side;
}
