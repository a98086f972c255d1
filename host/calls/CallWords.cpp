#include "calls/CallWords.h"

#include <CLI/CLI.hpp>
#include <algorithm>

#include "terminal/Failure.h"

void CallWords::addTo(CLI::App& command) {
    command_ = &command;
    command.add_option("EXPORT", name_, "Which export")->required()->type_name("");
    command.add_option("TEXT", text_, "The first argument: a path or another text")->type_name("");
    command.add_option("--value,VALUE", value_, "The number; 0 when left out")->type_name("N");
    command.add_option("--buffer,BUFFER", buffer_, "The second path")->type_name("PATH");
}

CallArguments CallWords::arguments() const {
    CallArguments arguments{.value = value_};
    if (command_->get_option("TEXT")->count() > 0) arguments.text = text_;
    if (command_->get_option("--buffer")->count() > 0) arguments.buffer = buffer_;
    return arguments;
}

NamedCall callFrom(std::vector<std::string> words) {
    CLI::App command;
    command.set_help_flag();
    CallWords call;
    call.addTo(command);
    std::ranges::reverse(words);  // as CLI11 takes them
    try {
        command.parse(std::move(words));
    } catch (const CLI::ParseError& error) {
        throw WrongUsage(error.what());
    }
    requireExport(call.name());
    return {call.name(), call.arguments()};
}
