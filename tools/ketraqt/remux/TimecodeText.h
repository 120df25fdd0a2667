// Timecodes as people write them: HH:MM:SS:FF, with a semicolon in front of the frames for drop-frame
// counting.
#pragma once

#include <cstdint>
#include <string>

namespace Ketra::Tool {

/// Frames a second as a fraction.
struct FrameRate {
    unsigned int numerator = 25;
    unsigned int denominator = 1;
    unsigned int counted() const { return (numerator + denominator / 2) / denominator; } ///< numbers a second
};

/// "25", "29.97", "23.976", "30000/1001". Throws ToolError for what is no rate.
FrameRate parseRate(const std::string& text);

struct Timecode {
    unsigned int frame = 0; ///< frames since 00:00:00:00
    bool dropFrame = false;
};
/// Throws ToolError for a text that is no timecode of that rate.
Timecode parseTimecode(const std::string& text, const FrameRate& rate);

std::string timecodeText(std::int64_t frame, unsigned int perSecond, bool dropFrame);

} // namespace Ketra::Tool
