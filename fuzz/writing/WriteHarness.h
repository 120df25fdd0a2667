// What a caller can do while a movie is written, in an order that arbitrary bytes choose.
#pragma once

#include "writing/Script.h"

#include <qt/QTTypes.h>

#include <cstddef>
#include <vector>

namespace Ketra::QT {
class QTFrame;
class QTMovie;
class QTTrack;
} // namespace Ketra::QT

namespace writing {

using Bytes = std::vector<unsigned char>;

/// The first byte chooses the order: of a careful caller, whose frames must come back with their bytes, or
/// any. What follows are flavour, tracks and steps. Only CException is expected out of the library, of a
/// careful caller's movie not even that; a frame that does not come back ends the program.
void exerciseWriting(const unsigned char* bytes, std::size_t size);

// The parts of it.
void writeOrderly(Script& script);
void writeInAnyOrder(Script& script);
void setAnything(Ketra::QT::QTMovie& movie, Script& script);
void setAnything(Ketra::QT::QTTrack& track, Script& script);

Ketra::QT::QTMovieConstructionFlags chooseFlavour(Script& script);
Bytes take(Ketra::QT::QTFrame* frame); ///< deletes it
/// A malloc block with the bytes, or null for none.
unsigned char* copyOf(const Bytes& bytes);
void append(Bytes& to, const Bytes& more);
/// The media behind the header of its atom.
Bytes mediaData(const Bytes& media);
/// Ends the program, for the fuzzer to keep the input.
void require(bool condition, const char* what);

} // namespace writing
