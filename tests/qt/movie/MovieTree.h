// Looking into the tree of a movie that is written.
#pragma once

#include "support/Bytes.h"

#include <qt/QTAtoms.h>
#include <qt/QTMovie.h>
#include <qt/QTTrack.h>

#include <memory>
#include <string>
#include <vector>

namespace test {

using MoviePtr = std::unique_ptr<Ketra::QT::QTMovie>;

inline MoviePtr begin(Ketra::QT::QTMovieConstructionFlags type, bool hinted = false,
                      bool ftypForMov = false) {
    return MoviePtr(Ketra::QT::QTMovie::beginMovie(type, hinted, ftypForMov));
}

inline Ketra::QT::QTAtom* moovOf(const MoviePtr& movie) {
    return movie->getRoot()->getAtomOfType(Ketra::QT::fourCC("moov"));
}

/// The first direct child of the type, as its class.
template <class Atom>
Atom* childOf(const Ketra::QT::QTAtom* parent, unsigned int type) {
    return parent ? dynamic_cast<Atom*>(parent->getAtomOfType(type)) : nullptr;
}

/// The types of the direct children, behind one another.
inline std::string childTypes(const Ketra::QT::QTAtom* parent) {
    std::string types;
    for (const Ketra::QT::QTAtom* child : parent->getChildren()) {
        for (int shift = 24; shift >= 0; shift -= 8) {
            types += static_cast<char>(child->getType() >> shift);
        }
    }
    return types;
}

inline Bytes dataOf(const Ketra::QT::QTDataAtom* entry) {
    if (!entry || !entry->getData()) return {};
    return Bytes(entry->getData(), entry->getData() + entry->getSize() - 8);
}

inline std::string code(unsigned int type) {
    std::string text;
    for (int shift = 24; shift >= 0; shift -= 8) {
        text += static_cast<char>(type >> shift);
    }
    return text;
}

} // namespace test
