// Writing the atoms of a tree into one block.
#pragma once

#include <qt/QTAtom.h>
#include <qt/wire/Output.h>

namespace Ketra::QT::wire {

/// What serialize() of the atom gives, written behind what `out` holds. False, and nothing written, for an
/// atom without bytes. Defined with the atoms, whose classes it must know.
bool writeInto(QTAtom& atom, Output& out);

} // namespace Ketra::QT::wire
