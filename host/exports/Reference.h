#pragma once
// The table of exports as Markdown, for people who write scripts.

#include <string>

#include "exports/Exports.h"

// One export: purpose, arguments, what is written, statuses, an example with its output, and what
// to check when a call fails.
std::string referenceOf(const Export& entry);

// All of them, by group: the whole of docs/exports.md.
std::string wholeReference();
