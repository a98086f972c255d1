#pragma once
// A job: one export or operation working on large files, and what else does the same work.

#include <sys/types.h>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "Build.h"
#include "Files.h"
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

    // That a limit moves: read, and written.
    double bytes = 0.0;

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

    // Brings back whatever else the work changes.
    std::function<void()> restore = [] {};

    std::function<std::uint64_t()> resultDigest = [] { return std::uint64_t{0}; };
    std::vector<Contender> contenders = {};  // quillon first
};

struct Setup {
    const Build& build;
    const Build* before;  // null if there is none
    std::string folder;   // for the job's files
    std::uint32_t side;   // of the maps, in pixels; a mesh has side * side / 16 faces
    std::uint32_t tiles;  // of a mesh, or of a sheet of maps
};

inline constexpr std::uint32_t kLargestSide = 16384;

struct Job {
    std::string name;
    std::string unit;  // of amounts: MP, or millions such as Mfaces
    std::function<Race(const Setup&)> prepare;

    // That all its files take.
    std::function<double(const Setup&)> diskBytes = [](const Setup&) { return 0.0; };
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
std::vector<Job> folderJobs();

// What quillon does, as a contender for each build. `callOf` makes it of a build's functions; it
// returns nothing for a build that lacks one of them.
std::vector<Contender> quillonContenders(const Setup& setup,
                                         const std::function<Build::Call(const Build&)>& callOf);

// The same for one call.
std::vector<Contender> quillonContenders(const Setup& setup, const std::string& name,
                                         const CallArguments& arguments);

// What moves the bytes of a job, as a contender.
Contender limit(const std::vector<Traffic>& traffic, double target);
Contender limit(const std::function<void()>& move, double bytes, double target);

// The same for the files that are only read.
Contender sources(const std::vector<Traffic>& traffic, double target);
