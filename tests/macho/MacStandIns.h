#pragma once
// MacStandIns: what our library for macOS imports, for a Linux program that loads it.

#include <string>

// Returns the address for the imported `symbol`, named as in a Mach-O file: with a leading underscore,
// on x86-64 with a suffix where macOS keeps two versions ("_stat$INODE64"). Null if it is unknown.
//
// A few symbols that the C++ library imports, and no export leads to, have a stand-in that ends the
// program.
void* macStandIn(const std::string& symbol);

// Lets the next fstat() of the library write on behind the caller's buffer, up to and over the value that
// guards the caller's stack frame.
void overrunNextFstat();
