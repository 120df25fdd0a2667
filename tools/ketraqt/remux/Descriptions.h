// Carrying sample descriptions from the track that is read to the one that is written.
#pragma once

#include "remux/Flavours.h"

#include <qt/QTTrack.h>

namespace Ketra::Tool {

/// The data format of the first description as it stands in the file; 0 without one.
unsigned int storedFormat(const QT::QTTrack& track);

/// What the written track needs to know before its first sample and for its own description.
void configureDescription(QT::QTTrack& from, QT::QTTrack& to);

/// After prepareForWriting(): replaces the description that the written track made by those of the other one,
/// byte for byte where both kinds of file share the form; else completes it with what the track's own setters
/// have no name for.
void carryDescriptions(QT::QTTrack& from, QT::QTTrack& to, MediaKind kind, bool fromQuickTime);

} // namespace Ketra::Tool
