#pragma once
// CornerPiece: a run of UV corners, taken apart once and then shown as each tile sees them. A corner
// is a pair of 32-bit floats, u and v; placeOf gives its tile and its place in that.

#include <array>
#include <cstddef>
#include <cstdint>

#include "files/Piece.h"
#include "mesh/UVTiles.h"

inline constexpr std::size_t kCornerBytes = 8;
inline constexpr std::size_t kPieceCorners = 8192;

class CornerPiece {
public:
    // Takes the first `count` corners, up to kPieceCorners, from a mesh file's bytes. They will be
    // written at `offset` of the tiles' files.
    void split(const std::uint8_t* corners, std::size_t count, std::uint64_t offset);

    // The corners of the last split as the file of one tile shows them: those inside with their
    // place within the tile, the others -1 and -1. Lives until the next call.
    const std::uint8_t* seenFrom(TileAt tile);

private:
    using Tiles = std::array<std::int32_t, 2 * kPieceCorners>;

    // The coordinates of a piece's corners: floats, as their bits.
    struct Coordinates {
        Piece piece{kPieceCorners * kCornerBytes};
        std::uint32_t* data = nullptr;

        // Takes the place from which they are written to `offset`. True when it is another one
        // than before, with other bytes.
        bool moveFor(std::uint64_t offset);
        std::uint8_t* bytes() const;
    };

    std::size_t count_ = 0;
    TileAt lowest_{};  // of the tiles in the piece, column and row for themselves
    TileAt highest_{};
    Tiles tiles_;          // the column and the row of each corner, if they are not all the same
    Coordinates locals_;   // the places within the tiles
    Coordinates outside_;  // corners that all lie in other tiles
    Coordinates seen_;     // by the tile asked for last
};
