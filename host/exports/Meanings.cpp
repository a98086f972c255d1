#include "exports/Meanings.h"

#include <charconv>
#include <cmath>
#include <iterator>

#include "exports/Groups.h"
#include "mesh/VemoOps.h"

namespace {

// Why the call was refused before any file was looked at; empty when the arguments are good.
std::string wrongArgument(const Export& entry, const CallArguments& arguments) {
    if (entry.text != nullptr && !arguments.text) return "refused: TEXT is missing";
    if (entry.buffer == BufferUse::kPath && !arguments.buffer)
        return "refused: --buffer is missing";
    if (entry.takes != nullptr && !entry.takes(arguments.value))
        return std::string("refused: --value must be ") + entry.value;
    return {};
}

bool refusesArguments(const StatusMeaning& row) {
    return !row.isSuccess() &&
           (row.causes.contain(cause::kNullArgument) || row.causes.contain(cause::kValueRefused));
}

Meaning tileNotWritten(float status) {
    return {false, "the file of the tile at position " +
                       statusText(status - vemo_status::kFirstTileNotWritten) +
                       " cannot be created, or the disk is full (a mesh with that many tiles "
                       "returns the same)"};
}

// Of the exports that reorder channels, what a number below 1 does, whose fraction is cut off.
std::string withoutSwap(const Export& entry) {
    return entry.name == "swapRGBPSD" ? "no colour plane was written, so the picture is lost"
                                      : "nothing was exchanged, as the number is below 1";
}

}  // namespace

std::string refusalOf(const Export& entry, const CallArguments& arguments,
                      const StatusMeaning& row) {
    return refusesArguments(row) ? wrongArgument(entry, arguments) : "";
}

Meaning meaningOf(const Export& entry, const CallArguments& arguments, float status) {
    if (isCount(entry, status))
        return {true, (std::isinf(status) ? std::string("infinity") : statusText(status)) + ' ' +
                          (status == 1.0f ? entry.countOne : entry.countMany)};
    const StatusMeaning* const row = rowOf(entry, status);
    if (row == nullptr) return {false, "a status that this program does not know"};
    if (row == &kTileNotWritten) return tileNotWritten(status);
    const std::string refusal = refusalOf(entry, arguments, *row);
    if (!refusal.empty()) return {false, refusal};
    if (row->isSuccess() && entry.takes == takesSwap && arguments.value < 1.0)
        return {true, withoutSwap(entry)};
    return {row->isSuccess(), row->sentence};
}

std::string statusText(float status) {
    char digits[64];
    const auto end =
        std::to_chars(std::begin(digits), std::end(digits), status, std::chars_format::fixed);
    return std::string(digits, end.ptr);
}
