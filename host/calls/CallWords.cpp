#include "calls/CallWords.h"

#include <CLI/CLI.hpp>
#include <cstdlib>
#include <filesystem>

#include "terminal/Failure.h"

namespace {

double numberFrom(const std::string& word) {
    char* end = nullptr;
    const double number = std::strtod(word.c_str(), &end);
    if (word.empty() || end != word.c_str() + word.size())
        throw WrongUsage("--value takes a number, not '" + word + '\'');
    return number;
}

}  // namespace

void addCallWords(CLI::App& command, NamedCall& call) {
    // An empty word is a text, too, which CLI11 does not put into an optional one by itself.
    const auto setTo = [](std::optional<std::string>& text) {
        return [&text](const std::string& word) { text = word; };
    };
    CallArguments& arguments = call.arguments;
    command.add_option("EXPORT", call.name, "Which export")->required()->type_name("");
    command
        .add_option_function<std::string>("TEXT", setTo(arguments.text),
                                          "The first argument: a path or another text")
        ->type_name("");
    const auto setValue = [&arguments](const std::string& word) {
        arguments.value = numberFrom(word);
    };
    command
        .add_option_function<std::string>("--value,VALUE", setValue, "The number; 0 when left out")
        ->type_name("N");
    command
        .add_option_function<std::string>("--buffer,BUFFER", setTo(arguments.buffer),
                                          "The second path")
        ->type_name("PATH");
}

void requireHarmless(const NamedCall& call, const std::string& remedy) {
    const CallArguments& arguments = call.arguments;
    if (call.name != "FileCopyTo" || !arguments.text || !arguments.buffer) return;
    std::error_code missing;
    if (!std::filesystem::equivalent(*arguments.text, *arguments.buffer, missing)) return;
    throw Failure("FileCopyTo deletes its target before it reads the source, and " +
                  *arguments.text + " and " + *arguments.buffer + " are one file; " + remedy);
}
