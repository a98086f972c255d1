#include "Reference.h"

#include "Meanings.h"
#include "export/Quillon.h"
#include "mesh/VemoOps.h"

namespace {

constexpr const char* kIntroduction = R"(# The exports

Each of the 34 functions takes the same seven arguments, of which it reads at most three: `text`, a
path or another text; `value`, a number; `buffer1`, a second path or the block for a text. It answers
with a number, the status. `quillon call EXPORT TEXT --value VALUE --buffer BUFFER1` makes one call;
`quillon describe EXPORT` shows a section of this page.

The examples work on small files, which `docs/examples/make FOLDER` leaves in a folder; each starts
from them anew. This page is what `quillon reference` prints; a test compares the two and runs every
example.

Wherever a whole number is wanted, the fraction of `value` is cut off.
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

// Why the boundary refuses a call.
std::string refusalOf(const Export& entry) {
    std::string sentence = "refused: ";
    const auto add = [&sentence](const std::string& cause) { sentence += cause + ", "; };
    if (entry.text != nullptr && entry.buffer != BufferUse::kNone)
        add("`text` or `buffer1` is null");
    else if (entry.text != nullptr)
        add("`text` is null");
    if (entry.takes != nullptr) add(std::string("`value` is not ") + entry.value);
    return sentence + "or there is too little memory";
}

std::string statusesOf(const Export& entry) {
    std::string rows = "| status | | meaning |\n|---|---|---|\n";
    if (entry.countOne != nullptr)
        rows += statusRow("*n* ≥ 0", true, std::string("*n* ") + entry.countMany);
    for (const StatusMeaning& meaning : entry.statuses)
        rows += statusRow(statusText(meaning.status), meaning.success, meaning.sentence);
    if (entry.writesTiles)
        rows += statusRow(statusText(vemo_status::kFirstTileNotWritten) + " + *k*", false,
                          "the file of the tile at position *k*, from 0, cannot be created or "
                          "filled");
    if (entry.refuses)
        rows += statusRow(statusText(quillon_status::kRefused), false, refusalOf(entry));
    return rows;
}

}  // namespace

std::string referenceOf(const Export& entry) {
    std::string section = "### " + std::string(entry.name) + "\n\n" + entry.purpose + "\n\n";
    section += argumentsOf(entry) + "\n";
    section += std::string("Writes: ") + entry.writes + "\n\n";
    section += statusesOf(entry) + "\n";
    if (entry.throws != nullptr) section += std::string("Throws: ") + entry.throws + "\n\n";
    section += std::string("```console\n$ ") + entry.example + "\n" + entry.output + "```\n\n";
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
