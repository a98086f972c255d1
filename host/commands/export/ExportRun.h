#pragma once
// What the steps of an export share.

#include <string>

#include "calls/CallLog.h"
#include "calls/Leftovers.h"
#include "commands/export/ExportFiles.h"
#include "page/ExportPage.h"
#include "terminal/Progress.h"

struct ExportRun {
    ExportRun(const Library& library, const ExportOptions& wanted, Report& report,
              ExportPage* shownOn)
        : options(wanted),
          progress(wanted.output != OutputStyle::kQuiet),
          log(library, progress, report, wanted.output),
          page(shownOn) {}

    const ExportOptions& options;
    const ExportFiles files{options};
    Progress progress;
    CallLog log;
    Leftovers unfinished{log};  // the files, and their folder if it was created for them
    Leftovers working{log};
    std::string workingFolder;
    ExportPage* page;  // null: none is wanted
};
