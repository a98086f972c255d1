#pragma once
// A job: one export working on large files, and what else does the same work.

#include <sys/types.h>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "Files.h"
#include "calls/Library.h"
#include "terminal/Interrupt.h"

enum class Role {
    kQuillon,
    kBefore,   // another build of the library, to compare with
    kPeer,     // the best that other software does
    kLimit,    // the same file traffic without any computing
    kSources,  // of that the maps which are only read
};

struct Contender {
    Role role;
    std::string name;
    std::function<float()> work;  // returns the export's status, or what the export would return

    // The highest allowed ratio of quillon's time to this one's; 0: there is none.
    double target = 0.0;

    // Whether status and results must be quillon's. The limit computes nothing, and JPEG encoders
    // round differently.
    bool sameResult = true;

    // Returns the process that does the work for this one, whose time counts; empty if there is none.
    std::function<pid_t()> helper = {};
};

// A job with its files, all of them in a folder of its own.
struct Race {
    double amount = 0;        // of work, in the job's unit
    double bytesWritten = 0;  // by the export to all its files, one per tile
    double bytesHeld = 0;     // of its input, which the export may hold in memory

    // How often a contender works in each run, and what makes the files ready for each time, which
    // does not count.
    std::uint32_t steps = 1;
    std::function<void(std::uint32_t step)> makeReady = [](std::uint32_t) {};

    // A file that the work changes; it becomes a copy of the original before each run.
    std::string rewritten = {};
    std::string original = {};
    std::vector<std::string> created = {};  // files that the work makes; deleted before each run

    std::function<std::uint64_t()> resultDigest = [] { return std::uint64_t{0}; };
    std::vector<Contender> contenders = {};  // quillon first
};

struct Setup {
    const Library& library;
    const Library* before;  // null if there is none
    std::string folder;     // for the job's files
    std::uint32_t side;     // of the maps, in pixels; a mesh has side * side / 16 faces
    std::uint32_t tiles;    // of a mesh, or of a sheet of maps
};

inline constexpr std::uint32_t kLargestSide = 16384;

struct Job {
    std::string name;
    const char* unit;  // of amounts: MP or Mfaces
    std::function<Race(const Setup&)> prepare;

    double diskPerPixel;  // bytes that all its files take, per pixel of its maps
    std::uint32_t largestSide = kLargestSide;  // that the export takes
    bool growsWithTiles = false;               // writes one file per tile
};

// A race with its files, in a folder that is deleted with it.
class PreparedRace {
public:
    // Makes the folder within setup.folder.
    PreparedRace(const Job& job, Setup setup);
    PreparedRace(const PreparedRace&) = delete;
    PreparedRace& operator=(const PreparedRace&) = delete;
    ~PreparedRace();

    const Race& race() const { return race_; }

private:
    explicit PreparedRace(const std::string& parent);

    std::string folder_;
    Race race_;
};

// Restores the race's files to their state before the work.
void reset(const Race& race);

// Restores them and calls `work` for each step.
template <typename Work>
void forEachStep(const Race& race, Work work) {
    reset(race);
    for (std::uint32_t step = 0; step < race.steps; ++step) {
        stopIfInterrupted();
        race.makeReady(step);
        work();
    }
}

std::vector<Job> mapJobs();
std::vector<Job> meshJobs();

// The export as a contender, once for each library.
std::vector<Contender> exportContenders(const Setup& setup, const std::string& exportName,
                                        const CallArguments& arguments);

// What moves the bytes of a job, as a contender; `role` is kLimit or kSources.
Contender mover(Role role, const std::function<void()>& move, double target);
