#pragma once
// The built library, loaded and called as a host does it.

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "exports/CallArguments.h"
#include "exports/Exports.h"

struct CallResult {
    float status;
    std::optional<std::string> text;  // what the export wrote; nothing when it wrote nothing
};

// A call that was made.
struct CallRecord {
    std::string name;  // of the export
    CallArguments arguments;
    CallResult result;
    double milliseconds;
};

// What becomes of a line that the library itself prints, as some exports do when they fail.
enum class LibraryPrints { kShown, kDropped };

class Library {
public:
    // Loads the library at `path`; throws Failure when there is none that can be loaded.
    explicit Library(const std::string& path, LibraryPrints prints = LibraryPrints::kShown);

    // Calls one export. What is not given is passed as a null pointer, save the block that takes a
    // text. Throws Failure when the library lacks the export or the export throws.
    CallResult call(const Export& entry, const CallArguments& arguments) const;

    // By name, and timed; throws WrongUsage for a name that is no export's.
    CallRecord call(std::string_view name, const CallArguments& arguments) const;

private:
    struct Close {
        void operator()(void* handle) const;
    };
    std::unique_ptr<void, Close> handle_;
    LibraryPrints prints_;
};

// Where the library lies beside this program: in the build tree, in an installation, or in the same
// folder. Throws Failure when it is at none of these places.
std::string libraryBesideProgram();
