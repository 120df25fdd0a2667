// How far a long reading is, on standard error, for a person who waits.
#pragma once

#include <chrono>
#include <cstdint>

namespace Ketra::Tool {

/// Silent unless standard error is a terminal that the data does not go to as well, and for the first second.
class Progress {
public:
    explicit Progress(std::uint64_t total);
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;
    ~Progress(); ///< clears its line

    void update(std::uint64_t done);

private:
    using Clock = std::chrono::steady_clock;

    std::uint64_t total_;
    bool wanted_;
    bool shown_ = false;
    unsigned int calls_ = 0;
    Clock::time_point next_;
};

} // namespace Ketra::Tool
