#pragma once
// Whether the time of an export grows no faster than its work: the same job at several sizes.

#include <string>
#include <vector>

#include "Job.h"

struct GrowthLine {
    std::string job;
    std::string per;  // unit that the costs are for
    struct Step {
        std::string size;
        double cost;     // nanoseconds
        double toLimit;  // ratio to the limit's cost at that size; 0 if the job has none
    };
    std::vector<Step> steps;
    std::string note;  // after the verdict
};

// Maps of 2048, 4096 and 16384 pixels a side, or the most that the export takes, as far as memory has
// room for them.
GrowthLine growthWithSide(const Job& job, Setup setup, int rounds);

// Meshes of 1, 12 and 100 tiles.
GrowthLine growthWithTiles(const Job& job, Setup setup, int rounds);

std::string tableOf(const std::vector<GrowthLine>& lines);
