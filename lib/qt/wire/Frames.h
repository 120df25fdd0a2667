// Putting serialized pieces together into one frame.
#pragma once

#include <qt/QTAtom.h>
#include <qt/QTFrame.h>

#include <cstdint>
#include <memory>
#include <vector>

namespace Ketra::QT::wire {

using FrameList = std::vector<std::unique_ptr<QTFrame>>;

/// The pieces of the atom behind one another in a block of at least `atLeast` bytes. What the pieces leave
/// free at the end becomes one "free" atom, or zeros when that does not fit. Null above 4 GiB, without
/// memory, and when more would be left free than a file can answer for.
QTFrame* joinHeaderless(const QTAtom& atom, std::uint64_t atLeast, const FrameList& pieces);

/// The same with an 8-byte header of the atom's type in front that states the length of the result.
QTFrame* joinFrames(const QTAtom& atom, std::uint64_t atLeast, const FrameList& pieces);

} // namespace Ketra::QT::wire
