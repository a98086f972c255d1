#pragma once
// What the steps of an export share.

#include "calls/CallLog.h"
#include "calls/WorkingFolder.h"
#include "commands/export/ExportFiles.h"
#include "page/ExportPage.h"

struct ExportRun {
    ExportRun(const Library& library, const ExportOptions& wanted, Report& report,
              ExportPage* shownOn)
        : options(wanted), log(library, report), page(shownOn) {
        log.progress().setFile(wanted.mesh);
    }

    const ExportOptions& options;
    CallLog log;
    WorkingFolder working{log};
    ExportPage* page;          // null: none is wanted
    std::size_t tiles = 0;     // to render, for all maps
    std::size_t rendered = 0;  // of these
};
