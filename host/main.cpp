// quillon: a command-line host for the library. Each command has its own file in commands/.

#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <exception>
#include <filesystem>
#include <new>
#include <string>

#include "commands/Commands.h"
#include "terminal/Colour.h"
#include "terminal/Failure.h"
#include "terminal/Interrupt.h"

namespace {

constexpr int kSuccess = 0;
constexpr int kFailure = 1;
constexpr int kWrongUsage = 2;
constexpr int kSignalled = 128;    // plus the signal, as shells report it
constexpr int kNobodyReads = 141;  // as shells report a program that SIGPIPE ended

void addCommands(CommandLine& line) {
    for (const auto add :
         {addCallCommand, addScriptCommand, addDescribeCommand, addReferenceCommand,
          addInspectCommand, addImportCommand, addTilesCommand, addExportCommand, addTourCommand,
          addMergeCommand, addFixCommand, addCompletionsCommand})
        add(line);
}

// Whether standard output is a pipe whose reader has ended.
bool isPipeClosed() {
    pollfd output{STDOUT_FILENO, POLLOUT, 0};
    return ::poll(&output, 1, 0) == 1 && (output.revents & POLLERR) != 0;
}

// Returns the exit status. Nobody is told about output that nobody wants to read.
int run(CommandLine& line, int argc, char** argv) {
    const bool succeeded = line.run(argc, argv);
    errno = 0;
    const bool isWritten = std::fflush(stdout) == 0 && std::ferror(stdout) == 0;
    const int error = errno;  // 0 if it was an earlier write that failed
    if (isWritten) return succeeded ? kSuccess : kFailure;
    if (isPipeClosed()) return kNobodyReads;
    throw Failure("the output could not be written" +
                  (error == 0 ? "" : std::string(": ") + std::strerror(error)));
}

int stopped(const CommandLine& line, const std::string& sentence, int status) {
    line.reportFailure(sentence, status);
    printError(sentence);
    return status;
}

// The text of such an exception names a function of C++.
std::string sentenceOf(const std::filesystem::filesystem_error& error) {
    const std::string path = error.path1().string();
    return "cannot use " + (path.empty() ? "a file or folder" : path) + ": " +
           error.code().message();
}

}  // namespace

int main(int argc, char** argv) {
    // A reader that went away and a file size limit are errors of a write, not the end of the
    // program, which has working files to delete.
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
    CommandLine line;
    try {
        addCommands(line);
        return run(line, argc, argv);
    } catch (const WrongUsage& wrong) {
        return stopped(line, wrong.what(), kWrongUsage);
    } catch (const Interrupted& interrupted) {
        return stopped(line, interrupted.what(), kSignalled + interrupted.signal());
    } catch (const std::bad_alloc&) {
        return stopped(line, "there is too little memory", kFailure);
    } catch (const std::filesystem::filesystem_error& error) {
        return stopped(line, sentenceOf(error), kFailure);
    } catch (const std::exception& failure) {
        return stopped(line, failure.what(), kFailure);
    }
}
