#pragma once
// The library's operations that no export reaches, to be called like exports. They are a module of
// their own, loaded at run time: the library and the host's code share some names, so that one program
// cannot link both.

using Operation = float(const char* text, double value, char* buffer);

inline constexpr const char* kOperationsModule = "libquillon_operations.so";

// Returns null if there is no operation of that name.
extern "C" __attribute__((visibility("default"))) Operation* findOperation(const char* name);
