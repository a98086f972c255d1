#include "exports/Reference.h"

#include "exports/Groups.h"
#include "exports/Meanings.h"

namespace {

constexpr const char* kIntroduction = R"(# The exports

Each of the 34 functions takes the same seven arguments, of which it reads at most three: `text`, a
path or another text; `value`, a number; `buffer1`, a second path or the block for a text. It returns
a number, the status. `quillon call EXPORT TEXT --value VALUE --buffer BUFFER1` makes one call;
`quillon describe EXPORT` shows a section of this page. What each operation does, step by step, is
written out as short Python in [tests/model/](../tests/model).

The examples work on small files, which `docs/examples/make FOLDER` writes to a folder; each starts
with fresh copies. This page is what `quillon reference` prints; a test compares the two and runs
every example.

Where a whole number is wanted, the fraction of `value` is cut off. Whether a number is taken is
decided before that: 100.5 is above 100, and 1.5 is neither 1 nor 3.

"Interrupted" is what a process that is killed in the middle of a call leaves of the files that the
call writes; other files stay as they are. A machine that goes down can leave the same of calls that
have returned: the system puts files onto the disk some time later, and in any order.
)";

std::string row(const std::string& first, const std::string& second) {
    return "| " + first + " | " + second + " |\n";
}

std::string statusRow(const std::string& status, bool success, const std::string& sentence) {
    return "| " + status + " | " + (success ? "success" : "failure") + " | " + sentence + " |\n";
}

std::string argumentsOf(const Export& entry) {
    std::string rows;
    if (entry.text != nullptr) rows += row("`text`", entry.text);
    if (entry.value != nullptr) {
        const std::string details = entry.valueDetails != nullptr ? entry.valueDetails : "";
        rows += row("`value`", entry.value + (details.empty() ? "" : ". " + details));
    }
    if (entry.buffer == BufferUse::kPath) rows += row("`buffer1`", entry.bufferIs);
    if (entry.buffer == BufferUse::kOutput)
        rows += row("`buffer1`", std::string("takes ") + entry.bufferIs);
    return rows.empty() ? "It reads none of the arguments.\n"
                        : "| argument | |\n|---|---|\n" + rows;
}

std::string statusesOf(const Export& entry) {
    std::string rows = "| status | | meaning |\n|---|---|---|\n";
    if (entry.countOne != nullptr)
        rows += statusRow("*n* ≥ 0", true, std::string("*n* ") + entry.countMany);
    for (const StatusMeaning& row : entry.statuses)
        rows += statusRow(statusText(row.status), row.isSuccess(), sentenceOf(entry, row));
    if (entry.writesTiles)
        rows += statusRow(statusText(kTileNotWritten.status) + " + *k*", false,
                          kTileNotWritten.sentence);
    return rows;
}

}  // namespace

std::string sentenceOf(const Export& entry, const StatusMeaning& row) {
    if (row.isSuccess()) return row.sentence;
    std::string causes;
    const auto add = [&causes](const std::string& one) {
        causes += causes.empty() ? one : ", " + one;
    };
    if (row.causes.contain(cause::kNullArgument)) {
        const bool both = entry.text != nullptr && entry.buffer != BufferUse::kNone;
        add(both ? "`text` or `buffer1` is null"
                 : (entry.text != nullptr ? "`text` is null" : "`buffer1` is null"));
    }
    if (row.causes.contain(cause::kValueRefused)) add(std::string("`value` is not ") + entry.value);
    const std::string sentence = row.sentence;
    if (causes.empty() || sentence.empty()) return causes + sentence;
    const bool isList = sentence.find_first_of(",:") != std::string::npos;
    return causes + (isList ? "; or " : ", or ") + sentence;
}

std::string printedBy(const Export& entry) {
    if (entry.output != nullptr) return entry.output;
    const float status = entry.prints.status;
    const StatusMeaning* const row = rowOf(entry, status);
    const std::string meaning =
        row != nullptr ? row->sentence : meaningOf(entry, {}, status).sentence;
    std::string lines = "status   " + statusText(status) + "\nmeaning  success: " + meaning + '\n';
    if (entry.prints.text != nullptr) lines += std::string("text     ") + entry.prints.text + '\n';
    return lines;
}

std::string referenceOf(const Export& entry) {
    std::string section = "### " + std::string(entry.name) + "\n\n" + entry.purpose + "\n\n";
    section += argumentsOf(entry) + "\n";
    section += std::string("Writes: ") + entry.writes + "\n\n";
    if (entry.interrupted != nullptr)
        section += std::string("Interrupted: ") + entry.interrupted->sentence + "\n\n";
    section += statusesOf(entry) + "\n";
    if (entry.throws != nullptr) section += std::string("Throws: ") + entry.throws + "\n\n";
    section += std::string("```console\n$ ") + entry.example + "\n" + printedBy(entry) + "```\n\n";
    return section + "When it fails: " + entry.next + "\n";
}

std::string wholeReference() {
    std::string page = kIntroduction;
    for (const ExportGroup& group : exportGroups()) {
        page += std::string("\n## ") + group.title + "\n\n" + group.lead + "\n";
        for (const Export& entry : group.exports)
            page += '\n' + referenceOf(entry);
    }
    return page;
}
