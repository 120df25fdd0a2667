// Which tracks of a movie are hint tracks.
#pragma once

#include "../Atoms.h"

#include <qt/QTAtoms/media/HDLR.h>
#include <qt/QTMovie.h>
#include <qt/QTTrack.h>

#include <vector>

namespace Ketra::Tool {

/// By their handlers: the classes of tracks that are read do not tell.
inline std::vector<QT::QTTrack*> hintTracksOf(const QT::QTMovie& movie) {
    std::vector<QT::QTTrack*> found;
    for (QT::QTTrack* track : movie.getTracks()) {
        const auto* handler = atomAt<QT::HDLR>(track->getTrak(), {QT::fourCC("mdia"), QT::fourCC("hdlr")});
        if (handler && handler->getComponentSubType() == QT::fourCC("hint")) found.push_back(track);
    }
    return found;
}

} // namespace Ketra::Tool
