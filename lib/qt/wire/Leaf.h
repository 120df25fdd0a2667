// parse(), serialize() and the byte count of a leaf atom, from its one layout.
#pragma once

#include <qt/wire/Access.h>
#include <qt/wire/Output.h>
#include <qt/wire/Padding.h>
#include <qt/wire/Reader.h>
#include <qt/wire/Writer.h>

#include <algorithm>
#include <cstdint>
#include <limits>

namespace Ketra::QT::wire {

constexpr std::uint64_t kAtomHeader = 8;

/// Fetches the payload and reads the layout from it. -1 when nothing can be fetched.
template <class Atom>
int parseLeaf(Atom& atom) {
    Payload payload = Access::fetch(atom);
    if (!payload) return -1;
    Reader in(std::move(payload));
    Access::layout(atom, in);
    return 0;
}

/// Header and layout in bytes: what the atom needs, whatever size it holds.
template <class Atom>
std::uint64_t leafBytes(const Atom& atom) {
    Writer count;
    Access::layout(atom, count);
    return kAtomHeader + count.written();
}

/// Writes header and layout under `type`. The block, its size field and the frame are as long as the larger
/// of the size held (its low 32 bits) and the bytes of the layout; what the layout does not fill is zero.
template <class Atom>
bool writeLeafInto(const Atom& atom, unsigned int type, Output& out) {
    const auto stored = static_cast<unsigned int>(atom.QTAtom::getSize());
    const std::uint64_t used = leafBytes(atom);
    const std::uint64_t length = std::max<std::uint64_t>(stored, used);
    if (length > std::numeric_limits<unsigned int>::max() || !crediblePadding(atom, length, used))
        return false;
    const std::uint64_t begin = out.size();
    if (!out.extend(length)) return false;
    store32(out.at(begin), length);
    store32(out.at(begin) + 4, type);
    Writer fields(out.at(begin) + kAtomHeader);
    Access::layout(atom, fields);
    return true;
}

template <class Atom>
QTFrame* writeLeaf(const Atom& atom, unsigned int type) {
    return frameOf([&](Output& out) { return writeLeafInto(atom, type, out); });
}

template <class Atom>
QTFrame* writeLeaf(const Atom& atom) {
    return writeLeaf(atom, atom.getType());
}

} // namespace Ketra::QT::wire
