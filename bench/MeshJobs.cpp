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
constexpr std::size_t kFaceGroupBytes = 2;
constexpr std::size_t kChunkHeaderBytes = 16;
constexpr std::size_t kClosingBytes = 16;
constexpr int kNumberedNames = 2;  // the naming mode

struct Mesh {
    std::string path;
    std::string outPath;
    MeshSize size;

    std::string tilePath(std::uint32_t tile) const {
        return outPath + std::to_string(1001 + tile) + ".Vemo";
    }
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

constexpr double kMoved = 1.25;  // the target for what only moves bytes

Race raceOf(const Mesh& mesh) {
    return {.amount = static_cast<double>(mesh.size.faces()) * 1e-6,
            .bytesHeld = static_cast<double>(std::filesystem::file_size(mesh.path))};
}

Race countTiles(const Setup& setup) {
    const Mesh mesh = makeMesh(setup);
    Race race = raceOf(mesh);
    race.contenders = quillonContenders(setup, "getUVTile", {mesh.path, kNumberedNames});
    const std::size_t firstUv = mesh.size.firstUv();
    const std::size_t bytes = mesh.size.endOfUvs() - firstUv;
    race.contenders.push_back(limit({{Access::kRead, mesh.path, bytes, firstUv}}, 1.1));
    race.contenders.push_back(mapped(countMapped, mesh, 0.0));
    return race;
}

Race countGroups(const Setup& setup) {
    const Mesh mesh = makeMesh(setup);
    Race race = raceOf(mesh);
    race.contenders = quillonContenders(setup, "getUVGroups", {mesh.path});
    const std::size_t firstGroup = mesh.size.endOfUvs() + kChunkHeaderBytes;
    const std::size_t bytes = kFaceGroupBytes * mesh.size.faces();
    race.contenders.push_back(limit({{Access::kRead, mesh.path, bytes, firstGroup}}, kMoved));
    return race;
}

// An export that writes a file of `tileBytes` for each tile after it has read `readBytes` of the mesh.
Race writeTiles(const Setup& setup, const Mesh& mesh, const char* exportName, std::size_t readBytes,
                std::size_t tileBytes, double target) {
    Race race = raceOf(mesh);
    race.bytesWritten = static_cast<double>(tileBytes) * mesh.size.tiles;
    std::vector<Traffic> traffic{{Access::kRead, mesh.path, readBytes}};
    for (std::uint32_t tile = 0; tile < mesh.size.tiles; ++tile) {
        race.created.push_back(mesh.tilePath(tile));
        traffic.push_back({Access::kCreate, mesh.tilePath(tile), tileBytes});
    }
    race.resultDigest = [tiles = race.created] {
        std::uint64_t digest = 0;
        for (const std::string& tile : tiles)
            digest = digestOf(MappedFile(tile, Access::kRead).bytes(), digest);
        return digest;
    };
    race.contenders =
        quillonContenders(setup, exportName, {mesh.path, kNumberedNames, mesh.outPath + ".tif"});
    race.contenders.push_back(limit(traffic, target));
    return race;
}

Race split(const Setup& setup) {
    const Mesh mesh = makeMesh(setup);
    const std::size_t tileBytes = mesh.size.endOfUvs() + kClosingBytes;
    Race race = writeTiles(setup, mesh, "getUVs", mesh.size.endOfUvs(), tileBytes, 1.1);
    race.contenders.push_back(mapped(splitMapped, mesh, 0.75));
    return race;
}

Race mask(const Setup& setup) {
    const Mesh mesh = makeMesh(setup);
    const std::size_t meshBytes = std::filesystem::file_size(mesh.path);
    const std::size_t tileBytes = meshBytes + kChunkHeaderBytes + mesh.size.points();
    return writeTiles(setup, mesh, "getUVsMask", meshBytes, tileBytes, kMoved);
}

// The least is to append the first mesh to the second, over its closing header.
Race append(const Setup& setup) {
    const Mesh mesh = makeMesh(setup);
    Race race = raceOf(mesh);
    race.bytesHeld *= 2.0;
    race.original = setup.folder + "/second.Vemo";
    race.rewritten = setup.folder + "/merged.Vemo";
    std::filesystem::copy(mesh.path, race.original);
    race.resultDigest = [merged = race.rewritten] { return digestOf(merged); };
    race.contenders = quillonContenders(setup, "mergeCrease", {mesh.path, 0.0, race.rewritten});
    const std::size_t bytes = std::filesystem::file_size(mesh.path);
    race.contenders.push_back(limit({{Access::kRead, mesh.path, bytes},
                                     {Access::kRead, race.original, bytes},
                                     {Access::kCreate, race.rewritten, 2 * bytes}},
                                    kMoved));
    return race;
}

constexpr double kSubdivisions = 3.0;

Race countFaces(const Setup& setup) {
    const Mesh mesh{setup.folder + "/base.Vemo", "", {setup.side / 4, 1}};
    writeFaces(mesh.path, mesh.size);
    Race race = raceOf(mesh);
    race.contenders = quillonContenders(setup, "GetFaceIDsVemo", {mesh.path, kSubdivisions});
    const std::size_t bytes = std::filesystem::file_size(mesh.path);
    race.contenders.push_back(limit({{Access::kRead, mesh.path, bytes}}, kMoved));
    return race;
}

// A text made of the mesh files `read`. Its length is that of what quillon writes.
void addText(Race& race, const std::vector<std::string>& read, const std::string& text) {
    race.created = {text};
    race.resultDigest = [=] { return digestOf(text); };
    race.contenders.front().work();
    std::vector<Traffic> traffic;
    for (const std::string& path : read)
        traffic.push_back({Access::kRead, path, std::filesystem::file_size(path)});
    traffic.push_back({Access::kCreate, text, std::filesystem::file_size(text)});
    race.contenders.push_back(limit(traffic, kMoved));
}

Race writeObj(const Setup& setup) {
    const Mesh mesh{setup.folder + "/mesh.Vemo", setup.folder + "/mesh.obj", {setup.side / 4, 1}};
    writePaintedMesh(mesh.path, mesh.size);
    const std::string base = setup.folder + "/base.Vemo";
    writeFaces(base, {mesh.size.side / 8, 1});  // each face is divided three times
    Race race = raceOf(mesh);
    race.contenders = quillonContenders(setup, [&](const Build& build) -> Build::Call {
        const auto countFaces = build.call("GetFaceIDsVemo", {base, kSubdivisions});
        const auto write = build.call("writeOBJfromVemo", {mesh.path, 0.0, mesh.outPath});
        if (!countFaces || !write) return {};
        return [=] {
            countFaces();
            return write();
        };
    });
    addText(race, {base, mesh.path}, mesh.outPath);
    return race;
}

Race writeColourText(const Setup& setup) {
    const Mesh mesh{setup.folder + "/mesh.Vemo", setup.folder + "/mesh.txt", {setup.side / 4, 1}};
    writeColours(mesh.path, mesh.size);
    Race race = raceOf(mesh);
    race.amount = static_cast<double>(mesh.size.points()) * 1e-6;
    race.contenders = quillonContenders(setup, "ReadVertColorVemo", {mesh.path, 0.0, mesh.outPath});
    addText(race, {mesh.path}, mesh.outPath);
    return race;
}

}  // namespace

std::vector<Job> meshJobs() {
    constexpr std::uint32_t kLargestSplit = 8192;  // twelve files of 250 MB
    const auto job = [](const char* name, const char* unit, Race (*prepare)(const Setup&),
                        double bytesPerPixel) {
        return Job{
            .name = name, .unit = unit, .prepare = prepare, .diskBytes = [=](const Setup& setup) {
                return bytesPerPixel * setup.side * setup.side;
            }};
    };
    const auto tileJob = [](const char* name, Race (*prepare)(const Setup&)) {
        return Job{.name = name,
                   .unit = "Mfaces",
                   .prepare = prepare,
                   .diskBytes =
                       [](const Setup& setup) {
                           return 4.0 * (1 + setup.tiles) * setup.side * setup.side;
                       },
                   .largestSide = kLargestSplit,
                   .growsWithTiles = true};
    };
    return {job("getUVTile", "Mfaces", countTiles, 4),
            job("getUVGroups", "Mfaces", countGroups, 4),
            tileJob("getUVs", split),
            tileJob("getUVsMask", mask),
            job("mergeCrease", "Mfaces", append, 16),
            job("GetFaceIDsVemo", "Mfaces", countFaces, 1),
            job("writeOBJfromVemo", "Mfaces", writeObj, 9),
            job("ReadVertColorVemo", "Mpoints", writeColourText, 1)};
}
