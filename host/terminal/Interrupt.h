#pragma once
// Ctrl-C while files are written: the work stops between two steps, so that unfinished files can be
// deleted. A second Ctrl-C ends the program at once.

#include <exception>

struct Interrupted : std::exception {
    const char* what() const noexcept override { return "interrupted"; }
};

// From now on Ctrl-C is only noted, unless the program was started with it ignored.
void noteInterrupts();

// Throws Interrupted once Ctrl-C was noted. Call it only where an exception deletes every unfinished
// file.
void stopIfInterrupted();
