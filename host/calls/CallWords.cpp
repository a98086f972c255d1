#include "calls/CallWords.h"

#include <CLI/CLI.hpp>
#include <algorithm>

#include "exports/Exports.h"
#include "terminal/Failure.h"

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
    command.add_option("--value,VALUE", arguments.value, "The number; 0 when left out")
        ->type_name("N");
    command
        .add_option_function<std::string>("--buffer,BUFFER", setTo(arguments.buffer),
                                          "The second path")
        ->type_name("PATH");
}

NamedCall callFrom(std::vector<std::string> words) {
    CLI::App command;
    command.set_help_flag();
    NamedCall call;
    addCallWords(command, call);
    std::ranges::reverse(words);  // as CLI11 takes them
    try {
        command.parse(std::move(words));
    } catch (const CLI::ParseError& error) {
        throw WrongUsage(error.what());
    }
    requireExport(call.name);
    return call;
}
