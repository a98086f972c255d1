#include "CallLog.h"

#include <cstdio>

#include "Failure.h"
#include "Meanings.h"

namespace {

// What a call worked on, such as "tile.tif to map.tif" or "3 gives 1004".
std::string detailOf(const Export& entry, const CallArguments& arguments,
                     const CallResult& result) {
    std::string detail = arguments.text.value_or("");
    if (arguments.buffer) detail += " to " + *arguments.buffer;
    if (entry.value != nullptr) {
        detail += detail.empty() ? "" : ", ";
        detail += std::string(entry.name == "getUVString" ? "position " : "naming ") +
                  statusText(static_cast<float>(arguments.value));
    }
    if (result.text) detail += " gives " + *result.text;
    return detail;
}

}  // namespace

CallResult CallLog::call(std::string_view name, const CallArguments& arguments) {
    const CallResult result = library_.call(name, arguments);
    print(std::string(name), statusText(result.status),
          detailOf(*findExport(name), arguments, result));
    return result;
}

CallResult CallLog::require(std::string_view name, const CallArguments& arguments) {
    CallResult result = call(name, arguments);
    if (!meaningOf(*findExport(name), arguments, result.status).success)
        throw Failure(failureSentence(name, arguments, result.status));
    return result;
}

void CallLog::quietly(std::string_view name, const CallArguments& arguments) const noexcept {
    try {
        library_.call(name, arguments);
    } catch (...) {  // nothing is left to be done about it
        return;
    }
}

void CallLog::print(const std::string& name, const std::string& status, const std::string& detail) {
    progress_.clear();
    std::printf("%-18s %6s%s%s\n", name.c_str(), status.c_str(), detail.empty() ? "" : "  ",
                detail.c_str());
}

std::string failureSentence(std::string_view name, const CallArguments& arguments, float status) {
    std::string sentence(name);
    if (arguments.text) sentence += " of " + *arguments.text;
    if (arguments.buffer) sentence += " to " + *arguments.buffer;
    return sentence + " answered " + statusText(status) + ": " +
           meaningOf(*findExport(name), arguments, status).sentence;
}
