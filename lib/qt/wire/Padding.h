// How far a stated size may exceed what an atom holds when it is written.
#pragma once

#include <qt/wire/Access.h>

#include <algorithm>
#include <cstdint>

namespace Ketra::QT::wire {

/// An atom is written as long as the size that it holds, zeros behind its own bytes. When that size comes out
/// of a file the difference cannot be more than the file could have delivered: a header of a few bytes must
/// not make gigabytes. A size that was set in memory is the caller's.
inline bool crediblePadding(const QTAtom& atom, std::uint64_t length, std::uint64_t used) {
    constexpr std::uint64_t kAlways = 1 << 16; // not worth asking the stream
    const std::uint64_t padding = length > used ? length - used : 0;
    QTUtils* reader = atom.getUtils();
    if (padding <= kAlways || !reader) return true;
    const std::int64_t stream = Access::streamSize(*reader);
    constexpr std::uint64_t kUntold = std::uint64_t{1} << 26; // closed by now, or it never told its size
    const std::uint64_t source = stream > 0 ? static_cast<std::uint64_t>(stream) : kUntold;
    return padding <= std::max(source, Access::alternateSize(*reader));
}

} // namespace Ketra::QT::wire
