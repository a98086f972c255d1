#include "calls/CallLog.h"

#include <cstdio>
#include <iomanip>
#include <sstream>

#include "terminal/Colour.h"
#include "terminal/Failure.h"

namespace {

// The columns of a line, and the start of one: equal for calls of one export with one status.
constexpr int kNameWidth = 18;
constexpr int kStatusWidth = 6;

std::string startOf(const std::string& name, const std::string& status) {
    std::ostringstream start;
    start << std::left << std::setw(kNameWidth) << name << ' '  //
          << std::right << std::setw(kStatusWidth) << status;
    return start.str();
}

std::string lineFrom(const std::string& start, const std::string& detail) {
    return detail.empty() ? start : start + "  " + detail;
}

}  // namespace

std::string detailOf(const CallRecord& call) {
    const Export& entry = requireExport(call.name);
    const CallArguments& arguments = call.arguments;
    const CallResult& result = call.result;
    std::string detail = arguments.text.value_or("");
    if (arguments.buffer) detail += " to " + *arguments.buffer;
    if (entry.value != nullptr) {
        detail += detail.empty() ? "" : ", ";
        detail += entry.valueName;
        detail += ' ' + statusText(static_cast<float>(arguments.value));
    }
    if (result.text) detail += (detail.empty() ? "gives " : " gives ") + *result.text;
    return detail;
}

std::string lineOf(const CallRecord& call) {
    return lineFrom(startOf(call.name, statusText(call.result.status)), detailOf(call));
}

CallResult CallLog::call(std::string_view name, const CallArguments& arguments) {
    const CallRecord& made = calls_.emplace_back(library_.call(name, arguments));
    report_.addCall(made);
    print(made.name, statusText(made.result.status), detailOf(made));
    return made.result;
}

CallResult CallLog::require(std::string_view name, const CallArguments& arguments) {
    CallResult result = call(name, arguments);
    if (!calls_.back().meaning.success) throw Failure(failureSentence(calls_.back()));
    return result;
}

void CallLog::quietly(std::string_view name, const CallArguments& arguments) const noexcept {
    try {
        library_.call(name, arguments);
    } catch (...) {  // there is no other way to delete it
        return;
    }
}

void CallLog::print(const std::string& name, const std::string& status, const std::string& detail) {
    if (!report_.hasLines()) return;
    const std::string start = startOf(name, status);
    const std::string line = lineFrom(start, detail) + '\n';
    if (report_.style == OutputStyle::kAllLines || start != row_) {
        finishRow();
        row_ = start;
        std::fputs(line.c_str(), stdout);
        return;
    }
    if (!heldBack_.empty()) ++leftOut_;
    heldBack_ = line;
}

void CallLog::warn(const std::string& sentence) {
    report_.append("warnings", sentence);
    finishRow();
    if (report_.style != OutputStyle::kQuiet) printError("warning: " + sentence);
}

void CallLog::finishRow() {
    progress_.clear();
    if (leftOut_ > 0) std::printf("%s  %zu more\n", startOf("...", "").c_str(), leftOut_);
    std::fputs(heldBack_.c_str(), stdout);
    row_.clear();
    heldBack_.clear();
    leftOut_ = 0;
}

std::string failureSentence(const CallRecord& call) {
    std::string sentence = call.name;
    if (call.arguments.text) sentence += " of " + *call.arguments.text;
    if (call.arguments.buffer) sentence += " to " + *call.arguments.buffer;
    return sentence + " returned " + statusText(call.result.status) + ": " + call.meaning.sentence;
}
