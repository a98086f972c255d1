#pragma once
// What was measured, as a table for people and as JSON for programs.

#include <optional>
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
    const char* unit;
    double amount;
    std::vector<Result> results;
    std::optional<Peak> peak = {};
};

// Whether every target of the line is met.
bool isMet(const Line& line);

// Markdown, padded so that it reads well as it stands.
std::string tableOf(const std::vector<Line>& lines);

std::string jsonOf(const std::vector<Line>& lines);
