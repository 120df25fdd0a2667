// Finding atoms by code and class; a code alone does not tell the class.
#pragma once

#include <qt/QTAtom.h>

#include <initializer_list>

namespace Ketra::Tool {

/// The first child of the code that is of the class, or null.
template <class Atom>
Atom* childOf(const QT::QTAtom* parent, unsigned int type) {
    if (!parent) return nullptr;
    for (QT::QTAtom* child : parent->getChildren()) {
        if (child->getType() != type) continue;
        if (auto* found = dynamic_cast<Atom*>(child)) return found;
    }
    return nullptr;
}

/// The same over several levels.
template <class Atom>
Atom* atomAt(QT::QTAtom* from, std::initializer_list<unsigned int> path) {
    for (const unsigned int type : path) {
        from = childOf<QT::QTAtom>(from, type);
    }
    return dynamic_cast<Atom*>(from);
}

} // namespace Ketra::Tool
