#include "terminal/Interrupt.h"

#include <csignal>

namespace {

volatile std::sig_atomic_t interrupted = 0;

void note(int) {
    interrupted = 1;
}

}  // namespace

void noteInterrupts() {
    struct sigaction before {};
    if (::sigaction(SIGINT, nullptr, &before) == 0 && before.sa_handler == SIG_IGN) return;
    struct sigaction action {};
    action.sa_handler = note;
    action.sa_flags = static_cast<int>(SA_RESTART | SA_RESETHAND);
    ::sigaction(SIGINT, &action, nullptr);
}

void stopIfInterrupted() {
    if (interrupted != 0) throw Interrupted{};
}
