// Whether the faults reach every system call of the library: a change that makes it use another one
// fails here, with its name.

#include <gmock/gmock.h>

#include <set>
#include <sstream>
#include <string>

#include "support/Run.h"

namespace {

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

// Replaced by faults/System.cpp.
const char kFaulty[] =
    "open __open_2 stat fstat pread pwrite ftruncate close opendir readdir closedir mkdir remove "
    "rename malloc calloc free";

// Cannot fail, or their failure does not matter.
const char kHarmless[] =
    "bcmp memchr memcmp memcpy memmove memset strcmp strlen strncpy strnlen printf snprintf puts "
    "fflush futimens madvise stdout environ exp exp2 fmodf nextafterf __cxa_atexit __cxa_finalize "
    "__environ "
    "__errno_location __memcpy_chk __printf_chk __snprintf_chk __stack_chk_fail";

// Of the open-file dialog, which no export shows, and of tinyexr's functions for files on disk,
// which are never called: the library gives it memory. Its assertions, which what is shipped does not
// have, never fail, since each file is checked first.
const char kUnreached[] =
#ifndef NDEBUG
    "__assert_fail "
#endif
    "fclose fopen fread fseek ftell fwrite pipe2 posix_spawn_file_actions_adddup2 "
    "posix_spawn_file_actions_destroy posix_spawn_file_actions_init posix_spawnp read waitpid";

TEST(FaultCoverage, KnowsEverySystemCallOfTheLibrary) {
    Names unknown = importedFunctions();
    ASSERT_TRUE(unknown.contains("pread"));
    for (const char* const known : {kFaulty, kHarmless, kUnreached}) {
        std::istringstream names(known);
        for (std::string name; names >> name;)
            unknown.erase(name);
    }
    EXPECT_THAT(unknown, testing::IsEmpty());
}

}  // namespace
