#include "Growth.h"

#include <algorithm>
#include <filesystem>
#include <fstream>

#include "PreparedRace.h"
#include "Runner.h"
#include "Text.h"

namespace {

constexpr double kEven = 1.2;  // costs that differ by no more than this factor are the same

// The rest of the memory is left to everything else.
constexpr double kShareOfMemory = 0.4;

double availableMemory() {
    std::ifstream memory("/proc/meminfo");
    std::string word;
    double kibibytes = 0;
    while (memory >> word) {
        if (word == "MemAvailable:" && memory >> kibibytes) return kibibytes * 1024;
    }
    return 0;
}

bool fits(const Job& job, const std::string& folder, std::uint32_t side) {
    const double bytes = job.diskPerPixel * side * side;
    const auto free = static_cast<double>(std::filesystem::space(folder).available);
    return bytes < kShareOfMemory * std::min(free, availableMemory());
}

struct Cost {
    double seconds;
    double toLimit;
    double amount;
    double bytesWritten;
};

// Small maps are done with soon and jitter most: they are run more often.
int roundsAt(const Setup& setup, int rounds) {
    return setup.side < 4096 ? rounds * 5 : rounds;
}

// The least of the rounds: disturbances only add to it, and most to large files, whose pages a
// virtual machine may take back between two runs.
Cost costOf(const Job& job, const Setup& setup, int rounds) {
    PreparedRace prepared(job, setup);
    prepared.keepQuillonAndLimit();
    const std::vector<Result> results = run(prepared.race(), roundsAt(setup, rounds));
    const double seconds = results.front().leastCpu;
    return {seconds, results.size() > 1 ? seconds / results.back().leastCpu : 0.0,
            prepared.race().amount, prepared.race().bytesWritten};
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
    }
    if (lowest > 0.0) variation.spread = highest / lowest;
    return variation;
}

// Files that fit into the processor's cache are moved faster, and fewer pages are fetched for holes:
// where the limit's cost varies with the size, so does that of any program.
const char* verdictOf(const Variation& cost, const Variation& toLimit) {
    if (cost.isEven()) return "linear";
    if (toLimit.isEven()) return "as the limit";
    return cost.rises() && toLimit.rises() ? "rises" : "no rise";
}

}  // namespace

GrowthLine growthWithSide(const Job& job, Setup setup, int rounds) {
    GrowthLine line{job.name, job.unit == std::string("MP") ? "pixel" : "face", {}, ""};
    const bool roomy = fits(job, setup.folder, job.largestSide);
    setup.sparse = !roomy && job.canBeSparse;
    if (setup.sparse) line.note = "sparse maps";
    for (const std::uint32_t side : {1024u, 4096u, job.largestSide}) {
        if (!setup.sparse && !fits(job, setup.folder, side)) {
            line.note = "no room for " + std::to_string(side);
            continue;
        }
        setup.side = side;
        const Cost cost = costOf(job, setup, rounds);
        line.steps.push_back(
            {std::to_string(side), cost.seconds * 1e3 / cost.amount, cost.toLimit});
    }
    return line;
}

GrowthLine growthWithTiles(const Job& job, Setup setup, int rounds) {
    GrowthLine line{job.name, "byte written", {}, ""};
    for (const std::uint32_t tiles : {1u, 12u, 100u}) {
        setup.tiles = tiles;
        const Cost cost = costOf(job, setup, rounds);
        const std::string size = std::to_string(tiles) + (tiles == 1 ? " tile" : " tiles");
        line.steps.push_back({size, cost.seconds * 1e9 / cost.bytesWritten, cost.toLimit});
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
        row.push_back(std::string(verdictOf(cost, toLimit)) +
                      (line.note.empty() ? "" : ", " + line.note));
        rows.push_back(row);
    }
    return aligned(rows);
}
