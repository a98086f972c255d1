#include "golden/Inputs.h"

#include <algorithm>
#include <array>
#include <vector>

#include "support/BmpFile.h"
#include "support/PsdFile.h"
#include "support/VemoBuilder.h"

namespace {

std::uint32_t side(Random& random) {
    return random.oneIn(8) ? random.below(70) : 1 + random.below(12);
}

// A number that a damaged field may hold.
std::uint32_t field(Random& random) {
    if (random.oneIn(2)) return random.below(300);
    return random.pick<std::uint32_t>({0, 1, 2, 3, 4, 8, 16, 32, 64, 0xFFFF, 0x10000, 0x7FFFFFFF,
                                       0x80000000, 0xFFFFFFF0, 0xFFFFFFFF});
}

std::vector<float> samples(Random& random, std::size_t count) {
    const std::uint32_t style = random.below(4);
    const float background = random.number();
    std::vector<float> made(count);
    for (float& sample : made) {
        if (style == 0) sample = background;
        if (style == 1) sample = random.unit();
        if (style == 2) sample = random.oneIn(2) ? background : random.unit();
        if (style == 3) sample = random.number();
    }
    return made;
}

std::vector<std::uint16_t> words(Random& random, std::size_t count) {
    const ByteList bytes = paintedBytes(random, 2 * count);
    std::vector<std::uint16_t> made(count);
    for (std::size_t i = 0; i < count; ++i)
        made[i] = static_cast<std::uint16_t>(bytes[2 * i] | bytes[2 * i + 1] << 8);
    return made;
}

void bend(Random& random, TiffFile& file) {
    const auto tag = random.pick<std::uint16_t>(
        {254, 256, 257, 258, 259, 262, 273, 277, 278, 279, 282, 339, 40000});
    if (random.oneIn(4)) {
        file.without(tag);
        return;
    }
    if (random.oneIn(6)) {
        file.claimEntries(static_cast<std::uint16_t>(field(random)));
        return;
    }
    const std::uint32_t count = random.below(5);
    file.entry(tag, count, field(random));
}

void bend(Random& random, PsdFile& file) {
    const auto number = static_cast<std::uint16_t>(random.below(5));
    const std::uint32_t part = random.below(9);
    if (part == 0) file.signature("8BPT");
    if (part == 1) file.version(number);
    if (part == 2) file.channels(number);
    if (part == 3) file.depth(static_cast<std::uint16_t>(8 * number));
    if (part == 4) file.colourMode(number);
    if (part == 5) file.compression(number);
    if (part == 6) file.colourTable(number);
    if (part == 7) file.announceResources(field(random));
    if (part == 8) file.announceLayers(field(random));
}

void bend(Random& random, BmpFile& file) {
    const std::uint32_t part = random.below(4);
    if (part == 0) file.signature('B', 'N');
    if (part == 1) file.bitsPerPixel(static_cast<std::uint16_t>(8 * random.below(5)));
    if (part == 2) file.claimPixelOffset(field(random));
    if (part == 3) {
        const std::int32_t width = random.between(-5, 40);
        file.claimSize(width, random.between(-5, 40));
    }
}

std::array<float, 3> vertex(Random& random) {
    std::array<float, 3> made;
    for (float& coordinate : made)
        coordinate = random.number();
    return made;
}

// Corners near one place, so that faces share tiles, or anywhere.
VemoBuilder::FaceUvs faceUvs(Random& random) {
    VemoBuilder::FaceUvs made;
    const auto u = static_cast<float>(random.between(-2, 4));
    const auto v = static_cast<float>(random.between(-2, 4));
    const bool anywhere = random.oneIn(8);
    for (std::size_t i = 0; i < made.size(); ++i)
        made[i] = anywhere ? random.number() : (i % 2 == 0 ? u : v) + random.unit();
    return made;
}

VemoBuilder::Colour colour(Random& random) {
    VemoBuilder::Colour made;
    for (std::uint8_t& part : made)
        part = random.byte();
    return made;
}

std::int16_t group(Random& random) {
    return static_cast<std::int16_t>(random.between(-3, 3));
}

template <typename Make>
auto list(Random& random, std::uint32_t count, Make make) {
    std::vector<decltype(make(random))> made(count);
    for (auto& element : made)
        element = make(random);
    return made;
}

class MeshParts {
public:
    explicit MeshParts(Random& random)
        : random_(random), vertexCount_(random.below(20)), faceCount_(random.below(16)) {}

    void addTo(VemoBuilder& mesh, std::uint32_t chunk) {
        if (chunk == 10001)
            mesh.vertices(list(random_, vertexCount_, vertex));
        else if (chunk == 20001)
            mesh.faces(list(random_, faceCount_, [this](Random&) { return face(); }));
        else if (chunk == 25001)
            mesh.faceUvs(list(random_, faceCount_, faceUvs));
        else if (chunk == 35001)
            mesh.vertexColours(list(random_, colourCount(), colour));
        else if (chunk == 40001)
            mesh.groups(list(random_, faceCount_, group));
        else
            addUnknown(mesh);
    }

private:
    VemoBuilder::Face face() {
        VemoBuilder::Face made;
        for (std::int32_t& index : made)
            index = static_cast<std::int32_t>(random_.below(std::max(vertexCount_, 1u)));
        if (random_.oneIn(3)) made[3] = -1;
        if (random_.oneIn(60)) made[random_.below(4)] = static_cast<std::int32_t>(field(random_));
        return made;
    }

    std::uint32_t colourCount() { return random_.oneIn(6) ? random_.below(100) : vertexCount_; }

    // A chunk of another kind, or one whose header is wrong.
    void addUnknown(VemoBuilder& mesh) {
        const auto id = random_.pick<std::uint32_t>({10001, 20001, 25001, 35001, 40001, 50001, 0});
        const std::uint32_t size = random_.below(40);
        const ByteList elements = randomBytes(random_, size);
        const std::uint32_t length = random_.oneIn(2) ? 16 + size : field(random_);
        mesh.chunk(id, length, field(random_), elements);
    }

    Random& random_;
    std::uint32_t vertexCount_;
    std::uint32_t faceCount_;
};

ByteList mesh(Random& random, std::vector<std::uint32_t> chunks) {
    VemoBuilder built;
    MeshParts parts(random);
    if (random.oneIn(8))
        chunks.insert(chunks.begin() + random.below(static_cast<std::uint32_t>(chunks.size())), 1u);
    for (const std::uint32_t chunk : chunks) {
        if (!random.oneIn(25)) parts.addTo(built, chunk);
    }
    if (!random.oneIn(10)) built.closing();
    return built.bytes();
}

}  // namespace

ByteList randomBytes(Random& random, std::size_t count) {
    ByteList bytes(count);
    for (std::uint8_t& byte : bytes)
        byte = random.byte();
    return bytes;
}

ByteList paintedBytes(Random& random, std::size_t count) {
    const std::uint32_t style = random.below(4);
    const std::uint8_t ground = random.byte();
    ByteList bytes(count, ground);
    if (style == 0) return bytes;
    for (std::uint8_t& byte : bytes) {
        if (style == 1) byte = random.byte();
        if (style == 2 && random.oneIn(4)) byte = random.byte();
        if (style == 3 && random.oneIn(3))
            byte = static_cast<std::uint8_t>(ground + random.below(3));
    }
    return bytes;
}

ByteList damaged(Random& random, ByteList bytes) {
    const auto size = static_cast<std::uint32_t>(bytes.size());
    switch (random.below(4)) {
        case 0:
            bytes.resize(random.below(size));
            break;
        case 1:
            bytes.resize(size + random.below(100), 0xA5);
            break;
        case 2:
            bytes.clear();
            break;
        default: {
            // Most of what can go wrong is in the first bytes.
            const std::uint32_t reach = random.oneIn(2) ? std::min(size, 60u) : size;
            const std::uint32_t patches = 1 + random.below(4);
            for (std::uint32_t i = 0; i < patches; ++i)
                bytes[random.below(reach)] = random.byte();
        }
    }
    return bytes;
}

ByteList perhapsDamaged(Random& random, const ByteList& bytes) {
    return random.oneIn(6) && !bytes.empty() ? damaged(random, bytes) : bytes;
}

TiffShape tiffShape(Random& random) {
    TiffShape shape{};
    shape.width = side(random);
    shape.length = side(random);
    shape.bits = random.pick({8u, 8u, 16u, 32u});
    shape.grey = random.oneIn(3);
    shape.order = random.pick({TiffFile::Order::kPixelsFirst, TiffFile::Order::kDirectoryFirst});
    return shape;
}

TiffShape floatTiffShape(Random& random) {
    TiffShape shape = tiffShape(random);
    if (!random.oneIn(12)) shape.bits = 32;
    // Only a directory that comes first can be turned into the one of another file.
    if (!random.oneIn(6)) shape.order = TiffFile::Order::kDirectoryFirst;
    return shape;
}

ByteList tiffMap(Random& random, const TiffShape& shape) {
    TiffFile file(shape.width, shape.length, shape.order);
    const std::size_t count = std::size_t{shape.width} * shape.length * (shape.grey ? 1 : 3);
    if (shape.bits == 8) {
        const ByteList made = paintedBytes(random, count);
        shape.grey ? file.grey8(made) : file.rgb8(made);
    } else if (shape.bits == 16) {
        const auto made = words(random, count);
        shape.grey ? file.grey16(made) : file.rgb16(made);
    } else {
        const auto made = samples(random, count);
        shape.grey ? file.grey32(made) : file.rgb32(made);
    }
    if (random.oneIn(8)) bend(random, file);
    return perhapsDamaged(random, file.bytes());
}

PsdShape psdShape(Random& random) {
    PsdShape shape{};
    const bool large = random.oneIn(12);
    shape.width = large ? 95 + random.below(20) : side(random);
    shape.height = large ? 95 + random.below(20) : side(random);
    shape.grey16 = random.oneIn(4);
    if (random.oneIn(3)) shape.resourceBytes = random.below(30);
    if (random.oneIn(4)) shape.layerBytes = random.below(30);
    return shape;
}

ByteList psdMap(Random& random, const PsdShape& shape) {
    PsdFile file(shape.width, shape.height);
    file.resources(shape.resourceBytes).layers(shape.layerBytes);
    const std::size_t pixels = std::size_t{shape.width} * shape.height;
    if (shape.grey16)
        file.grey16().planes(paintedBytes(random, 2 * pixels));
    else
        file.planes(paintedBytes(random, 3 * pixels));
    if (random.oneIn(6)) bend(random, file);
    return perhapsDamaged(random, file);
}

BmpShape bmpShape(Random& random) {
    BmpShape shape{};
    shape.width = static_cast<std::int32_t>(side(random));
    shape.height = static_cast<std::int32_t>(side(random));
    if (random.oneIn(6)) shape.gap = random.below(80);
    return shape;
}

ByteList bmpMap(Random& random, const BmpShape& shape) {
    BmpFile file(shape.width, shape.height);
    const auto pixels =
        static_cast<std::size_t>(shape.width) * static_cast<std::size_t>(shape.height);
    file.pixels(paintedBytes(random, 3 * pixels)).padding(random.byte());
    if (shape.gap > 0) file.pixelOffset(54 + shape.gap, random.byte());
    if (random.oneIn(6)) bend(random, file);
    return perhapsDamaged(random, file);
}

ByteList vemoMesh(Random& random) {
    std::vector<std::uint32_t> chunks = {10001, 20001, 25001, 40001};
    if (random.oneIn(3)) chunks.push_back(35001);
    for (std::uint32_t i = 0; random.oneIn(2) && i < chunks.size(); ++i)
        std::swap(chunks[i], chunks[random.below(static_cast<std::uint32_t>(chunks.size()))]);
    return perhapsDamaged(random, mesh(random, chunks));
}

ByteList filterText(Random& random) {
    std::string text;
    const std::uint32_t pieces = random.below(12);
    for (std::uint32_t i = 0; i < pieces; ++i) {
        const std::int32_t first = random.between(995, 1050);
        text += std::to_string(first);
        if (random.oneIn(3))
            text.append(1, '-').append(std::to_string(first + random.between(-2, 12)));
        text += random.pick<const char*>(
            {",", ", ", "\n", "\r\n", ",,", " ", "-", "x", "\t,", "2147483648,"});
    }
    return perhapsDamaged(random, ByteList(text.begin(), text.end()));
}
