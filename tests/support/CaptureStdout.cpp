#include "support/CaptureStdout.h"

#include <unistd.h>

#include <stdexcept>

CaptureStdout::CaptureStdout() : file_(std::tmpfile()), standardOutput_(::dup(STDOUT_FILENO)) {
    std::fflush(stdout);  // what was written before belongs to the test's own output
    if (file_ == nullptr || standardOutput_ < 0 || ::dup2(::fileno(file_), STDOUT_FILENO) < 0)
        throw std::runtime_error("cannot capture the standard output");
}

CaptureStdout::~CaptureStdout() {
    std::fflush(stdout);
    ::dup2(standardOutput_, STDOUT_FILENO);
    ::close(standardOutput_);
    std::fclose(file_);
}

std::string CaptureStdout::text() const {
    std::string text;
    char block[4096];
    for (;;) {
        const ssize_t count =
            ::pread(::fileno(file_), block, sizeof block, static_cast<off_t>(text.size()));
        if (count <= 0) return text;
        text.append(block, static_cast<std::size_t>(count));
    }
}
