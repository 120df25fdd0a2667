// How the library throws: QT_THROW(wire::area::kAtoms, "Ketra::QT::STTS::serialize", message).
#pragma once

#include <base/CException.h>

namespace Ketra::QT::wire::area {

// The source file that an exception names.
inline constexpr char kAtoms[] = "lib/qt/QTAtoms";
inline constexpr char kChunk[] = "lib/qt/QTChunk";
inline constexpr char kMovie[] = "lib/qt/QTMovie";
inline constexpr char kTrack[] = "lib/qt/QTTrack";
inline constexpr char kUtils[] = "lib/qt/QTUtils";

} // namespace Ketra::QT::wire::area

// A macro, so that the exception carries the line of the caller.
#define QT_THROW(file, function, message)                                                                    \
    throw ::Ketra::CException("Ketra::CException", __LINE__, (file), (function), (message))
