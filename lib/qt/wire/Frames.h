// Putting serialized pieces together into one frame.
#pragma once

#include <qt/QTFrame.h>

#include <cstdint>
#include <memory>
#include <vector>

namespace Ketra::QT::wire {

using FrameList = std::vector<std::unique_ptr<QTFrame>>;

/// The pieces behind one another in a block of at least `atLeast` bytes. What the pieces leave free at the
/// end becomes one "free" atom, or zeros when that does not fit. Null above 4 GiB or without memory.
QTFrame* joinFrames(std::uint64_t atLeast, const FrameList& pieces);

/// The same with an 8-byte atom header in front that states the length of the result.
QTFrame* joinFrames(unsigned int type, std::uint64_t atLeast, const FrameList& pieces);

} // namespace Ketra::QT::wire
