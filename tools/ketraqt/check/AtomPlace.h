// The atoms of a file as their headers lay them out, whatever is in them.
#pragma once

#include "check/Bytes.h"
#include "check/Findings.h"

#include <cstdint>
#include <string>
#include <vector>

namespace Ketra::Tool {

struct AtomPlace {
    unsigned int type = 0;
    std::uint64_t offset = 0;
    unsigned int headerSize = 0;
    std::uint64_t size = 0; ///< with the header; never beyond the atom around it
    std::string path;       ///< trak with its number; others from the second of a kind on
    std::vector<AtomPlace> children;

    std::uint64_t body() const { return offset + headerSize; }
    std::uint64_t end() const { return offset + size; }
    std::uint64_t bodySize() const { return size - headerSize; }
    const AtomPlace* child(unsigned int childType) const; ///< the first, or null
};

/// The atoms of the file, and those in the atoms that are known to hold others. Adds what is wrong with the
/// sizes.
AtomPlace readPlaces(Bytes& bytes, Findings& findings);

} // namespace Ketra::Tool
