// Sample descriptions as bytes, and the table that is read from them.
#pragma once

#include "support/AtomFile.h"

#include <qt/QTAtoms/entries/STSD.h>

#include <memory>

namespace test {

inline Bytes u32(unsigned int v) {
    return {static_cast<unsigned char>(v >> 24), static_cast<unsigned char>(v >> 16),
            static_cast<unsigned char>(v >> 8), static_cast<unsigned char>(v)};
}

inline Bytes u16(unsigned int v) {
    return {static_cast<unsigned char>(v >> 8), static_cast<unsigned char>(v)};
}

/// An entry with its 16-byte header; data reference index 1.
inline Bytes entryBytes(const char (&format)[5], const Bytes& body) {
    return atom(format, hex("000000000000 0001") + body);
}

/// The 70 bytes of a video description.
inline Bytes videoBody(unsigned int width, unsigned int height) {
    return hex({"0001 0002 'appl'", "00000003 00000004"}) + u16(width) + u16(height) +
           hex({"00480000 0048FFFF", "00000000 0009", "04 'name'"}) + repeat(0, 27) + hex("0018 FFFF");
}

/// A table that says how many entries it has, read.
inline std::unique_ptr<Ketra::QT::STSD> readTable(unsigned int count, const Bytes& entries) {
    AtomFile file(atom("stsd", hex("00000000") + u32(count) + entries));
    return file.parse<Ketra::QT::STSD>();
}

template <class Track>
void readDescription(Track& track, const char (&format)[5], const Bytes& body) {
    const auto table = readTable(1, entryBytes(format, body));
    track.parseStsd(table.get());
}

} // namespace test
