#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <memory>

#include "MapPeers.h"
#include "files/TiffWriter.h"
#include "terminal/Failure.h"

namespace {

// The Python process. It works when it gets a line and then sends one, both over one socket.
class Helper {
public:
    Helper(const Maps& maps, const std::string& variant) {
        std::array<int, 2> ends{};
        if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()) != 0)
            throw Failure("cannot make a socket");
        socket_ = ends[0];
        process_ = ::fork();
        if (process_ == 0) {
            ::dup2(ends[1], STDIN_FILENO);
            ::dup2(ends[1], STDOUT_FILENO);
            execute(maps, variant);
        }
        ::close(ends[1]);
        if (!hasAnswered())
            throw Failure(QUILLON_NUMPY_PEER " does not start: is numpy installed?");
    }
    Helper(const Helper&) = delete;
    Helper& operator=(const Helper&) = delete;
    ~Helper() {
        ::close(socket_);  // ends the process
        ::waitpid(process_, nullptr, 0);
    }

    pid_t process() const { return process_; }

    void work() const {
        if (::write(socket_, "\n", 1) != 1 || !hasAnswered()) throw Failure("a helper has failed");
    }

private:
    [[noreturn]] static void execute(const Maps& maps, const std::string& variant) {
        const std::string offset = std::to_string(kTiffPixelOffset);
        const std::string pixels = std::to_string(maps.pixels());
        ::execl(QUILLON_PYTHON, QUILLON_PYTHON, QUILLON_NUMPY_PEER, variant.c_str(),
                maps.map.c_str(), maps.made.c_str(), offset.c_str(), pixels.c_str(), nullptr);
        ::_exit(127);
    }

    bool hasAnswered() const {
        char byte = 0;
        while (::read(socket_, &byte, 1) == 1) {
            if (byte == '\n') return true;
        }
        return false;
    }

    pid_t process_ = 0;
    int socket_ = -1;
};

}  // namespace

Contender firstChannelByNumpy(const Maps& maps, const std::string& variant, double target) {
    const auto started = std::make_shared<std::unique_ptr<Helper>>();
    const auto helper = [=]() -> const Helper& {
        if (*started == nullptr) *started = std::make_unique<Helper>(maps, variant);
        return **started;
    };
    const auto work = [=] {
        TiffWriter(maps.made, {maps.side, maps.side, 1, 32}).finish();
        helper().work();
        return 0.0f;
    };
    return {.role = Role::kPeer,
            .name = "numpy, " + variant,
            .work = work,
            .target = target,
            .helper = [=] { return helper().process(); }};
}
