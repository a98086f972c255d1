#pragma once
// The command-line host with outputs of its own, and on a terminal, as a person starts it.

#include <fcntl.h>
#include <pty.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <stdexcept>
#include <string>
#include <vector>

#include "host/Quillon.h"

// Starts quillon with these descriptors for its input and its two outputs. `environment` is all that
// it gets, such as "TERM=xterm".
inline pid_t startQuillon(const Words& words, const std::array<int, 3>& streams,
                          Words environment = {}) {
    const auto pointersTo = [](Words& texts) {
        std::vector<char*> pointers;
        for (std::string& text : texts)
            pointers.push_back(text.data());
        pointers.push_back(nullptr);
        return pointers;
    };
    Words line = commandLine(QUILLON_HOST, words);
    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    for (std::size_t i = 0; i < streams.size(); ++i)
        ::posix_spawn_file_actions_adddup2(&actions, streams[i], static_cast<int>(i));
    pid_t child = 0;
    const int error = ::posix_spawn(&child, line.front().c_str(), &actions, nullptr,
                                    pointersTo(line).data(), pointersTo(environment).data());
    ::posix_spawn_file_actions_destroy(&actions);
    if (error != 0) throw std::runtime_error("cannot start quillon");
    return child;
}

inline int exitStatusOf(pid_t child) {
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

struct OnTerminal {
    int exitStatus;
    std::string shown;  // both outputs, with the terminal's "\r\n" at line ends
};

// Reads what a child writes to a terminal until it has ended.
inline std::string shownOn(int terminal) {
    std::string shown;
    std::array<char, 4096> piece{};
    for (;;) {
        const ssize_t count = ::read(terminal, piece.data(), piece.size());
        if (count <= 0) return shown;  // the terminal's last user is gone
        shown.append(piece.data(), static_cast<std::size_t>(count));
    }
}

inline OnTerminal quillonOnTerminal(const Words& words, const Words& environment = {"TERM=xterm"}) {
    int ours = -1;
    int theirs = -1;
    if (::openpty(&ours, &theirs, nullptr, nullptr, nullptr) != 0)
        throw std::runtime_error("no terminal");
    for (const int end : {ours, theirs})
        ::fcntl(end, F_SETFD, FD_CLOEXEC);
    const pid_t child = startQuillon(words, {theirs, theirs, theirs}, environment);
    ::close(theirs);
    const std::string shown = shownOn(ours);
    ::close(ours);
    return {exitStatusOf(child), shown};
}
