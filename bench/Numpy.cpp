#include "Numpy.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <memory>
#include <optional>
#include <vector>

#include "files/TiffWriter.h"
#include "terminal/Failure.h"

namespace {

// A program that is told to work by a line on its input and answers with a line.
class Helper {
public:
    explicit Helper(const std::vector<std::string>& command) {
        std::array<int, 2> in{};
        std::array<int, 2> out{};
        if (::pipe2(in.data(), O_CLOEXEC) != 0 || ::pipe2(out.data(), O_CLOEXEC) != 0)
            throw Failure("cannot make pipes");
        process_ = ::fork();
        if (process_ < 0) throw Failure("cannot start " + command.front());
        if (process_ == 0) {
            ::dup2(in[0], STDIN_FILENO);
            ::dup2(out[1], STDOUT_FILENO);
            execute(command);
        }
        ::close(in[0]);
        ::close(out[1]);
        toHelper_ = in[1];
        fromHelper_ = out[0];
        if (!hasAnswered()) throw Failure(command[1] + " does not start: is numpy installed?");
    }
    Helper(const Helper&) = delete;
    Helper& operator=(const Helper&) = delete;
    ~Helper() {
        ::close(toHelper_);  // ends it
        ::close(fromHelper_);
        ::waitpid(process_, nullptr, 0);
    }

    pid_t process() const { return process_; }

    void work() const {
        if (::write(toHelper_, "\n", 1) != 1 || !hasAnswered())
            throw Failure("a helper has failed");
    }

private:
    [[noreturn]] static void execute(const std::vector<std::string>& command) {
        std::vector<char*> arguments;
        arguments.reserve(command.size() + 1);
        for (const std::string& argument : command)
            arguments.push_back(const_cast<char*>(argument.c_str()));
        arguments.push_back(nullptr);
        ::execvp(arguments.front(), arguments.data());
        ::_exit(127);
    }

    bool hasAnswered() const {
        char byte = 0;
        while (::read(fromHelper_, &byte, 1) == 1) {
            if (byte == '\n') return true;
        }
        return false;
    }

    pid_t process_ = 0;
    int toHelper_ = -1;
    int fromHelper_ = -1;
};

}  // namespace

Contender firstChannelByNumpy(const std::string& in, const std::string& out, std::uint32_t side,
                              const std::string& variant, double target) {
    const std::vector<std::string> command{QUILLON_PYTHON,
                                           QUILLON_NUMPY_PEER,
                                           variant,
                                           in,
                                           out,
                                           std::to_string(kTiffPixelOffset),
                                           std::to_string(std::uint64_t{side} * side)};
    const auto helper = [command,
                         started = std::make_shared<std::optional<Helper>>()]() -> Helper& {
        if (!*started) started->emplace(command);
        return **started;
    };
    const auto work = [=] {
        TiffWriter(out, {side, side, 1, 32}).finish();
        helper().work();
        return 0.0f;
    };
    return {.role = Role::kPeer,
            .name = "numpy, " + variant,
            .work = work,
            .target = target,
            .helper = [=] { return helper().process(); }};
}
