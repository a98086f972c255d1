#pragma once
// The command-line host on a terminal of its own, as a person starts it.

#include <fcntl.h>
#include <pty.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <stdexcept>
#include <string>
#include <vector>

#include "support/Run.h"

struct OnTerminal {
    int exitStatus;
    std::string shown;  // both outputs, with the terminal's "\r\n" at line ends
};

// Takes what a child writes to a terminal until it has ended.
inline std::string shownOn(int terminal) {
    std::string shown;
    std::array<char, 4096> piece{};
    for (;;) {
        const ssize_t count = ::read(terminal, piece.data(), piece.size());
        if (count <= 0) return shown;  // the terminal's last user is gone
        shown.append(piece.data(), static_cast<std::size_t>(count));
    }
}

// `environment` is all that the program gets, such as "TERM=xterm".
inline OnTerminal quillonOnTerminal(const std::vector<std::string>& arguments,
                                    std::vector<std::string> environment = {"TERM=xterm"}) {
    const auto pointersTo = [](std::vector<std::string>& texts) {
        std::vector<char*> pointers;
        for (std::string& text : texts)
            pointers.push_back(text.data());
        pointers.push_back(nullptr);
        return pointers;
    };
    std::vector<std::string> line = commandLine(QUILLON_HOST, arguments);
    const std::vector<char*> argv = pointersTo(line);
    const std::vector<char*> variables = pointersTo(environment);

    int ours = -1;
    int theirs = -1;
    if (::openpty(&ours, &theirs, nullptr, nullptr, nullptr) != 0)
        throw std::runtime_error("no terminal");
    ::fcntl(ours, F_SETFD, FD_CLOEXEC);
    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        ::posix_spawn_file_actions_adddup2(&actions, theirs, stream);
    ::posix_spawn_file_actions_addclose(&actions, theirs);
    pid_t child = 0;
    const int error =
        ::posix_spawn(&child, argv[0], &actions, nullptr, argv.data(), variables.data());
    ::posix_spawn_file_actions_destroy(&actions);
    ::close(theirs);
    if (error != 0) throw std::runtime_error("cannot start quillon");

    const std::string shown = shownOn(ours);
    ::close(ours);
    int status = 0;
    ::waitpid(child, &status, 0);
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, shown};
}
