// Putting serialized pieces together into one frame.
#pragma once

#include <qt/QTAtom.h>
#include <qt/QTFrame.h>
#include <qt/wire/Output.h>

#include <cstdint>
#include <memory>
#include <vector>

namespace Ketra::QT::wire {

using FrameList = std::vector<std::unique_ptr<QTFrame>>;

/// Ends a container whose 8-byte header (still empty) and children stand in `out` from `begin` on, counted as
/// `atLeast` bytes. What they leave free at the end becomes one "free" atom, or zeros when that does not fit.
/// False, and all taken back, above 4 GiB, without memory, and when more would be left free than a file can
/// answer for.
bool finishContainer(const QTAtom& atom, Output& out, std::uint64_t begin, std::uint64_t atLeast);

/// The same for bytes without a header of their own.
bool fillUp(const QTAtom& atom, Output& out, std::uint64_t begin, std::uint64_t atLeast);

/// The pieces of the atom behind an 8-byte header of its type, in a frame of at least `atLeast` bytes.
QTFrame* joinFrames(const QTAtom& atom, std::uint64_t atLeast, const FrameList& pieces);

} // namespace Ketra::QT::wire
