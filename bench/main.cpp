// quillon_bench: how fast the exports are, compared with the best that other software does and with
// the file traffic alone.

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <optional>
#include <regex>

#include "Growth.h"
#include "Job.h"
#include "Memory.h"
#include "Runner.h"
#include "Table.h"
#include "Text.h"
#include "calls/Library.h"
#include "terminal/Failure.h"
#include "terminal/Interrupt.h"

namespace {

constexpr std::uint32_t kSide = 4096;
constexpr std::uint32_t kQuickSide = 1024;
constexpr int kRounds = 15;
constexpr int kQuickRounds = 3;

constexpr int kInterrupted = 130;  // as shells report it

struct Options {
    std::string filter = ".";
    bool quick = false;
    bool growth = false;
    std::uint32_t side = 0;
    std::uint32_t tiles = 12;
    int rounds = 0;
    std::string json;
    std::string library;
    std::string before;
    std::string folder = "/dev/shm";
};

// What is wrong with a side for maps; empty if nothing is.
std::string sideError(const std::string& side) {
    constexpr unsigned long kMultiple = 256;  // so that thumbnails and blocks come out even
    const unsigned long pixels = std::strtoul(side.c_str(), nullptr, 10);
    const bool fits = pixels > 0 && pixels <= kLargestSide && pixels % kMultiple == 0;
    return fits ? ""
                : text("%s is not a multiple of %lu up to %u", side.c_str(), kMultiple,
                       kLargestSide);
}

// The jobs whose names match the filter.
std::vector<Job> wantedJobs(const Options& options) {
    const std::regex wanted(options.filter, std::regex::icase);
    std::vector<Job> jobs;
    for (const auto& family : {mapJobs, meshJobs, folderJobs}) {
        for (Job& job : family()) {
            if (std::regex_search(job.name, wanted)) jobs.push_back(std::move(job));
        }
    }
    if (jobs.empty()) throw WrongUsage("no job has a name like " + options.filter);
    return jobs;
}

// Calls `work(job)` for each job, prints its name, and names it if the work fails.
template <typename Work>
void forEachJob(const Options& options, Work work) {
    for (const Job& job : wantedJobs(options)) {
        std::fprintf(stderr, "%s ...\n", job.name.c_str());
        try {
            work(job);
        } catch (const Failure& failure) {
            throw Failure(job.name + ": " + failure.what());
        }
    }
}

void requireMapsFit(const Job& job, const Setup& setup) {
    const double wanted = job.diskBytes(setup);
    const double available = roomIn(setup.folder);
    if (wanted > available)
        throw Failure(setup.folder +
                      text(" is short: %.0f MB are needed, %.0f MB are left; ", wanted * 1e-6,
                           available * 1e-6) +
                      "name another folder with --folder, or smaller maps with --size");
}

void race(const Options& options, const Setup& setup) {
    std::vector<Line> lines;
    forEachJob(options, [&](const Job& job) {
        Setup own = setup;
        own.side = std::min(setup.side, job.largestSide);
        requireMapsFit(job, own);
        const Peak peak = peakOf(job, own);
        const PreparedRace prepared(job, own);
        const bool isSmaller = own.side < setup.side;
        const std::string name = job.name + (isSmaller ? text(", %u", own.side) : "");
        lines.push_back(
            {name, job.unit, prepared.race().amount, run(prepared.race(), options.rounds), peak});
    });
    std::fputs(tableOf(lines).c_str(), stdout);
    if (!options.json.empty()) std::ofstream(options.json) << jsonOf(lines);
}

void grow(const Options& options, const Setup& setup) {
    std::vector<GrowthLine> lines;
    forEachJob(options, [&](const Job& job) {
        lines.push_back(growthWithSide(job, setup, options.rounds));
        if (job.growsWithTiles) lines.push_back(growthWithTiles(job, setup, options.rounds));
    });
    std::fputs(tableOf(lines).c_str(), stdout);
}

int runJobs(const Options& options) {
    const Build build(options.library.empty() ? libraryBesideProgram() : options.library);
    std::optional<Build> before;
    if (!options.before.empty()) before.emplace(options.before);

    const Setup setup{build, before ? &*before : nullptr, options.folder, options.side,
                      options.tiles};
    options.growth ? grow(options, setup) : race(options, setup);
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    Options options;
    CLI::App app{"Measures the exports of the library against the limits of the machine."};
    app.add_option("--filter", options.filter, "Only jobs whose name matches this expression");
    app.add_flag("--quick", options.quick, "Small maps, few rounds");
    app.add_flag("--growth", options.growth,
                 "Instead: whether time grows with the work and no faster");
    app.add_option("--size", options.side, "Side of the maps in pixels, a multiple of 256")
        ->check(sideError);
    app.add_option("--tiles", options.tiles, "UV tiles of meshes and of sheets of maps")
        ->check(CLI::Range(1, 100));
    app.add_option("--rounds", options.rounds, "How often each contender runs")
        ->check(CLI::PositiveNumber);
    app.add_option("--json", options.json, "File for all numbers");
    app.add_option("--library", options.library, "The library, if not the one just built");
    app.add_option("--before", options.before, "Another build of the library to compare with");
    app.add_option("--folder", options.folder, "Where files are made; in memory, to be fast");
    CLI11_PARSE(app, argc, argv);

    if (options.side == 0) options.side = options.quick ? kQuickSide : kSide;
    if (options.rounds == 0) options.rounds = options.quick ? kQuickRounds : kRounds;
    try {
        noteInterrupts();
        return runJobs(options);
    } catch (const Interrupted&) {
        std::fputs("quillon_bench: interrupted, the files are deleted\n", stderr);
        return kInterrupted;
    } catch (const WrongUsage& wrong) {
        std::fprintf(stderr, "quillon_bench: %s\n", wrong.what());
        return 2;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "quillon_bench: %s\n", error.what());
        return 1;
    }
}
