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

// Why the export refused the call before it looked at any file; empty if the arguments are not the
// cause of that status.
std::string refusalOf(const Export& entry, const CallArguments& arguments,
                      const StatusMeaning& row);

// The shortest decimal text that reads back as the same number.
std::string statusText(float status);
