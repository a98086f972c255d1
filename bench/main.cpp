// quillon_bench: how fast the exports are, beside the best that other software does, the file
// traffic alone and a plain implementation.

#include <unistd.h>

#include <CLI/CLI.hpp>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <optional>
#include <regex>

#include "Failure.h"
#include "Job.h"
#include "Runner.h"
#include "Table.h"

namespace fs = std::filesystem;

namespace {

constexpr std::uint32_t kSide = 4096;
constexpr std::uint32_t kQuickSide = 1024;
constexpr int kRounds = 9;
constexpr int kQuickRounds = 3;

struct Options {
    std::string filter = ".";
    bool quick = false;
    std::uint32_t side = 0;
    int rounds = 0;
    std::string json;
    std::string library;
    std::string before;
    std::string folder = "/dev/shm";
};

// A folder for one race's files, gone at its end.
class RaceFolder {
public:
    explicit RaceFolder(const std::string& parent)
        : path_(fs::path(parent) / ("quillon_bench." + std::to_string(::getpid()))) {
        fs::remove_all(path_);
        fs::create_directories(path_);
    }
    RaceFolder(const RaceFolder&) = delete;
    RaceFolder& operator=(const RaceFolder&) = delete;
    ~RaceFolder() {
        std::error_code ignored;
        fs::remove_all(path_, ignored);
    }
    std::string path() const { return path_.string(); }

private:
    fs::path path_;
};

void makeRewrittenFiles(const Race& race) {
    for (const Race::Rewritten& file : race.rewritten)
        std::ofstream(file.path).flush();
}

Line measure(const Job& job, const Library& library, const Library* before,
             const Options& options) {
    const RaceFolder folder(options.folder);
    const Race race = job.prepare({library, before, folder.path(), options.side});
    makeRewrittenFiles(race);
    return {job.name, job.unit, race.amount, run(race, options.rounds)};
}

int runJobs(const Options& options) {
    const Library library(options.library.empty() ? libraryBesideProgram() : options.library);
    std::optional<Library> before;
    if (!options.before.empty()) before.emplace(options.before);

    const std::regex wanted(options.filter, std::regex::icase);
    std::vector<Line> lines;
    for (const Job& job : allJobs()) {
        if (!std::regex_search(job.name, wanted)) continue;
        std::fprintf(stderr, "%s ...\n", job.name.c_str());
        try {
            lines.push_back(measure(job, library, before ? &*before : nullptr, options));
        } catch (const Failure& failure) {
            throw Failure(job.name + ": " + failure.what());
        }
    }
    if (lines.empty()) throw WrongUsage("no job is named like that");
    std::fputs(tableOf(lines).c_str(), stdout);
    if (!options.json.empty()) std::ofstream(options.json) << jsonOf(lines);
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    Options options;
    CLI::App app{"Measures the exports of the library against the limits of the machine."};
    app.add_option("--filter", options.filter, "Only jobs whose name matches this expression");
    app.add_flag("--quick", options.quick, "Small maps, few rounds");
    app.add_option("--size", options.side, "Side of the maps in pixels, a multiple of 256");
    app.add_option("--rounds", options.rounds, "How often each contender runs");
    app.add_option("--json", options.json, "File for all numbers");
    app.add_option("--library", options.library, "The library, if not the one just built");
    app.add_option("--before", options.before, "Another build of the library to compare with");
    app.add_option("--folder", options.folder, "Where files are made; in memory, to be fast");
    CLI11_PARSE(app, argc, argv);

    if (options.side == 0) options.side = options.quick ? kQuickSide : kSide;
    if (options.rounds == 0) options.rounds = options.quick ? kQuickRounds : kRounds;
    try {
        return runJobs(options);
    } catch (const WrongUsage& wrong) {
        std::fprintf(stderr, "quillon_bench: %s\n", wrong.what());
        return 2;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "quillon_bench: %s\n", error.what());
        return 1;
    }
}
