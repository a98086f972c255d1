#include "terminal/Interrupt.h"

#include <csignal>

namespace {

constexpr int kSignals[] = {SIGINT, SIGTERM, SIGHUP};

volatile std::sig_atomic_t noted = 0;  // the signal; 0: none

void note(int signal) {
    noted = signal;
}

void noteUnlessIgnored(int signal) {
    struct sigaction before {};
    if (::sigaction(signal, nullptr, &before) == 0 && before.sa_handler == SIG_IGN) return;
    struct sigaction action {};
    action.sa_handler = note;
    action.sa_flags = static_cast<int>(SA_RESTART | SA_RESETHAND);
    ::sigaction(signal, &action, nullptr);
}

}  // namespace

void noteInterrupts() {
    for (const int signal : kSignals)
        noteUnlessIgnored(signal);
}

void stopIfInterrupted() {
    if (noted != 0) throw Interrupted(noted);
}
