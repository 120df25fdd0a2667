// H.264 and H.265 parameter sets: splitting them, and the configuration records made of them.
#pragma once

#include <qt/QTFrame.h>
#include <qt/QTTrack/detail/AtomBuilder.h>

#include <memory>
#include <vector>

namespace Ketra::QT::wire {

using NalUnit = std::vector<unsigned char>;

/// The NAL units of a frame: split at start codes, or the whole frame as one when it does not begin with one.
std::vector<NalUnit> splitNalUnits(const QTFrame* frame);

/// "avcC" of parameter sets; null when there is no usable sequence parameter set.
std::unique_ptr<QTFrame> makeAvcC(const QTFrame* sequenceSets, const QTFrame* pictureSets,
                                  unsigned int lengthSize);

/// "hvcC" of parameter sets behind start codes; null when there is no usable sequence parameter set.
std::unique_ptr<QTFrame> makeHvcC(const QTFrame* sets);

} // namespace Ketra::QT::wire
