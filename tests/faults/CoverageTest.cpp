// Whether the faults reach all that the library asks of the system: a change that makes it use another
// call fails here, with its name.

#include <gmock/gmock.h>

#include <algorithm>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "exports/Exports.h"
#include "faults/Scenarios.h"
#include "support/Run.h"

namespace {

using testing::IsEmpty;
using Names = std::set<std::string>;

// The C library's functions that the library calls, without their version.
Names importedFunctions() {
    std::istringstream lines(run({"/usr/bin/nm", "-D", "--undefined-only", QUILLON_LIBRARY}).out);
    Names names;
    for (std::string type, name; lines >> type >> name;) {
        if (name.find("@GLIBC_") != std::string::npos) names.insert(name.substr(0, name.find('@')));
    }
    return names;
}

Names without(const Names& all, const Names& some) {
    Names rest;
    std::set_difference(all.begin(), all.end(), some.begin(), some.end(),
                        std::inserter(rest, rest.begin()));
    return rest;
}

// Replaced by faults/System.cpp.
const Names kFaulty = {"open",      "__open_2", "stat",     "fstat",  "pread",  "pwrite",
                       "ftruncate", "close",    "opendir",  "mkdir",  "remove", "rename",
                       "readdir",   "free",     "closedir", "malloc", "calloc"};

// Cannot fail, or their failure does not matter.
const Names kHarmless = {"bcmp",           "printf",
                         "snprintf",       "strcmp",
                         "__cxa_atexit",   "__cxa_finalize",
                         "__environ",      "__errno_location",
                         "__memcpy_chk",   "__printf_chk",
                         "__snprintf_chk", "__stack_chk_fail",
                         "environ",        "exp",
                         "exp2",           "fflush",
                         "fmodf",          "memchr",
                         "memcmp",         "memcpy",
                         "memmove",        "memset",
                         "nextafterf",     "puts",
                         "stdout",         "strlen",
                         "strncpy",        "strnlen"};

// Of the open-file dialog, which no export shows, and of tinyexr's functions for files on disk,
// which are never called: the library gives it memory.
const Names kUnreached = {"fclose",
                          "fopen",
                          "fread",
                          "fseek",
                          "ftell",
                          "fwrite",
                          "pipe2",
                          "posix_spawn_file_actions_adddup2",
                          "posix_spawn_file_actions_destroy",
                          "posix_spawn_file_actions_init",
                          "posix_spawnp",
                          "read",
                          "waitpid"};

TEST(FaultCoverage, KnowsEverySystemCallOfTheLibrary) {
    const Names imported = importedFunctions();
    ASSERT_TRUE(imported.contains("pread"));
    EXPECT_THAT(without(without(without(imported, kFaulty), kHarmless), kUnreached), IsEmpty());
}

TEST(FaultCoverage, HasAScenarioForEveryExport) {
    const std::vector<std::string> exports = exportNames();
    Names missing(exports.begin(), exports.end());
    ASSERT_EQ(missing.size(), 34u);
    for (const Scenario& scenario : scenarios())
        missing.erase(scenario.call.exportName);
    EXPECT_THAT(missing, IsEmpty());
}

}  // namespace
