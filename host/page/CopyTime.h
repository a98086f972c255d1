#pragma once
// The time to copy a file, for comparison with calls that read it.

#include <string>

// Copies `from` to the new file `to` with large reads and writes, three times, and returns the
// shortest time in milliseconds. Throws Failure if a file cannot be read or written.
double copyMilliseconds(const std::string& from, const std::string& to);
