// Header atoms with 64-bit times, which the atom classes read as if their times were short.
#pragma once

#include <qt/QTAtoms/movie/MVHD.h>
#include <qt/QTAtoms/track/ELST.h>
#include <qt/QTAtoms/track/TKHD.h>
#include <qt/QTStream.h>

#include <cstdint>
#include <memory>
#include <vector>

namespace Ketra::Tool {

struct MovieTimes {
    unsigned int timeScale = 0;
    std::uint64_t creation = 0; ///< seconds since 1904
};
MovieTimes movieTimes(QT::QTStream& stream, const QT::MVHD& header);

/// A header with short times that says the same, as far as short times can.
std::unique_ptr<QT::TKHD> trackHeader(QT::QTStream& stream, QT::TKHD& header);

struct Edit {
    std::uint64_t duration = 0; ///< movie time scale
    std::int64_t mediaTime = 0; ///< media time scale; -1: nothing is shown
    float rate = 1;
};
std::vector<Edit> editsOf(QT::QTStream& stream, const QT::ELST& list);

} // namespace Ketra::Tool
