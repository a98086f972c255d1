#pragma once
// A program run to its end, as a shell would run it but without a shell.

#include <string>
#include <vector>

struct Ended {
    int exitStatus;  // 128 and more: ended by a signal
    std::string out;
    std::string err;
};

// `arguments` starts with the program's path. Standard input is empty; neither output is a
// terminal.
Ended run(const std::vector<std::string>& arguments);
