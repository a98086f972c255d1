#include "Memory.h"

#include <linux/magic.h>
#include <malloc.h>
#include <sys/vfs.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <fstream>
#include <string>

#include "terminal/Failure.h"

namespace {

constexpr std::uint32_t kSmallSide = 256;
constexpr double kMargin = 2.0 * 1024 * 1024;  // beyond what the export may hold

constexpr const char* kStatus = "/proc/self/status";

double takenBy(const Contender& quillon) {
    ::malloc_trim(0);
    std::ofstream("/proc/self/clear_refs") << 5;  // forgets the peak so far
    const double before = memoryField(kStatus, "VmRSS:");
    quillon.work();
    return memoryField(kStatus, "VmHWM:") - before;
}

// What `measure` returns, found in a child process.
template <typename Measure>
double inChild(Measure measure) {
    std::array<int, 2> pipe{};
    if (::pipe(pipe.data()) != 0) throw Failure("cannot make a pipe");
    const pid_t child = ::fork();
    if (child == 0) {
        const double result = measure();
        const bool sent = ::write(pipe[1], &result, sizeof(result)) == sizeof(result);
        ::_exit(sent ? 0 : 1);
    }
    ::close(pipe[1]);
    double result = 0;
    const bool received = ::read(pipe[0], &result, sizeof(result)) == sizeof(result);
    ::close(pipe[0]);
    ::waitpid(child, nullptr, 0);
    if (!received) throw Failure("the process that measures memory has failed");
    return result;
}

}  // namespace

double memoryField(const std::string& file, const std::string& field) {
    std::ifstream lines(file);
    std::string word;
    while (lines >> word) {
        double kibibytes = 0;
        if (word == field && lines >> kibibytes) return kibibytes * 1024;
    }
    throw Failure("cannot read " + field + " from " + file);
}

double roomIn(const std::string& folder) {
    struct statfs disk {};
    if (::statfs(folder.c_str(), &disk) != 0) throw Failure("cannot look at " + folder);
    const double left = static_cast<double>(disk.f_bavail) * static_cast<double>(disk.f_bsize);
    if (disk.f_type != TMPFS_MAGIC) return left;
    return std::min(left, memoryField("/proc/meminfo", "MemAvailable:"));
}

Peak peakOf(const Job& job, const Setup& setup) {
    Setup small = setup;
    small.side = kSmallSide;
    const PreparedRace warmUp(job, small);
    const PreparedRace measured(job, setup);
    for (const PreparedRace* prepared : {&warmUp, &measured}) {
        reset(prepared->race());
        prepared->race().makeReady(0);
    }
    const double taken = inChild([&] {
        warmUp.race().contenders.front().work();
        return takenBy(measured.race().contenders.front());
    });
    return {taken, measured.race().bytesHeld + kMargin};
}
