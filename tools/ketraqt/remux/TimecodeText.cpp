#include "remux/TimecodeText.h"

#include "ToolError.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fmt/format.h>

namespace Ketra::Tool {

namespace {

/// Drop-frame counting leaves out numbers at the start of each minute but every tenth, so that 29.97 frames a
/// second keep step with the clock.
std::uint64_t droppedAMinute(unsigned int perSecond) { return perSecond / 15; }

std::uint64_t withDroppedNumbers(std::uint64_t frame, unsigned int perSecond) {
    const std::uint64_t dropped = droppedAMinute(perSecond);
    const std::uint64_t perMinute = perSecond * 60ULL - dropped;
    const std::uint64_t perTenMinutes = perSecond * 600ULL - dropped * 9;
    if (dropped == 0) return frame;
    const std::uint64_t tens = frame / perTenMinutes;
    const std::uint64_t rest = frame % perTenMinutes;
    const std::uint64_t minutes = rest < perSecond * 60ULL ? 0 : (rest - dropped) / perMinute;
    return frame + dropped * (tens * 9 + minutes);
}

[[noreturn]] void refuse(const char* what, const std::string& text) {
    throw ToolError(kUsage, fmt::format("\"{}\" is no {}", text, what));
}

} // namespace

FrameRate parseRate(const std::string& text) {
    FrameRate rate;
    char rest = 0;
    const bool fraction =
        std::sscanf(text.c_str(), "%9u/%9u%c", &rate.numerator, &rate.denominator, &rest) == 2;
    if (!fraction) {
        char* end = nullptr;
        const double value = std::strtod(text.c_str(), &end);
        if (text.empty() || *end || !(value >= 1) || value > 240) refuse("frame rate", text);
        const auto whole = static_cast<unsigned int>(std::lround(value));
        // Television's rates are a thousandth below whole numbers.
        const bool television =
            std::abs(value - whole * 1000.0 / 1001) < 0.006 && std::abs(value - whole) > 1e-9;
        rate = television ? FrameRate{whole * 1000, 1001}
                          : FrameRate{static_cast<unsigned int>(std::lround(value * 1000)), 1000};
        if (!television && std::abs(value - whole) < 1e-9) rate = {whole, 1};
    }
    if (rate.denominator == 0 || rate.counted() == 0 || rate.counted() > 240) refuse("frame rate", text);
    return rate;
}

Timecode parseTimecode(const std::string& text, const FrameRate& rate) {
    unsigned int hours = 0;
    unsigned int minutes = 0;
    unsigned int seconds = 0;
    unsigned int frames = 0;
    char separator = 0;
    char rest = 0;
    const int found = std::sscanf(text.c_str(), "%2u:%2u:%2u%c%3u%c", &hours, &minutes, &seconds, &separator,
                                  &frames, &rest);
    const unsigned int perSecond = rate.counted();
    if (found != 5 || (separator != ':' && separator != ';') || hours > 23 || minutes > 59 || seconds > 59 ||
        frames >= perSecond) {
        refuse("timecode of that rate", text);
    }
    Timecode code;
    code.dropFrame = separator == ';';
    code.frame = ((hours * 60 + minutes) * 60 + seconds) * perSecond + frames;
    if (code.dropFrame) {
        const auto dropped = static_cast<unsigned int>(droppedAMinute(perSecond));
        if (rate.denominator != 1001 || perSecond % 30 != 0) refuse("timecode of that rate", text);
        if (seconds == 0 && minutes % 10 != 0 && frames < dropped)
            refuse("timecode: that number is left out", text);
        const unsigned int whole = hours * 60 + minutes;
        code.frame -= dropped * (whole - whole / 10);
    }
    return code;
}

std::string timecodeText(std::int64_t frame, unsigned int perSecond, bool dropFrame) {
    auto number = static_cast<std::uint64_t>(frame < 0 ? -frame : frame);
    if (dropFrame) number = withDroppedNumbers(number, perSecond);
    const std::uint64_t seconds = number / perSecond;
    return fmt::format("{}{:02}:{:02}:{:02}{}{:02}", frame < 0 ? "-" : "", seconds / 3600, seconds / 60 % 60,
                       seconds % 60, dropFrame ? ';' : ':', number % perSecond);
}

} // namespace Ketra::Tool
