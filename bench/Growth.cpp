#include "Growth.h"

#include <algorithm>

#include "Memory.h"
#include "Runner.h"
#include "Text.h"

namespace {

constexpr double kEven = 1.1;  // costs that differ by no more than this factor are the same

// How much of the free memory the files may take.
constexpr double kShareOfMemory = 0.4;

bool fits(const Job& job, const Setup& setup) {
    const double bytes = job.diskBytes(setup);
    return bytes < kShareOfMemory * roomIn(setup.folder);
}

// What the cost is compared with: where not all bytes need be moved, those that must be read.
Role yardstickOf(const Race& race) {
    return std::ranges::count(race.contenders, Role::kSources, &Contender::role) > 0
               ? Role::kSources
               : Role::kLimit;
}

// The least of the rounds: disturbances only add to it, and most to large files, whose pages a
// virtual machine may take back between two runs. `workOf` counts what the cost is for.
GrowthLine::Step stepOf(const Job& job, const Setup& setup, int rounds, const std::string& size,
                        double (*workOf)(const Race&)) {
    const PreparedRace prepared(job, setup);
    Race race = prepared.race();
    const Role yardstick = yardstickOf(race);
    std::erase_if(race.contenders, [=](const Contender& contender) {
        return contender.role != Role::kQuillon && contender.role != yardstick;
    });
    // Small maps take little time and vary most, so they are run more often.
    const std::vector<Result> results = run(race, setup.side < 4096 ? rounds * 5 : rounds);
    const double seconds = results.front().leastCpu;
    return {size, seconds * 1e9 / workOf(race),
            results.size() > 1 ? seconds / results.back().leastCpu : 0.0};
}

// What there are millions of: "face" for Mfaces.
std::string perUnit(const std::string& unit) {
    return unit == "MP" ? "pixel" : unit.substr(1, unit.size() - 2);
}

// How numbers vary from one size to the next larger ones. All 0 where there are none.
struct Variation {
    double spread = 0.0;  // the highest to the lowest
    double rise = 0.0;    // at most, from a size to a larger one

    bool isEven() const { return spread > 0.0 && spread <= kEven; }
    // Also where there are no numbers: then others decide.
    bool rises() const { return rise == 0.0 || rise > kEven; }
};

Variation variationOf(const std::vector<GrowthLine::Step>& steps,
                      double GrowthLine::Step::*number) {
    Variation variation;
    double lowest = 0.0;
    double highest = 0.0;
    for (const GrowthLine::Step& step : steps) {
        const double now = step.*number;
        if (now <= 0.0) return {};
        lowest = lowest == 0.0 ? now : std::min(lowest, now);
        highest = std::max(highest, now);
        variation.rise = std::max(variation.rise, now / lowest);
        variation.spread = highest / lowest;
    }
    return variation;
}

// Files that fit into the processor's cache are moved faster: where the limit's cost varies with the
// size, so does that of any program.
std::string verdictOf(const Variation& cost, const Variation& toLimit) {
    if (cost.isEven()) return "linear";
    if (toLimit.isEven()) return "as the limit";
    return cost.rises() && toLimit.rises() ? "rises" : "no rise";
}

}  // namespace

GrowthLine growthWithSide(const Job& job, Setup setup, int rounds) {
    GrowthLine line{job.name, perUnit(job.unit), {}, ""};
    for (const std::uint32_t side : {2048u, 4096u, job.largestSide}) {
        const std::string size = std::to_string(side);
        setup.side = side;
        if (fits(job, setup))
            line.steps.push_back(stepOf(job, setup, rounds, size,
                                        [](const Race& race) { return race.amount * 1e6; }));
        else
            line.note = ", no room for " + size;
    }
    return line;
}

GrowthLine growthWithTiles(const Job& job, Setup setup, int rounds) {
    GrowthLine line{job.name, "byte written", {}, ""};
    for (const std::uint32_t tiles : {1u, 12u, 100u}) {
        setup.tiles = tiles;
        const std::string size = std::to_string(tiles) + (tiles == 1 ? " tile" : " tiles");
        line.steps.push_back(
            stepOf(job, setup, rounds, size, [](const Race& race) { return race.bytesWritten; }));
    }
    return line;
}

std::string tableOf(const std::vector<GrowthLine>& lines) {
    std::vector<TableRow> rows{
        {"job", "ns per", "small", "middle", "large", "spread", "spread / limit", "verdict"}};
    for (const GrowthLine& line : lines) {
        TableRow row{line.job, line.per};
        for (const GrowthLine::Step& step : line.steps)
            row.push_back(text("%s: %.3f", step.size.c_str(), step.cost));
        row.resize(5, "-");
        const Variation cost = variationOf(line.steps, &GrowthLine::Step::cost);
        const Variation toLimit = variationOf(line.steps, &GrowthLine::Step::toLimit);
        row.push_back(text("%.2f", cost.spread));
        row.push_back(toLimit.spread > 0.0 ? text("%.2f", toLimit.spread) : "-");
        row.push_back(verdictOf(cost, toLimit) + line.note);
        rows.push_back(row);
    }
    return aligned(rows);
}
