// A movie file written anew: its media stay where they are, its header changes.
#pragma once

#include "../AtomicFile.h"
#include "MovieHeader.h"

#include <qt/QTTypes.h>

namespace Ketra::Tool {

/// Reads what a file consists of. Media keep their offsets, so a header in front of them leaves a free atom
/// behind when it moves to the end.
class MovieRewrite {
public:
    /// Throws ToolError for a file that is damaged, or not of a kind that can be rewritten.
    explicit MovieRewrite(QT::QTStream& stream); ///< borrowed

    MovieHeader& header() { return header_; }
    bool hasHints() const;

    /// Takes the hint tracks out of the header, and out of the file the media that only they used.
    void removeHints();

    /// The parts that remain, except for the header.
    void copyParts(AtomicFile& out);
    void writeHeader(AtomicFile& out) const;

    QT::QTMovieConstructionFlags flavour(); ///< by the brands

private:
    enum class Fate { kKeep, kFree, kDrop };
    struct Part {
        FilePart place;
        Fate fate = Fate::kKeep;
    };

    const FilePart& moov() const;
    void copyPart(AtomicFile& out, const Part& part);
    bool used(const FilePart& part, bool byHints) const;

    QT::QTStream& stream_;
    std::vector<Part> parts_;
    MovieHeader header_;
};

} // namespace Ketra::Tool
