#pragma once
// OBJ models as meshes.

#include <string>

#include "mesh/VemoMesh.h"

struct ObjModel {
    VemoMesh mesh;
    std::size_t groupCount = 0;  // the mesh's group ids run from 0 to this
};

// Reads a model. Triangles and quads stay; a larger polygon becomes a fan of quads around its first
// corner, which ends with a triangle if the number of corners is odd. Face groups are the model's
// groups, by name, or its materials if there is only one group.
//
// Throws Failure for a model that is broken, or in which a face has no UVs.
ObjModel readObj(const std::string& path);
