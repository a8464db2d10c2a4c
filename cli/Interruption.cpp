#include "cli/Interruption.h"

#include <csignal>

namespace VantorCli {

namespace {

constexpr int kSignals[] = {SIGINT, SIGTERM};

volatile std::sig_atomic_t gSignal = 0;  // the one that came; 0 for none

extern "C" void Note(int signal) { gSignal = signal; }

void HandleBy(void (*handler)(int)) {
    for (const int signal : kSignals) std::signal(signal, handler);
}

}  // namespace

Interruption::Interruption() {
    gSignal = 0;
    HandleBy(Note);
}

Interruption::~Interruption() { HandleBy(SIG_DFL); }

bool Interruption::HasCome() { return gSignal != 0; }

void Interruption::Pass() {
    if (!HasCome()) return;
    HandleBy(SIG_DFL);
    std::raise(gSignal);
}

}  // namespace VantorCli
