#include "CallCommand.h"

#include <cstdio>

#include "Failure.h"
#include "Meanings.h"

bool callExport(const Library& library, const std::string& name, const CallArguments& arguments) {
    const Export* entry = findExport(name);
    if (entry == nullptr)
        throw WrongUsage("there is no export " + name + "; quillon call --help lists them all");

    const CallResult result = library.call(*entry, arguments);
    const Meaning meaning = meaningOf(*entry, arguments, result.status);
    std::printf("status   %s\n", statusText(result.status).c_str());
    std::printf("meaning  %s: %s\n", meaning.success ? "success" : "failure",
                meaning.sentence.c_str());
    if (result.text) std::printf("text     %s\n", result.text->c_str());
    return meaning.success;
}
