// quillon: a command-line host for the library. Each command has its own file in commands/.

#include <csignal>
#include <cstdio>
#include <exception>
#include <new>

#include "commands/Commands.h"
#include "terminal/Colour.h"
#include "terminal/Failure.h"
#include "terminal/Interrupt.h"

namespace {

constexpr int kSuccess = 0;
constexpr int kFailure = 1;
constexpr int kWrongUsage = 2;
constexpr int kSignalled = 128;  // plus the signal, as shells report it

// Returns the exit status.
int run(int argc, char** argv) {
    CommandLine line;
    for (const auto add :
         {addCallCommand, addScriptCommand, addDescribeCommand, addReferenceCommand,
          addInspectCommand, addImportCommand, addTilesCommand, addExportCommand, addTourCommand,
          addMergeCommand, addFixCommand, addCompletionsCommand})
        add(line);
    const bool succeeded = line.run(argc, argv);
    if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0)
        throw Failure("the output could not be written");
    return succeeded ? kSuccess : kFailure;
}

int stopped(const char* sentence, int status) {
    printError(sentence);
    return status;
}

}  // namespace

int main(int argc, char** argv) {
    // A reader that went away and a file size limit are errors of a write, not the end of the
    // program, which has working files to delete.
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
    try {
        return run(argc, argv);
    } catch (const WrongUsage& wrong) {
        return stopped(wrong.what(), kWrongUsage);
    } catch (const Interrupted& interrupted) {
        return stopped(interrupted.what(), kSignalled + interrupted.signal());
    } catch (const std::bad_alloc&) {
        return stopped("there is too little memory", kFailure);
    } catch (const std::exception& failure) {
        return stopped(failure.what(), kFailure);
    }
}
