#include "calls/CallJson.h"

#include <algorithm>
#include <set>
#include <vector>

#include "calls/Report.h"
#include "terminal/Failure.h"
#include "terminal/Suggestion.h"

namespace {

const std::vector<std::string>& keysOfCalls() {
    static const std::vector<std::string> keys = {"export", "text", "value", "buffer"};
    return keys;
}

[[noreturn]] void refuseType(const std::string& key, const char* wanted, const Json& value) {
    throw WrongUsage('"' + key + "\" takes " + wanted + ", not this " + value.type_name());
}

void setMember(NamedCall& call, const std::string& key, const Json& value) {
    const std::vector<std::string>& keys = keysOfCalls();
    if (std::ranges::find(keys, key) == keys.end())
        throw WrongUsage("a call has no key \"" + key + '"' + suggestionFor(key, keys));
    if (value.is_null()) return;
    if (key == "value") {
        if (!value.is_number()) refuseType(key, "a number", value);
        call.arguments.value = value.get<double>();
        return;
    }
    if (!value.is_string()) refuseType(key, "a string", value);
    const auto text = value.get<std::string>();
    if (key == "export") call.name = text;
    if (key == "text") call.arguments.text = text;
    if (key == "buffer") call.arguments.buffer = text;
}

// The parser would take the last one of several equal keys.
Json parsed(std::string_view line) {
    std::set<std::string> keys;
    const auto noteKey = [&keys](int depth, Json::parse_event_t event, const Json& key) {
        if (event != Json::parse_event_t::key || depth != 1) return true;
        if (!keys.insert(key.get<std::string>()).second)
            throw WrongUsage(key.dump() + " is given more than once");
        return true;
    };
    try {
        return Json::parse(line, noteKey);
    } catch (const Json::parse_error& error) {
        throw WrongUsage("column " + std::to_string(error.byte) +
                         ": this is not one JSON object in UTF-8, such as {\"export\": "
                         "\"Version\"}");
    } catch (const Json::out_of_range&) {
        throw WrongUsage("a number is too large");
    }
}

}  // namespace

bool isJsonCall(std::string_view line) {
    const std::size_t start = line.find_first_not_of(" \t\r");
    return start != std::string_view::npos && line[start] == '{';
}

NamedCall callFromJson(std::string_view line) {
    NamedCall call;
    const Json object = parsed(line);
    for (const auto& [key, value] : object.items())
        setMember(call, key, value);
    if (call.name.empty()) throw WrongUsage("\"export\" is missing: it says which export to call");
    return call;
}
