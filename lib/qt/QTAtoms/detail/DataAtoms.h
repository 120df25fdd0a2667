// Lists of opaque data atoms, as hint information holds them.
#pragma once

#include <qt/QTDataAtom.h>
#include <qt/wire/Frames.h>
#include <qt/wire/Held.h>

#include <cstdint>

namespace Ketra::QT::wire {

/// The atoms that stand behind one another in `size` bytes. One that states more than is left is cut to it;
/// one that states less than its own header ends the list. Returns the bytes passed.
std::uint64_t readDataAtoms(HeldList<QTDataAtom>& list, const unsigned char* data, std::uint64_t size);

/// Bytes of the list in a file, each size taken with its low 32 bits.
std::uint64_t dataAtomBytes(const HeldList<QTDataAtom>& list);

/// Appends one frame for each atom, its header in file order. An atom smaller than a header is left out.
void writeDataAtoms(FrameList& to, const HeldList<QTDataAtom>& list);

} // namespace Ketra::QT::wire
