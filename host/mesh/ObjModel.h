#pragma once
// OBJ models as meshes.

#include <string>
#include <vector>

#include "mesh/VemoMesh.h"

struct ObjModel {
    VemoMesh mesh;
    std::vector<std::string> groupNames;  // by the mesh's group ids; may be empty texts
};

// Reads a model. Triangles and quads stay; a larger polygon becomes a fan of quads around its first
// corner, which ends with a triangle if the number of corners is odd. Face groups are the model's
// groups, by name, or its materials, by the names in `usemtl`, if there is only one group.
//
// Throws Failure for a model that is broken, or in which a face has no UVs; it names the line.
ObjModel readObj(const std::string& path);
