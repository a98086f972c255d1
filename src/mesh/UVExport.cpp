// One mesh file per UV tile: with the tile's local UVs, or with a mask of the tile's vertices.

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <iterator>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "bytes/Bytes.h"
#include "bytes/Text.h"
#include "files/FileOps.h"
#include "files/FileWriter.h"
#include "mesh/CornerPiece.h"
#include "mesh/UVTiles.h"
#include "mesh/VemoFile.h"
#include "mesh/VemoOps.h"

namespace {

// The names of the tiles of the last export, in the order written. Emptied and filled by each
// export, emptied by clearUVTileString.
std::vector<std::string> UVTileStr;

constexpr std::array<std::uint8_t, kChunkHeaderBytes> kClosingHeader{};

constexpr std::uint8_t kOutsideTile = 255;
constexpr std::uint8_t kInsideTile = 0;

// Tile files that are open at the same time; a host has some 200 descriptors to spare.
constexpr std::size_t kMaxOpenTiles = 32;

constexpr std::size_t kFaceCorners = 4;
constexpr std::size_t kPieceFaces = kPieceCorners / kFaceCorners;

std::string tilePath(const char* outPath, const UV_tile& tile) {
    return FileNameExtract(outPath, 3) + tile.name + ".Vemo";
}

// Whether one of the tiles' files is the mesh itself.
bool areWrittenOver(const VemoFile& vemo, const TileSet& tiles, const char* outPath) {
    return std::any_of(tiles.begin(), tiles.end(), [&](const UV_tile& tile) {
        return vemo.isSameAs(tilePath(outPath, tile).c_str());
    });
}

float tileNotWritten(std::size_t position) {
    return vemo_status::kFirstTileNotWritten + static_cast<float>(position);
}

// A tile's file while it is written. One that goes before it is kept is removed from the disk.
class TileFile {
public:
    using Create = File(const char* path);
    TileFile(const char* outPath, const UV_tile& tile, Create create = File::create)
        : tile_(tile.at()), path_(tilePath(outPath, tile)), file_(create(path_.c_str())) {}
    TileFile(TileFile&&) = default;
    TileFile& operator=(TileFile&&) = delete;
    ~TileFile() {
        if (isOpen()) std::remove(path_.c_str());
    }

    bool isOpen() const { return file_.isOpen(); }
    TileAt tile() const { return tile_; }
    std::uint64_t length() const { return file_.length(); }

    // Appends all of the bytes, or none that count: the same call may then be made again.
    bool append(const std::uint8_t* bytes, std::size_t count) {
        const std::uint64_t before = length();
        if (file_.append(bytes, count)) return true;
        file_.goBackTo(before);
        return false;
    }

    void keep() { file_.finish(); }

private:
    TileAt tile_;
    std::string path_;
    FileWriter file_;
};

// The files of some tiles, filled side by side: what goes to all of them is read and worked out
// once. On a full disk the last file goes, as often as it takes, and so makes room for the ones before
// it. Those that are not finished are removed.
class TileFiles {
public:
    explicit TileFiles(CornerPiece& piece) : piece_(&piece) {}

    // False for one that could not be created.
    bool take(TileFile file) {
        if (!file.isOpen()) return false;
        files_.push_back(std::move(file));
        return true;
    }

    std::size_t count() const { return files_.size(); }
    void remove() { files_.clear(); }

    // Copies all that the mesh has before its face UVs. False when it cannot be read.
    bool copyUpTo(const ChunkElements& faceUvs, VemoFile& vemo) {
        const auto copy = [this](const std::uint8_t* bytes, std::size_t count) {
            appendToEach([&](TileAt) { return bytes; }, count);
        };
        return files_.empty() || vemo.forEachElement(0, faceUvs.offset, 1, copy);
    }

    // Appends the UVs of the next faces.
    void add(const std::uint8_t* faces, std::size_t count) {
        for (std::size_t face = 0; face < count && !files_.empty(); face += kPieceFaces) {
            const std::size_t corners = kFaceCorners * std::min(kPieceFaces, count - face);
            piece_->split(faces + face * kFaceUvBytes, corners, files_.front().length());
            appendToEach([this](TileAt tile) { return piece_->seenFrom(tile); },
                         corners * kCornerBytes);
        }
    }

    void finish() {
        appendToEach([](TileAt) { return kClosingHeader.data(); }, kClosingHeader.size());
        for (TileFile& file : files_)
            file.keep();
    }

private:
    template <typename BytesFor>
    void appendToEach(BytesFor bytesFor, std::size_t count) {
        for (std::size_t i = 0; i < files_.size();) {
            if (files_[i].append(bytesFor(files_[i].tile()), count))
                ++i;
            else
                files_.pop_back();
        }
    }

    CornerPiece* piece_;
    std::vector<TileFile> files_;
};

// Creates the files of the tiles from `next` on, as many as may be open at once, and advances
// `next` past them.
TileFiles createTileFiles(TileSet::const_iterator& next, TileSet::const_iterator end,
                          const char* outPath, CornerPiece& piece) {
    TileFiles files(piece);
    for (; next != end && files.count() < kMaxOpenTiles; ++next) {
        if (!files.take(TileFile(outPath, *next))) break;
        UVTileStr.push_back(next->name);
    }
    return files;
}

// Those that are left in the end are whole; none when the mesh cannot be read.
void fillTileFiles(TileFiles& files, VemoFile& vemo, const ChunkElements& faceUvs) {
    const auto add = [&](const std::uint8_t* faces, std::size_t count) { files.add(faces, count); };
    const bool isRead =
        files.copyUpTo(faceUvs, vemo) && vemo.forEachElement(faceUvs, kFaceUvBytes, add);
    if (!isRead) files.remove();
    files.finish();
}

float writeTilesWithLocalUvs(const TileSet& tiles, const char* outPath, VemoFile& vemo,
                             const ChunkElements& faceUvs, CornerPiece& piece) {
    std::size_t position = 0;
    for (auto next = tiles.begin(); next != tiles.end();) {
        TileFiles files = createTileFiles(next, tiles.end(), outPath, piece);
        if (files.count() == 0) return tileNotWritten(position);
        const std::size_t begun = files.count();
        fillTileFiles(files, vemo, faceUvs);
        position += files.count();
        if (files.count() == begun) continue;
        UVTileStr.resize(position + 1);  // the one that failed counts as begun
        return vemo.isGood() ? tileNotWritten(position) : vemo_status::kUvExportMeshNotOpened;
    }
    return static_cast<float>(tiles.size());
}

// The tile that a few faces from all over the mesh are in, if it is the same one; those that the
// filter keeps out do not count.
std::optional<UV_tile> likelyOnlyTile(VemoFile& vemo, const ChunkElements& faceUvs, int mode) {
    constexpr std::uint64_t kSamples = 16;
    TileFinder finder = tileFinder(mode);
    const auto add = [&](const std::uint8_t* face, std::size_t count) { finder.add(face, count); };
    for (std::uint64_t i = 0; i < kSamples && faceUvs.count > 0; ++i) {
        const std::uint64_t face = (faceUvs.count - 1) * i / (kSamples - 1);
        vemo.forEachElement(faceUvs.offset + face * kFaceUvBytes, 1, kFaceUvBytes, add);
    }
    if (finder.tiles().size() != 1) return {};
    return *finder.tiles().begin();
}

bool isAnyBut(const UV_tile& tile, const TileSet& tiles) {
    return std::any_of(tiles.begin(), tiles.end(),
                       [&](const UV_tile& other) { return other.at() != tile.at(); });
}

struct TileSearch {
    TileSet tiles;
    bool areWritten = false;
};

// Finds the tiles; nothing when the mesh cannot be read. The file of a tile that is likely to be the
// only one is written meanwhile, so that the UVs are read once. That is tried only where there is no
// file yet: if there are more tiles, or if anything goes wrong, the new one is removed and the disk is
// as it was.
std::optional<TileSearch> findTilesAndTryToWrite(VemoFile& vemo, const ChunkElements& faceUvs,
                                                 int mode, const char* outPath,
                                                 CornerPiece& piece) {
    const auto likely = likelyOnlyTile(vemo, faceUvs, mode);
    std::vector<std::string> names;
    TileFiles trial(piece);
    if (likely) {
        names.push_back(likely->name);
        trial.take(TileFile(outPath, *likely, File::createNew));
    }
    if (!trial.copyUpTo(faceUvs, vemo)) trial.remove();

    TileFinder finder = tileFinder(mode);
    const auto add = [&](const std::uint8_t* faces, std::size_t count) {
        finder.add(faces, count);
        if (likely && isAnyBut(*likely, finder.tiles())) trial.remove();
        trial.add(faces, count);
    };
    if (!vemo.forEachElement(faceUvs, kFaceUvBytes, add)) return {};
    trial.finish();
    const bool isWritten = trial.count() > 0;
    if (isWritten) UVTileStr.swap(names);
    return TileSearch{std::move(finder).found().tiles, isWritten};
}

// The three chunks that a mask needs, of which faces and face UVs belong together one by one.
struct MaskInput {
    float refused = vemo_status::kOk;
    ChunkElements vertices;
    ChunkElements faces;
    ChunkElements faceUvs;
};

constexpr std::uint32_t kIndices = 0x80000000u;  // there are no more that are not negative

// The vertex indices of a face that a mask marks: the fourth of a triangle is left out.
template <typename Use>
void forEachVertex(const std::uint8_t* face, Use use) {
    for (std::size_t corner = 0; corner < kFaceCorners; ++corner) {
        const auto index = static_cast<std::int32_t>(loadLe32(face + 4 * corner));
        const bool triangleEnd = corner == kFaceCorners - 1 && index < 0;
        if (!triangleEnd) use(static_cast<std::uint32_t>(index));
    }
}

// Without a branch: the sign of `beyond` is that of an index below 0 or of its distance to the last.
bool facesNameVertices(const VemoFile& vemo, const MaskInput& input) {
    const std::uint32_t last = std::min(input.vertices.count, kIndices) - 1;
    std::uint32_t beyond = 0;
    const std::uint8_t* face = vemo.data() + input.faces.offset;
    for (std::uint32_t i = 0; i < input.faces.count; ++i, face += kFaceBytes) {
        for (std::size_t corner = 0; corner < kFaceCorners - 1; ++corner) {
            const std::uint32_t index = loadLe32(face + 4 * corner);
            beyond |= index | (last - index);
        }
        const auto fourth = static_cast<std::int32_t>(loadLe32(face + 4 * (kFaceCorners - 1)));
        beyond |= last - static_cast<std::uint32_t>(std::max(fourth, 0));
    }
    return beyond < kIndices;
}

MaskInput readMaskInput(VemoFile& vemo) {
    const auto refusal = [](float status) { return MaskInput{status, {}, {}, {}}; };
    const auto find = [&](std::uint32_t id, std::uint32_t start) {
        return vemo.findChunk(id, start, ZeroLength::kCountsAs16);
    };
    const auto vertexChunk = find(kVertexChunk, kFirstChunk);
    if (!vertexChunk) return refusal(vemo_status::kChunkMissing);
    const auto faceChunk = find(kFaceChunk, *vertexChunk);
    if (!faceChunk) return refusal(vemo_status::kFaceChunkMissing);
    const auto uvChunk = find(kFaceUvChunk, *faceChunk);
    if (!uvChunk) return refusal(vemo_status::kChunkMissing);

    const auto vertices = vemo.elementsOf(*vertexChunk, kVertexBytes);
    const auto faces = vemo.elementsOf(*faceChunk, kFaceBytes);
    const auto faceUvs = vemo.elementsOf(*uvChunk, kFaceUvBytes);
    if (!vertices || !faces || !faceUvs || faces->count != faceUvs->count)
        return refusal(vemo_status::kChunkMissing);

    const MaskInput input{vemo_status::kOk, *vertices, *faces, *faceUvs};
    return facesNameVertices(vemo, input) ? input : refusal(vemo_status::kFaceChunkMissing);
}

// A whole mask chunk and the closing header after it; the mask itself shows no vertex yet.
std::vector<std::uint8_t> emptyMaskChunk(std::uint32_t vertices) {
    std::vector<std::uint8_t> chunk(kChunkHeaderBytes + vertices + kClosingHeader.size());
    storeLe32(chunk.data(), kMaskChunk);
    storeLe32(&chunk[4], vertices + std::uint32_t{kChunkHeaderBytes});
    storeLe32(&chunk[8], vertices);
    return chunk;
}

// The tiles that each vertex is used in: a bit for each of some tiles that are written one after the
// other, so that faces and UVs are gone through once for all of them.
class VertexTiles {
public:
    static constexpr std::size_t kTiles = 32;

    explicit VertexTiles(std::uint32_t vertices) : bits_(vertices) {}

    // Takes up to kTiles tiles from `next` on. The first one has the lowest bit.
    void take(TileSet::const_iterator next, TileSet::const_iterator end, const VemoFile& vemo,
              const MaskInput& input) {
        tiles_.clear();
        for (; next != end && tiles_.size() < kTiles; ++next)
            tiles_.push_back(next->at());
        std::fill(bits_.begin(), bits_.end(), 0u);

        const std::uint8_t* face = vemo.data() + input.faces.offset;
        const std::uint8_t* uvs = vemo.data() + input.faceUvs.offset;
        for (std::size_t left = input.faces.count; left > 0;) {
            const TileAt tile = tileAt(uvs);
            const std::size_t run = facesInTile(tile, uvs, left);
            mark(face, run, bitOf(tile));
            face += run * kFaceBytes;
            uvs += run * kFaceUvBytes;
            left -= run;
        }
    }

    // The mask of the tile at a position among those taken: a byte a vertex.
    void mask(std::size_t position, std::uint8_t* mask) const {
        std::transform(bits_.begin(), bits_.end(), mask, [position](std::uint32_t bits) {
            return (bits >> position & 1) != 0 ? kInsideTile : kOutsideTile;
        });
    }

private:
    // 0 for a tile that is not among them.
    std::uint32_t bitOf(TileAt tile) const {
        const auto found = std::find(tiles_.begin(), tiles_.end(), tile);
        return found == tiles_.end() ? 0u : 1u << (found - tiles_.begin());
    }

    void mark(const std::uint8_t* face, std::size_t count, std::uint32_t bit) {
        if (bit == 0) return;
        for (std::size_t i = 0; i < count; ++i, face += kFaceBytes)
            forEachVertex(face, [&](std::uint32_t index) { bits_[index] |= bit; });
    }

    std::vector<TileAt> tiles_;
    std::vector<std::uint32_t> bits_;
};

float writeTilesWithMask(const TileSet& tiles, const char* outPath, const VemoFile& vemo,
                         const MaskInput& input) {
    VertexTiles vertexTiles(input.vertices.count);
    std::vector<std::uint8_t> maskChunk = emptyMaskChunk(input.vertices.count);
    const std::size_t meshBytes = vemo.size() - 1 - kClosingHeader.size();
    for (auto tile = tiles.begin(); tile != tiles.end(); ++tile) {
        const std::size_t position = UVTileStr.size();
        const std::size_t bit = position % VertexTiles::kTiles;
        if (bit == 0) vertexTiles.take(tile, tiles.end(), vemo, input);
        TileFile out(outPath, *tile);
        if (!out.isOpen()) return tileNotWritten(position);
        UVTileStr.push_back(tile->name);
        vertexTiles.mask(bit, &maskChunk[kChunkHeaderBytes]);
        if (!out.append(vemo.data(), meshBytes) || !out.append(maskChunk.data(), maskChunk.size()))
            return tileNotWritten(position);
        out.keep();
    }
    return static_cast<float>(tiles.size());
}

}  // namespace

float GetUVsFromVemo(const char* path, const char* outPath, int mode) {
    constexpr float kNotOpened = vemo_status::kUvExportMeshNotOpened;
    UVTileStr.clear();
    VemoFile vemo(path);
    if (!vemo.isGood()) return kNotOpened;
    const auto faceUvs = vemo.findElements(kFaceUvChunk, ZeroLength::kEndsSearch, kFaceUvBytes);
    if (!faceUvs) return whyMissing(vemo, kNotOpened);

    const auto piece = std::make_unique<CornerPiece>();
    const auto search = findTilesAndTryToWrite(vemo, *faceUvs, mode, outPath, *piece);
    if (!search) return kNotOpened;
    const TileSet& tiles = search->tiles;
    if (search->areWritten) return static_cast<float>(UVTileStr.size());
    if (areWrittenOver(vemo, tiles, outPath) && !vemo.keep()) return kNotOpened;
    return writeTilesWithLocalUvs(tiles, outPath, vemo, *faceUvs, *piece);
}

float GetUVsFromVemoMASK(const char* path, const char* outPath, int mode) {
    constexpr float kNotOpened = vemo_status::kUvExportMeshNotOpened;
    UVTileStr.clear();
    VemoFile vemo(path);
    if (!vemo.keep()) return kNotOpened;
    const MaskInput input = readMaskInput(vemo);
    if (input.refused != vemo_status::kOk) return input.refused;

    const auto found = findTiles(vemo, input.faceUvs, mode);
    if (!found) return kNotOpened;
    return writeTilesWithMask(found->tiles, outPath, vemo, input);
}

void getUVTileString(int position, char* out) {
    if (out == nullptr || position < 0) return;
    const auto index = static_cast<std::size_t>(position);
    if (index < UVTileStr.size()) copyText(out, UVTileStr[index]);
}

void clearUVTileString() {
    UVTileStr.clear();
}
