#pragma once
// The built library, loaded and called as the host does it.

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "exports/CallArguments.h"
#include "exports/Exports.h"
#include "exports/Meanings.h"

struct CallResult {
    float status;
    std::optional<std::string> text;  // what the export wrote; nothing if it wrote nothing
    int error = 0;                    // errno after the call; 0: the system refused nothing
};

// A call that was made.
struct CallRecord {
    std::string name;  // of the export
    CallArguments arguments;
    CallResult result;
    Meaning meaning;  // of the status, with the system's reason for a failure
    double milliseconds;
};

// Whether lines that the library itself prints are shown; some exports print one when they fail.
enum class LibraryPrints { kShown, kDropped };

class Library {
public:
    // Loads the library at `path`; throws Failure if it cannot be loaded.
    explicit Library(const std::string& path, LibraryPrints prints = LibraryPrints::kShown);

    // Calls one export and measures the time. A missing argument is passed as a null pointer, except
    // the block for a text. Throws WrongUsage for an unknown name, and Failure if the library lacks the
    // export or the export throws.
    CallRecord call(std::string_view name, const CallArguments& arguments) const;

private:
    CallResult resultOf(const Export& entry, const CallArguments& arguments) const;

    struct Close {
        void operator()(void* handle) const;
    };
    std::unique_ptr<void, Close> handle_;
    LibraryPrints prints_;
};

// Returns the path of the library near this program: in an installation, wherever its top folder has been
// moved, in the build tree, or in the same folder. Throws Failure if it is in none of these places.
std::string libraryBesideProgram();
