#pragma once
// quillon import: an OBJ model as a mesh file.

#include <string>

struct ImportOptions {
    std::string model;
    std::string out;
    bool tilePerGroup = false;
};

void importModel(const ImportOptions& options);
