#pragma once
// The files that fuzzing starts from: small valid ones of every kind that the library reads, and some
// with one wrong field.

#include <map>
#include <string>

#include "harness/Recipe.h"
#include "support/TempDir.h"

using SeedFiles = std::map<std::string, ByteList>;  // by a name that says what is in it

SeedFiles bmpSeeds();
SeedFiles exrSeeds();
SeedFiles psdSeeds();
SeedFiles textSeeds();
SeedFiles tiffSeeds();
SeedFiles vemoSeeds();

// Programs of calls, each with the files that it starts from.
std::map<std::string, Recipe> callSeeds();
