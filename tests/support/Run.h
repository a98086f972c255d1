#pragma once
// A program run to its end, as a shell would run it but without a shell.

#include <string>
#include <vector>

struct Ended {
    int exitStatus;  // 128 and more: ended by a signal
    std::string out;
    std::string err;
};

// The command line that runs a program of this build: through the emulator when the build is for
// another processor, since the system need not know how to start such a program.
std::vector<std::string> commandLine(const std::string& program,
                                     const std::vector<std::string>& arguments);

// `arguments` starts with the program's path. Standard input is empty; neither output is a
// terminal.
Ended run(const std::vector<std::string>& arguments);
