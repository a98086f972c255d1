#pragma once
// Why the system refused what a call needed, such as "No such file or directory".

#include <string>

#include "exports/CallArguments.h"
#include "exports/Exports.h"

// Returns the reason why `entry` returned `status`, with the path where it is known; empty if the
// status has another cause or the reason is not certain.
//
// A status may have several causes, and errno may be from a step that was allowed to fail. So where
// an export makes more than one system call, each path that the status is about is tried again, as
// the export used it; errno counts only where that cannot show the reason, as on a full disk.
//
//   error  errno after the call, which was made with errno 0
std::string systemReason(const Export& entry, const CallArguments& arguments, float status,
                         int error);
