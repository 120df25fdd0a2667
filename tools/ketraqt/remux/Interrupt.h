// Ctrl-C: work in progress is given up in an orderly way.
#pragma once

namespace Ketra::Tool {

/// While one exists, the signals that end programs are only noted, and a file that grows too large is an
/// error of writing.
class InterruptGuard {
public:
    InterruptGuard();
    InterruptGuard(const InterruptGuard&) = delete;
    InterruptGuard& operator=(const InterruptGuard&) = delete;
    ~InterruptGuard();

    /// Throws ToolError once a signal has come.
    static void check();
};

} // namespace Ketra::Tool
