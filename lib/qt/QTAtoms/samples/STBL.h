// Sample table container.
#pragma once

#include <qt/QTAtom.h>

namespace Ketra::QT {

/// "stbl". After parse() the sample-to-chunk table has one entry for every chunk offset, and an empty sync
/// table is gone. Atoms of unlisted types keep their bytes and are written back.
class KETRA_QT_API STBL : public QTAtom {
public:
    STBL();
    explicit STBL(QTAtom* header);
    STBL(const STBL&) = default;
    STBL& operator=(const STBL&) = default;
    ~STBL() override;

    int parse() override;
    QTFrame* serialize() override;
};

} // namespace Ketra::QT
