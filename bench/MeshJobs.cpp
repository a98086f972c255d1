// The jobs on meshes.

#include <cmath>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "Job.h"
#include "Meshes.h"

namespace {

constexpr std::size_t kCornerBytes = 8;
constexpr std::size_t kFaceUvBytes = 32;
constexpr std::size_t kClosingBytes = 16;
constexpr int kNumberedNames = 2;  // the naming mode

struct Mesh {
    std::string path;
    std::string outPath;
    MeshSize size;

    std::string tilePath(std::uint32_t tile) const {
        return outPath + std::to_string(1001 + tile) + ".Vemo";
    }
    std::size_t tileBytes() const { return size.endOfUvs() + kClosingBytes; }
};

Mesh makeMesh(const Setup& setup) {
    Mesh mesh{setup.folder + "/mesh.Vemo", setup.folder + "/tile", {setup.side / 4, setup.tiles}};
    writeMesh(mesh.path, mesh.size);
    return mesh;
}

struct Place {
    float whole;
    float local;
};

Place placeOf(const std::uint8_t* coordinate) {
    float x = 0.0f;
    std::memcpy(&x, coordinate, sizeof(x));
    if (x < 0.0f) x -= 1.0f;
    const float whole = std::trunc(x);
    const float fraction = x - whole;
    return {whole, fraction < 0.0f ? fraction + 1.0f : fraction};
}

using Tile = std::pair<float, float>;

// Plain C++ for want of a library: the mesh mapped, and read as often as needed.

std::set<Tile> tilesIn(const MappedFile& file, const MeshSize& size) {
    std::set<Tile> tiles;
    Tile last{NAN, NAN};
    const std::uint8_t* const end = file.data() + size.endOfUvs();
    for (const std::uint8_t* face = file.data() + size.firstUv(); face < end;
         face += kFaceUvBytes) {
        const Tile tile{placeOf(face).whole, placeOf(face + 4).whole};
        if (tile == last) continue;
        tiles.insert(tile);
        last = tile;
    }
    return tiles;
}

float countMapped(const Mesh& mesh) {
    const MappedFile file(mesh.path, Access::kRead);
    return static_cast<float>(tilesIn(file, mesh.size).size());
}

void localUvs(std::uint8_t* to, const std::uint8_t* from, std::size_t corners, const Tile& tile) {
    for (std::size_t i = 0; i < corners; ++i, to += kCornerBytes, from += kCornerBytes) {
        const Place u = placeOf(from);
        const Place v = placeOf(from + 4);
        const bool inside = u.whole == tile.first && v.whole == tile.second;
        const float local[] = {inside ? u.local : -1.0f, inside ? v.local : -1.0f};
        std::memcpy(to, local, sizeof(local));
    }
}

void writeTileMapped(const Mesh& mesh, const MappedFile& file, const std::string& path,
                     const Tile& tile, std::vector<std::uint8_t>& piece) {
    const OpenFile out(path, Access::kCreate);
    const std::size_t end = mesh.size.endOfUvs();
    out.writeAt(0, {file.data(), mesh.size.firstUv()});
    for (std::size_t at = mesh.size.firstUv(); at < end; at += piece.size()) {
        const std::size_t bytes = std::min(piece.size(), end - at);
        localUvs(piece.data(), file.data() + at, bytes / kCornerBytes, tile);
        out.writeAt(at, {piece.data(), bytes});
    }
    const std::uint8_t closing[kClosingBytes] = {};
    out.writeAt(end, closing);
}

float splitMapped(const Mesh& mesh) {
    const MappedFile file(mesh.path, Access::kRead);
    const std::set<Tile> tiles = tilesIn(file, mesh.size);
    std::vector<std::uint8_t> piece(kPieceBytes);
    for (const Tile& tile : tiles) {
        const auto number = static_cast<std::uint32_t>(tile.first + 10.0f * tile.second);
        writeTileMapped(mesh, file, mesh.tilePath(number), tile, piece);
    }
    return static_cast<float>(tiles.size());
}

Contender mapped(float (*work)(const Mesh&), const Mesh& mesh, double target) {
    return {Role::kPeer, "C++, mapped", [=] { return work(mesh); }, target};
}

Race raceOf(const Mesh& mesh) {
    return {.amount = static_cast<double>(mesh.size.faces()) * 1e-6,
            .bytesHeld = static_cast<double>(std::filesystem::file_size(mesh.path))};
}

Race count(const Setup& setup) {
    const Mesh mesh = makeMesh(setup);
    Race race = raceOf(mesh);
    race.contenders = exportContenders(setup, "getUVTile", {mesh.path, kNumberedNames});
    const std::size_t firstUv = mesh.size.firstUv();
    const std::size_t bytes = mesh.size.endOfUvs() - firstUv;
    const std::vector<Traffic> traffic{{Access::kRead, mesh.path, bytes, firstUv}};
    race.contenders.push_back(mover(
        Role::kLimit, [=] { moveBytes(traffic); }, 1.1));
    race.contenders.push_back(mapped(countMapped, mesh, 0.0));
    return race;
}

Race split(const Setup& setup) {
    const Mesh mesh = makeMesh(setup);
    Race race = raceOf(mesh);
    race.bytesWritten = static_cast<double>(mesh.tileBytes()) * mesh.size.tiles;
    std::vector<Traffic> traffic{{Access::kRead, mesh.path, mesh.size.endOfUvs()}};
    for (std::uint32_t tile = 0; tile < mesh.size.tiles; ++tile) {
        race.created.push_back(mesh.tilePath(tile));
        traffic.push_back({Access::kCreate, mesh.tilePath(tile), mesh.tileBytes()});
    }
    race.resultDigest = [tiles = race.created] {
        std::uint64_t digest = 0;
        for (const std::string& tile : tiles)
            digest = digestOf(MappedFile(tile, Access::kRead).bytes(), digest);
        return digest;
    };
    race.contenders =
        exportContenders(setup, "getUVs", {mesh.path, kNumberedNames, mesh.outPath + ".tif"});
    race.contenders.push_back(mover(
        Role::kLimit, [=] { moveBytes(traffic); }, 1.1));
    race.contenders.push_back(mapped(splitMapped, mesh, 0.75));
    return race;
}

}  // namespace

std::vector<Job> meshJobs() {
    constexpr std::uint32_t kLargestSplit = 8192;  // twelve files of 250 MB
    return {{.name = "getUVTile", .unit = "Mfaces", .prepare = count, .diskPerPixel = 4},
            {.name = "getUVs",
             .unit = "Mfaces",
             .prepare = split,
             .diskPerPixel = 50,
             .largestSide = kLargestSplit,
             .growsWithTiles = true}};
}
