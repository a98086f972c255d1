#pragma once
// VemoOps: the host's mesh interchange files. All values are little-endian.
//
// A file is a header of 32 bytes, which nobody reads, and a row of chunks, each starting where the
// previous one ends:
//
//   0   4  chunk id
//   4   4  chunk length in bytes, these 16 included
//   8   4  element count
//   12  4  0
//   16     elements
//
//   id     name          element
//   10001  vertex        12 bytes: floats x, y, z
//   20001  face          16 bytes: four int32 vertex indices; a negative fourth marks a triangle
//   25001  face UV       32 bytes: four corners of a face, each floats u, v
//   30001  mask          1 byte a vertex: 255 outside the tile, 0 inside
//   35001  vertex colour 4 bytes: blue, green, red, unused
//   40001  face group    2 bytes: int16 group id of a face
//
// A file that Quillon writes ends with 16 zero bytes, an empty chunk header.
//
// UV tiles. The tile of a UV coordinate is its whole part; below zero, the whole part of the
// coordinate minus 1, so that -0.25 lies in tile -1 and -1.0 in tile -2. A face belongs to the tile
// of its first corner. A tile is named by its column u and row v in one of four naming modes:
//
//   mode 0  _u0_v0   _u2_v1    column and row from 0
//   mode 1  _u1_v1   _u3_v2    column and row from 1
//   mode 2  1001     1013      1001 + u + 10 v; only tiles that the filter lets pass
//   mode 3  u0v0     u2v1
//
// Tiles of the same name are one tile, with the place of the one that came first in the file.
//
// Colour block. Painted colours are comments in OBJ text, which every other reader skips: 32
// colours a line, each "RRGGBB" in lower-case hexadecimal digits after a space, all between two
// lines of explanation. An empty line stands before the second one when the last row is full, or
// when there is no colour at all:
//
//   # The following RGB block contains ... up to 32 entries per RGB line.
//   #RGB  302010 ffffff 00ff00
//   # End of RGB block

// The host's scripts test these numbers. A count of tiles, of groups, of files or of faces is 0 or
// more. A mesh or filter that is not opened may also be one that cannot be read, or for which there is
// too little memory.
namespace vemo_status {
inline constexpr float kOk = 0.0f;
inline constexpr float kFilterNotOpened = -1.0f;
inline constexpr float kTextNotCreated = -2.0f;            // colour block or OBJ
inline constexpr float kMeshNotOpened = -17.0f;            // tile and group search
inline constexpr float kChunkMissing = -18.0f;             // not in the file, or cut short
inline constexpr float kFaceChunkMissing = -19.0f;         // mask export: missing or invalid
inline constexpr float kUvExportMeshNotOpened = -1760.0f;  // UV and mask export
inline constexpr float kObjMeshNotOpened = -1760.0f;       // vertex colours, OBJ and face ids
inline constexpr float kMergedNotOpened = -1760.0f;        // crease merge: the first mesh
inline constexpr float kMergeTargetNotOpened = -2760.0f;   // crease merge: the second mesh
inline constexpr float kMergeTargetNotCreated = -3760.0f;  // crease merge: no longer writable
inline constexpr float kFirstTileNotWritten = 1501.0f;     // plus the tile's position from 0
}

// Counts the UV tiles that a mesh uses.
//
//   path     mesh file, only read
//   out      takes the name of the last face's tile, whether the filter lets it pass or not; empty
//            for a mesh without faces. Untouched on failure.
//   mode     naming mode 0 to 3
//   returns  the number of tiles, kMeshNotOpened, or kChunkMissing without a whole face UV chunk
float GetUVTile(const char* path, char* out, int mode);

// Counts the different group ids of a mesh's faces.
//
//   returns  the number, kMeshNotOpened, or kChunkMissing without a whole face group chunk
float GetUVGroup(const char* path);

// Replaces the tile filter of naming mode 2 by the one in a text file: tile names and inclusive
// ranges of tile numbers, separated by commas or line ends, such as "1001-1003, 1011". An empty
// filter lets every tile pass.
//
//   returns  kOk, or kFilterNotOpened, which leaves the filter empty
float setUVtilesOut(const char* path);

// Empties the tile filter.
void clearUVtilesOut();

// Writes, for each tile of a mesh, the mesh with the UVs local to that tile: all bytes up to the
// face UV elements as they are, then each corner's UV within the tile, or -1 and -1 for a corner
// that lies in another, then 16 zero bytes. What followed the face UV chunk is left out.
//
// The tiles are written in the order of their names, to `outPath` without its extension, then the
// tile's name, then ".Vemo". The names of the tiles whose files were begun are kept for
// getUVTileString.
//
//   path     mesh file, only read, unless a tile's file is the mesh itself: then it is taken whole
//            into memory first, and lost when the disk cannot take that file
//   returns  the number of tiles; kUvExportMeshNotOpened; kChunkMissing without a whole face UV
//            chunk, before anything is written; kFirstTileNotWritten + k when the file of tile k
//            cannot be created or filled, on a full disk for one: files of the tiles before it
//            stay, whole, and of the others nothing is left. A mesh that cannot be read to its end
//            is kUvExportMeshNotOpened, too; the files that are there then are whole.
float GetUVsFromVemo(const char* path, const char* outPath, int mode);

// Writes, for each tile of a mesh, the mesh as it is with its last 16 bytes, the empty chunk
// header, replaced by a mask chunk and a new empty header. The mask shows the vertices that faces
// of the tile use. Names, order and file names are those of GetUVsFromVemo.
//
//   path     mesh file, only read; whole in memory during the call
//   returns  as GetUVsFromVemo; kChunkMissing also without a whole vertex chunk or when faces and
//            face UVs differ in number; kFaceChunkMissing without a face chunk, or when a face
//            names a vertex that does not exist
float GetUVsFromVemoMASK(const char* path, const char* outPath, int mode);

// Copies the name of a tile of the last UV or mask export. A position that does not exist, or a
// null `out`, changes nothing.
void getUVTileString(int position, char* out);

// Forgets the names of the last export's tiles.
void clearUVTileString();

// No export calls ReadVertColorVemo, writeOBJfromVemo and GetFaceIDsVemo.

// Writes a mesh's vertex colours as a text file that holds one colour block.
//
//   in_path   mesh file whose first chunk is the vertex colour chunk; its id is not looked at
//   out_path  text file, replaced. That the disk could not take it all is not reported.
//   returns   kOk, kObjMeshNotOpened, kChunkMissing when the file ends before its colours do,
//             before anything is written, or kTextNotCreated
float ReadVertColorVemo(const char* in_path, char* out_path);

// Writes a painted mesh as a Wavefront OBJ file: the numbers of vertices and faces, the vertices,
// the colour block, then the faces in the groups that the last GetFaceIDsVemo counted, each after a
// line "#FaceID " and the number of its base face from 1. Without such counts no face is written;
// counts that add up to more faces than there are end with the last face.
//
// Vertex, vertex colour and face chunk must be the first three, in this order and without a gap.
// Coordinates have six significant digits at most, as "%g" writes them under the C locale, whatever
// the locale; a value that is no number is "nan", whatever its sign.
//
//   out_path  OBJ file, replaced. That the disk could not take it all is not reported.
//   returns   kOk, which uses the counts up; kObjMeshNotOpened; kChunkMissing when the file ends
//             before these chunks do, before anything is written; kTextNotCreated; or, as a float,
//             the id of another chunk that is in the place of one of the three: of the first
//             before anything is written, of the second or third after all that comes before it
float writeOBJfromVemo(const char* in_path, char* out_path);

// Counts, for each face of a base mesh, the faces that it becomes at a subdivision level: at level
// 1 one for each of its corners, and with every further level each of these becomes four. The
// counts replace those of the call before and wait for writeOBJfromVemo.
//
//   in_path  mesh file whose first chunk is the face chunk; its id is not looked at
//   level    4^(level - 1) is cut down to a whole number, 0 for NaN; a count beyond 32 bits is the
//            highest there is
//   returns  the number of base faces; kObjMeshNotOpened or kChunkMissing, when the file ends
//            before its faces do, both of which leave no counts
float GetFaceIDsVemo(const char* in_path, double level);

// Appends one mesh file to another, so that the chunks of both lie in one file. Each is written
// without its last 14 bytes, so that of a closing header the first two bytes stay.
//
//   first_path   mesh file to append, only read unless it is the second
//   second_path  mesh file that comes first in the result, which replaces it. That the disk could
//                not take it all is not reported.
//   returns      kOk, kMergeTargetNotOpened, kMergedNotOpened, kChunkMissing for a file of less
//                than 14 bytes; each before anything is written; or kMergeTargetNotCreated
float mergeFiles(const char* first_path, char* second_path);
