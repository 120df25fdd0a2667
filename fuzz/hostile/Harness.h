// Everything that a caller can do with a movie that somebody else made, done to one set of bytes.
#pragma once

#include "hostile/FaultyStream.h"

#include <base/CException.h>
#include <qt/QTFrame.h>
#include <qt/QTTypes.h>

#include <cstddef>

namespace Ketra::QT {
class QTAtom;
class QTMovie;
class QTStream;
class QTTrack;
class QTUtils;
} // namespace Ketra::QT

namespace hostile {

struct How {
    Fault fault = Fault::none;
    Ketra::QT::QTMovieConstructionFlags flavour = Ketra::QT::kMOV;
    bool write = false;   // goes through the writing sequence as well, samples added
    bool thorough = true; // visits every atom: tables unpacked, records, copies
};

/// Opens, reads, copies, changes, writes and reads again what was written. Returns whether it was a movie.
/// Only CException is expected out of the library; whatever else it throws comes out here.
bool exercise(const unsigned char* bytes, std::size_t size, const How& how);

/// The last byte says how, what stands before it is the movie: bits 0-2 the fault, 3-4 the flavour, 5
/// writing.
bool exerciseInput(const unsigned char* input, std::size_t size);
unsigned char inputByte(const How& how);

/// One atom alone, read as the class that the last byte of its type chooses, whatever the others say. Returns
/// whether it parsed.
bool exerciseAtoms(const unsigned char* bytes, std::size_t size, Fault fault);

// The parts of it.
void readTrack(Ketra::QT::QTTrack& track, Ketra::QT::QTStream& stream);
void askTrack(Ketra::QT::QTTrack& track, Ketra::QT::QTStream& stream);
void editTrack(Ketra::QT::QTTrack& track);
void visitAtoms(Ketra::QT::QTUtils& reader);
void visitAtom(Ketra::QT::QTAtom& atom);
/// Reads every byte, so that the sanitizers see one that is not there, and deletes the frame.
void consume(Ketra::QT::QTFrame* frame);

/// Whether `action` ended without the library's exception.
template <class Action>
bool attempt(Action action) {
    try {
        action();
        return true;
    } catch (const Ketra::CException&) {
        return false;
    }
}

} // namespace hostile
