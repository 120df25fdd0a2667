#include "Progress.h"

#include "Terminal.h"

#include <algorithm>
#include <cstdio>
#include <fmt/format.h>

namespace Ketra::Tool {

namespace {

constexpr auto kQuietTime = std::chrono::seconds(1);
constexpr auto kInterval = std::chrono::milliseconds(200);
constexpr unsigned int kCallsALook = 256; // the clock is not asked for every frame

} // namespace

Progress::Progress(std::uint64_t total, Unit unit)
    : total_(total), unit_(unit),
      wanted_(total > 0 && isTerminal(stderr) && (unit == kBytes || !isTerminal(stdout))),
      start_(Clock::now()), next_(start_ + kQuietTime) {}

Progress::~Progress() {
    if (shown_) fmt::print(stderr, "\r\033[K");
}

void Progress::update(std::uint64_t done) {
    const unsigned int interval = unit_ == kBytes ? 1 : kCallsALook;
    if (!wanted_ || ++calls_ % interval != 0) return;
    const auto now = Clock::now();
    if (now < next_) return;
    next_ = now + kInterval;
    shown_ = true;
    show(done, now);
}

void Progress::show(std::uint64_t done, Clock::time_point now) {
    const auto percent = std::min<std::uint64_t>(100, done * 100 / total_);
    if (unit_ == kSteps) {
        fmt::print(stderr, "\r{:3} %", percent);
        return;
    }
    const double elapsed = std::chrono::duration<double>(now - start_).count();
    const double rate = static_cast<double>(done) / elapsed;
    const double left = rate > 0 ? static_cast<double>(total_ - std::min(done, total_)) / rate : 0;
    const auto seconds = static_cast<unsigned int>(std::min(left, 359999.0));
    fmt::print(stderr, "\r\033[K{:3} %  {:.1f} MB/s  {}:{:02}:{:02} left", percent, rate / 1e6,
               seconds / 3600, seconds / 60 % 60, seconds % 60);
}

} // namespace Ketra::Tool
