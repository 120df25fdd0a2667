// How far a long reading is, on standard error, for a person who waits.
#pragma once

#include <chrono>
#include <cstdint>

namespace Ketra::Tool {

/// Silent unless standard error is a terminal that the data does not go to as well, and for the first second.
class Progress {
public:
    enum Unit { kSteps, kBytes }; ///< of bytes, rate and time left are shown, too

    explicit Progress(std::uint64_t total, Unit unit = kSteps);
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;
    ~Progress(); ///< clears its line

    void update(std::uint64_t done);

private:
    using Clock = std::chrono::steady_clock;

    void show(std::uint64_t done, Clock::time_point now);

    std::uint64_t total_;
    Unit unit_;
    bool wanted_;
    bool shown_ = false;
    unsigned int calls_ = 0;
    Clock::time_point start_;
    Clock::time_point next_;
};

} // namespace Ketra::Tool
