// What ends a command, and the exit code that goes with it.
#pragma once

#include <functional>
#include <stdexcept>
#include <string>

namespace Ketra::Tool {

enum ExitCode : int {
    kSuccess = 0,
    kFindings = 1,   ///< a file is against the rules, or two files differ
    kUsage = 2,      ///< the command line, or what it asks of the file, makes no sense
    kCannotRead = 3, ///< a file cannot be opened, read or written
    kMalformed = 4,  ///< not a movie, or a damaged one
    kNotAllowed =
        5, ///< media that has no place there, a change that the file does not take, an output that exists
    kUnverified = 7, ///< what was written reads back differently
    kInterrupted = 130
};

/// The text says what is wrong; main() puts program and file in front of it.
class ToolError : public std::runtime_error {
public:
    ToolError(ExitCode code, const std::string& text) : std::runtime_error(text), code_(code) {}
    ExitCode code() const { return code_; }

private:
    ExitCode code_;
};

/// A message on standard error, in the form of all messages of this program.
void complain(const std::string& file, const std::string& text);

/// Runs what works on one file; whatever it throws becomes a message and the exit code.
int guarded(const std::string& file, const std::function<void()>& work);

} // namespace Ketra::Tool
