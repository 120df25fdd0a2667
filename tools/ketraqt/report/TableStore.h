// Sample tables as they are stored.
#pragma once

#include "Source.h"
#include "check/Bytes.h"

#include <qt/QTAtom.h>

#include <cstdint>
#include <optional>

namespace Ketra::Tool::Report {

/// Rows of one size behind their count. Reading them one by one takes no memory, however many there are.
struct Table {
    bool found = false;
    unsigned int type = 0;   ///< of the atom, as stored
    unsigned int second = 0; ///< the word behind version and flags
    unsigned int stated = 0; ///< rows, by the count; those that fit into the atom are there
    Rows rows;
};

/// Where atoms are stored: in the file, or in a movie header that was compressed.
class TableStore {
public:
    TableStore(Source& source, QT::QTAtom& root);

    struct Place {
        bool unpacked = false;   ///< in the header that was compressed
        std::uint64_t begin = 0; ///< of the payload
        std::uint64_t end = 0;   ///< never beyond what is there
        std::uint64_t size = 0;  ///< with the header, as stored; the atom in memory may have another by now
        unsigned int type = 0;
    };
    /// Nothing for null, and for an atom that is not where it should be.
    std::optional<Place> placeOf(const QT::QTAtom* atom);
    /// `before`: bytes of the payload in front of the rows, the last four being their count.
    Table tableOf(const QT::QTAtom* atom, unsigned int before, unsigned int rowSize);

private:
    Bytes& bytes(bool unpacked) { return unpacked ? *unpacked_ : file_; }

    Bytes file_;
    std::optional<Bytes> unpacked_;
};

} // namespace Ketra::Tool::Report
