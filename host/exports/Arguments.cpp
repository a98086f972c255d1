#include "exports/Arguments.h"

#include <algorithm>

namespace {

std::string identifierFrom(std::string words) {
    std::ranges::replace(words, ' ', '_');
    return words;
}

const char* roleOf(TextUse use) {
    switch (use) {
        case TextUse::kFile:
            return "file";
        case TextUse::kFolder:
            return "folder";
        case TextUse::kEither:
            return "path";
        case TextUse::kText:
            return "text";
    }
    return nullptr;
}

}  // namespace

std::vector<Argument> argumentsOf(const Export& entry) {
    std::vector<Argument> arguments;
    if (entry.text != nullptr)
        arguments.push_back(
            {"text", identifierFrom(entry.text), roleOf(entry.textUse), entry.text});
    if (entry.value != nullptr)
        arguments.push_back({"value", entry.valueName, "number", entry.value});
    if (entry.buffer == BufferUse::kPath)
        arguments.push_back({"buffer1", identifierFrom(entry.bufferIs), "file", entry.bufferIs});
    if (entry.buffer == BufferUse::kOutput)
        arguments.push_back({"buffer1", "result", "output", entry.bufferIs});
    return arguments;
}
