#include "exports/PythonReference.h"

#include <algorithm>
#include <iterator>
#include <sstream>
#include <string_view>
#include <utility>

#include "exports/Arguments.h"
#include "exports/Groups.h"
#include "exports/Meanings.h"

namespace {

constexpr std::size_t kColumns = 100;

constexpr const char* kStart =
    R"py("""The library's exports, a function each; their names are the library's own.

This module is what `quillon reference --python` prints; a test compares the two.
"""
# Formatted by quillon, not by black:
# fmt: off

from __future__ import annotations

from quillon._call import Export, Numbers, Row, StrPath, TileCount, call

)py";

// What is different from a call in C: a sentence of its own, and what to check in place of what the
// table says of blocks; null where there is nothing to say.
struct Note {
    std::string_view name;
    const char* sentence;
    const char* check = nullptr;
};
constexpr Note kNotes[] = {
    {"CheckFolder", "Returns nothing if it can; raises NotOpened if not."},
    {"GetFile", "NothingOpen is also how each listing ends. listing() gives all names."},
    {"GetString", nullptr, "Bytes are counted, not letters: in UTF-8 a letter may take several."},
    {"getUVString", "ValueError if there is no such tile. tile_names() gives all names.",
     "Count on no more positions than getUVs returned."},
    {"setUVtilesOutput", "tile_filter() sets a filter for the statements of a block."},
    {"convertTIFF16", "ValueError, before the call, if `target` has no dot."},
};

Note noteOn(const Export& entry) {
    const auto* const found = std::ranges::find(kNotes, entry.name, &Note::name);
    return found != std::end(kNotes) ? *found : Note{entry.name, nullptr};
}

void replaceAll(std::string& text, std::string_view from, std::string_view to) {
    for (std::size_t at = 0; (at = text.find(from, at)) != std::string::npos; at += to.size())
        text.replace(at, from.size(), to);
}

// A sentence of the table, with the arguments by their names in Python.
std::string inPython(const Export& entry, std::string text) {
    for (const Argument& argument : argumentsOf(entry)) {
        const bool isResult = argument.role == std::string_view("output");
        replaceAll(text, '`' + std::string(argument.position) + '`',
                   isResult ? "the result" : '`' + argument.name + '`');
    }
    return text;
}

std::string checkOf(const Export& entry) {
    const char* const check = noteOn(entry).check;
    return inPython(entry, check != nullptr ? check : entry.next);
}

// Appends the words of a text to lines, the first of which starts with `lead`.
std::string wrapped(const std::string& lead, const std::string& indent, const std::string& text,
                    std::size_t columns = kColumns) {
    std::istringstream words(text);
    std::string lines;
    std::string line;
    for (std::string word; words >> word;) {
        if (line.empty()) {
            line = lead + word;
        } else if (line.size() + 1 + word.size() <= columns) {
            line += ' ' + word;
        } else {
            lines += line + '\n';
            line = indent + word;
        }
    }
    return lines + line + '\n';
}

std::string escaped(std::string text) {
    replaceAll(text, "\\", "\\\\");
    return text;
}

// A paragraph of a docstring.
std::string paragraph(const std::string& lead, const std::string& text) {
    return wrapped("    " + lead, "    ", escaped(text));
}

// An item below a heading of a docstring.
std::string item(const std::string& name, const std::string& text) {
    return wrapped("        " + name + ": ", "            ", escaped(text));
}

// A text as a literal of one string per line, without a line end.
std::string literal(const std::string& indent, std::string text) {
    constexpr std::size_t kClosing = 4;  // a blank, a quote, and what may follow
    text = escaped(std::move(text));
    replaceAll(text, "\"", "\\\"");
    std::string strings = wrapped(indent + '"', indent + '"', text, kColumns - kClosing);
    strings.pop_back();
    replaceAll(strings, "\n", " \"\n");
    return strings + '"';
}

bool givesText(const Export& entry) {
    return entry.buffer == BufferUse::kOutput;
}

// The status of a success, where that is no count.
float doneOf(const Export& entry) {
    return entry.countOne == nullptr ? entry.statuses.front().status : 0.0f;
}

// Whether the status of a success is the result, such as a version.
bool returnsStatus(const Export& entry) {
    return !givesText(entry) && doneOf(entry) != 0.0f;
}

const char* resultTypeOf(const Export& entry) {
    if (entry.countOne != nullptr && givesText(entry)) return "TileCount";
    if (givesText(entry)) return "str";
    if (entry.countOne != nullptr) return entry.countIsWhole ? "int" : "float";
    return returnsStatus(entry) ? "int" : "None";
}

std::string tupleOf(const std::vector<std::string>& elements) {
    std::string tuple = "(";
    for (const std::string& element : elements)
        tuple += (tuple.size() > 1 ? ", " : "") + element;
    return tuple + (elements.size() == 1 ? ",)" : ")");
}

std::string quoted(const std::string& text) {
    return '"' + text + '"';
}

// The failures. A null argument is none of Python's, so no row is about it alone.
std::vector<StatusMeaning> failuresOf(const Export& entry) {
    std::vector<StatusMeaning> rows;
    for (const StatusMeaning& row : entry.statuses) {
        const bool isSaid = *row.sentence != '\0' || row.causes.contain(cause::kValueRefused);
        if (isSaid && !row.isSuccess()) rows.push_back(row);
    }
    if (entry.writesTiles) rows.push_back(kTileNotWritten);
    return rows;
}

std::string sentenceOf(const Export& entry, const StatusMeaning& row) {
    if (!row.causes.contain(cause::kValueRefused)) return row.sentence;
    const std::string refused = std::string("`value` is not ") + entry.value;
    return inPython(entry, *row.sentence == '\0' ? refused : refused + "; or " + row.sentence);
}

std::string literalOf(const Export& entry, const StatusMeaning& row) {
    std::vector<std::string> causes;
    for (const std::string& name : namesOf(row.causes)) {
        if (name != "nullArgument") causes.push_back(quoted(name));
    }
    return "        Row(" + statusText(row.status) + ", " + tupleOf(causes) + ",\n" +
           literal("            ", sentenceOf(entry, row)) + "),\n";
}

std::string literalOf(const Numbers& numbers) {
    if (numbers.choices.empty())
        return "Numbers(least=" + std::to_string(numbers.least) +
               (numbers.most ? ", most=" + std::to_string(*numbers.most) : "") + ')';
    std::vector<std::string> choices;
    for (const int choice : numbers.choices)
        choices.push_back(std::to_string(choice));
    return "Numbers(choices=" + tupleOf(choices) + ')';
}

// The entry of the table, which the call needs.
std::string entryOf(const Export& entry) {
    std::string code = '_' + std::string(entry.name) + " = Export(\n";
    const auto set = [&code](const std::string& name, const std::string& value) {
        code += "    " + name + '=' + value + ",\n";
    };
    set("name", quoted(std::string(entry.name)));
    for (const Argument& argument : argumentsOf(entry)) {
        if (argument.role != std::string_view("output"))
            set(argument.position, quoted(argument.name));
    }
    if (entry.textUse != TextUse::kFile) set("role", quoted(argumentsOf(entry).front().role));
    if (entry.numbers) set("numbers", literalOf(*entry.numbers));
    if (givesText(entry)) set("gives_text", "True");
    if (entry.countOne != nullptr) set("counts", "True");
    if (entry.writesTiles) set("writes_tiles", "True");
    if (entry.throws != nullptr) set("needs_dot", "True");
    if (doneOf(entry) != 0.0f) set("done", statusText(doneOf(entry)));
    std::string rows;
    for (const StatusMeaning& row : failuresOf(entry))
        rows += literalOf(entry, row);
    if (!rows.empty()) set("failures", "(\n" + rows + "    )");
    set("check", "(\n" + literal("        ", checkOf(entry)) + "\n    )");
    return code + ")\n";
}

std::string descriptionOf(const Export& entry, const Argument& argument) {
    const std::string meaning = argument.meaning;
    const std::string_view role = argument.role;
    if (role == "text") return meaning + '.';
    if (role == "number")
        return meaning + '.' +
               (entry.valueDetails != nullptr ? ' ' + inPython(entry, entry.valueDetails) : "");
    return meaning.ends_with("path") ? "a path." : "path of the " + meaning + '.';
}

std::string parametersOf(const Export& entry) {
    std::string lines;
    for (const Argument& argument : argumentsOf(entry)) {
        if (argument.role != std::string_view("output"))
            lines += item(argument.name, descriptionOf(entry, argument));
    }
    return lines.empty() ? "" : "\n    Parameters:\n" + lines;
}

// What the number is that a call returns, such as "how many UV tiles" or "the scale".
std::string numberOf(const Export& entry) {
    if (entry.countOne == nullptr) return entry.statuses.front().sentence;
    const std::string_view words = entry.countMany;
    constexpr std::string_view kVerb = "is ";
    return words.starts_with(kVerb) ? std::string(words.substr(kVerb.size()))
                                    : "how many " + std::string(words);
}

std::string returnsOf(const Export& entry) {
    const std::string type = resultTypeOf(entry);
    if (type == "None") return "";
    if (type == "TileCount")
        return item("count", numberOf(entry) + '.') +
               item("last", std::string(entry.bufferIs) + '.');
    return item(type, (type == "str" ? entry.bufferIs : numberOf(entry)) + '.');
}

std::string raisesOf(const Export& entry) {
    std::string lines;
    for (const StatusMeaning& row : failuresOf(entry)) {
        const bool isTile = entry.writesTiles && row.status == kTileNotWritten.status;
        lines +=
            item(statusText(row.status) + (isTile ? " + *k*" : ""), sentenceOf(entry, row) + '.');
    }
    return lines;
}

std::string docstringOf(const Export& entry) {
    std::string lines = paragraph("\"\"\"", entry.purpose);
    lines += parametersOf(entry);
    const std::string returns = returnsOf(entry);
    if (!returns.empty()) lines += "\n    Returns:\n" + returns;
    lines += '\n' + paragraph("Writes: ", inPython(entry, entry.writes));
    if (entry.interrupted != nullptr)
        lines += '\n' + paragraph("Interrupted: ", inPython(entry, entry.interrupted->sentence));
    const std::string raises = raisesOf(entry);
    if (!raises.empty()) lines += "\n    Raises Status:\n" + raises;
    lines += '\n' + paragraph("When it fails: ", checkOf(entry));
    const char* const note = noteOn(entry).sentence;
    if (note != nullptr) lines += '\n' + paragraph("In Python: ", note);
    return lines + "    \"\"\"\n";
}

std::string bodyOf(const Export& entry) {
    std::string made = "call(_" + std::string(entry.name);
    for (const Argument& argument : argumentsOf(entry)) {
        if (argument.role != std::string_view("output"))
            made += ", " + std::string(argument.position) + '=' + argument.name;
    }
    made += ')';
    const std::string_view type = resultTypeOf(entry);
    if (type == "None") return "    " + made + '\n';
    if (type == "TileCount")
        return "    status, text = " + made + "\n    return TileCount(int(status), text)\n";
    if (type == "str") return "    return " + made + ".text\n";
    return "    return " + (type == "int" ? "int(" + made + ".status)" : made + ".status") + '\n';
}

std::string functionOf(const Export& entry) {
    std::string parameters;
    for (const Argument& argument : argumentsOf(entry)) {
        const std::string_view role = argument.role;
        if (role == "output") continue;
        parameters += (parameters.empty() ? "" : ", ") + argument.name;
        parameters += role == "number" ? ": float" : (role == "text" ? ": str" : ": StrPath");
    }
    return "def " + std::string(entry.name) + '(' + parameters + ") -> " + resultTypeOf(entry) +
           ":\n" + docstringOf(entry) + bodyOf(entry);
}

}  // namespace

std::string pythonReference() {
    std::string module = kStart;
    module += "__all__ = [\n";
    for (const std::string& name : exportNames())
        module += "    \"" + name + "\",\n";
    module += "]\n";
    for (const ExportGroup& group : exportGroups()) {
        for (const Export& entry : group.exports)
            module += '\n' + entryOf(entry) + "\n\n" + functionOf(entry) + '\n';
    }
    module.pop_back();
    return module;
}
