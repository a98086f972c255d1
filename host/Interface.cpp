#include "Interface.h"

#include <CLI/CLI.hpp>

#include "Exports.h"

namespace {

Json exportNames() {
    Json names = Json::array();
    for (const ExportGroup& group : exportGroups()) {
        for (const Export& entry : group.exports)
            names.push_back(entry.name);
    }
    return names;
}

Json jsonOf(const CLI::Option& option, const std::vector<std::string>& names, bool positional,
            const OptionChoices& choices) {
    Json object = {{"names", names},
                   {"help", option.get_description()},
                   {"positional", positional},
                   {"flag", option.get_expected_max() == 0},
                   {"required", option.get_required()},
                   {"many", option.get_expected_max() > 1}};
    if (option.get_name(true) == "EXPORT") object["choices"] = exportNames();
    const auto found = choices.find(&option);
    if (found != choices.end()) object["choices"] = found->second;
    return object;
}

// An option may be a positional, too.
void addOption(Json& options, const CLI::Option& option, const OptionChoices& choices) {
    std::vector<std::string> names;
    for (const std::string& name : option.get_lnames())
        names.push_back("--" + name);
    if (!names.empty()) options.push_back(jsonOf(option, names, false, choices));
    if (option.get_positional())
        options.push_back(jsonOf(option, {option.get_name(true)}, true, choices));
}

}  // namespace

Json interfaceOf(const CLI::App& app, const OptionChoices& choices) {
    Json object = {{"name", app.get_name()},
                   {"help", app.get_description()},
                   {"options", Json::array()},
                   {"commands", Json::array()}};
    for (const CLI::Option* option : app.get_options())
        addOption(object["options"], *option, choices);
    for (const CLI::App* command : app.get_subcommands([](const CLI::App*) { return true; })) {
        if (!command->get_group().empty())
            object["commands"].push_back(interfaceOf(*command, choices));
    }
    return object;
}
