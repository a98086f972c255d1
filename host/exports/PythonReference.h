#pragma once
// The table of exports as a module of Python: python/quillon/_exports.py.

#include <string>

// The whole module: a typed and documented function for each export.
std::string pythonReference();
