#pragma once
// How a command reports what it did: in lines, as JSON for scripts, or not at all.

#include <nlohmann/json.hpp>
#include <string>

#include "calls/Library.h"
#include "terminal/Progress.h"

enum class OutputStyle {
    kLines,     // of successive equal calls the first and the last
    kAllLines,  // every call
    kJson,      // one object at the end, or one per line
    kQuiet,     // only the exit status
};

// Members stay in the order in which they were set.
using Json = nlohmann::ordered_json;

// {"export", "arguments", "status", "success", "meaning", "text", "milliseconds"}; "text" is what
// the export wrote and is missing if it wrote none.
Json jsonOf(const CallRecord& call);

// Returns a status as a number, or as the text "inf", "-inf" or "nan", for which JSON has no number.
Json jsonOf(float status);

// Prints the value on a line of its own. Bytes that are not UTF-8 become U+FFFD.
void printJson(const Json& value);

// Prints "maps/all.tif  608 bytes".
void printSize(const std::string& path);

// What a command prints: as lines while it works, or with --json one object at its end. What is set is
// kept if the command then fails.
class Report {
public:
    OutputStyle style = OutputStyle::kLines;
    bool isSummary = false;       // JSON without the calls
    bool progressAsJson = false;  // in any style, even kQuiet
    bool isJson() const { return style == OutputStyle::kJson; }
    bool hasLines() const {
        return style == OutputStyle::kLines || style == OutputStyle::kAllLines;
    }

    ProgressStyle progressStyle() const {
        if (progressAsJson) return ProgressStyle::kJson;
        return style == OutputStyle::kQuiet ? ProgressStyle::kNone : ProgressStyle::kBar;
    }

    // Adds a result of the command.
    void set(const char* name, Json value) { object_[name] = std::move(value); }
    // Adds an element to a list of results.
    void append(const char* name, Json value) { object_[name].push_back(std::move(value)); }
    void addCall(const CallRecord& call) {
        if (!isSummary) object_["calls"].push_back(jsonOf(call));
    }
    void addFile(const std::string& path);

    void printSuccess() const { print({{"success", true}}); }
    void printFailure(const std::string& sentence, int exitStatus) const {
        print({{"success", false}, {"error", sentence}, {"exitStatus", exitStatus}});
    }

private:
    void print(Json object) const;

    Json object_ = Json::object();
};
