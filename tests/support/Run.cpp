#include "support/Run.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <stdexcept>

#include "support/TempDir.h"

extern char** environ;

namespace {

// Sends the program's outputs to files, which never fill up as a pipe does.
class Redirections {
public:
    explicit Redirections(const TempDir& dir) {
        ::posix_spawn_file_actions_init(&actions_);
        open(STDIN_FILENO, "/dev/null", O_RDONLY);
        open(STDOUT_FILENO, dir.path("out"), O_WRONLY | O_CREAT);
        open(STDERR_FILENO, dir.path("err"), O_WRONLY | O_CREAT);
    }
    Redirections(const Redirections&) = delete;
    Redirections& operator=(const Redirections&) = delete;
    ~Redirections() { ::posix_spawn_file_actions_destroy(&actions_); }
    const posix_spawn_file_actions_t* actions() const { return &actions_; }

private:
    void open(int descriptor, const std::string& path, int flags) {
        ::posix_spawn_file_actions_addopen(&actions_, descriptor, path.c_str(), flags, 0600);
    }
    posix_spawn_file_actions_t actions_{};
};

}  // namespace

std::vector<std::string> commandLine(const std::string& program,
                                     const std::vector<std::string>& arguments) {
    std::vector<std::string> line{program};
    if (*QUILLON_EMULATOR != '\0') line.insert(line.begin(), QUILLON_EMULATOR);
    line.insert(line.end(), arguments.begin(), arguments.end());
    return line;
}

Ended run(const std::vector<std::string>& arguments) {
    std::vector<std::string> texts = arguments;
    std::vector<char*> argv;
    for (std::string& text : texts)
        argv.push_back(text.data());
    argv.push_back(nullptr);

    const TempDir dir;
    const Redirections redirections(dir);
    pid_t child = 0;
    if (::posix_spawn(&child, argv[0], redirections.actions(), nullptr, argv.data(), environ) != 0)
        throw std::runtime_error("cannot start " + arguments.front());
    int status = 0;
    if (::waitpid(child, &status, 0) != child) throw std::runtime_error("lost " + texts.front());
    const int exitStatus = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    return {exitStatus, readText(dir.path("out")), readText(dir.path("err"))};
}
