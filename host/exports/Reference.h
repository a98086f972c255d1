#pragma once
// The table of exports as Markdown, for people who write scripts.

#include <string>

#include "exports/Exports.h"

// One export: purpose, arguments, what is written, statuses, an example with its output, and what
// to check when a call fails.
std::string referenceOf(const Export& entry);

// All of them, by group: the whole of docs/exports.md.
std::string wholeReference();

// What leads to the status of a row: the arguments that it is about, and then its sentence.
std::string sentenceOf(const Export& entry, const StatusMeaning& row);

// The output of the example.
std::string printedBy(const Export& entry);
