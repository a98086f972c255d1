#pragma once
// The files that fuzzing starts from: small right ones of every kind that a format has here, and
// some that are bent at one place.

#include <map>
#include <string>

#include "support/TempDir.h"

using SeedFiles = std::map<std::string, ByteList>;  // by a name that tells them apart

SeedFiles bmpSeeds();
SeedFiles exrSeeds();
SeedFiles psdSeeds();
SeedFiles textSeeds();
SeedFiles tiffSeeds();
SeedFiles vemoSeeds();
