#pragma once
// Random files as the host writes them: small, mostly valid, some bent or damaged.

#include "golden/Random.h"
#include "support/TempDir.h"
#include "support/TiffFile.h"

ByteList randomBytes(Random& random, std::size_t count);

// Samples of an image: all equal, of a few values, or of any.
ByteList paintedBytes(Random& random, std::size_t count);

// Returns the bytes, of which there is at least one, cut short, patched, prolonged or none of them.
ByteList damaged(Random& random, ByteList bytes);
// Returns the bytes, damaged in one case of six.
ByteList perhapsDamaged(Random& random, const ByteList& bytes);

// Maps that are merged share their shape, mostly.
struct TiffShape {
    std::uint32_t width;
    std::uint32_t length;
    std::uint32_t bits;
    bool grey;
    TiffFile::Order order;
};
TiffShape tiffShape(Random& random);
TiffShape floatTiffShape(Random& random);
ByteList tiffMap(Random& random, const TiffShape& shape);

struct PsdShape {
    std::uint32_t width;
    std::uint32_t height;
    bool grey16;
    std::size_t resourceBytes;
    std::size_t layerBytes;
};
PsdShape psdShape(Random& random);
ByteList psdMap(Random& random, const PsdShape& shape);

struct BmpShape {
    std::int32_t width;
    std::int32_t height;
    std::uint32_t gap;  // between headers and pixels
};
BmpShape bmpShape(Random& random);
ByteList bmpMap(Random& random, const BmpShape& shape);

// A mesh with most or all of the chunks of vertices, faces, face UVs, groups and colours, in any order.
ByteList vemoMesh(Random& random);

// The text of a tile filter.
ByteList filterText(Random& random);

// The shape of a second map: that of the first, mostly.
template <typename Shape>
Shape perhapsAnother(Random& random, const Shape& first, Shape (*another)(Random&)) {
    return random.oneIn(6) ? another(random) : first;
}
