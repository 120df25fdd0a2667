#include "remux/Interrupt.h"

#include "ToolError.h"

#include <csignal>

namespace Ketra::Tool {

namespace {

volatile std::sig_atomic_t interrupted = 0;

extern "C" void noteSignal(int) { interrupted = 1; }

struct Handled {
    int signal;
    void (*handler)(int);
};

const Handled kHandled[] = {
    {SIGINT, noteSignal},
    {SIGTERM, noteSignal},
#ifdef SIGHUP
    {SIGHUP, noteSignal},
#endif
#ifdef SIGXFSZ
    {SIGXFSZ, SIG_IGN},
#endif
};

} // namespace

InterruptGuard::InterruptGuard() {
    interrupted = 0;
    for (const Handled& handled : kHandled) {
        std::signal(handled.signal, handled.handler);
    }
}

InterruptGuard::~InterruptGuard() {
    for (const Handled& handled : kHandled) {
        std::signal(handled.signal, SIG_DFL);
    }
}

void InterruptGuard::check() {
    if (interrupted) throw ToolError(kInterrupted, "interrupted; nothing was written");
}

} // namespace Ketra::Tool
