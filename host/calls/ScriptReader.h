#pragma once
// The calls of a script, one per line.

#include <istream>
#include <optional>
#include <string>

#include "calls/CallWords.h"

struct ScriptLine {
    std::size_t number;  // from 1
    NamedCall call;
};

class ScriptReader {
public:
    // `name` is what errors call the script.
    ScriptReader(std::istream& in, std::string name) : in_(in), name_(std::move(name)) {}

    // Returns the next call, or nothing at the end of the script. Throws WrongUsage, with the line,
    // for a line that is no call.
    std::optional<ScriptLine> next();

    // "calls.txt:3: ".
    std::string place(std::size_t number) const;

private:
    std::istream& in_;
    const std::string name_;
    std::size_t number_ = 0;
};
