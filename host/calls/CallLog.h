#pragma once
// A run of calls to the library. Each goes into the report and, where lines are wanted, is printed
// as one: the export, its status, what it worked on. Of several calls of one export with one status
// in a row only the first and the last have their line, unless every one is wanted.

#include <string>
#include <string_view>
#include <vector>

#include "calls/Library.h"
#include "calls/Report.h"
#include "terminal/Progress.h"

class CallLog {
public:
    CallLog(const Library& library, Progress& progress, Report& report, OutputStyle style)
        : library_(library), progress_(progress), report_(report), style_(style) {}
    CallLog(const CallLog&) = delete;
    CallLog& operator=(const CallLog&) = delete;
    ~CallLog() { finishRow(); }

    // Calls, notes and prints, whatever the status is.
    CallResult call(std::string_view name, const CallArguments& arguments = {});

    // The same; throws Failure with the export, the file and the meaning unless it succeeds.
    CallResult require(std::string_view name, const CallArguments& arguments = {});

    // Calls without a line and without a failure, for tidying up after one.
    void quietly(std::string_view name, const CallArguments& arguments) const noexcept;

    // A line for work that no export does.
    void print(const std::string& name, const std::string& status, const std::string& detail);

    // Prints what is still held back of the last row of calls.
    void finishRow();

    // The calls, in order.
    const std::vector<CallRecord>& calls() const { return calls_; }

private:
    const Library& library_;
    Progress& progress_;
    Report& report_;
    OutputStyle style_;
    std::vector<CallRecord> calls_;
    std::string row_;          // export and status of the calls under way
    std::string heldBack_;     // the line of the latest of them, unless it is printed already
    std::size_t leftOut_ = 0;  // how many calls between the first and that one have no line
};

// What a call worked on, such as "tile.tif to map.tif" or "position 3 gives 1004".
std::string detailOf(const CallRecord& call);

// The line of a call, without a line end.
std::string lineOf(const CallRecord& call);

// The sentence for a call that failed.
std::string failureSentence(std::string_view name, const CallArguments& arguments, float status);
