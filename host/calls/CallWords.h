#pragma once
// The words of a call, on the command line and in a script:
//   EXPORT [TEXT [VALUE [BUFFER]]], the last two also as --value VALUE and --buffer BUFFER.

#include <string>
#include <vector>

#include "exports/CallArguments.h"

namespace CLI {
class App;
}

struct NamedCall {
    std::string name;  // of the export
    CallArguments arguments;
};

// Declares the words, which parsing the command puts into `call`.
void addCallWords(CLI::App& command, NamedCall& call);

// Returns the call of an existing export that these words describe. Throws WrongUsage.
NamedCall callFrom(std::vector<std::string> words);
