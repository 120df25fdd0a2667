// How two movies differ.
#pragma once

#include "Commands.h"
#include "Json.h"
#include "Source.h"

#include <cstdint>
#include <string>
#include <vector>

namespace Ketra::Tool {

struct Difference {
    enum Kind {
        kOnlyA, ///< an atom or a track
        kOnlyB,
        kField,   ///< `name` tells which
        kContent, ///< bytes that no field tells of
        kOrder,   ///< the same atoms in another order
        kSamples, ///< `name` tells what of them; `where` the first sample
        kMoved    ///< media lie elsewhere; `b` is by how many bytes, null when not all by the same
    };

    Kind kind;
    std::string path; ///< moov/trak[2]/tkhd, as in the first of the movies that has it
    std::string name = {};
    Json a = {};
    Json b = {};
    std::uint64_t where = 0;
    std::uint64_t count = 1; ///< samples, or chunks, that differ alike
};

/// One of the two movies. Throws ToolError for a file that is none; tracks need not be readable.
struct Side {
    explicit Side(const std::string& path);
    QT::QTAtom& root();

    Source source;
    std::unique_ptr<QT::QTMovie> movie; ///< null: there are only the atoms
    std::unique_ptr<AtomTree> tree;
};

/// Atoms, their fields and, where nothing is known of an atom, its bytes. Media data are not looked at.
void compareAtoms(Side& a, Side& b, const DiffOptions& options, std::vector<Difference>& differences);

/// Sizes, times and key marks of the samples of tracks with the same ID, and where they lie.
void compareSamples(Side& a, Side& b, std::vector<Difference>& differences);

} // namespace Ketra::Tool
