#pragma once
// The cases of the transcript that call the library's exports.

#include <functional>
#include <string>

// Returns the address of an exported function, or null.
using FindSymbol = std::function<void*(const std::string& name)>;

// Calls every export with a few hundred generated inputs and writes a transcript of one line a case:
//
//   EXPORT CASE CALL... stdout=BYTES files=COUNT:DIGEST
//
// with one CALL for each call that was made, "STATUS/BLOCK": the bits of the status and what the call
// wrote into the host's memory block, "=" if nothing. Throws std::runtime_error if the file cannot be
// written.
void writeExportCases(const FindSymbol& find, const std::string& transcript);
