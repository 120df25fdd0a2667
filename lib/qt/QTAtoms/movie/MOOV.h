// Movie container: the whole header of a movie.
#pragma once

#include <qt/QTAtom.h>

namespace Ketra::QT {

/// "moov". A compressed header in it is inflated, and its contents take its place.
class KETRA_QT_API MOOV : public QTAtom {
public:
    MOOV();
    explicit MOOV(QTAtom* header);
    MOOV(const MOOV&) = default;
    MOOV& operator=(const MOOV&) = default;
    ~MOOV() override;

    int parse() override; ///< throws what CMOV throws
    QTFrame* serialize() override;
};

} // namespace Ketra::QT
