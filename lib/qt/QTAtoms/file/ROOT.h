// The file itself: a pseudo-atom whose children are the top-level atoms.
#pragma once

#include <qt/QTAtom.h>

namespace Ketra::QT {

/// Its size is the length of the file. Never written as an atom.
class KETRA_QT_API ROOT : public QTAtom {
public:
    ROOT();
    explicit ROOT(QTAtom* header);
    ROOT(const ROOT&) = default;
    ROOT& operator=(const ROOT&) = default;
    ~ROOT() override;

    /// Reads the top-level atoms. Without a "moov" among them the end of the file is searched for one that
    /// was written in the other byte order. 0, or the first child's result that is not.
    int parse() override;
    /// The header part of a file: "ftyp", "uuid", "moov", then "free" (16 bytes) and "wide" (8 bytes), so
    /// that the header of "mdat" can follow and grow. Throws CException "Can't serialize moovie, no
    /// MOOV-atom.".
    QTFrame* serialize() override;
};

} // namespace Ketra::QT
