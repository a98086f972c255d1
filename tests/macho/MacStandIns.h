#pragma once
// MacStandIns: what a macOS library of ours imports, for a Linux program that loads it.

#include <string>

// The address that the imported `symbol` gets, named as in a Mach-O file: with a leading underscore,
// on x86-64 with a suffix where macOS keeps two versions ("_stat$INODE64"). Null when it is unknown.
//
// A few symbols that the C++ library brings along, and no export leads to, have stand-ins that end the
// program with their name.
void* macStandIn(const std::string& symbol);
