#pragma once
// What the process writes to its standard output, file descriptor 1, during a scope.

#include <cstdio>
#include <string>

class CaptureStdout {
public:
    CaptureStdout();
    CaptureStdout(const CaptureStdout&) = delete;
    CaptureStdout& operator=(const CaptureStdout&) = delete;
    ~CaptureStdout();

    // What has been written to the descriptor so far, without what a stream still buffers.
    std::string text() const;

private:
    std::FILE* file_;
    int standardOutput_;
};
