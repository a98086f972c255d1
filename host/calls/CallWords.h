#pragma once
// The words of a call, on the command line and in a script:
//   EXPORT [TEXT [VALUE [BUFFER]]], the last two also as --value VALUE and --buffer BUFFER.

#include <string>

#include "exports/CallArguments.h"

namespace CLI {
class App;
}

struct NamedCall {
    std::string name;  // of the export
    CallArguments arguments;
};

// Declares the words, which parsing the command puts into `call`. Parsing throws WrongUsage for a
// value that is no number.
void addCallWords(CLI::App& command, NamedCall& call);

// Throws Failure for a call that would destroy what it works on: FileCopyTo deletes its target
// before it opens the source, so a file copied onto itself is lost. `remedy` ends the sentence.
void requireHarmless(const NamedCall& call, const std::string& remedy);
