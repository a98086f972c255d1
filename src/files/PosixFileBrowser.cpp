// The platform operations of CocoaFileBrowser.h where there is no Foundation and no AppKit.

#include <fcntl.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <new>
#include <string>
#include <vector>

#include "files/CocoaFileBrowser.h"

namespace {

constexpr const char* kUsersFolder = "/home";

// A chooser's answer is one path and a line end; more than this is not a path.
constexpr std::size_t kLongestAnswer = 64 * 1024;

// The exit status of a program that could not be started: a shell's, and the one by which
// posix_spawnp may tell it where it cannot do so at once.
constexpr int kNotStarted = 127;

struct Descriptor {
    explicit Descriptor(int value) : number(value) {}
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor() { close(); }
    void close() {
        if (number >= 0) ::close(number);
        number = -1;
    }
    int number;
};

// The child's standard output goes to the pipe; the pipe's ends themselves close on exec.
struct SpawnActions {
    explicit SpawnActions(int output) {
        ::posix_spawn_file_actions_init(&actions);
        ::posix_spawn_file_actions_adddup2(&actions, output, STDOUT_FILENO);
    }
    SpawnActions(const SpawnActions&) = delete;
    SpawnActions& operator=(const SpawnActions&) = delete;
    ~SpawnActions() { ::posix_spawn_file_actions_destroy(&actions); }
    posix_spawn_file_actions_t actions{};
};

// Starts a program found on the PATH, directly with its arguments, never through a shell. Returns
// its process number, or 0 when it could not be started.
pid_t start(std::vector<std::string> arguments, int output) {
    std::vector<char*> argv;
    argv.reserve(arguments.size() + 1);
    for (std::string& argument : arguments)
        argv.push_back(argument.data());
    argv.push_back(nullptr);

    const SpawnActions redirect(output);
    pid_t child = 0;
    const int failed =
        ::posix_spawnp(&child, argv[0], &redirect.actions, nullptr, argv.data(), environ);
    return failed == 0 ? child : 0;
}

std::string readToEnd(int descriptor) {
    std::string text;
    std::array<char, 4096> block{};
    for (;;) {
        const ssize_t count = ::read(descriptor, block.data(), block.size());
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) return text;
        if (text.size() < kLongestAnswer)
            text.append(block.data(), static_cast<std::size_t>(count));
    }
}

// Waits for a child and returns its exit status, or -1 when a signal ended it.
int exitStatus(pid_t child) {
    int status = 0;
    while (::waitpid(child, &status, 0) < 0) {
        if (errno != EINTR) return -1;
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

char* newText(const std::string& text) {
    char* copy = new (std::nothrow) char[text.size() + 1];
    if (copy != nullptr) std::memcpy(copy, text.c_str(), text.size() + 1);
    return copy;
}

struct Answer {
    bool shown = false;  // the program could be started
    char* path = nullptr;
};

Answer askWith(std::vector<std::string> arguments) {
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC) != 0) return {};
    const Descriptor reading(ends[0]);
    Descriptor writing(ends[1]);
    const pid_t child = start(std::move(arguments), writing.number);
    if (child == 0) return {};

    writing.close();  // or the reading below would never see the end
    std::string path = readToEnd(reading.number);
    const int status = exitStatus(child);
    if (status != 0) return {.shown = status != kNotStarted};
    if (!path.empty() && path.back() == '\n') path.pop_back();
    if (path.empty() || path.size() >= kLongestAnswer) return {.shown = true};
    return {.shown = true, .path = newText(path)};
}

}  // namespace

bool createFolder(const char* path) {
    return path != nullptr && ::mkdir(path, 0777) == 0;
}

char* getSharedFolder() {
    struct stat status {};
    const bool exists = ::stat(kUsersFolder, &status) == 0 && S_ISDIR(status.st_mode);
    return exists ? newText(kUsersFolder) : nullptr;
}

char* runCocoaOpenFileBrowser(const char* title) {
    if (title == nullptr) return nullptr;
    const std::string heading = std::string("--title=") + title;
    const Answer answer =
        askWith({"zenity", "--file-selection", heading, "--file-filter=*.vws *.VWS"});
    if (answer.shown) return answer.path;
    return askWith({"kdialog", heading, "--getopenfilename", ".", "*.vws *.VWS"}).path;
}
