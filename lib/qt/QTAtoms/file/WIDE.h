// Room for a 64-bit size.
#pragma once

#include <qt/QTAtom.h>

namespace Ketra::QT {

/// "wide": 8 bytes in front of "mdat", whose header may grow into them. A new one holds the type "skip" in
/// memory, but "wide" is what is written.
class KETRA_QT_API WIDE : public QTAtom {
public:
    WIDE();
    explicit WIDE(QTAtom* header);
    WIDE(const WIDE&) = default;
    WIDE& operator=(const WIDE&) = default;
    ~WIDE() override;

    QTFrame* serialize() override;
};

} // namespace Ketra::QT
