#include "mesh/ObjModel.h"

#include <tiny_obj_loader.h>

#include <array>
#include <istream>
#include <limits>
#include <map>
#include <optional>
#include <utility>

#include "mesh/ObjLines.h"
#include "terminal/Failure.h"

namespace {

constexpr std::size_t kMaxGroups = std::numeric_limits<std::int16_t>::max() + std::size_t{1};

constexpr const char* kNoVertex = "the face names a vertex that does not exist";
constexpr const char* kNoUvs = "the face names UVs that do not exist";

bool isWithin(std::int32_t index, std::size_t count) {
    return index >= 0 && static_cast<std::size_t>(index) < count;
}

// Numbers names from 0 on, in the order in which faces first have them.
class FaceNames {
public:
    // What the faces that follow have.
    void set(std::string name) {
        current_ = std::move(name);
        number_.reset();
    }
    std::size_t number() {
        if (!number_) {
            number_ = numbers_.try_emplace(current_, names_.size()).first->second;
            if (*number_ == names_.size()) names_.push_back(current_);
        }
        return *number_;
    }
    const std::vector<std::string>& all() const { return names_; }

private:
    std::string current_;
    std::optional<std::size_t> number_;  // of the current name, once a face has it
    std::map<std::string, std::size_t> numbers_;
    std::vector<std::string> names_;
};

// What a face has besides its vertices.
struct FaceExtras {
    std::array<std::int32_t, kMaxCorners> uvs;  // indices from 0
    std::size_t group;
    std::size_t material;
    std::size_t line;
};

// Takes what the loader finds. Faces may come before the vertices and UVs that they name.
class ModelBuilder {
public:
    explicit ModelBuilder(const ObjLines& lines) : lines_(lines) {}

    FaceNames groups;
    FaceNames materials;

    void addPoint(const Point& point) { mesh_.points.push_back(point); }
    void addUv(const Uv& uv) { uvs_.push_back(uv); }

    // Indices as in the file: from 1, or from -1 backwards; 0 where there is none.
    void addPolygon(const tinyobj::index_t* corners, std::size_t count) {
        for (std::size_t next = 1; next + 1 < count;) {
            const bool quad = next + 2 < count;
            addFace({corners[0], corners[next], corners[next + 1], corners[next + (quad ? 2 : 1)]},
                    quad);
            next += quad ? 2 : 1;
        }
    }

    ObjModel take() {
        const FaceNames& names = groupingNames();
        mesh_.uvs.reserve(mesh_.faces.size());
        mesh_.groups.reserve(mesh_.faces.size());
        for (std::size_t face = 0; face < mesh_.faces.size(); ++face) {
            const FaceExtras& extras = extras_[face];
            requireVertices(mesh_.faces[face], extras.line);
            mesh_.uvs.push_back(uvsOf(extras));
            const std::size_t group = &names == &groups ? extras.group : extras.material;
            mesh_.groups.push_back(static_cast<std::int16_t>(group));
        }
        return {std::move(mesh_), names.all()};
    }

private:
    std::int32_t fromZero(int index, std::size_t count, const char* missing) const {
        const int position = index > 0 ? index - 1 : static_cast<int>(count) + index;
        if (index == 0 || position < 0) lines_.fail(lines_.line(), missing);
        return position;
    }

    void addFace(const std::array<tinyobj::index_t, kMaxCorners>& corners, bool quad) {
        Face face{};
        FaceExtras extras{{}, groups.number(), materials.number(), lines_.line()};
        for (std::size_t i = 0; i < kMaxCorners; ++i) {
            const tinyobj::index_t& corner = corners[i];
            if (corner.texcoord_index == 0)
                lines_.fail(lines_.line(), "the face has no UVs; give the model UVs first");
            face.vertices[i] = fromZero(corner.vertex_index, mesh_.points.size(), kNoVertex);
            extras.uvs[i] = fromZero(corner.texcoord_index, uvs_.size(), kNoUvs);
        }
        if (!quad) face.vertices[3] = -1;
        mesh_.faces.push_back(face);
        extras_.push_back(extras);
    }

    const FaceNames& groupingNames() const {
        const bool isOneGroup = groups.all().size() <= 1;
        const bool isNamed = isOneGroup && !groups.all().empty() && !groups.all()[0].empty();
        return isOneGroup && (materials.all().size() > 1 || !isNamed) ? materials : groups;
    }

    void requireVertices(const Face& face, std::size_t line) const {
        for (std::size_t i = 0; i < face.corners(); ++i) {
            if (!isWithin(face.vertices[i], mesh_.points.size())) lines_.fail(line, kNoVertex);
        }
    }

    FaceUvs uvsOf(const FaceExtras& extras) const {
        FaceUvs uvs{};
        for (std::size_t i = 0; i < kMaxCorners; ++i) {
            if (!isWithin(extras.uvs[i], uvs_.size())) lines_.fail(extras.line, kNoUvs);
            uvs[i] = uvs_[static_cast<std::size_t>(extras.uvs[i])];
        }
        return uvs;
    }

    const ObjLines& lines_;
    VemoMesh mesh_;
    std::vector<Uv> uvs_;
    std::vector<FaceExtras> extras_;  // by face
};

ModelBuilder& builderOf(void* data) {
    return *static_cast<ModelBuilder*>(data);
}

// The loader also hands out the blanks behind a name.
std::string nameFrom(std::string name) {
    name.erase(name.find_last_not_of(" \t") + 1);
    return name;
}

std::string joined(const char** names, int count) {
    std::string text;
    for (int i = 0; i < count; ++i) {
        if (i > 0) text += ' ';
        text += names[i];
    }
    return text;
}

tinyobj::callback_t callbacks() {
    tinyobj::callback_t calls;
    calls.vertex_cb = [](void* data, float x, float y, float z, float) {
        builderOf(data).addPoint({x, y, z});
    };
    calls.texcoord_cb = [](void* data, float u, float v, float) { builderOf(data).addUv({u, v}); };
    calls.index_cb = [](void* data, tinyobj::index_t* corners, int count) {
        builderOf(data).addPolygon(corners, static_cast<std::size_t>(count));
    };
    calls.usemtl_cb = [](void* data, const char* name, int) {
        builderOf(data).materials.set(nameFrom(name));
    };
    calls.group_cb = [](void* data, const char** names, int count) {
        builderOf(data).groups.set(joined(names, count));
    };
    calls.object_cb = [](void* data, const char* name) {
        builderOf(data).groups.set(nameFrom(name));
    };
    return calls;
}

}  // namespace

ObjModel readObj(const std::string& path) {
    ObjLines lines(path);
    std::istream stream(&lines);
    stream.exceptions(std::ios::badbit);  // lets the failures of ObjLines through
    ModelBuilder builder(lines);
    tinyobj::LoadObjWithCallback(stream, callbacks(), &builder);
    ObjModel model = builder.take();
    if (model.mesh.faces.empty()) throw Failure("the model " + path + " has no faces");
    if (model.groupNames.size() > kMaxGroups)
        throw Failure("the model " + path + " has more than 32768 groups");
    return model;
}
