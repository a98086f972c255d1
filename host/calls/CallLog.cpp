#include "calls/CallLog.h"

#include <algorithm>
#include <cstdio>
#include <utility>

#include "exports/Meanings.h"
#include "terminal/Failure.h"

namespace {

constexpr std::size_t kNameWidth = 18;  // the columns of a line
constexpr std::size_t kStatusWidth = 6;

std::string padded(std::string text, std::size_t width) {
    text.resize(std::max(text.size(), width), ' ');
    return text;
}

std::string leftPadded(const std::string& text, std::size_t width) {
    return std::string(width - std::min(text.size(), width), ' ') + text;
}

// The start of a line; equal for calls of one export with one status.
std::string startOf(const std::string& name, const std::string& status) {
    return padded(name, kNameWidth) + ' ' + leftPadded(status, kStatusWidth);
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
    const std::string start = startOf(call.name, statusText(call.result.status));
    const std::string detail = detailOf(call);
    return detail.empty() ? start : start + "  " + detail;
}

CallResult CallLog::call(std::string_view name, const CallArguments& arguments) {
    CallRecord made = library_.call(name, arguments);
    const std::string status = statusText(made.result.status);
    const std::string detail = detailOf(made);
    report_.addCall(made);
    print(made.name, status, detail);
    calls_.push_back(std::move(made));
    return calls_.back().result;
}

CallResult CallLog::require(std::string_view name, const CallArguments& arguments) {
    CallResult result = call(name, arguments);
    if (!meaningOf(requireExport(name), arguments, result.status).success)
        throw Failure(failureSentence(name, arguments, result.status));
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
    if (!printsLines(style_)) return;
    const std::string start = startOf(name, status);
    const std::string line = start + (detail.empty() ? "" : "  " + detail) + '\n';
    if (style_ == OutputStyle::kAllLines || start != row_) {
        finishRow();
        row_ = start;
        std::fputs(line.c_str(), stdout);
        return;
    }
    if (!heldBack_.empty()) ++leftOut_;
    heldBack_ = line;
}

void CallLog::finishRow() {
    progress_.clear();
    if (leftOut_ > 0)
        std::printf("%s  %zu more\n", padded("...", kNameWidth + 1 + kStatusWidth).c_str(),
                    leftOut_);
    std::fputs(heldBack_.c_str(), stdout);
    row_.clear();
    heldBack_.clear();
    leftOut_ = 0;
}

std::string failureSentence(std::string_view name, const CallArguments& arguments, float status) {
    std::string sentence(name);
    if (arguments.text) sentence += " of " + *arguments.text;
    if (arguments.buffer) sentence += " to " + *arguments.buffer;
    return sentence + " returned " + statusText(status) + ": " +
           meaningOf(requireExport(name), arguments, status).sentence;
}
