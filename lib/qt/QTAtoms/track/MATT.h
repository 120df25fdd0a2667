// Matte of a track's picture.
#pragma once

#include <qt/QTAtom.h>

namespace Ketra::QT {

/// "matt": holds one "kmat". Only the first child is read; one of another type keeps its bytes.
class KETRA_QT_API MATT : public QTAtom {
public:
    MATT();
    explicit MATT(QTAtom* header);
    MATT(const MATT&) = default;
    MATT& operator=(const MATT&) = default;
    ~MATT() override;

    int parse() override;
    QTFrame* serialize() override;
};

} // namespace Ketra::QT
