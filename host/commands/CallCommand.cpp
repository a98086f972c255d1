#include "commands/CallCommand.h"

#include <cstdio>

#include "exports/Meanings.h"
#include "terminal/Colour.h"

namespace {

void printLines(const CallResult& result, const Meaning& meaning) {
    std::printf("status   %s\n", statusText(result.status).c_str());
    const std::string verdict =
        meaning.success ? inGreen(stdout, "success") : inRed(stdout, "failure");
    std::printf("meaning  %s: %s\n", verdict.c_str(), meaning.sentence.c_str());
    if (result.text) std::printf("text     %s\n", result.text->c_str());
}

}  // namespace

bool callExport(const Library& library, const CallOptions& options) {
    const CallRecord call = library.call(options.name, options.arguments);
    const Meaning meaning = meaningOf(requireExport(call.name), call.arguments, call.result.status);
    if (options.output == OutputStyle::kJson) printJson(jsonOf(call));
    if (printsLines(options.output)) printLines(call.result, meaning);
    return meaning.success;
}
