#pragma once
// OBJ models as meshes.

#include <string>

#include "mesh/VemoMesh.h"

struct ObjModel {
    VemoMesh mesh;
    std::size_t groupCount = 0;  // the mesh's group ids run from 0 to this
};

// Reads a model. Triangles and quads stay; a larger polygon becomes a fan of quads around its first
// corner, with a triangle at the end where its corners are odd in number. Face groups are the
// model's groups, by name; where there is only one, its materials.
//
// Throws Failure for a model that is broken, or in which a face has no UVs.
ObjModel readObj(const std::string& path);
