#pragma once
// A run of calls to the library, each printed as one line: the export, its status, what it worked
// on.

#include <string>
#include <string_view>

#include "Library.h"
#include "Progress.h"

class CallLog {
public:
    CallLog(const Library& library, Progress& progress) : library_(library), progress_(progress) {}

    // Calls and prints, whatever the status is.
    CallResult call(std::string_view name, const CallArguments& arguments = {});

    // The same; throws Failure with the export, the file and the meaning unless it succeeds.
    CallResult require(std::string_view name, const CallArguments& arguments = {});

    // Calls without a line and without a failure, for tidying up after one.
    void quietly(std::string_view name, const CallArguments& arguments) const noexcept;

    // A line for work that no export does.
    void print(const std::string& name, const std::string& status, const std::string& detail);

private:
    const Library& library_;
    Progress& progress_;
};

// The sentence for a call that failed.
std::string failureSentence(std::string_view name, const CallArguments& arguments, float status);
