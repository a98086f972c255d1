#pragma once
// What an export says of its maps at the end.

#include <optional>
#include <string>
#include <vector>

#include "calls/Report.h"
#include "commands/export/ExportPlan.h"
#include "files/SampleStatistics.h"

// A map that was made.
struct MadeMap {
    const PlannedMap& planned;
    std::optional<float> scale;             // for displacement; height maps of floats have one
    std::vector<SampleStatistics> heights;  // of a height map
};

// Reports the maps and all files; `kept` are working files that remain.
void reportMaps(const ExportOptions& options, const std::vector<MadeMap>& maps,
                const std::vector<std::string>& kept, Report& report);

// Reports what an export would make.
void reportPlan(const ExportOptions& options, const ExportPlan& plan, Report& report);

// Returns the warning about faces that no map shows.
std::string unpaintedSentence(const ExportOptions& options, const ExportPlan& plan);
