#include "Progress.h"

#include <algorithm>
#include <cstdio>
#include <fmt/format.h>
#ifdef _WIN32
#include <io.h>
#else
#include <unistd.h>
#endif

namespace Ketra::Tool {

namespace {

constexpr auto kQuietTime = std::chrono::seconds(1);
constexpr auto kInterval = std::chrono::milliseconds(200);
constexpr unsigned int kCallsALook = 256; // the clock is not asked for every frame

bool isTerminal(std::FILE* stream) {
#ifdef _WIN32
    return _isatty(_fileno(stream)) != 0;
#else
    return isatty(fileno(stream)) != 0;
#endif
}

} // namespace

Progress::Progress(std::uint64_t total)
    : total_(total), wanted_(total > 0 && isTerminal(stderr) && !isTerminal(stdout)),
      next_(Clock::now() + kQuietTime) {}

Progress::~Progress() {
    if (shown_) fmt::print(stderr, "\r\033[K");
}

void Progress::update(std::uint64_t done) {
    if (!wanted_ || ++calls_ % kCallsALook != 0) return;
    const auto now = Clock::now();
    if (now < next_) return;
    next_ = now + kInterval;
    shown_ = true;
    fmt::print(stderr, "\r{:3} %", std::min<std::uint64_t>(100, done * 100 / total_));
}

} // namespace Ketra::Tool
