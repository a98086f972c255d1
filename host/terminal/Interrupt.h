#pragma once
// Signals that end the program while files are written: SIGINT (Ctrl-C), SIGTERM and SIGHUP. The work
// stops between two steps, so that unfinished files can be deleted. A second signal of the same kind
// ends the program at once.

#include <exception>

class Interrupted : public std::exception {
public:
    explicit Interrupted(int signal) : signal_(signal) {}
    const char* what() const noexcept override { return "interrupted"; }
    int signal() const { return signal_; }

private:
    int signal_;
};

// From now on these signals are only noted, except those that the program was started to ignore.
void noteInterrupts();

// Throws Interrupted once a signal was noted. Call it only where an exception deletes every
// unfinished file.
void stopIfInterrupted();
