// soak CALLS: that many calls of all exports, mixed, in one process. Each scenario must have the same
// outcome at its last turn as at its first, and the process must hold no more memory and no more files
// at its end than after its first tenth.
//
//   exit status  0: passed, 1: failed, 2: no count

#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "faults/Scenarios.h"
#include "support/Faults.h"

namespace {

constexpr std::size_t kLargestFile = 8 * 1024;  // of the scenarios that take part

// What the resident memory may grow by: the heap's own doing, not a few bytes a call. A sanitizer
// keeps what was freed, and finds leaks itself.
#ifdef QUILLON_SANITIZED
constexpr std::int64_t kAllowedGrowth = std::int64_t{1} << 40;
#else
constexpr std::int64_t kAllowedGrowth = 256 * 1024;
#endif

std::int64_t residentBytes() {
    std::ifstream status("/proc/self/statm");
    std::int64_t all = 0;
    std::int64_t resident = 0;
    status >> all >> resident;
    return resident * ::sysconf(_SC_PAGESIZE);
}

// A scenario and its outcome at its first turn.
struct Turn {
    Scenario scenario;
    std::optional<Outcome> first = {};
    std::size_t count = 0;
};

bool isSmall(const Scenario& scenario) {
    return std::ranges::all_of(scenario.files,
                               [](const auto& file) { return file.second.size() <= kLargestFile; });
}

// The same call on files that are cut in half: what fails must leave nothing behind either.
Scenario damaged(Scenario scenario) {
    scenario.name += "Damaged";
    for (auto& [name, bytes] : scenario.files)
        bytes.resize(bytes.size() / 2);
    return scenario;
}

std::vector<Turn> allTurns() {
    std::vector<Turn> turns;
    for (const Scenario& scenario : scenarios()) {
        if (!isSmall(scenario)) continue;
        turns.push_back({scenario});
        if (!scenario.files.empty()) turns.push_back({damaged(scenario)});
    }
    return turns;
}

bool soak(std::size_t calls) {
    Stage stage;
    std::vector<Turn> turns = allTurns();
    std::mt19937 order(20240229);  // the same order each time
    std::int64_t resident = 0;
    std::ptrdiff_t files = 0;
    for (std::size_t done = 0; done < calls;) {
        Turn& turn = turns[order() % turns.size()];
        Outcome outcome = stage.play(turn.scenario);
        ++turn.count;
        if (!turn.first)
            turn.first = std::move(outcome);
        else if (!(outcome == *turn.first)) {
            std::printf("%s is different at turn %zu\n", turn.scenario.name.c_str(), turn.count);
            return false;
        }
        done += turn.scenario.before.size() + 1 + turn.scenario.after.size();
        if (resident == 0 && done >= calls / 10) {
            stage.forget();
            resident = residentBytes();
            files = openFiles();
        }
    }
    stage.forget();
    const std::int64_t grown = residentBytes() - resident;
    const std::ptrdiff_t opened = openFiles() - files;
    const std::size_t fewest = std::ranges::min_element(turns, {}, &Turn::count)->count;
    std::printf(
        "%zu calls, %zu scenarios of at least %zu turns, %lld KiB resident, %+lld KiB and "
        "%+td open files since the first tenth\n",
        calls, turns.size(), fewest, static_cast<long long>(residentBytes() / 1024),
        static_cast<long long>(grown / 1024), opened);
    return grown <= kAllowedGrowth && opened == 0;
}

}  // namespace

int main(int count, char** arguments) {
    const std::size_t calls = count == 2 ? std::strtoul(arguments[1], nullptr, 10) : 0;
    if (calls == 0) return 2;
    return soak(calls) ? 0 : 1;
}
