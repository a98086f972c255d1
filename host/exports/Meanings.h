#pragma once
// What the statuses of the exports mean, in words.

#include <string>

#include "exports/CallArguments.h"
#include "exports/Exports.h"

struct Meaning {
    bool success;
    std::string sentence;  // without a capital and without a full stop
};

// The meaning of `status`, returned by `entry` for a call with `arguments`. A status that an export
// does not list is a failure, except where the export counts or measures: there every number from 0
// on is a result.
Meaning meaningOf(const Export& entry, const CallArguments& arguments, float status);

// The shortest decimal text that reads back as the same number.
std::string statusText(float status);
