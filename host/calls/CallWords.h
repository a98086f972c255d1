#pragma once
// The words of a call, on the command line and in a script:
//   EXPORT [TEXT [VALUE [BUFFER]]], the last two also as --value VALUE and --buffer BUFFER.

#include <string>
#include <vector>

#include "calls/Library.h"

namespace CLI {
class App;
}

class CallWords {
public:
    // Declares the words, which are available once the command has been parsed.
    void addTo(CLI::App& command);

    const std::string& name() const { return name_; }  // of the export
    CallArguments arguments() const;

private:
    const CLI::App* command_ = nullptr;
    std::string name_;
    std::string text_;
    double value_ = 0.0;
    std::string buffer_;
};

struct NamedCall {
    std::string name;  // of an export that exists
    CallArguments arguments;
};

// Returns the call that these words describe. Throws WrongUsage.
NamedCall callFrom(std::vector<std::string> words);
