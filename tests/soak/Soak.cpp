// soak CALLS: that many calls of all exports, mixed, in one process. Each scenario must have the same
// outcome at each turn as at its first. Other calls work on files of one name whose size changes from
// turn to turn, with the outputs of the turn before still there: nothing of a longer one may stay. What
// the library holds of the heap, the open files, and the files that it leaves in its folders, in the
// working folder and in the temporary one must be the same at the end as after the first tenth.
//
//   exit status  0: passed, 1: failed, 2: no count

#include <stdlib.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <optional>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "faults/Scenarios.h"
#include "faults/System.h"
#include "support/Faults.h"
#include "support/TempDir.h"

namespace {

namespace fs = std::filesystem;

constexpr std::size_t kLargestFile = 8 * 1024;  // of the scenarios that take part

// The sides of the images whose size changes, in turn: each is followed by a larger and by a smaller
// one. Of the largest each file has several of the pieces of 256 KiB in which files are moved.
constexpr std::uint32_t kSides[] = {61, 4, 320, 20, 150, 61, 20, 4, 150};

// What the resident memory may grow by: the heap's own doing, not a few bytes a call. A sanitizer
// keeps what was freed.
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

// What the library has taken from the heap and not given back, in all its calls.
std::ptrdiff_t heldBlocks = 0;
std::ptrdiff_t heldBytes = 0;

class CountingStage : public Stage {
protected:
    float invoke(const char* exportName, const Arguments& arguments) override {
        Watch watch;
        const float status = Stage::invoke(exportName, arguments);
        const Asked asked = watch.end();
        heldBlocks += asked.blocks;
        heldBytes += asked.bytes;
        return status;
    }
};

// All that a process leaves behind: the folders in which it may write, and no other program does.
class Home {
public:
    Home() {
        fs::current_path(dir_.makeFolder("working"));
        ::setenv("TMPDIR", dir_.makeFolder("temporary").c_str(), 1);
        ::setenv("HOME", dir_.makeFolder("home").c_str(), 1);
    }
    Home(const Home&) = delete;
    Home& operator=(const Home&) = delete;
    ~Home() { fs::current_path("/"); }

    // Every file and folder with its size.
    std::map<std::string, std::uintmax_t> entries() const {
        std::map<std::string, std::uintmax_t> found;
        for (const fs::directory_entry& entry : fs::recursive_directory_iterator(dir_.path()))
            found[entry.path()] = entry.is_regular_file() ? entry.file_size() : 0;
        return found;
    }

private:
    const TempDir dir_;
};

// A scenario and its outcome at its first turn.
class Turn {
public:
    explicit Turn(Scenario scenario) : scenario_(std::move(scenario)) {}

    const Scenario& scenario() const { return scenario_; }
    std::size_t calls() const { return scenario_.before.size() + 1 + scenario_.after.size(); }
    std::size_t count() const { return count_; }

    // Plays it in an empty folder, or over what is there. False when the outcome is another than at the
    // first turn.
    bool play(Stage& stage, bool isEmpty = true) {
        isEmpty ? stage.prepare(scenario_) : stage.prepareOver(scenario_);
        Outcome outcome = stage.outcome(scenario_, stage.make(scenario_.call));
        const bool isFirst = ++count_ == 1;
        if (isFirst) first_ = std::move(outcome);
        const bool agrees = isFirst || outcome == first_;
        if (!agrees)
            std::fprintf(stderr, "%s is different at turn %zu\n", scenario_.name.c_str(), count_);
        return agrees;
    }

private:
    Scenario scenario_;
    Outcome first_;
    std::size_t count_ = 0;
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

std::vector<Turn> turnsOfOneSize() {
    std::vector<Turn> turns;
    for (const Scenario& scenario : scenarios()) {
        if (!isSmall(scenario)) continue;
        turns.emplace_back(scenario);
        if (!scenario.files.empty()) turns.emplace_back(damaged(scenario));
    }
    return turns;
}

// A call on files whose size changes, in a folder of its own.
class Sizes {
public:
    void add(std::uint32_t side, const Scenario& scenario) {
        Scenario sized = scenario;
        sized.name += std::to_string(side);
        Turn& turn = turns_.emplace(side, std::move(sized)).first->second;
        turn.play(*stage_);
    }
    Turn& turn() { return turns_.at(kSides[next_ % std::size(kSides)]); }
    // Plays it over the files and outputs of the turn before.
    bool play() {
        const bool agrees = turn().play(*stage_, false);
        ++next_;
        return agrees;
    }
    // Leaves those of the first size.
    bool rest() {
        next_ = 0;
        return play();
    }

private:
    std::unique_ptr<Stage> stage_ = std::make_unique<CountingStage>();
    std::map<std::uint32_t, Turn> turns_;
    std::size_t next_ = 0;
};

std::map<std::string, Sizes> turnsOfManySizes() {
    std::map<std::string, Sizes> calls;
    for (const std::uint32_t side : std::set<std::uint32_t>(std::begin(kSides), std::end(kSides))) {
        for (const Scenario& scenario : scenariosOfSize(side))
            calls[scenario.name].add(side, scenario);
    }
    return calls;
}

// What there is between two calls when no scenario is being played.
struct Rest {
    std::ptrdiff_t openFiles = 0;
    std::ptrdiff_t heldBlocks = 0;
    std::ptrdiff_t heldBytes = 0;
    std::map<std::string, std::uintmax_t> entries;
    std::int64_t residentBytes = 0;
};

class Soak {
public:
    // Makes calls until there have been as many.
    bool run(std::size_t calls) {
        while (done_ < calls) {
            const std::size_t chosen = order_() % (fixed_.size() + sizes_.size());
            if (!play(chosen)) return false;
        }
        return true;
    }

    std::optional<Rest> rest() {
        stage_.prepare({});
        for (auto& [name, sizes] : sizes_) {
            if (!sizes.rest()) return {};
        }
        stage_.forget();
        return Rest{openFiles(), heldBlocks, heldBytes, home_.entries(), residentBytes()};
    }

    void report(const Rest& early, const Rest& late) const {
        const std::size_t fewest = std::ranges::min_element(fixed_, {}, &Turn::count)->count();
        std::printf(
            "%zu calls, %zu scenarios of at least %zu turns, %zu of changing sizes\n"
            "%lld KiB resident; since the first tenth %+lld KiB, %+td bytes of the library's in "
            "%+td blocks,\n%+td open files, %+td entries in folders\n",
            done_, fixed_.size(), fewest, sizes_.size(),
            static_cast<long long>(late.residentBytes / 1024),
            static_cast<long long>((late.residentBytes - early.residentBytes) / 1024),
            late.heldBytes - early.heldBytes, late.heldBlocks - early.heldBlocks,
            late.openFiles - early.openFiles, std::ssize(late.entries) - std::ssize(early.entries));
    }

private:
    bool play(std::size_t chosen) {
        if (chosen < fixed_.size()) {
            done_ += fixed_[chosen].calls();
            return fixed_[chosen].play(stage_);
        }
        Sizes& sizes =
            std::next(sizes_.begin(), static_cast<std::ptrdiff_t>(chosen - fixed_.size()))->second;
        done_ += sizes.turn().calls();
        return sizes.play();
    }

    const Home home_;
    CountingStage stage_;
    std::vector<Turn> fixed_ = turnsOfOneSize();
    std::map<std::string, Sizes> sizes_ = turnsOfManySizes();
    std::mt19937 order_{20240229};  // the same order each time
    std::size_t done_ = 0;
};

bool isFlat(const Rest& early, const Rest& late) {
    return late.residentBytes - early.residentBytes <= kAllowedGrowth &&
           late.heldBlocks == early.heldBlocks &&
           isTheSameHeap(late.heldBytes, early.heldBytes, late.heldBlocks) &&
           late.openFiles == early.openFiles && late.entries == early.entries;
}

bool soak(std::size_t calls) {
    Soak soak;
    if (!soak.run(calls / 10)) return false;
    const std::optional<Rest> early = soak.rest();
    if (!early || !soak.run(calls)) return false;
    const std::optional<Rest> late = soak.rest();
    if (!late) return false;
    soak.report(*early, *late);
    return isFlat(*early, *late);
}

}  // namespace

int main(int count, char** arguments) {
    const std::size_t calls = count == 2 ? std::strtoul(arguments[1], nullptr, 10) : 0;
    if (calls == 0) return 2;
    return soak(calls) ? 0 : 1;
}
