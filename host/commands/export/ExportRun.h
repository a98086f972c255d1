#pragma once
// What the steps of an export share.

#include <string>

#include "calls/CallLog.h"
#include "calls/Leftovers.h"
#include "commands/export/ExportFiles.h"
#include "page/ExportPage.h"

struct ExportRun {
    ExportRun(const Library& library, const ExportOptions& wanted, Report& report,
              ExportPage* shownOn)
        : options(wanted), log(library, report), page(shownOn) {}

    const ExportOptions& options;
    const ExportFiles files{options};
    CallLog log;
    Leftovers unfinished{log};  // the files, and their folder if it was created for them
    Leftovers working{log};
    std::string workingFolder;
    ExportPage* page;  // null: none is wanted
};
