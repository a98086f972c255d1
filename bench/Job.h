#pragma once
// A job: one export at work on large files, and who does the same work beside it.

#include <sys/types.h>

#include <cstdint>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "Files.h"
#include "calls/Library.h"

enum class Role {
    kQuillon,
    kBefore,  // another build of the library, to compare with
    kPeer,    // the best that other software does
    kLimit,   // the same file traffic without any computing
};

struct Contender {
    Role role;
    std::string name;
    std::function<float()> work;  // returns the export's answer, or what the export would answer

    // What quillon's time may be at most as a ratio to this one's; 0: nothing is asked.
    double target = 0.0;

    // Whether answer and results must be quillon's. The limit computes nothing, and encoders that
    // round in another way give other bytes.
    bool sameResult = true;

    // The process that does the work for this one, whose time counts; empty when there is none.
    std::function<pid_t()> helper = {};
};

// A job with its files made. The folder it lies in belongs to it.
struct Race {
    double amount = 0;        // of work, in the job's unit
    double bytesWritten = 0;  // by the export
    double bytesHeld = 0;     // of its input, which the export may hold in memory

    // Files that the work changes: each becomes a copy of its original before each run.
    struct Rewritten {
        std::string path;
        std::string original;
    };
    std::vector<Rewritten> rewritten = {};
    std::vector<std::string> created = {};  // files that the work makes; deleted before each run

    std::function<std::uint64_t()> resultDigest = [] { return std::uint64_t{0}; };
    std::vector<Contender> contenders = {};  // quillon first

    void add(Contender contender) { contenders.push_back(std::move(contender)); }
};

struct Setup {
    const Library& library;
    const Library* before;     // null when there is none
    std::string folder;        // for the job's files
    std::uint32_t side;        // of the maps, in pixels; a mesh has side * side / 16 faces
    std::uint32_t tiles = 12;  // of a mesh
    bool sparse = false;       // maps are holes but for their heads, to be large on little memory
};

struct Job {
    std::string name;
    const char* unit;  // of amounts: MP or Mfaces
    std::function<Race(const Setup&)> prepare;

    double diskPerPixel;                // bytes that all its files take, per pixel of its maps
    bool growsWithTiles = false;        // writes one file a tile
    bool canBeSparse = true;            // the export works on a map of holes, too
    std::uint32_t largestSide = 16384;  // that the export takes
};

std::vector<Job> allJobs();

std::vector<Job> tiffJobs();
std::vector<Job> psdJobs();
std::vector<Job> bmpJobs();
std::vector<Job> encoderJobs();
std::vector<Job> meshJobs();

// The export as a contender, once for each library.
struct ExportCall {
    const char* name;
    std::string text;
    double value = 0.0;
    std::string buffer = {};  // a second path
};
std::vector<Contender> exportContenders(const Setup& setup, const ExportCall& call);

// The file traffic of a job as a contender.
Contender limit(std::vector<Traffic> traffic, double target);
