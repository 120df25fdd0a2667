// Room in a vector ahead of an adoption, so that the push behind it cannot fail.
#pragma once

namespace Ketra::QT::wire {

/// Grows by doubling: reserve(size + 1) at each turn would copy the whole list at each turn.
template <class Vector>
void makeRoomForOne(Vector& list) {
    if (list.size() == list.capacity()) list.reserve(2 * list.size() + 1);
}

} // namespace Ketra::QT::wire
