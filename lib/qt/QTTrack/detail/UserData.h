// The user data of a track that is written.
#pragma once

#include <qt/QTAtoms/movie/UDTA.h>
#include <qt/QTTrack/QTTrack.h>
#include <qt/wire/Access.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <vector>

namespace Ketra::QT::wire {

/// The same, made and added when there is none; null without a parent.
template <class Atom>
Atom* requireChild(QTAtom* parent, unsigned int type) {
    if (Atom* found = child<Atom>(parent, type)) return found;
    auto made = std::make_unique<Atom>();
    return parent && parent->addChild(made.get()) == 0 ? static_cast<Atom*>(made.release()) : nullptr;
}

/// The track's user data, made and added to its tree when there is none; null for a track without a tree.
inline UDTA* requireUserData(const QTTrack& track) {
    return requireChild<UDTA>(track.getTrak(), fourCC("udta"));
}

/// A data atom around a copy of the bytes.
inline std::unique_ptr<QTDataAtom> dataAtom(unsigned int type, const unsigned char* bytes,
                                            std::uint64_t count) {
    // The constructor only copies from the block.
    return std::make_unique<QTDataAtom>(count + 8, type, const_cast<unsigned char*>(bytes));
}

/// Appends a data atom to a list of them ("udta", "hnti", "hinf").
template <class List>
int append(List& list, std::unique_ptr<QTDataAtom> atom) {
    if (list.addDataAtom(atom.get()) != 0) return -1;
    static_cast<void>(atom.release());
    return 0;
}

} // namespace Ketra::QT::wire
