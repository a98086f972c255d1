#pragma once
// What was measured, as a table for people and as JSON for programs.

#include <string>
#include <vector>

#include "Job.h"
#include "Runner.h"

// Memory that an export took beyond what the process had before, in bytes.
struct Peak {
    double taken;
    double allowed;
};

struct Line {
    std::string job;
    std::string unit;
    double amount;
    std::vector<Result> results;
    Peak peak;
};

// Returns Markdown.
std::string tableOf(const std::vector<Line>& lines);

std::string jsonOf(const std::vector<Line>& lines);
