#include "remux/Interrupt.h"

#include "ToolError.h"

#include <csignal>

namespace Ketra::Tool {

namespace {

volatile std::sig_atomic_t interrupted = 0;

extern "C" void noteSignal(int) { interrupted = 1; }

} // namespace

InterruptGuard::InterruptGuard() {
    interrupted = 0;
    std::signal(SIGINT, noteSignal);
    std::signal(SIGTERM, noteSignal);
#ifdef SIGHUP
    std::signal(SIGHUP, noteSignal);
#endif
#ifdef SIGXFSZ
    std::signal(SIGXFSZ, SIG_IGN);
#endif
}

InterruptGuard::~InterruptGuard() {
    std::signal(SIGINT, SIG_DFL);
    std::signal(SIGTERM, SIG_DFL);
#ifdef SIGHUP
    std::signal(SIGHUP, SIG_DFL);
#endif
#ifdef SIGXFSZ
    std::signal(SIGXFSZ, SIG_DFL);
#endif
}

void InterruptGuard::check() {
    if (interrupted) throw ToolError(kInterrupted, "interrupted; nothing was written");
}

} // namespace Ketra::Tool
