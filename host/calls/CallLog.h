#pragma once
// A sequence of calls to the library. Each is added to the report and, if that has lines, printed as
// one: the export, its status, what it worked on. Of successive calls of one export with one status
// only the first and the last are printed, except with kAllLines.

#include <string>
#include <string_view>
#include <vector>

#include "calls/Library.h"
#include "calls/Report.h"
#include "terminal/Progress.h"

class CallLog {
public:
    CallLog(const Library& library, Report& report)
        : library_(library), report_(report), progress_(report.progressStyle()) {}
    CallLog(const CallLog&) = delete;
    CallLog& operator=(const CallLog&) = delete;
    ~CallLog() { finishRow(); }

    // Calls, records and prints, whatever the status is.
    CallResult call(std::string_view name, const CallArguments& arguments = {});

    // The same; throws Failure with the export, the file and the meaning unless it succeeds.
    CallResult require(std::string_view name, const CallArguments& arguments = {});

    // Calls without a line and without an exception, to clean up after a failure.
    void quietly(std::string_view name, const CallArguments& arguments) const noexcept;

    // Prints a line for work that no export does.
    void print(const std::string& name, const std::string& status, const std::string& detail);

    // Adds a warning to the report and prints it on standard error, unless the command is quiet.
    void warn(const std::string& sentence);

    // Prints what is still held back of the last calls.
    void finishRow();

    // The calls, in order.
    const std::vector<CallRecord>& calls() const { return calls_; }

    // The line that shows how far the work has come, between the lines of the calls.
    Progress& progress() { return progress_; }

private:
    const Library& library_;
    Report& report_;
    Progress progress_;
    std::vector<CallRecord> calls_;
    std::string row_;          // export and status of the latest calls
    std::string heldBack_;     // the line of the latest one, unless it was printed
    std::size_t leftOut_ = 0;  // how many calls between the first and that one are not printed
};

// Returns what a call worked on, such as "tile.tif to map.tif" or "position 3 gives 1004".
std::string detailOf(const CallRecord& call);

// Returns the line of a call, without a line end.
std::string lineOf(const CallRecord& call);

// Returns the sentence for a call that failed, with the system's reason if there is one.
std::string failureSentence(const CallRecord& call);
