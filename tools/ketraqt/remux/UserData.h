// Carrying user data and metadata.
#pragma once

#include <qt/QTAtom.h>
#include <qt/QTStream.h>

#include <vector>

namespace Ketra::Tool {

/// Copies the user data of a movie or a track, and the metadata and extension atoms beside it, into the same
/// place of another tree. What describes streaming or names tracks of the old file stays behind, as do the
/// entries named in `without`.
void carryUserData(QT::QTStream& stream, const QT::QTAtom& from, QT::QTAtom& to,
                   const std::vector<unsigned int>& without = {});

} // namespace Ketra::Tool
