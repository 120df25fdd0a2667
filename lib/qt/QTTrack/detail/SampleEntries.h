// What every track does with its sample description table before it reads it.
#pragma once

#include <qt/QTAtoms/entries/STSD.h>
#include <qt/wire/Throw.h>

#include <vector>

namespace Ketra::QT::wire {

/// The atom as a sample description table, or null when it is none.
inline STSD* descriptionTable(QTAtom* atom) {
    return atom && atom->getType() == fourCC("stsd") ? dynamic_cast<STSD*>(atom) : nullptr;
}

/// The entries of the table. Throws when there are not as many as the table says.
inline std::vector<STSDData*> describedEntries(const STSD& table, const char* function) {
    std::vector<STSDData*> entries = table.getSampleDescriptionTable();
    if (entries.size() != table.getNumberOfEntries()) {
        QT_THROW(area::kTrack, function,
                 CString::createWithFormat(
                     "Not a correct number of descriptions in the descriptionsvector %d should be %d",
                     static_cast<int>(entries.size()), static_cast<int>(table.getNumberOfEntries())));
    }
    return entries;
}

} // namespace Ketra::QT::wire
