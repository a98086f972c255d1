// quillon call: one call of one export, its result explained.

#include <cstdio>

#include "calls/CallWords.h"
#include "commands/Commands.h"
#include "exports/Meanings.h"
#include "terminal/Colour.h"

namespace {

constexpr const char* kExamples = R"(Examples:
  quillon call CreateFolder maps
  quillon call GetString abcdefgh --value 2
  quillon call getUVTile model.Vemo --value 2
  quillon call getUVs model.Vemo --value 2 --buffer maps/model.Vemo
  quillon call mergeMapsTIF maps/1002.tif --buffer maps/all.tif
  quillon call FileDelete -- -name-with-a-dash.tif

VALUE and BUFFER may also follow TEXT, as in
  quillon call mergeMapsTIF 1002.tif 0 all.tif

A TEXT or BUFFER that is left out is passed as a null pointer. A block for a text is always
passed. Each call is a process of its own, so the open folder, the tile filter and the tile
names are lost at its end; quillon script keeps them from call to call.

Exports and their arguments:
)";

struct CallOptions {
    NamedCall words;
    bool force = false;  // make a call that destroys the file
};

void printLines(const CallResult& result, const Meaning& meaning) {
    std::printf("status   %s\n", statusText(result.status).c_str());
    const std::string verdict =
        meaning.success ? inGreen(stdout, "success") : inRed(stdout, "failure");
    std::printf("meaning  %s: %s\n", verdict.c_str(), meaning.sentence.c_str());
    if (result.text) std::printf("text     %s\n", result.text->c_str());
}

bool callExport(CommandLine& line, const CallOptions& options) {
    const NamedCall& words = options.words;
    const Library library = line.openLibrary();
    if (!options.force) requireHarmless(words, "--force makes the call all the same");
    const CallRecord call = library.call(words.name, words.arguments);
    if (line.report().isJson()) printJson(jsonOf(call));
    if (line.report().hasLines()) printLines(call.result, call.meaning);
    return call.meaning.success;
}

}  // namespace

void addCallCommand(CommandLine& line) {
    const auto options = std::make_shared<CallOptions>();
    CLI::App& command =
        line.add("call", "Call one export and print its status and its meaning",
                 kExamples + exportList(), [&line, options] { return callExport(line, *options); });
    addCallWords(command, options->words);
    command.add_flag("--force", options->force, "Copy a file onto itself, which deletes it");
    line.addOutputFlags(command, Verbose::kNo);
}
