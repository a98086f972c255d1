#include "mesh/ObjModel.h"

#include <tiny_obj_loader.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <numeric>
#include <set>
#include <utility>

#include "files/DiskFile.h"
#include "terminal/Failure.h"

namespace {

constexpr std::size_t kMaxGroups = std::numeric_limits<std::int16_t>::max() + std::size_t{1};

tinyobj::ObjReader parse(const std::string& path) {
    requireFile(path, "model");
    tinyobj::ObjReaderConfig config;
    config.triangulate = false;
    config.vertex_color = false;
    tinyobj::ObjReader reader;
    if (reader.ParseFromFile(path, config)) return reader;
    std::string reason = reader.Error();
    while (!reason.empty() && reason.back() == '\n')
        reason.pop_back();
    std::replace(reason.begin(), reason.end(), '\n', ' ');
    throw Failure("the model " + path + " is broken: " + reason);
}

bool isFinite(const std::vector<float>& numbers) {
    return std::all_of(numbers.begin(), numbers.end(), [](float n) { return std::isfinite(n); });
}

bool isWithin(int index, std::size_t count) {
    return index >= 0 && static_cast<std::size_t>(index) < count;
}

class MeshBuilder {
public:
    MeshBuilder(const std::string& path, const tinyobj::ObjReader& reader, bool groupsAreShapes)
        : path_(path), model_(reader.GetAttrib()), groupsAreShapes_(groupsAreShapes) {
        if (!isFinite(model_.vertices) || !isFinite(model_.texcoords))
            fail("a coordinate is beyond the range of numbers");
        for (std::size_t i = 0; i + 2 < model_.vertices.size(); i += 3)
            mesh_.points.push_back(
                {model_.vertices[i], model_.vertices[i + 1], model_.vertices[i + 2]});
    }

    void addShape(const tinyobj::shape_t& shape) {
        const tinyobj::mesh_t& source = shape.mesh;
        const auto& counts = source.num_face_vertices;
        // The loader counts corners in a byte.
        if (std::accumulate(counts.begin(), counts.end(), std::size_t{0}) != source.indices.size())
            fail("a polygon has more than 255 corners");
        const tinyobj::index_t* corner = source.indices.data();
        for (std::size_t face = 0; face < counts.size(); ++face) {
            addPolygon(corner, counts[face],
                       groupsAreShapes_ ? shape.name : std::to_string(source.material_ids[face]));
            corner += counts[face];
        }
    }

    ObjModel take() {
        if (mesh_.faces.empty()) throw Failure("the model " + path_ + " has no faces");
        return {std::move(mesh_), groups_.size()};
    }

private:
    [[noreturn]] void fail(const std::string& why) const {
        throw Failure("the model " + path_ + " is broken: " + why);
    }

    Uv uvOf(const tinyobj::index_t& corner) const {
        if (corner.texcoord_index == -1)
            throw Failure("the model " + path_ + " has faces without UVs; give them UVs first");
        if (!isWithin(corner.texcoord_index, model_.texcoords.size() / 2))
            fail("a face names UVs that do not exist");
        const std::size_t at = 2 * static_cast<std::size_t>(corner.texcoord_index);
        return {model_.texcoords[at], model_.texcoords[at + 1]};
    }

    void addPolygon(const tinyobj::index_t* corners, std::size_t count, const std::string& name) {
        const std::size_t group = groups_.try_emplace(name, groups_.size()).first->second;
        if (group >= kMaxGroups) fail("it has more than 32768 groups");
        for (std::size_t next = 1; next + 1 < count;) {
            const bool quad = next + 2 < count;
            addFace({corners[0], corners[next], corners[next + 1], corners[next + (quad ? 2 : 1)]},
                    quad);
            mesh_.groups.push_back(static_cast<std::int16_t>(group));
            next += quad ? 2 : 1;
        }
    }

    void addFace(const std::array<tinyobj::index_t, kMaxCorners>& corners, bool quad) {
        Face face{};
        FaceUvs uvs{};
        for (std::size_t i = 0; i < kMaxCorners; ++i) {
            if (!isWithin(corners[i].vertex_index, mesh_.points.size()))
                fail("a face names a vertex that does not exist");
            face.vertices[i] = corners[i].vertex_index;
            uvs[i] = uvOf(corners[i]);
        }
        if (!quad) face.vertices[3] = -1;
        mesh_.faces.push_back(face);
        mesh_.uvs.push_back(uvs);
    }

    const std::string& path_;
    const tinyobj::attrib_t& model_;
    bool groupsAreShapes_;
    VemoMesh mesh_;
    std::map<std::string, std::size_t> groups_;  // numbered in the order in which they appear
};

bool hasSeveralGroups(const std::vector<tinyobj::shape_t>& shapes) {
    std::set<std::string> names;
    for (const tinyobj::shape_t& shape : shapes) {
        if (!shape.mesh.indices.empty()) names.insert(shape.name);
    }
    return names.size() > 1;
}

}  // namespace

ObjModel readObj(const std::string& path) {
    const tinyobj::ObjReader reader = parse(path);
    MeshBuilder builder(path, reader, hasSeveralGroups(reader.GetShapes()));
    for (const tinyobj::shape_t& shape : reader.GetShapes())
        builder.addShape(shape);
    return builder.take();
}
