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

    // What has reached the descriptor so far; not what still waits in a stream's buffer.
    std::string text() const;

private:
    std::FILE* file_;
    int standardOutput_;
};
