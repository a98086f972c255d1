// quillon reference: docs/exports.md.

#include "exports/Reference.h"

#include <cstdio>

#include "commands/Commands.h"

namespace {

constexpr const char* kExamples = R"(Examples:
  quillon reference >exports.md
)";

}  // namespace

void addReferenceCommand(CommandLine& line) {
    line.add("reference", "Describe every export, as Markdown", kExamples, [] {
        std::fputs(wholeReference().c_str(), stdout);
        return true;
    });
}
