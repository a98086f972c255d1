// Signals during a command.

#include <gmock/gmock.h>

#include <csignal>
#include <fstream>
#include <thread>

#include "host/Terminal.h"

namespace {

// A pipe that takes nothing until it is drained.
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

    // Reads all that is written until every writer has closed its end.
    void drain() {
        ::close(ends_[1]);
        ByteList page(4096);
        while (::read(ends_[0], page.data(), page.size()) > 0) {
        }
    }

private:
    int ends_[2]{};
};

template <typename Condition>
void waitUntil(Condition holds) {
    for (int i = 0; i < 10'000 && !holds(); ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
}

struct Interrupt : ::testing::Test {
    ~Interrupt() override { ::close(nowhere); }

    TempDir dir;
    const int nowhere = ::open("/dev/null", O_RDWR | O_CLOEXEC);
};

// So that a signal never comes too late, the export writes its log into a full pipe. Folders with long
// names make each line of the log long, so that it fills the program's buffer before the first tile is
// rendered.
struct InterruptedBy : Interrupt, ::testing::WithParamInterface<int> {};

INSTANTIATE_TEST_SUITE_P(Signals, InterruptedBy, ::testing::Values(SIGINT, SIGTERM, SIGHUP));

TEST_P(InterruptedBy, AnExportLeavesNothingAndEndsWithTheSignal) {
    const std::string mesh = dir.write("two.Vemo", twoQuads());
    std::string folder;
    for (int i = 0; i < 8; ++i)
        folder += std::string(200, 'x') + '/';
    dir.makeFolder(folder);
    const std::string out = dir.path(folder + "maps");
    FullPipe log;
    const pid_t child = startQuillon({"export", mesh, "--out", out}, {nowhere, log.end(), nowhere});
    waitUntil([&] { return std::filesystem::exists(out + "/working"); });
    ::kill(child, GetParam());
    log.drain();
    EXPECT_EQ(exitStatusOf(child), 128 + GetParam());
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
TEST_F(Interrupt, AnImportLeavesAnEarlierMeshAndNothingOfItsOwn) {
    if (*QUILLON_EMULATOR != '\0')
        GTEST_SKIP() << "/proc shows the emulator's signal handlers in place of quillon's";
    std::string text = "vt 0 0\n";
    for (int i = 0; i < 200'000; ++i)
        text += "v 0 0 0\nv 1 0 0\nv 1 1 0\nf -1/1 -2/1 -3/1\n";
    const std::string model = dir.write("model.obj", text);
    const auto interruptedImport = [&] {
        const pid_t child =
            startQuillon({"import", model, dir.path("model.Vemo")}, {nowhere, nowhere, nowhere});
        waitUntil([&] { return notesInterrupts(child); });
        ::kill(child, SIGINT);
        return exitStatusOf(child);
    };
    EXPECT_EQ(interruptedImport(), 130);
    EXPECT_FALSE(dir.has("model.Vemo"));
    dir.write("model.Vemo", twoQuads());
    EXPECT_EQ(interruptedImport(), 130);
    EXPECT_EQ(readBytes(dir.path("model.Vemo")), twoQuads());
}

}  // namespace
