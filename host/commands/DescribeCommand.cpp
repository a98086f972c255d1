// quillon describe: the section of the reference about one export.

#include <cstdio>

#include "commands/Commands.h"
#include "exports/Reference.h"

namespace {

constexpr const char* kExamples = R"(Examples:
  quillon describe mergeMapsTIF

Prints the export's arguments, statuses and output, with an example and what to check when
a call fails.

Exports and their arguments:
)";

}  // namespace

void addDescribeCommand(CommandLine& line) {
    const auto name = std::make_shared<std::string>();
    CLI::App& command =
        line.add("describe", "Describe one export", kExamples + exportList(), [name] {
            std::fputs(referenceOf(requireExport(*name)).c_str(), stdout);
            return true;
        });
    CommandLine::addArgument(command, "EXPORT", *name, "Which export");
}
