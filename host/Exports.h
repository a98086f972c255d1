#pragma once
// The one table of the library's exports: what each reads, answers and writes. quillon call, script
// and describe tell from it what happened, and docs/exports.md is made of it.

#include <span>
#include <string>
#include <string_view>

enum class BufferUse {
    kNone,    // not read
    kPath,    // a second path, which the user may leave out to try a null pointer
    kOutput,  // a block that takes a text; always passed
};

// A status that an export can answer. Numbers come from the constants in the headers of src/.
struct StatusMeaning {
    float status;
    bool success;
    const char* sentence;  // the cause; without a capital and without a full stop
};

struct Export {
    std::string_view name;
    const char* purpose;         // one sentence, with its full stop
    const char* text = nullptr;  // what the first argument is; null when it is not read

    const char* value = nullptr;         // what the number is and which ones are taken; null when
                                         // it is not read
    const char* valueName = nullptr;     // the same in one word, for a line of a log
    bool (*takes)(double) = nullptr;     // which numbers are not refused; null: none is
    const char* valueDetails = nullptr;  // what each number does, where that takes sentences

    bool refuses = false;      // answers kRefused for a missing argument or a number not taken
    bool writesTiles = false;  // answers kFirstTileNotWritten + k for the file of tile k

    BufferUse buffer = BufferUse::kNone;
    const char* bufferIs = nullptr;  // what the block takes or names; null when it is not read

    const char* writes;  // what is written where, in sentences

    std::span<const StatusMeaning> statuses = {};
    const char* countOne = nullptr;   // what a status from 0 on counts or measures; null when
    const char* countMany = nullptr;  // there is no such status
    const char* throws = nullptr;     // when an exception reaches the host

    const char* example;  // typed in the folder that docs/examples/make fills
    const char* output;   // what that prints
    const char* next;     // what to check when a call fails, in sentences
};

struct ExportGroup {
    const char* title;
    const char* lead;  // what all of them have in common
    std::span<const Export> exports;
};

// All exports, each in one group.
std::span<const ExportGroup> exportGroups();

// Null when the library has no such export.
const Export* findExport(std::string_view name);

// Throws WrongUsage when the library has no such export.
const Export& requireExport(std::string_view name);

// One line an export: its name and what it reads.
std::string exportList();
