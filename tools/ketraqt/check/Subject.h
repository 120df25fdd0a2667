// What the single checks look at.
#pragma once

#include "check/AtomPlace.h"

namespace Ketra::Tool {

struct Subject {
    Findings& findings;
    Bytes& bytes;           ///< of the movie header; those of the file unless it is compressed
    const AtomPlace& file;  ///< the atoms of the file
    const AtomPlace& movie; ///< the movie header
    bool compressed;
    bool fragmented; ///< tables and durations need not tell everything
};

/// Kinds of atoms that are missing, twice there, or at the wrong end of the file.
void checkFileAtoms(Findings& findings, Bytes& bytes, const AtomPlace& file);
void checkMovieAtoms(const Subject& subject);

} // namespace Ketra::Tool
