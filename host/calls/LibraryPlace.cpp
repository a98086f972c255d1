// Where the library is: in a file of its own, which alone is compiled again for another library folder.

#include <filesystem>

#include "calls/Library.h"
#include "terminal/Failure.h"

namespace fs = std::filesystem;

std::string libraryBesideProgram() {
    const fs::path program = fs::canonical("/proc/self/exe").parent_path();
    for (const char* place : {QUILLON_LIBRARY_FOLDER, "..", "."}) {
        const fs::path library = program / place / QUILLON_LIBRARY_NAME;
        std::error_code ignored;
        if (fs::exists(library, ignored)) return library.lexically_normal().string();
    }
    throw Failure("there is no " QUILLON_LIBRARY_NAME
                  " near this program; name it with --library PATH before the command");
}
