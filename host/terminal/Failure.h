#pragma once
// Why the program stops, as one sentence. main prints it after the program's name and exits.

#include <stdexcept>

// The work cannot be done: exit status 1.
struct Failure : std::runtime_error {
    using std::runtime_error::runtime_error;
};

// The command line asks for something that does not exist: exit status 2.
struct WrongUsage : std::runtime_error {
    using std::runtime_error::runtime_error;
};
