// Writing a layout without an atom header: the typed part of a sample description.
#pragma once

#include <qt/wire/Access.h>
#include <qt/wire/Padding.h>
#include <qt/wire/Writer.h>

#include <algorithm>
#include <cstdint>
#include <limits>

namespace Ketra::QT::wire {

template <class Atom>
std::uint64_t bodyBytes(const Atom& atom) {
    Writer count;
    Access::layout(atom, count);
    return count.written();
}

/// The layout alone, in a block of at least the size that the atom holds; the rest is zero.
template <class Atom>
QTFrame* writeBody(const Atom& atom) {
    const auto stored = static_cast<unsigned int>(atom.getSize());
    const std::uint64_t used = bodyBytes(atom);
    const std::uint64_t length = std::max<std::uint64_t>(stored, used);
    if (length > std::numeric_limits<unsigned int>::max() || !crediblePadding(atom, length, used))
        return nullptr;
    MallocPtr block = allocate(length);
    if (!block) return nullptr;
    Writer out(block.get());
    Access::layout(atom, out);
    return makeFrame(static_cast<unsigned int>(length), std::move(block));
}

} // namespace Ketra::QT::wire
