#pragma once
// The cases of the transcript that call what lies behind the exports: kernels, codecs, readers and
// the operations that no export reaches.

#include <ostream>

// Calls every operation with a few hundred generated inputs and writes one line a case:
//
//   OPERATION CASE RESULTS [files=COUNT:DIGEST]
void writeOperationCases(std::ostream& lines);
