// quillon reference: docs/exports.md, and the same table for programs.

#include "exports/Reference.h"

#include <cstdio>

#include "commands/Commands.h"
#include "exports/JsonReference.h"
#include "exports/PythonReference.h"

namespace {

constexpr const char* kExamples = R"(Examples:
  quillon reference >exports.md
  quillon reference --json | jq -r '.groups[].exports[].name'
  quillon reference --python >_exports.py

--json has the whole table of exports: arguments with their roles and the numbers that they
take, statuses with causes, what is written, examples. --python makes the module of the
Python package that has a function for each export.
)";

}  // namespace

void addReferenceCommand(CommandLine& line) {
    const auto print = std::make_shared<std::string (*)()>(wholeReference);
    CLI::App& command =
        line.add("reference", "Describe every export, as Markdown", kExamples, [print] {
            std::fputs((*print)().c_str(), stdout);
            return true;
        });
    CLI::Option* json = command.add_flag_callback(
        "--json", [print] { *print = jsonReference; }, "As JSON");
    command
        .add_flag_callback(
            "--python", [print] { *print = pythonReference; }, "As Python")
        ->excludes(json);
}
