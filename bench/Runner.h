#pragma once
// Runs a race: all contenders in turn, round after round, each round starting with another one.

#include <vector>

#include "Job.h"

struct Result {
    Role role;
    std::string name;
    double target;
    double bytes;     // that a limit moves; else 0
    double cpu;       // seconds, median over the rounds
    double leastCpu;  // of the rounds
    double wall;      // median
    double ratio;     // of quillon's time to this one's, median of the ratios within each round
};

// Runs every contender once and throws Failure if one of them computes something else than the
// export; then measures.
std::vector<Result> run(const Race& race, int rounds);
