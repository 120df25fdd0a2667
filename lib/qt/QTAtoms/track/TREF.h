// Track reference container.
#pragma once

#include <qt/QTAtom.h>

namespace Ketra::QT {

/// "tref": references to other tracks, one atom for each kind.
class KETRA_QT_API TREF : public QTAtom {
public:
    TREF();
    explicit TREF(QTAtom* header);
    TREF(const TREF&) = default;
    TREF& operator=(const TREF&) = default;
    ~TREF() override;

    int parse() override;
    QTFrame* serialize() override;
};

} // namespace Ketra::QT
