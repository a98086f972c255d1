#include "Meanings.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <iterator>

#include "export/Quillon.h"
#include "mesh/VemoOps.h"

using quillon_status::kRefused;

namespace {

// Why the boundary refuses a call before it looks at a file; empty when the arguments are good.
std::string wrongArgument(const Export& entry, const CallArguments& arguments) {
    if (entry.text != nullptr && !arguments.text) return "refused: TEXT is missing";
    if (entry.buffer == BufferUse::kPath && !arguments.buffer)
        return "refused: --buffer is missing";
    if (entry.takes != nullptr && !entry.takes(arguments.value))
        return std::string("refused: --value is to be ") + entry.value;
    return {};
}

Meaning tileNotWritten(float status) {
    return {false, "the file of the tile at position " +
                       statusText(status - vemo_status::kFirstTileNotWritten) +
                       " cannot be created or filled (a mesh with that many tiles answers alike)"};
}

}  // namespace

Meaning meaningOf(const Export& entry, const CallArguments& arguments, float status) {
    if (entry.refuses && status == kRefused) {
        const std::string wrong = wrongArgument(entry, arguments);
        if (!wrong.empty()) return {false, wrong};
    }
    const auto found = std::ranges::find(entry.statuses, status, &StatusMeaning::status);
    if (found != entry.statuses.end()) return {found->success, found->sentence};
    if (entry.refuses && status == kRefused)
        return {false, "refused: there is too little memory for the file"};
    if (entry.writesTiles && status >= vemo_status::kFirstTileNotWritten)
        return tileNotWritten(status);
    if (entry.countOne != nullptr && status >= 0.0f)
        return {true, (std::isinf(status) ? std::string("infinity") : statusText(status)) + ' ' +
                          (status == 1.0f ? entry.countOne : entry.countMany)};
    return {false, "a status that this program does not know"};
}

std::string statusText(float status) {
    char digits[64];
    const auto end =
        std::to_chars(std::begin(digits), std::end(digits), status, std::chars_format::fixed);
    return std::string(digits, end.ptr);
}
