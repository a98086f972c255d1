#pragma once
// How a command tells what it did: in lines for a person, as JSON for a script, or not at all.

#include <nlohmann/json.hpp>
#include <string>

#include "calls/Library.h"

enum class OutputStyle {
    kLines,     // of a row of equal calls the first and the last
    kAllLines,  // every call
    kJson,      // one object at the end, or one a line where a command says so
    kQuiet,     // the exit status alone
};

inline bool printsLines(OutputStyle style) {
    return style == OutputStyle::kLines || style == OutputStyle::kAllLines;
}

// Members stay in the order in which they were set.
using Json = nlohmann::ordered_json;

// {"export", "arguments", "status", "success", "meaning", "text", "milliseconds"}; "text" is what
// the export wrote and is missing where it wrote none.
Json jsonOf(const CallRecord& call);

// A status as a number; as the text "inf", "-inf" or "nan" where JSON has no number for it.
Json jsonOf(float status);

// Prints the value on a line of its own. Bytes that are no UTF-8 come out as U+FFFD.
void printJson(const Json& value);

// Prints "maps/all.tif  608 bytes".
void printSize(const std::string& path);

// The object that a command's --json prints. What is set stays in it when the command then fails.
class Report {
public:
    // What the command worked out.
    void set(const char* name, Json value) { object_[name] = std::move(value); }
    void addCall(const CallRecord& call) { object_["calls"].push_back(jsonOf(call)); }
    void addFile(const std::string& path);

    void printSuccess() const { print({{"success", true}}); }
    void printFailure(const std::string& sentence) const {
        print({{"success", false}, {"error", sentence}});
    }

private:
    void print(Json object) const;

    Json object_ = Json::object();
};
