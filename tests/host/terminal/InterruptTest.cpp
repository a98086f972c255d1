// Ctrl-C during a command. So that it never comes too late, the command writes its log into a pipe
// that is full until Ctrl-C was sent.

#include <fcntl.h>
#include <gmock/gmock.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <fstream>
#include <thread>

#include "host/Quillon.h"

extern char** environ;

namespace {

using ::testing::ElementsAre;

class FullPipe {
public:
    FullPipe() {
        if (::pipe2(ends_, O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
        ::fcntl(ends_[1], F_SETFL, O_NONBLOCK);
        const ByteList page(4096);
        while (::write(ends_[1], page.data(), page.size()) > 0) {
        }
        ::fcntl(ends_[1], F_SETFL, 0);
    }
    FullPipe(const FullPipe&) = delete;
    FullPipe& operator=(const FullPipe&) = delete;
    ~FullPipe() { ::close(ends_[0]); }

    int end() const { return ends_[1]; }

    // Takes all that is written until every writer has closed its end.
    void drain() {
        ::close(ends_[1]);
        ByteList page(4096);
        while (::read(ends_[0], page.data(), page.size()) > 0) {
        }
    }

private:
    int ends_[2]{};
};

// Starts quillon with its log going to `output` and its sentences nowhere.
pid_t startQuillon(const std::vector<std::string>& arguments, int output) {
    std::vector<std::string> line = commandLine(QUILLON_HOST, arguments);
    std::vector<char*> argv;
    for (std::string& text : line)
        argv.push_back(text.data());
    argv.push_back(nullptr);

    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    ::posix_spawn_file_actions_adddup2(&actions, output, STDOUT_FILENO);
    ::posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    pid_t child = 0;
    const int error = ::posix_spawn(&child, argv[0], &actions, nullptr, argv.data(), environ);
    ::posix_spawn_file_actions_destroy(&actions);
    if (error != 0) throw std::runtime_error("cannot start quillon");
    return child;
}

int exitStatusOf(pid_t child) {
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

template <typename Condition>
void waitUntil(Condition holds) {
    for (int i = 0; i < 10'000 && !holds(); ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
}

// Runs quillon, sends Ctrl-C as soon as `sign` exists and returns the exit status.
int interrupted(const std::vector<std::string>& arguments, const std::string& sign) {
    FullPipe pipe;
    const pid_t child = startQuillon(arguments, pipe.end());
    waitUntil([&] { return std::filesystem::exists(sign); });
    ::kill(child, SIGINT);
    pipe.drain();
    return exitStatusOf(child);
}

// Folders with long names make each line of the log long, so that the log fills the program's
// buffer before the first tile is rendered.
TEST(Interrupt, AnExportLeavesNothingAndEndsWith130) {
    const TempDir dir;
    const std::string mesh = dir.write("two.Vemo", twoQuads());
    std::string folder;
    for (int i = 0; i < 8; ++i)
        folder += std::string(200, 'x') + '/';
    std::filesystem::create_directories(dir.path(folder));
    const std::string out = dir.path(folder + "maps");
    EXPECT_EQ(interrupted({"export", mesh, "--out", out}, out + "/working"), 130);
    EXPECT_TRUE(std::filesystem::is_empty(dir.path(folder)));
    EXPECT_EQ(readBytes(mesh), twoQuads());
}

// Whether a process has set a handler for Ctrl-C, according to the system.
bool notesInterrupts(pid_t process) {
    std::ifstream status("/proc/" + std::to_string(process) + "/status");
    for (std::string line; std::getline(status, line);) {
        if (line.starts_with("SigCgt:"))
            return (std::stoull(line.substr(8), nullptr, 16) >> (SIGINT - 1) & 1) != 0;
    }
    return false;
}

// The model is large enough that it is still being read when Ctrl-C comes.
TEST(Interrupt, AnImportLeavesAnEarlierMeshAndNothingOfItsOwn) {
    if (*QUILLON_EMULATOR != '\0') GTEST_SKIP() << "the system reports the emulator's handlers";
    const TempDir dir;
    std::string text = "vt 0 0\n";
    for (int i = 0; i < 100'000; ++i)
        text += "v 0 0 0\nv 1 0 0\nv 1 1 0\nf -1/1 -2/1 -3/1\n";
    const std::string model = dir.write("model.obj", text);
    const auto interruptedImport = [&] {
        const pid_t child = startQuillon({"import", model, dir.path("model.Vemo")}, STDOUT_FILENO);
        waitUntil([&] { return notesInterrupts(child); });
        ::kill(child, SIGINT);
        return exitStatusOf(child);
    };
    EXPECT_EQ(interruptedImport(), 130);
    EXPECT_FALSE(dir.has("model.Vemo"));
    dir.write("model.Vemo", "an earlier mesh");
    EXPECT_EQ(interruptedImport(), 130);
    EXPECT_EQ(readBytes(dir.path("model.Vemo")).size(), 15u);
}

}  // namespace
